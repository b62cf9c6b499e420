// How the dispatcher and the models of single commands meet.
//
// A model is an operation on the analysis. It takes the command's words, notes what the command would do, and returns
// what its exit status and output would be. It has three ways to report trouble, each with a fixed sense:
//   - `return analysis.addCommandError(friendly, technical)`: the command is predicted to fail; the line goes on;
//   - exit code 1 with known output and no CommandError: a failure that only the tool's own words show;
//   - `throw BasherAnalysisError{...}`: the simulation must not or cannot follow the line; it ends here.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "analysis/sim_string.h"
#include "shell/syntax_tree.h"

namespace brindlet {

class BasherAnalysis;

// What a command is predicted to give. The two are independent: a command can be known to succeed with unknown output.
struct CommandResult {
    std::optional<int> exitCode;
    SimString output = SimString::known("");
    bool operator==(const CommandResult&) const = default;

    static CommandResult success() { return {0, SimString::known("")}; }
    static CommandResult unpredictable() { return {std::nullopt, SimString::unknown()}; }
};

struct ModelInput {
    std::string_view name;
    std::vector<std::string> args;  // after all expansion, no quoting left
    SimString standardInput;
    const BashCommand& command;  // the node that the words came from
};

using CommandModel = CommandResult (*)(BasherAnalysis& analysis, const ModelInput& input);

// Whether a command can do more than read and print. What an operand might stand for beyond what the prediction sees
// is only worth a warning where something could happen to it.
enum class Reach { onlyReads, mayChange };

struct CommandRow {
    std::string_view name;
    CommandModel model;
    Reach reach = Reach::mayChange;
    // Of a command that may change things: whether with these words it only reads, though escapes in them may turn out
    // otherwise in a shell.
    bool (*onlyReadsWith)(const std::vector<std::string>& args) = nullptr;
};

// The commands that have a row, by exact name.
struct CommandTable {
    virtual ~CommandTable() = default;
    virtual const CommandRow* find(std::string_view name) const = 0;
};

}  // namespace brindlet
