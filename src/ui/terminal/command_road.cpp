#include "ui/terminal/command_road.h"

#include <fmt/format.h>
#include <unistd.h>

#include <algorithm>

#include "exec/command_runner.h"
#include "exec/file_presenting.h"
#include "exec/file_variables.h"
#include "platform/file_presenter.h"
#include "platform/log.h"
#include "text/characters.h"
#include "text/strings.h"
#include "ui/json.h"
#include "ui/prediction_rows.h"
#include "ui/terminal/exit_code.h"
#include "ui/terminal/question.h"
#include "ui/terminal/run_display.h"
#include "ui/terminal/shown_text.h"

namespace brindlet {

namespace {

std::string_view caseName(EndState state) {
    constexpr std::string_view names[] = {"awaitingConfirmation", "complete", "question", "presentingError",
                                          "enteringPrompt"};
    return names[static_cast<std::size_t>(state)];
}

Json toJson(const RoadReport& report) {
    return {
        {"command", report.command},
        {"prediction", report.prediction ? toJson(*report.prediction) : Json()},
        {"ran", report.ran()},
        {"output", report.runs.output},
        {"failureMessage", joined(report.runs.failureMessages, "")},
        {"exitCode", report.runs.exitCode},
        {"summary", optionalJson(report.summary)},
        {"state", caseName(report.state)},
        {"error", optionalJson(report.error)},
    };
}

bool asksSomething(std::string_view text) {
    constexpr std::string_view beginnings[] = {"please", "why",  "what", "how", "can", "could", "would",
                                               "should", "will", "is",   "are", "was", "were"};
    const std::string lower = lowercased(text);
    return lower.ends_with('?') ||
           std::ranges::any_of(beginnings, [&](std::string_view beginning) { return lower.starts_with(beginning); });
}

std::string titlesOf(const std::set<CommandEffect>& effects) {
    std::vector<std::string> titles;
    for (const CommandEffect effect : effects) titles.emplace_back(rawValue(effect));
    return joined(titles, ", ");
}

// "Error analysing command: Expected a word", or nothing.
std::string analysisErrorText(const AnalysisResult& result) {
    if (!result.analysisError) return "";
    const ChangesViewIconAndText row = rowFor(*result.analysisError);
    return row.subtitle ? row.text + ": " + *row.subtitle : row.text;
}

std::string refusalText(const RoadReport& report) {
    std::string text = "nothing was run, since nobody is here to be asked about: " + titlesOf(report.reasons);
    if (report.prediction->result.analysisError) text += " (" + analysisErrorText(report.prediction->result) + ")";
    return text + "; --yes runs it without asking";
}

void logRisk(const std::set<CommandEffect>& effects) {
    std::set<CommandEffect> telling = effects;
    telling.erase(CommandEffect::harmless);
    logInfo(fmt::format("Risk: {}, for effects: {}", caseName(riskSummary(effects)),
                        telling.empty() ? "harmless" : titlesOf(telling)));
}

std::string shownPrediction(const RoadReport& report, int stream) {
    constexpr std::string_view runsTexts[] = {
        "Runs once:", "Runs once per file selected:", "Runs once on all selected files:"};
    const auto mode = static_cast<std::size_t>(runMode(report.command));
    return fmt::format("{}\n  {}\n{}", runsTexts[mode], shownText(report.command),
                       predictionText(*report.prediction, styleFor(stream)));
}

// On standard error: standard output is for what the command prints.
void showPrediction(const RoadReport& report) {
    writeTo(STDERR_FILENO, shownPrediction(report, STDERR_FILENO));
}

}  // namespace

int CommandRoad::exitCodeOf(const RoadReport& report) {
    if (report.wasStopped) return exitCancelled;
    if (report.error || !report.problem.empty()) return exitFailed;
    return report.runs.exitCode == 0 ? exitDone : exitFailed;
}

RoadReport CommandRoad::predicted(const std::string& line, const std::vector<FilePath>& files,
                                  CommandLineContext& context) {
    RoadReport report;
    report.prediction = predictCommand(line, files, context);
    report.command = trimmed(report.prediction->result.rewrittenCommand);
    const std::set<CommandEffect> effects = commandEffects(report.prediction->result, context.folder());
    logRisk(effects);
    report.reasons = reasonsToAsk(effects, report.prediction->toggles);
    return report;
}

void CommandRoad::decide(RoadReport& report, const std::vector<FilePath>& files, CommandLineContext& context,
                         StandardOutput& output) const {
    if (options_.isDryRun) {
        report.state = EndState::awaitingConfirmation;
        if (!options_.wantsJson) output.write(shownPrediction(report, STDOUT_FILENO));
        return;
    }
    const auto& analysisError = report.prediction->result.analysisError;
    if (analysisError && analysisError->kind == BasherAnalysisError::Kind::bannedInBrindlet)
        return report.present(analysisError->text);
    if (const auto text = pureEchoText(report.command)) {
        logInfo("Command output was pure echo: " + *text);
        report.summary = *text;
        report.state = asksSomething(*text) ? EndState::question : EndState::complete;
        return;
    }
    Interruption interruption;
    if (!mayRun(report, interruption)) return;
    if (hasTooManyFiles(report.command, files)) return report.present(std::string(tooManyFilesText));
    if (files.empty() && runMode(report.command) == RunMode::oncePerFile) {
        report.note = "nothing was run, since the command runs once for each FILE and none is given";
        return;
    }
    runNow(report, files, context, output, interruption);
}

// Asks where there is something to ask about and somebody to ask. False: the report says why not.
bool CommandRoad::mayRun(RoadReport& report, const Interruption& interruption) const {
    if (report.reasons.empty()) {
        logInfo("Auto-running because side effects are compatible with user's settings");
        return true;
    }
    logInfo("Awaiting confirmation for the following reasons: " + titlesOf(report.reasons));
    if (options_.isConfirmed) {
        if (!options_.wantsJson) showPrediction(report);
        return true;
    }
    if (!canAsk()) {
        report.state = EndState::awaitingConfirmation;
        report.problem = refusalText(report);
        return false;
    }
    showPrediction(report);
    if (ask("Run it? [Enter/y] runs, [n/Escape] stops ", interruption) == Answer::yes) return true;
    report.state = EndState::awaitingConfirmation;
    report.wasStopped = true;
    return false;
}

void CommandRoad::runNow(RoadReport& report, const std::vector<FilePath>& files, CommandLineContext& context,
                         StandardOutput& output, Interruption& interruption) const {
    const bool printsLines =
        !options_.wantsJson && options_.showsOutput && pipelineEnd(report.command) == PipelineEnd::none;
    RunDisplay display({.showsOutput = printsLines, .showsProgress = !options_.wantsJson}, output, interruption);
    const auto presenter = openFilePresenter(
        context.environment(), [&display](const std::string& sentence) { display.reportProblem(sentence); });
    CommandRunner runner(context.searchPath(), presenter.get(), display.trackers());
    display.follow(runner);
    report.runs = runAccepted(
        report.command, files, context.folder(), context.environment(), runner,
        [&display](std::string_view line) { display.printLine(line); }, interruption.token(),
        [&display](const CommandProgress& progress) { display.show(progress); });
    display.finish();
    report.wasStopped = report.runs.wasCancelled;
    if (report.wasStopped) report.state = EndState::enteringPrompt;
}

void CommandRoad::tell(const RoadReport& report, StandardOutput& output) const {
    if (options_.wantsJson) {
        output.write(jsonText(toJson(report)) + "\n");
    } else {
        if (report.summary) output.write(*report.summary + "\n");
        // Its lines are the names of files, and what was done with them is the output.
        if (options_.showsOutput && pipelineEnd(report.command) != PipelineEnd::none && !report.runs.output.empty())
            output.write(report.runs.output + (report.runs.output.ends_with('\n') ? "" : "\n"));
        if (report.error) reportProblem(*report.error);
        for (const std::string& message : report.runs.failureMessages) reportProblem(message);
    }
    output.flush();
    for (const std::string& sentence : {report.problem, report.note})
        if (!sentence.empty()) reportProblem(sentence);
}

}  // namespace brindlet
