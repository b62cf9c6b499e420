// The road of one line of bash at a terminal: the prediction, the question, the run, and what is told of it. `run` and
// `ask` go it alike; they differ in where the line comes from and in what is said at the end.
//
//     CommandRoad road({.isConfirmed = true});
//     RoadReport report = road.predicted(line, files, context);
//     road.decide(report, files, context, output);
#pragma once

#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "ui/terminal/command_line_context.h"
#include "ui/terminal/command_run.h"
#include "ui/terminal/console.h"
#include "ui/terminal/interruption.h"
#include "ui/terminal/prediction.h"

namespace brindlet {

// Where the road ended.
enum class EndState { awaitingConfirmation, complete, question, presentingError, enteringPrompt };

struct RoadReport {
    std::string command;
    std::optional<PredictReport> prediction;  // none where no command came to be
    std::set<CommandEffect> reasons;
    CommandRunSummary runs;
    std::optional<std::string> summary;  // of the run, or the text of a line that only echoes one
    EndState state = EndState::complete;
    std::optional<std::string> error;
    std::string problem;      // why nothing ran, where that is no error of its own
    std::string note;         // what people should know, though nothing went wrong
    bool wasStopped = false;  // by the user, before the run or in it

    bool ran() const { return runs.runs > 0 || runs.wasCancelled; }
    void present(std::string text) {
        error = std::move(text);
        state = EndState::presentingError;
    }
};

class CommandRoad {
  public:
    struct Options {
        bool isConfirmed = false;  // runs without asking
        bool wantsJson = false;
        bool isDryRun = false;    // stops at the question
        bool showsOutput = true;  // as it comes
    };

    explicit CommandRoad(Options options) : options_(options) {}

    static RoadReport predicted(const std::string& line, const std::vector<FilePath>& files,
                                CommandLineContext& context);
    // From the prediction to the end of the run.
    void decide(RoadReport& report, const std::vector<FilePath>& files, CommandLineContext& context,
                StandardOutput& output) const;
    void tell(const RoadReport& report, StandardOutput& output) const;
    static int exitCodeOf(const RoadReport& report);

  private:
    bool mayRun(RoadReport& report, const Interruption& interruption) const;
    void runNow(RoadReport& report, const std::vector<FilePath>& files, CommandLineContext& context,
                StandardOutput& output, Interruption& interruption) const;

    Options options_;
};

}  // namespace brindlet
