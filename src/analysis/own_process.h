// What a shell runs in a process of its own (a substitution, parentheses, a part of a pipe) can't change the folder or
// the variables of the rest of the line; the simulation, which has one shell, lets it. Where that makes a difference,
// it is said.
#pragma once

#include <string_view>
#include <unordered_set>

#include "analysis/basher_analysis.h"

namespace brindlet {

class BasherAnalysis::OwnProcess {
  public:
    explicit OwnProcess(BasherAnalysis& analysis)
        : analysis_(analysis), folder_(*analysis.variable("PWD")), assignmentsBefore_(analysis.assignedNames_.size()) {}
    OwnProcess(const OwnProcess&) = delete;
    OwnProcess& operator=(const OwnProcess&) = delete;

    ~OwnProcess() {
        auto& doubts = analysis_.state_->doubts;
        if (*analysis_.variable("PWD") != folder_)
            doubts.raiseForTheRest(
                "A shell leaves the folder of a 'cd' in parentheses, substitutions and pipes behind them, so the rest "
                "may work in another folder than shown here");
        const auto& names = analysis_.assignedNames_;
        for (std::size_t at = assignmentsBefore_; at < names.size(); ++at)
            if (names[at] != "PWD" && names[at] != "OLDPWD")
                doubts.taint(names[at], {"'$" + names[at] + "' is set where the rest of the line doesn't see it"});
    }

  private:
    BasherAnalysis& analysis_;
    std::string folder_;
    std::size_t assignmentsBefore_;
};

// A shell that the line starts: the simulated variables and the folder go on into it, and are put back in full behind
// it. Of the variables that the line has set, a real one sees only what is exported; the use of the others is in doubt.
class BasherAnalysis::OwnShell {
  public:
    explicit OwnShell(BasherAnalysis& analysis)
        : analysis_(analysis),
          environment_(analysis.environment_),
          pathPrefixes_(analysis.pathPrefixes_),
          isPathLearnt_(analysis.isPathLearnt_),
          assignmentsBefore_(analysis.assignedNames_.size()),
          doubts_(analysis.state_->doubts),
          command_(analysis.currentCommand_) {
        std::unordered_set<std::string_view> names{"PWD", "OLDPWD"};
        for (const auto& name : analysis.assignedNames_)
            if (names.insert(name).second)
                analysis.state_->doubts.taint(
                    name, {"A new shell sees '$" + name + "' only if it is exported, which isn't shown here"});
    }
    OwnShell(const OwnShell&) = delete;
    OwnShell& operator=(const OwnShell&) = delete;
    ~OwnShell() {
        analysis_.environment_ = std::move(environment_);
        analysis_.pathPrefixes_ = std::move(pathPrefixes_);
        analysis_.isPathLearnt_ = isPathLearnt_;
        analysis_.assignedNames_.resize(assignmentsBefore_);
        analysis_.state_->doubts = std::move(doubts_);
        analysis_.currentCommand_ = command_;
    }

  private:
    BasherAnalysis& analysis_;
    Environment environment_;
    std::optional<std::vector<std::string>> pathPrefixes_;
    bool isPathLearnt_;
    std::size_t assignmentsBefore_;
    Doubts doubts_;
    const BashCommand* command_;
};

// One level of substitutions, groups and shells within shells.
class BasherAnalysis::Depth {
  public:
    explicit Depth(BasherAnalysis& analysis) : analysis_(analysis) {
        if (++analysis_.depth_ > analysis_.services_.limits.depth) {
            --analysis_.depth_;
            throw BasherAnalysisError{BasherAnalysisError::Kind::simulationError,
                                      "The line nests commands too deep to simulate"};
        }
    }
    Depth(const Depth&) = delete;
    Depth& operator=(const Depth&) = delete;
    ~Depth() { --analysis_.depth_; }

  private:
    BasherAnalysis& analysis_;
};

}  // namespace brindlet
