#include "ui/prompt_flow.h"

#include <fmt/format.h>

#include <algorithm>
#include <iterator>
#include <utility>

#include "exec/command_history.h"
#include "platform/log.h"
#include "text/characters.h"
#include "text/strings.h"
#include "ui/prompt_flow_task.h"

namespace brindlet {

namespace {

using enum PromptState;

constexpr std::string_view stateNames[] = {"enteringPrompt",
                                           "sendingRequest",
                                           "responseReceived",
                                           "awaitingConfirmation",
                                           "enteringFollowUpPrompt",
                                           "runningCommand",
                                           "installingPackage",
                                           "completeButInterprettingResult",
                                           "question",
                                           "complete",
                                           "presentingError"};

constexpr std::string_view noFolderText =
    "Can't see this folder. Enable Automation for Brindlet in System Settings > Privacy & Security?";
constexpr std::string_view tooLongText = "Sorry, please keep keep your request shorter";
constexpr std::chrono::milliseconds analysisDelay{1000};

void logRisk(RiskSummary risk, std::set<CommandEffect> effects) {
    effects.erase(CommandEffect::harmless);
    logInfo(fmt::format("Risk: {}, for effects: {}", caseName(risk), effects.empty() ? "harmless" : titlesOf(effects)));
}

// What the user asked for first, also where the command came of an amendment.
std::string firstRequest(const AICommand& command) {
    const auto first = std::find_if(command.messages.begin(), command.messages.end(),
                                    [](const AIMessage& message) { return message.role == AIRole::user; });
    return first == command.messages.end() ? command.prompt : first->text;
}

bool isOneOf(PromptState state, std::initializer_list<PromptState> states) {
    return std::find(states.begin(), states.end(), state) != states.end();
}

}  // namespace

std::string_view caseName(PromptState state) {
    return stateNames[static_cast<std::size_t>(state)];
}

std::string titlesOf(const std::set<CommandEffect>& effects) {
    std::vector<std::string> titles;
    for (const CommandEffect effect : effects) titles.emplace_back(rawValue(effect));
    return joined(titles, ", ");
}

PromptFlow::PromptFlow(FlowServices services) : services_(std::move(services)) {
    view_.selectedModel = commandModel();
}

PromptFlow::~PromptFlow() {
    cancelTask();
    *isAlive_ = false;
}

void PromptFlow::appear() {
    if (services_.history != nullptr) {
        services_.history->loadOrMigrateHistory();
        view_.commandHistory = services_.history->commandHistory();
    }
    view_.selectedModel = commandModel();
    changed();
}

// Inputs.

void PromptFlow::setPrompt(std::string text) {
    view_.prompt = firstCharacters(text, longestPrompt);
    changed();
}

void PromptFlow::submit() {
    if (!isOneOf(view_.promptState, {enteringPrompt, enteringFollowUpPrompt, question})) return;
    view_.prompt = std::string(trimmed(view_.prompt));
    if (view_.prompt.empty()) return changed();
    if (!services_.finder.activeFolderPath()) return presentError(std::string(noFolderText));
    view_.promptState = sendingRequest;
    view_.selectedModel = commandModel();
    if (characterCount(view_.prompt) >= longestPrompt) return presentError(std::string(tooLongText));

    const TaskPointer task = startTask();
    auto request = [&generator = services_.generator, prompt = view_.prompt, files = selectedFiles(),
                    model = view_.selectedModel, previous = view_.command, stop = task->stop.get_token()] {
        return previous ? generator.generateFollowUp(prompt, files, model, *previous, stop)
                        : generator.generateCommand(prompt, files, model, stop);
    };
    services_.workers.start(
        [this, task, request = std::move(request)] { task->post([this, answer = request()] { answered(answer); }); });
    changed();
}

void PromptFlow::submitCommand(AICommand command, bool asksFirst) {
    if (!services_.finder.activeFolderPath()) return presentError(std::string(noFolderText));
    cancelTask();
    view_.promptState = sendingRequest;
    asksFirst_ = asksFirst;
    answered(std::move(command));
}

void PromptFlow::confirmOrDismiss() {
    if (view_.promptState == awaitingConfirmation) return confirm();
    if (isOneOf(view_.promptState, {complete, presentingError})) reset();
}

void PromptFlow::confirm() {
    if (view_.promptState != awaitingConfirmation || view_.needsHomebrew || view_.isPredicting) return;
    view_.commandSummaryShowing = false;
    if (!view_.missingPackageName) return runCommand();
    install(!services_.packages.requiresInstallForPrediction(*view_.missingPackageName));
}

void PromptFlow::refine() {
    if (!isOneOf(view_.promptState, {awaitingConfirmation, complete, presentingError})) return;
    cancelTask();
    view_.prompt.clear();
    view_.fullCommandOutput.clear();
    view_.result.clear();
    view_.error.clear();
    view_.progressNorm.reset();
    view_.progressLine.reset();
    view_.commandSummaryShowing = false;
    view_.promptState = enteringFollowUpPrompt;
    view_.currentHistoryIndex.reset();
    changed();
}

void PromptFlow::escape() {
    switch (view_.promptState) {
        case enteringPrompt:
            view_.currentHistoryIndex.reset();
            view_.prompt.clear();
            return changed();
        case responseReceived:
            if (view_.isPredicting) reset();
            return;
        case enteringFollowUpPrompt:
            view_.promptState = awaitingConfirmation;
            view_.commandSummaryShowing = true;
            return changed();
        case sendingRequest:
        case awaitingConfirmation:
        case runningCommand:
        case installingPackage:
        case completeButInterprettingResult:
        case question:
        case complete:
        case presentingError:
            return reset();
    }
}

void PromptFlow::reset() {
    cancelTask();
    analysisDebounce_.reset();
    decidesLater_ = false;
    PromptFlowView fresh;
    fresh.selectedModel = std::move(view_.selectedModel);
    fresh.commandHistory = std::move(view_.commandHistory);
    view_ = std::move(fresh);
    changed();
}

void PromptFlow::historyStep(int direction) {
    const auto& history = view_.commandHistory;
    if (history.empty() || isBusy() || view_.promptState == responseReceived) return;
    auto& index = view_.currentHistoryIndex;
    if (!index && direction > 0) return;
    view_.historyMoveDir = direction;
    analysisDebounce_.reset();
    if (!index)
        index = history.size() - 1;
    else if (direction > 0)
        ++*index;
    else if (*index > 0)
        --*index;

    if (*index >= history.size()) {
        index.reset();
        view_.prompt.clear();
        applyCommand(std::nullopt);
        view_.promptState = enteringPrompt;
    } else if (const AICommand entry = history[*index]; entry.bashCommand.empty()) {
        applyCommand(std::nullopt);
        view_.promptState = enteringPrompt;
        view_.prompt = entry.prompt;
    } else {
        applyCommand(entry);
        view_.promptState = awaitingConfirmation;
        view_.commandSummaryShowing = true;
    }
    changed();
}

void PromptFlow::chooseFromHistory(const AICommand& entry) {
    const AICommand chosen = entry;  // it may lie in the list that a reset moves
    if (view_.promptState != enteringPrompt) reset();
    view_.showHistoryPopover = false;
    view_.currentHistoryIndex.reset();
    view_.historyMoveDir = 0;
    if (chosen.bashCommand.empty()) {
        view_.prompt = chosen.prompt;
    } else {
        applyCommand(chosen);
        view_.promptState = awaitingConfirmation;
        view_.commandSummaryShowing = true;
    }
    changed();
}

void PromptFlow::removeFromHistory(const AICommand& entry) {
    std::vector<AICommand> kept = view_.commandHistory;
    std::erase_if(kept, [id = entry.id](const AICommand& each) { return each.id == id; });
    view_.commandHistory = std::move(kept);
    view_.currentHistoryIndex.reset();
    saveHistory();
    changed();
}

void PromptFlow::editCommand(std::string text) {
    if (view_.promptState != awaitingConfirmation || !view_.command || text == view_.editedBashCommand) return;
    view_.editedBashCommand = std::move(text);
    adoptEditedText();
    analysisDebounce_ = std::make_shared<bool>(true);
    services_.loop.postAfter(analysisDelay, [this, alive = isAlive_, debounce = std::weak_ptr<bool>(analysisDebounce_),
                                             edited = *view_.command] {
        const auto pending = debounce.lock();
        if (!*alive || !pending || pending != analysisDebounce_) return;
        analysisDebounce_.reset();
        applyCommand(edited);
        enterInHistory(*view_.command);
        changed();
    });
    changed();
}

void PromptFlow::selectModel(const AIModel& model) {
    if (const auto failure = services_.modelList.select(model)) logError(failure->description);
    services_.model.reset();
    view_.selectedModel = model;
    changed();
}

void PromptFlow::setCommandSummaryShowing(bool showing) {
    view_.commandSummaryShowing = showing;
    changed();
}

void PromptFlow::setHistoryShowing(bool showing) {
    view_.showHistoryPopover = showing;
    changed();
}

void PromptFlow::selectionChanged() {
    if (!isOneOf(view_.promptState, {runningCommand, completeButInterprettingResult, complete, presentingError})) {
        applyCommand(view_.command);
        if (view_.promptState == awaitingConfirmation) view_.commandSummaryShowing = true;
    }
    changed();
    decideIfDue();
}

// A text that is being edited is predicted anew in a moment.
void PromptFlow::predictionArrived() {
    if (!view_.isPredicting || !view_.command || analysisDebounce_) return;
    applyCommand(view_.command);
    changed();
    decideIfDue();
}

// What comes of them.

PromptFlow::TaskPointer PromptFlow::startTask() {
    task_ = std::make_shared<Task>(services_.loop, isAlive_);
    return task_;
}

void PromptFlow::cancelTask() {
    if (task_) task_->stop.request_stop();
    task_.reset();
}

void PromptFlow::changed() {
    if (observer_) observer_();
}

void PromptFlow::presentError(std::string text) {
    task_.reset();
    view_.error = std::move(text);
    view_.progressNorm.reset();
    view_.progressLine.reset();
    view_.promptState = presentingError;
    changed();
}

void PromptFlow::presentFailure(const Failure& failure) {
    logError("ERROR: " + failure.description);
    presentError(failure.description);
}

void PromptFlow::answered(const Result<AICommand>& answer) {
    task_.reset();
    if (!answer) return presentFailure(answer.failure());
    applyCommand(*answer);
    view_.promptState = responseReceived;
    enterInHistory(*view_.command);
    if (!view_.commandHistory.empty()) view_.currentHistoryIndex = view_.commandHistory.size() - 1;
    changed();
    decidesLater_ = view_.isPredicting;
    if (!decidesLater_) decide();
}

void PromptFlow::decideIfDue() {
    if (view_.isPredicting || !std::exchange(decidesLater_, false)) return;
    enterInHistory(*view_.command);  // as the prediction has it
    decide();
}

void PromptFlow::decide() {
    const FilePath folder(services_.finder.activeFolderPath().value_or(""));
    view_.reasons = reasonsToAsk(commandEffects(view_.analysisResult, folder), services_.allowedEffects());
    const bool isEcho = pureEchoText(view_.command->bashCommand).has_value();
    const bool isDoubtful = !isEcho && services_.isSelectionDoubtful && services_.isSelectionDoubtful();
    const bool asksFirst = std::exchange(asksFirst_, false) || services_.alwaysAsks || isDoubtful;
    if ((view_.reasons.empty() || isEcho) && !view_.missingPackageName && !asksFirst) {
        logInfo("Auto-running because side effects are compatible with user's settings");
        return runCommand();
    }
    logInfo("Awaiting confirmation for the following reasons: " + titlesOf(view_.reasons));
    view_.promptState = awaitingConfirmation;
    view_.commandSummaryShowing = true;
    changed();
}

void PromptFlow::applyCommand(std::optional<AICommand> command) {
    if (!command) {
        view_.command.reset();
        refreshMissingPackage();
        view_.analysisResult = {};
        view_.isPredicting = false;
        view_.editedBashCommand.clear();
        return;
    }
    const FilePath folder(services_.finder.activeFolderPath().value_or(""));
    view_.analysisResult = services_.analyse(command->bashCommand, selectedFiles(), folder);
    view_.command = AICommand{.id = newUuid(),
                              .bashCommand = view_.analysisResult.rewrittenCommand,
                              .prompt = firstRequest(*command),
                              .messages = std::move(command->messages),
                              .requiredPackages = view_.analysisResult.requiredPackages};
    refreshMissingPackage();
    view_.editedBashCommand = view_.command->bashCommand;
    view_.isPredicting = services_.isPredictionOut && services_.isPredictionOut();
    view_.riskSummary = RiskSummary::low;
    if (view_.isPredicting) return;
    const std::set<CommandEffect> effects = commandEffects(view_.analysisResult, folder);
    view_.riskSummary = riskSummary(effects);
    logRisk(view_.riskSummary, effects);
}

void PromptFlow::refreshMissingPackage() {
    view_.missingPackageName.reset();
    if (view_.command && !view_.command->requiredPackages.empty())
        view_.missingPackageName = services_.packages.firstMissingPackage(view_.command->requiredPackages);
    view_.needsHomebrew = view_.missingPackageName && services_.packages.needsHomebrew(*view_.missingPackageName);
}

void PromptFlow::saveHistory() {
    if (services_.history == nullptr) return;
    services_.history->saveHistory(view_.commandHistory);
    view_.commandHistory = services_.history->commandHistory();
}

void PromptFlow::enterInHistory(const AICommand& command) {
    if (services_.history == nullptr) return;
    view_.commandHistory = withEntered(std::move(view_.commandHistory), command);
    saveHistory();
}

// The command as the user has edited it, with an id of its own and no new simulation.
void PromptFlow::adoptEditedText() {
    view_.command->id = newUuid();
    view_.command->bashCommand = std::string(trimmed(view_.editedBashCommand));
    refreshMissingPackage();
    enterInHistory(*view_.command);
}

AIModel PromptFlow::commandModel() const {
    return services_.model ? *services_.model : services_.modelList.selected();
}

// Where the one for summaries has no key, somebody who has a model for commands would rather have that one's.
AIModel PromptFlow::summaryModel() const {
    AIModel model = services_.modelList.summarizationModel();
    return services_.models.whyUnusable(model) ? commandModel() : model;
}

std::vector<FilePath> PromptFlow::selectedFiles() const {
    const std::vector<std::string>& items = services_.finder.items();
    std::vector<FilePath> files;
    files.reserve(items.size());
    for (const std::string& item : items) files.emplace_back(item);
    return files;
}

}  // namespace brindlet
