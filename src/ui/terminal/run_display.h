// What people at a terminal see of a run while it goes on: the lines of its
// output and, below them, how far it is.
//
//     RunDisplay display(true, output, [&] { cancelTheRun(); });
//     CommandRunner runner(searchPath, presenter, chooseProgressTracker);
//     display.follow(runner);
//     display.begin();
//     runner.run(..., [&](std::string_view line) { display.printLine(line); },
//     ...); display.end(); display.finish();
#pragma once

#include <functional>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>

#include "exec/command_runner.h"
#include "ui/terminal/console.h"
#include "ui/terminal/progress_line.h"

namespace brindlet {

// Any thread may call it.
class RunDisplay {
  public:
    // `showsProgress`: where standard output is a terminal. `onDeafness` is
    // called, once, when nobody reads standard output any more: the command need
    // not go on either.
    RunDisplay(bool showsProgress, StandardOutput& output, std::function<void()> onDeafness);

    // Lines that are meant to be overwritten are shown beside the bar, where
    // there is one. Lasts as long as this.
    void follow(CommandRunner& runner);

    // A new bar, which appears once it is worth showing, and its end.
    void begin();
    void end();

    void printLine(std::string_view line);
    void show(const CommandProgress& progress);
    // Some time has passed: a bar without a fraction moves.
    void turn();
    void reportProblem(const std::string& sentence);

    // Throws OutputError where a line could not be printed.
    void finish();

  private:
    void write(std::string_view line);

    bool showsProgress_;
    StandardOutput& output_;
    std::function<void()> onDeafness_;
    std::mutex guard_;
    std::optional<ProgressLine> progress_;
    std::string status_;
    std::string overwritten_;  // the latest line that would still stand in the
                               // last row of a terminal
    std::optional<OutputError> outputError_;
};

}  // namespace brindlet
