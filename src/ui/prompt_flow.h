// The road of one request, from the words of the user to the line that says what happened, as a state machine: what a
// front end does are its inputs, what the front end shows is its view. It knows of no terminal and no window.
//
//     PromptFlow flow(services);
//     flow.observe([&] { draw(flow.view()); });
//     flow.setPrompt("to png");
//     flow.submit();                     // sendingRequest ... awaitingConfirmation
//     flow.confirm();                    // runningCommand ... complete
#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <set>
#include <stop_token>
#include <string>
#include <string_view>
#include <vector>

#include "ai/ai_command.h"
#include "ai/ai_command_generator.h"
#include "ai/ai_model.h"
#include "ai/output_summary.h"
#include "analysis/analysis_result.h"
#include "analysis/risk.h"
#include "desktop/finder_context.h"
#include "exec/command_runner.h"
#include "platform/main_loop.h"

namespace brindlet {

class CommandHistoryStore;

enum class PromptState {
    enteringPrompt,
    sendingRequest,
    responseReceived,
    awaitingConfirmation,
    enteringFollowUpPrompt,
    runningCommand,
    installingPackage,
    completeButInterprettingResult,
    question,
    complete,
    presentingError,
};
std::string_view caseName(PromptState state);
// "Rename files, Move files"
std::string titlesOf(const std::set<CommandEffect>& effects);

inline constexpr std::size_t longestPrompt = 250;  // characters; a request must be shorter

// What the flow asks of the packages.
struct FlowPackages {
    virtual ~FlowPackages() = default;
    virtual std::optional<std::string> firstMissingPackage(const std::set<std::string>& requiredPackages) = 0;
    // It can only come from Homebrew, and Homebrew isn't there.
    virtual bool needsHomebrew(const std::string& package) = 0;
    // Nothing can be predicted before it is there.
    virtual bool requiresInstallForPrediction(const std::string& package) = 0;
    // These two on a worker's thread.
    virtual std::optional<Failure> install(const std::string& package,
                                           const std::function<void(const CommandProgress&)>& onProgress,
                                           const std::stop_token& stop) = 0;
    virtual void refresh() = 0;
};

// What each front end fits the flow with. Everything is called on the loop's thread unless it says otherwise, and
// outlives the flow and its workers.
struct FlowServices {
    MainLoop& loop;
    Workers& workers;
    FinderContext& finder;
    AICommandGenerator& generator;  // asked on a worker's thread
    ModelCalling& models;           // the same
    AIModelList& modelList;
    FlowPackages& packages;
    // The simulation of a line over the selection; it never fails.
    std::function<AnalysisResult(const std::string& line, const std::vector<FilePath>& files, const FilePath& folder)>
        analyse;
    // What may run without asking.
    std::function<std::set<CommandEffect>()> allowedEffects;
    // One run, on a worker's thread, where the progress is reported too; none: it was cancelled.
    std::function<std::optional<CommandRunResult>(
        const std::string& line, const std::vector<FilePath>& files, const FilePath& folder,
        const std::function<void(const CommandProgress&)>& onProgress, const std::stop_token& stop)>
        run;
    // Shows new files in the file manager, on a worker's thread; empty: nobody wants that. `exists` is asked of each
    // before.
    std::function<void(const std::vector<FilePath>& files)> reveal{};
    std::function<bool(const FilePath&)> exists{};
    CommandHistoryStore* history = nullptr;  // none: nothing is remembered
    std::optional<AIModel> model{};          // for commands; none: the one that the settings name
    bool summarizes = true;                  // else the run's end is the end, with no result
    bool fansOut = true;                     // else a line runs once with all files, whatever it names
    bool alwaysAsks = false;                 // stops at the prediction whatever the settings allow
    // True: what `analyse` gave last stands in for a result that takes its time, of which predictionArrived() will
    // tell; until then nothing runs.
    std::function<bool()> isPredictionOut{};
    // True: the items may not be what the user has selected, so nothing runs unasked.
    std::function<bool()> isSelectionDoubtful{};
};

// The fields that carry the flow, for reading.
struct PromptFlowView {
    PromptState promptState = PromptState::enteringPrompt;
    std::string prompt;
    std::optional<AICommand> command;
    AnalysisResult analysisResult;
    bool isPredicting = false;  // the result isn't there yet
    RiskSummary riskSummary = RiskSummary::low;
    std::set<CommandEffect> reasons;  // to ask, at the last decision
    std::string editedBashCommand;
    std::string fullCommandOutput;
    std::string result;
    std::string error;
    std::optional<double> progressNorm;  // 0 to 1; none hides the bar
    std::optional<std::string> progressLine;
    std::optional<std::string> missingPackageName;
    bool needsHomebrew = false;
    bool commandSummaryShowing = false;
    bool showHistoryPopover = false;
    AIModel selectedModel;
    std::vector<AICommand> commandHistory;
    std::optional<std::size_t> currentHistoryIndex;
    int historyMoveDir = 0;
    // Of the last run, for scripts.
    std::vector<std::string> failureMessages;
    int exitCode = 0;  // the first that isn't 0
    std::size_t runs = 0;
};

// Everything on the loop's thread. An input that a state has no use for changes nothing.
class PromptFlow {
  public:
    explicit PromptFlow(FlowServices services);
    ~PromptFlow();
    PromptFlow(const PromptFlow&) = delete;
    PromptFlow& operator=(const PromptFlow&) = delete;

    const PromptFlowView& view() const { return view_; }
    // Called after each change of the view.
    void observe(std::function<void()> observer) { observer_ = std::move(observer); }
    // Something is out: a request, a run, an install.
    bool isBusy() const { return task_ != nullptr; }

    // The view appears: the history is loaded and the model chosen.
    void appear();

    void setPrompt(std::string text);  // cut to its first 250 characters
    void submit();
    // A line of the user's own, as if a model had made it of `request`. `asksFirst`: whatever the settings allow.
    void submitCommand(AICommand command, bool asksFirst = false);
    void confirmOrDismiss();
    void confirm();
    void refine();
    void escape();
    void close() { reset(); }
    void reset();
    // What a front end has found to be in the way.
    void presentError(std::string text);
    void historyStep(int direction);  // -1 or +1
    void chooseFromHistory(const AICommand& entry);
    void removeFromHistory(const AICommand& entry);
    void editCommand(std::string text);  // the prediction follows a second later
    void selectModel(const AIModel& model);
    void setCommandSummaryShowing(bool showing);
    void setHistoryShowing(bool showing);
    // The items or the folder of the FinderContext changed.
    void selectionChanged();
    void predictionArrived();

  private:
    struct Task;  // what is out, and whether it still counts
    struct Run;   // the runs of one command
    using TaskPointer = std::shared_ptr<Task>;

    TaskPointer startTask();
    void cancelTask();
    void changed();

    void presentFailure(const Failure& failure);
    void answered(const Result<AICommand>& answer);
    void decide();
    void decideIfDue();
    void applyCommand(std::optional<AICommand> command);
    void refreshMissingPackage();
    void saveHistory();
    void enterInHistory(const AICommand& command);
    void adoptEditedText();

    void runCommand();
    bool isAnsweredByEcho();
    void startRuns();
    void nextRun(const TaskPointer& task, const std::shared_ptr<Run>& run);
    void oneRunOver(const TaskPointer& task, const std::shared_ptr<Run>& run, CommandRunResult result);
    void runsOver(const TaskPointer& task, const std::shared_ptr<Run>& run);
    void revealNewFiles(const FilePath& folder);
    void summarize(const TaskPointer& task, const std::shared_ptr<Run>& run);
    void install(bool runAfterwards);
    void installed(const std::optional<Failure>& failure, bool runAfterwards);
    void showProgress(const CommandProgress& progress, const Run* run);
    std::function<void(const CommandProgress&)> progressTo(const TaskPointer& task, const std::shared_ptr<Run>& run);

    std::vector<FilePath> selectedFiles() const;
    AIModel commandModel() const;
    AIModel summaryModel() const;

    FlowServices services_;
    PromptFlowView view_;
    std::function<void()> observer_;
    TaskPointer task_;
    bool asksFirst_ = false;                  // at the next decision
    bool decidesLater_ = false;               // the decision waits for the prediction
    std::shared_ptr<bool> analysisDebounce_;  // the pending re-simulation; it counts while this is the same
    std::shared_ptr<bool> isAlive_ = std::make_shared<bool>(true);
};

// What the line of the result shows.
std::string statusText(const PromptFlowView& view);
// The last lines of an output in at most 120 characters, joined by commas.
std::string outputTail(std::string_view output);
// "Confirm", "Install" or "Install and Confirm".
std::string_view confirmTitle(const PromptFlowView& view, FlowPackages& packages);

}  // namespace brindlet
