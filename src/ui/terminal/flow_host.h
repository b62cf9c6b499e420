// The flow of a request with all that it asks for, on whatever loop a front end has.
//
//     FlowHost host(context, loop, files, {.summarizes = false});
//     host.flow().submitCommand(command);
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
#include "ui/patient_prediction.h"
#include "ui/predict_report.h"
#include "ui/prompt_flow.h"
#include "ui/terminal/command_line_context.h"
#include "ui/terminal/model_services.h"

namespace brindlet {

// Does nothing until a command needs a package: finding out what is installed takes time.
std::unique_ptr<FlowPackages> flowPackages(CommandLineContext& context);

struct FlowOptions {
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
    // Shows new files in the file manager.
    bool reveals = false;
    // Where the selection comes from, once `finder()` is started; else it is what `select` says, in the context's
    // folder.
    FinderSource finderSource{};
    std::function<bool()> isSelectionDoubtful{};
    // The loop goes on while a prediction takes long.
    bool predictsBeside = false;
};

class FlowHost {
  public:
    // The context and the loop outlive it. Without a source the selection is `files`, until `select` changes it.
    FlowHost(CommandLineContext& context, MainLoop& loop, std::vector<FilePath> files, FlowOptions options);
    ~FlowHost();
    FlowHost(const FlowHost&) = delete;
    FlowHost& operator=(const FlowHost&) = delete;

    PromptFlow& flow() { return *flow_; }
    ModelServices& models() { return models_; }
    FinderContext& finder() { return finder_; }
    FlowPackages& packages() { return *packages_; }
    // Of the line that was simulated last; none before the first.
    const std::optional<PredictReport>& prediction() const { return prediction_; }
    // The report with what is missing now, which may have changed since.
    std::optional<PredictReport> currentPrediction() const;

    void select(std::vector<FilePath> files);
    const std::vector<FilePath>& selection() const { return files_; }
    // Waits for what was cancelled to come to its end.
    void finish();

  private:
    FinderSource source();
    FlowServices services();
    void predictBeside();

    CommandLineContext& context_;
    std::vector<FilePath> files_;
    FlowOptions options_;
    MainLoop& loop_;
    ModelServices models_;
    std::unique_ptr<FlowPackages> packages_;
    std::unique_ptr<FilePresenter> presenter_;
    std::optional<CommandHistoryStore> history_;
    std::optional<PredictReport> prediction_;
    std::unique_ptr<ThreadWorkers> workers_;
    std::unique_ptr<PatientPrediction> patient_;
    FinderContext finder_;
    std::unique_ptr<PromptFlow> flow_;
};

}  // namespace brindlet
