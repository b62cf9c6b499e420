// The runs of a carried command, and what they come to together.
//
//     CarriedRuns runs(analysis, input.command, input.standardInput);
//     for (const auto& path : paths) runs.run("rm", {path});
//     return runs.result();
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "analysis/models/model_support.h"

namespace brindlet {

class CarriedRuns {
  public:
    // Every run gets this standard input.
    CarriedRuns(BasherAnalysis& analysis, const BashCommand& command, SimString standardInput)
        : analysis_(analysis), command_(command), standardInput_(std::move(standardInput)) {}

    CommandResult run(std::string_view name, Words args);

    // The first status that isn't 0, unless an unknown one came before it; all outputs, unknown as soon as one is.
    // Without runs exit 0 and no output.
    CommandResult result() const { return total_; }

  private:
    BasherAnalysis& analysis_;
    const BashCommand& command_;
    SimString standardInput_;
    CommandResult total_ = CommandResult::success();
};

// The words with every occurrence of `mark` inside them replaced. Throws where they grow past any line that runs.
Words filledIn(const BasherAnalysis& analysis, const Words& words, std::string_view mark, std::string_view value);

// Throws where a run would get more words than a command may have.
void checkWordCount(const BasherAnalysis& analysis, std::size_t count);

}  // namespace brindlet
