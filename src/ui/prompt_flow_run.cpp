// The run of a command, the installation that it may need, and the summary.
#include <fmt/format.h>

#include <algorithm>
#include <mutex>
#include <utility>

#include "exec/file_variables.h"
#include "platform/log.h"
#include "text/characters.h"
#include "text/strings.h"
#include "ui/prompt_flow.h"
#include "ui/prompt_flow_task.h"

namespace brindlet {

namespace {

constexpr std::size_t tooManyToReveal = 100;

bool asksSomething(std::string_view text) {
    constexpr std::string_view beginnings[] = {"please", "why",  "what", "how", "can", "could", "would",
                                               "should", "will", "is",   "are", "was", "were"};
    const std::string lower = lowercased(text);
    return lower.ends_with('?') ||
           std::ranges::any_of(beginnings, [&](std::string_view beginning) { return lower.starts_with(beginning); });
}

bool touchesHomebrewIn(const AnalysisResult& result) {
    return std::ranges::any_of(result.sideEffects, [](const SideEffect& effect) {
        const auto* plain = std::get_if<PlainSideEffect>(&effect.type);
        return plain && (*plain == PlainSideEffect::homebrewInstall || *plain == PlainSideEffect::homebrewUninstall);
    });
}

}  // namespace

void PromptFlow::runCommand() {
    if (view_.command) adoptEditedText();
    const auto& analysisError = view_.analysisResult.analysisError;
    if (analysisError && analysisError->kind == BasherAnalysisError::Kind::bannedInBrindlet)
        return presentError(analysisError->text);
    if (!view_.command) return logError("No command to run");
    if (!isAnsweredByEcho()) startRuns();
}

bool PromptFlow::isAnsweredByEcho() {
    const auto text = pureEchoText(view_.command->bashCommand);
    if (!text) return false;
    logInfo("Command output was pure echo: " + *text);
    view_.result = *text;
    view_.prompt.clear();
    view_.promptState = asksSomething(*text) ? PromptState::question : PromptState::complete;
    changed();
    return true;
}

void PromptFlow::startRuns() {
    cancelTask();
    view_.progressNorm.reset();
    view_.progressLine.reset();
    view_.promptState = PromptState::runningCommand;
    view_.fullCommandOutput.clear();
    view_.failureMessages.clear();
    view_.exitCode = 0;
    view_.runs = 0;
    const auto& folder = services_.finder.activeFolderPath();
    if (!folder) {
        logError("Attempting to run command without an activeFolderPath");
        return presentError("Missing folder path");
    }
    const std::string& line = view_.command->bashCommand;
    const std::vector<FilePath> files = selectedFiles();
    if (hasTooManyFiles(line, files)) return presentError(std::string(tooManyFilesText));
    auto run = std::make_shared<Run>();
    run->folder = FilePath(*folder);
    run->selections = {files};
    if (services_.fansOut) run->selections = runSelections(line, files);
    run->touchesHomebrew = touchesHomebrewIn(view_.analysisResult);
    changed();
    nextRun(startTask(), run);
}

void PromptFlow::nextRun(const TaskPointer& task, const std::shared_ptr<Run>& run) {
    if (run->next == run->selections.size()) return runsOver(task, run);
    if (run->selections.size() >= 2) showProgress(ProgressNorm{0}, run.get());
    services_.workers.start([this, task, run, runLine = services_.run, line = view_.command->bashCommand,
                             files = run->selections[run->next], folder = run->folder, report = progressTo(task, run)] {
        auto result = runLine(line, files, folder, report, task->stop.get_token());
        task->post([this, task, run, result = std::move(result)]() mutable {
            if (!result) return reset();
            oneRunOver(task, run, std::move(*result));
        });
    });
}

void PromptFlow::oneRunOver(const TaskPointer& task, const std::shared_ptr<Run>& run, CommandRunResult result) {
    if (result.exitCode == 0) ++run->successes;
    std::string& output = run->combinedOutput;
    if (!output.empty() && !output.ends_with('\n')) output += '\n';
    output += result.output;
    if (!result.failureMessage.empty()) run->failures.push_back(std::move(result.failureMessage));
    if (view_.exitCode == 0) view_.exitCode = result.exitCode;
    view_.runs = ++run->next;
    nextRun(task, run);
}

void PromptFlow::runsOver(const TaskPointer& task, const std::shared_ptr<Run>& run) {
    revealNewFiles(run->folder);
    if (view_.progressNorm) view_.progressNorm = 1.0;
    view_.progressLine.reset();
    view_.fullCommandOutput = run->combinedOutput;
    view_.failureMessages = run->failures;
    view_.promptState = PromptState::completeButInterprettingResult;
    if (run->touchesHomebrew) services_.workers.start([&packages = services_.packages] { packages.refresh(); });
    changed();
    summarize(task, run);
}

void PromptFlow::revealNewFiles(const FilePath& folder) {
    if (!services_.reveal) return;
    std::vector<FilePath> created;
    for (const PredictedChange& each : view_.analysisResult.changes)
        if (each.change.type == FileChange::FileChangeType::create) created.push_back(each.change.url);
    const bool areAllHere = std::ranges::all_of(created, [&](const FilePath& file) {
        return file.parent() == folder && (!services_.exists || services_.exists(file));
    });
    if (!created.empty() && areAllHere && created.size() < tooManyToReveal)
        services_.workers.start([reveal = services_.reveal, created] { reveal(created); });
}

void PromptFlow::summarize(const TaskPointer& task, const std::shared_ptr<Run>& run) {
    const auto end = [this](std::string result) {
        task_.reset();
        view_.result = std::move(result);
        view_.promptState = PromptState::complete;
        changed();
    };
    if (!services_.summarizes) return end("");
    RunToSummarize told{.prompt = view_.prompt,
                        .command = view_.command->bashCommand,
                        .files = selectedFiles(),
                        .output = std::string(trimmed(run->combinedOutput)),
                        .failures = run->failures,
                        .allSuccess = run->successes == run->selections.size()};
    services_.workers.start(
        [this, task, end, &models = services_.models, model = summaryModel(), told = std::move(told)] {
            auto summary = summarizeOutput(models, model, told, task->stop.get_token());
            // A run of which no model can tell is no error: its output tells of it.
            const bool isUntold = !summary && models.whyUnusable(model);
            task->post([this, end, isUntold, summary = std::move(summary)] {
                if (isUntold) return end("");
                if (!summary) return presentFailure(summary.failure());
                end(summary->text);
            });
        });
}

void PromptFlow::install(bool runAfterwards) {
    cancelTask();
    const TaskPointer task = startTask();
    const std::string package = *view_.missingPackageName;
    view_.progressNorm.reset();
    view_.progressLine = "Downloading " + package + "...";
    view_.promptState = PromptState::installingPackage;
    changed();
    services_.workers.start(
        [this, task, package, runAfterwards, &packages = services_.packages, report = progressTo(task, nullptr)] {
            auto failure = packages.install(package, report, task->stop.get_token());
            task->post([this, runAfterwards, failure = std::move(failure)] { installed(failure, runAfterwards); });
        });
}

void PromptFlow::installed(const std::optional<Failure>& failure, bool runAfterwards) {
    task_.reset();
    if (failure) {
        logError("Error when downloading package: " + failure->description);
        return presentError(failure->description);
    }
    refreshMissingPackage();
    view_.progressNorm = 1.0;
    view_.progressLine.reset();
    if (runAfterwards) return runCommand();
    applyCommand(view_.command);
    view_.promptState = PromptState::awaitingConfirmation;
    view_.commandSummaryShowing = true;
    changed();
}

std::function<void(const CommandProgress&)> PromptFlow::progressTo(const TaskPointer& task,
                                                                   const std::shared_ptr<Run>& run) {
    // A tool may report faster than a front end can draw: of what waits only the latest counts.
    struct Waiting {
        std::mutex guard;
        std::optional<OutputLine> line;
        std::optional<ProgressNorm> fraction;
    };
    return [this, task, run, waiting = std::make_shared<Waiting>()](const CommandProgress& progress) {
        const auto* line = std::get_if<OutputLine>(&progress);
        if (line != nullptr && run) logInfo("COMMAND OUTPUT: " + line->text);
        {
            const std::lock_guard lock(waiting->guard);
            const bool isPosted = waiting->line || waiting->fraction;
            if (line != nullptr)
                waiting->line = *line;
            else
                waiting->fraction = std::get<ProgressNorm>(progress);
            if (isPosted) return;
        }
        task->post([this, run, waiting] {
            std::unique_lock lock(waiting->guard);
            const auto latestLine = std::exchange(waiting->line, std::nullopt);
            const auto fraction = std::exchange(waiting->fraction, std::nullopt);
            lock.unlock();
            if (latestLine) showProgress(*latestLine, run.get());
            if (fraction) showProgress(*fraction, run.get());
        });
    };
}

void PromptFlow::showProgress(const CommandProgress& progress, const Run* run) {
    if (const auto* line = std::get_if<OutputLine>(&progress)) {
        view_.progressLine = line->text;
    } else {
        const double fraction = std::get<ProgressNorm>(progress).value;
        const bool isOneOfSeveral = run != nullptr && run->selections.size() > 1;
        view_.progressNorm =
            isOneOfSeveral ? (static_cast<double>(run->next) + fraction) / static_cast<double>(run->selections.size())
                           : fraction;
    }
    changed();
}

// Texts of the result's view.

namespace {

constexpr std::size_t longestTail = 120;
constexpr std::string_view lineSeparator = ", ";

}  // namespace

// From the end, and no further than needed: an output may be huge.
std::string outputTail(std::string_view output) {
    const std::string_view text = trimmed(output);
    const bool isShort = firstCharacters(text, longestTail).size() == text.size();
    std::vector<std::string> tail;  // the last line first
    std::size_t length = 0;
    for (std::size_t end = text.size(), start = end; start > 0; end = start - 1) {
        const std::size_t lineEnd = end > 0 ? text.rfind('\n', end - 1) : std::string_view::npos;
        start = lineEnd == std::string_view::npos ? 0 : lineEnd + 1;
        const std::string_view line = trimmed(text.substr(start, end - start));
        if (line.empty()) continue;
        const std::string_view beginning = isShort ? line : firstCharacters(line, longestTail);
        if (beginning.size() < line.size() && tail.empty()) return std::string(beginning);
        length += characterCount(beginning) + (tail.empty() ? 0 : lineSeparator.size());
        if (!isShort && (beginning.size() < line.size() || length > longestTail)) break;
        tail.emplace_back(line);
    }
    std::ranges::reverse(tail);
    return joined(tail, lineSeparator);
}

std::string statusText(const PromptFlowView& view) {
    const auto request = [&view] { return view.command ? view.command->prompt : std::string(); };
    switch (view.promptState) {
        case PromptState::presentingError:
            return view.error;
        case PromptState::complete:
            return view.result;
        case PromptState::completeButInterprettingResult:
            if (!view.fullCommandOutput.empty()) return outputTail(view.fullCommandOutput);
            return view.command ? request() : "Analysing result...";
        case PromptState::runningCommand:
        case PromptState::installingPackage:
            return view.progressLine ? *view.progressLine : request();
        case PromptState::enteringPrompt:
        case PromptState::sendingRequest:
        case PromptState::responseReceived:
        case PromptState::awaitingConfirmation:
        case PromptState::enteringFollowUpPrompt:
        case PromptState::question:
            break;
    }
    if (!view.command) logError("PromptWindowContentView: Unexpectedly had no command or error to display");
    return request();
}

std::string_view confirmTitle(const PromptFlowView& view, FlowPackages& packages) {
    if (!view.missingPackageName) return "Confirm";
    return packages.requiresInstallForPrediction(*view.missingPackageName) ? "Install" : "Install and Confirm";
}

}  // namespace brindlet
