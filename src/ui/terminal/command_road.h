// The road of one request, or of one line of bash, at a terminal: the flow,
// driven once from the words of the command line to an exit code. `ask` and
// `run` go it alike; they differ in where the line comes from and in what is
// said at the end.
//
//     CommandRoad road(context, files, {.isConfirmed = true}, output);
//     road.flow().setPrompt("to png");
//     road.flow().submit();
//     return road.goToTheEnd();
#pragma once

#include <atomic>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "ui/terminal/command_line_context.h"
#include "ui/terminal/console.h"
#include "ui/terminal/interruption.h"
#include "ui/terminal/run_display.h"
#include "ui/terminal/terminal_flow.h"

namespace brindlet {

class CommandRoad {
  public:
    struct Options {
        bool isConfirmed = false;  // runs without asking
        bool wantsJson = false;
        bool isDryRun = false;    // stops at the prediction
        bool showsOutput = true;  // each line as it comes
        bool remembers = false;   // in the history
        bool summarizes = false;
        bool isAction = false;  // one run with all files, nothing is installed, the words of the scriptable action
        std::optional<AIModel> model{};  // else the one that the settings name
    };

    CommandRoad(CommandLineContext& context, std::vector<FilePath> files, Options options, StandardOutput& output);
    CommandRoad(const CommandRoad&) = delete;
    CommandRoad& operator=(const CommandRoad&) = delete;

    PromptFlow& flow() { return terminal_->flow(); }
    TerminalFlow& terminal() { return *terminal_; }
    const Interruption& interruption() const { return interruption_; }
    // Whatever the settings allow and the command line says, the next command is
    // shown and asked about.
    void askInAnyCase() { mustAsk_ = true; }

    // The user has had enough.
    void stop() { wasStopped_ = true; }

    // From what was submitted to the end: waits, asks, tells. The exit code.
    int goToTheEnd();

  private:
    void follow();
    void turn();
    void confirmOrStop();
    bool isAgreed(const std::string& question);
    void tell();
    void tellPeople();
    int exitCode() const;

    Options options_;
    StandardOutput& output_;
    Interruption interruption_;
    RunDisplay display_;
    std::atomic<bool> printsLines_ = false;
    std::unique_ptr<TerminalFlow> terminal_;

    // What is left of a command once the flow has gone back to its start.
    std::string command_;
    bool hasRun_ = false;
    bool wasStopped_ = false;  // by the user, before the run or in it
    bool mustAsk_ = false;
    std::string problem_;    // why nothing ran, where that is no error of its own
    std::string installed_;  // what was fetched on the way
    PromptState followed_ = PromptState::enteringPrompt;
};

}  // namespace brindlet
