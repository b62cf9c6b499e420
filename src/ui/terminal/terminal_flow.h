// The flow of a request with all that it asks for, as a program in a terminal has it.
//
//     TerminalFlow terminal(context, files, {.summarizes = false});
//     terminal.flow().submitCommand(command);
//     terminal.runUntilIdle();
//     print(terminal.prediction());
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string_view>
#include <vector>

#include "exec/command_history.h"
#include "exec/command_runner.h"
#include "platform/file_presenter.h"
#include "platform/main_loop.h"
#include "ui/predict_report.h"
#include "ui/prompt_flow.h"
#include "ui/terminal/command_line_context.h"
#include "ui/terminal/model_services.h"

namespace brindlet {

// Does nothing until a command needs a package: finding out what is installed takes time.
std::unique_ptr<FlowPackages> flowPackages(CommandLineContext& context);

class TerminalFlow {
  public:
    struct Options {
        bool remembers = true;  // enters the history
        bool summarizes = true;
        bool fansOut = true;
        bool alwaysAsks = false;
        std::optional<AIModel> model{};  // else the one that the settings name
        // These three on a worker's thread, while a run goes on.
        std::function<void(std::string_view line)> onLine = [](std::string_view) {};
        std::function<void(CommandRunner&)> prepareRunner{};
        TrackerChooser trackers{};
        // What a file manager could not show.
        TellUser tell = [](const std::string&) {};
    };

    // The context outlives it. The selection is `files` in the context's folder, until `select` changes it.
    TerminalFlow(CommandLineContext& context, std::vector<FilePath> files, Options options);
    ~TerminalFlow();
    TerminalFlow(const TerminalFlow&) = delete;
    TerminalFlow& operator=(const TerminalFlow&) = delete;

    PromptFlow& flow() { return *flow_; }
    PollLoop& loop() { return loop_; }
    ModelServices& models() { return models_; }
    FinderContext& finder() { return finder_; }
    FlowPackages& packages() { return *packages_; }
    // Of the line that was simulated last; none before the first.
    const std::optional<PredictReport>& prediction() const { return prediction_; }
    // The report with what is missing now, which may have changed since.
    std::optional<PredictReport> currentPrediction() const;

    void select(std::vector<FilePath> files);
    const std::vector<FilePath>& selection() const { return files_; }
    // Until nothing is out any more.
    void runUntilIdle();
    // Waits for what was cancelled to come to its end.
    void finish() { workers_.reset(); }

  private:
    FlowServices services();

    CommandLineContext& context_;
    std::vector<FilePath> files_;
    Options options_;
    PollLoop loop_;
    ModelServices models_;
    std::unique_ptr<FlowPackages> packages_;
    std::unique_ptr<FilePresenter> presenter_;
    std::optional<CommandHistoryStore> history_;
    std::optional<PredictReport> prediction_;
    std::unique_ptr<ThreadWorkers> workers_;
    FinderContext finder_;
    std::unique_ptr<PromptFlow> flow_;
};

}  // namespace brindlet
