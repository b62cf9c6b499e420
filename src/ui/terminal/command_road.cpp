#include "ui/terminal/command_road.h"

#include <fmt/format.h>
#include <unistd.h>

#include <utility>

#include "exec/file_presenting.h"
#include "exec/file_variables.h"
#include "exec/progress_trackers.h"
#include "text/strings.h"
#include "ui/json.h"
#include "ui/prediction_rows.h"
#include "ui/terminal/exit_code.h"
#include "ui/terminal/prediction.h"
#include "ui/terminal/question.h"
#include "ui/terminal/shown_text.h"

namespace brindlet {

namespace {

using enum PromptState;

constexpr std::chrono::milliseconds turnInterval{100};

// "Error analysing command: Expected a word", or nothing.
std::string analysisErrorText(const AnalysisResult& result) {
    if (!result.analysisError) return "";
    const ChangesViewIconAndText row = rowFor(*result.analysisError);
    return row.subtitle ? row.text + ": " + *row.subtitle : row.text;
}

std::string missingToolText(const PromptFlowView& view) {
    const std::string& name = *view.missingPackageName;
    return "nothing was run, since " + name + " is missing: " +
           (view.needsHomebrew ? "it comes from Homebrew, which is missing too; "
                                 "once that is there, "
                               : "") +
           "'brindlet tools install " + name + "' installs it";
}

std::string confirmQuestion(const PromptFlowView& view, FlowPackages& packages, bool isAction) {
    if (isAction) return "Are you sure you want run this command? [Enter/y] runs, [n/Escape] stops ";
    if (!view.missingPackageName) return "Run it? [Enter/y] runs, [n/Escape] stops ";
    if (packages.requiresInstallForPrediction(*view.missingPackageName))
        return "Install " + *view.missingPackageName +
               " to see what it would do? [Enter/y] installs, [n/Escape] stops ";
    return "Install " + *view.missingPackageName + " and run it? [Enter/y] installs and runs, [n/Escape] stops ";
}

std::string refusalText(const PromptFlowView& view) {
    std::string text = "nothing was run, since nobody is here to be asked about: " + titlesOf(view.reasons);
    if (view.analysisResult.analysisError) text += " (" + analysisErrorText(view.analysisResult) + ")";
    return text + "; --yes runs it without asking";
}

std::string shownPrediction(const PredictReport& report, int stream) {
    constexpr std::string_view runsTexts[] = {
        "Runs once:", "Runs once per file selected:", "Runs once on all selected files:"};
    const std::string& line = report.result.rewrittenCommand;
    return fmt::format("{}\n  {}\n{}", runsTexts[static_cast<std::size_t>(runMode(line))], shownText(trimmed(line)),
                       predictionText(report, styleFor(stream)));
}

}  // namespace

CommandRoad::CommandRoad(CommandLineContext& context, std::vector<FilePath> files, Options options,
                         StandardOutput& output)
    : options_(std::move(options)),
      output_(output),
      display_(!options_.wantsJson, output, [this] { terminal_->loop().post([this] { flow().escape(); }); }) {
    context.endPredictionsOn(interruption_.descriptor());
    terminal_ = std::make_unique<TerminalFlow>(
        context, std::move(files),
        FlowOptions{.remembers = options_.remembers && !options_.isDryRun,
                    .summarizes = options_.summarizes,
                    .fansOut = !options_.isAction,
                    .alwaysAsks = options_.isDryRun,
                    .model = options_.model,
                    .onLine =
                        [this](std::string_view line) {
                            if (printsLines_) display_.printLine(line);
                        },
                    .prepareRunner = [this](CommandRunner& runner) { display_.follow(runner); },
                    .trackers = chooseProgressTracker,
                    .tell = [this](const std::string& sentence) { display_.reportProblem(sentence); }});
    flow().observe([this] { follow(); });
    terminal_->loop().watch(interruption_.descriptor(), [this] {
        terminal_->loop().watch(interruption_.descriptor(),
                                nullptr);  // the signal stays to be read
        wasStopped_ = true;
        flow().escape();
    });
}

// What goes on is shown as it changes.
void CommandRoad::follow() {
    const PromptFlowView& view = flow().view();
    if (view.command) command_ = trimmed(view.command->bashCommand);
    if (view.promptState != std::exchange(followed_, view.promptState)) {
        if (view.promptState == runningCommand) {
            hasRun_ = true;
            printsLines_ = !options_.wantsJson && options_.showsOutput && pipelineEnd(command_) == PipelineEnd::none;
        }
        if (view.promptState == installingPackage) installed_ = view.missingPackageName.value_or("");
        if (flow().isBusy() || view.promptState == runningCommand) display_.begin();
        if (view.promptState == sendingRequest)
            display_.show(OutputLine{"Asking " + view.selectedModel.friendlyName + "..."});
        if (view.promptState == completeButInterprettingResult) display_.show(OutputLine{"Reading the output..."});
    }
    if (view.progressLine) display_.show(OutputLine{*view.progressLine});
    if (view.progressNorm) display_.show(ProgressNorm{*view.progressNorm});
}

void CommandRoad::turn() {
    display_.turn();
    terminal_->loop().postAfter(turnInterval, [this] { turn(); });
}

int CommandRoad::goToTheEnd() {
    if (!options_.wantsJson) turn();
    for (;;) {
        terminal_->runUntilIdle();
        display_.end();
        if (wasStopped_ || flow().view().promptState != awaitingConfirmation) break;
        confirmOrStop();
        if (!flow().isBusy() && flow().view().promptState == awaitingConfirmation) break;
    }
    terminal_->finish();
    display_.finish();
    tell();
    return exitCode();
}

// Either the flow goes on, or it stays where it is and the report says why.
void CommandRoad::confirmOrStop() {
    const PromptFlowView& view = flow().view();
    if (options_.isDryRun) return;
    // Who had enough while it was still predicted wants nothing of it.
    wasStopped_ = interruption_.requested();
    if (wasStopped_) return;
    const bool isAnswered = options_.isConfirmed && !mustAsk_;
    const bool isMissing = view.missingPackageName.has_value();
    if (isMissing && options_.isAction)
        return flow().presentError("Can't run this command because you need to install " + *view.missingPackageName);
    // Nothing is fetched behind the back of somebody who isn't there, whatever
    // has been agreed to beforehand; and what is still missing after it was
    // fetched will not come by fetching it again.
    if (isMissing && (!canAsk() || view.needsHomebrew || installed_ == *view.missingPackageName)) {
        problem_ = missingToolText(view);
    } else if (!isAnswered && !canAsk()) {
        problem_ = refusalText(view);
    } else {
        if (!options_.wantsJson || !isAnswered)
            writeTo(STDERR_FILENO, shownPrediction(*terminal_->currentPrediction(), STDERR_FILENO));
        if (isAnswered || isAgreed(confirmQuestion(view, terminal_->packages(), options_.isAction))) flow().confirm();
    }
}

bool CommandRoad::isAgreed(const std::string& question) {
    wasStopped_ = ask(question, interruption_) != Answer::yes;
    return !wasStopped_;
}

void CommandRoad::tell() {
    const PromptFlowView& view = flow().view();
    const auto nonEmpty = [](const std::string& text) { return text.empty() ? Json() : Json(text); };
    if (options_.wantsJson) {
        const auto prediction = terminal_->currentPrediction();
        output_.write(
            jsonText(recordJson({{"command", command_},
                                 {"prediction", prediction ? toJson(*prediction) : Json()},
                                 {"ran", hasRun_ && (view.runs > 0 || wasStopped_)},
                                 {"output", view.fullCommandOutput},
                                 {"failureMessage", joined(view.failureMessages, "")},
                                 {"exitCode", view.exitCode},
                                 {"summary", nonEmpty(view.result)},
                                 {"state", caseName(view.promptState)},
                                 {"error", view.promptState == presentingError ? Json(view.error) : Json()}})) +
            "\n");
    } else {
        tellPeople();
    }
    output_.flush();
    if (!problem_.empty()) reportProblem(problem_);
    if (hasRun_ && view.runs == 0 && !wasStopped_ && view.promptState == complete)
        reportProblem(
            "nothing was run, since the command runs once for each FILE "
            "and none is given");
}

void CommandRoad::tellPeople() {
    const PromptFlowView& view = flow().view();
    if (options_.isDryRun && view.promptState == awaitingConfirmation)
        output_.write(shownPrediction(*terminal_->currentPrediction(), STDOUT_FILENO));
    if (!view.result.empty()) output_.write(view.result + "\n");
    // What was not printed as it came: the lines that name files for the file
    // manager, and an output that nobody summarises.
    const bool isOutputUntold = view.result.empty() && !printsLines_ && !view.fullCommandOutput.empty();
    if (isOutputUntold) output_.write(view.fullCommandOutput + (view.fullCommandOutput.ends_with('\n') ? "" : "\n"));
    if (view.promptState == presentingError) reportProblem(view.error);
    for (const std::string& message : view.failureMessages) reportProblem(message);
}

int CommandRoad::exitCode() const {
    const PromptFlowView& view = terminal_->flow().view();
    if (wasStopped_) return exitCancelled;
    if (view.promptState == presentingError || !problem_.empty()) return exitFailed;
    return view.exitCode == 0 ? exitDone : exitFailed;
}

}  // namespace brindlet
