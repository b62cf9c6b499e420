// What people at a terminal see of a run while it goes on: the lines of its output and, below them, how far it is.
//
//     RunDisplay display({.showsProgress = true}, output, interruption);
//     CommandRunner runner(searchPath, presenter, display.trackers());
//     display.follow(runner);
//     runAccepted(..., [&](std::string_view line) { display.printLine(line); }, ...);
//     display.finish();
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "exec/command_runner.h"
#include "ui/terminal/console.h"
#include "ui/terminal/interruption.h"
#include "ui/terminal/progress_line.h"

namespace brindlet {

class RunDisplay {
  public:
    struct Options {
        bool showsOutput = true;    // each line as it comes
        bool showsProgress = true;  // where standard output is a terminal
    };

    // Where nobody reads standard output any more, `interruption` is requested: the command need not go on either.
    RunDisplay(Options options, StandardOutput& output, Interruption& interruption);

    // The tool's own tracker, by which a bar without a fraction moves as well.
    TrackerChooser trackers();
    // Lines that are meant to be overwritten are shown beside the bar, where there is one. Lasts as long as this.
    void follow(CommandRunner& runner);

    void printLine(std::string_view line);
    void show(const CommandProgress& progress);
    void reportProblem(const std::string& sentence);

    // Takes the bar away. Throws OutputError where a line could not be printed.
    void finish();

  private:
    void write(std::string_view line);

    Options options_;
    StandardOutput& output_;
    Interruption& interruption_;
    std::optional<ProgressLine> progress_;
    std::string status_;
    std::string overwritten_;  // the latest line that would still stand in the last row of a terminal
    std::optional<OutputError> outputError_;
};

}  // namespace brindlet
