#include "ui/prompt_flow.h"

#include <gtest/gtest.h>

#include "exec/command_history.h"
#include "fakes/flow_bench.h"
#include "platform/log.h"
#include "ui/patient_prediction.h"

namespace brindlet {
namespace prompt_flow_tests {

using enum PromptState;
using namespace std::chrono_literals;

TEST(PromptFlow, HarmlessCommandRunsWithoutAsking) {
    Bench bench;
    bench.answer("wc -l");
    bench.answer("📝 12 lines");
    bench.request("  how many lines have these \n");
    EXPECT_EQ(bench.state(), sendingRequest);
    EXPECT_EQ(bench.flow().view().prompt, "how many lines have these");
    bench.step();
    EXPECT_EQ(bench.state(), runningCommand);
    EXPECT_EQ(statusText(bench.flow().view()), "how many lines have these");
    bench.step();
    EXPECT_EQ(bench.state(), completeButInterprettingResult);
    EXPECT_EQ(statusText(bench.flow().view()), "done");
    bench.step();
    EXPECT_EQ(bench.state(), complete);
    EXPECT_EQ(statusText(bench.flow().view()), "📝 12 lines");
    EXPECT_EQ(bench.ran, std::vector<std::string>{"wc -l a.txt b.txt"});
    EXPECT_EQ(bench.models.asked.back().model, "gpt-4.1-nano");
    ASSERT_EQ(bench.flow().view().commandHistory.size(), 1U);
    EXPECT_EQ(bench.flow().view().commandHistory[0].prompt, "how many lines have these");
    bench.flow().confirmOrDismiss();
    EXPECT_EQ(bench.state(), enteringPrompt);
    EXPECT_EQ(bench.flow().view().prompt, "");
}

TEST(PromptFlow, AsksWhereTheSettingsSaySo) {
    Bench bench;
    bench.predicted["rm a.txt"] = Bench::deletes("/w/a.txt");
    bench.answer("rm a.txt");
    bench.request("remove the first one forever");
    bench.step();
    EXPECT_EQ(bench.state(), awaitingConfirmation);
    EXPECT_TRUE(bench.flow().view().commandSummaryShowing);
    EXPECT_EQ(bench.flow().view().riskSummary, RiskSummary::high);
    EXPECT_EQ(titlesOf(bench.flow().view().reasons), "Delete or overwrite files");
    EXPECT_TRUE(bench.ran.empty());
    bench.fail({"Sorry", 500});
    bench.flow().confirm();
    bench.finish();
    EXPECT_EQ(bench.state(), presentingError);  // of the summary
    EXPECT_EQ(bench.flow().view().error, "Sorry");
    EXPECT_EQ(bench.ran.size(), 1U);
}

TEST(PromptFlow, RefusesWhatItCannotSend) {
    Bench bench;
    bench.request(" \n ");
    EXPECT_EQ(bench.state(), enteringPrompt);
    EXPECT_EQ(bench.flow().view().prompt, "");
    bench.request(std::string(400, 'x'));
    EXPECT_EQ(bench.flow().view().error, "Sorry, please keep keep your request shorter");
    EXPECT_EQ(bench.flow().view().prompt.size(), 250U);
    bench.flow().escape();
    bench.request(std::string(249, 'x'));
    EXPECT_EQ(bench.state(), sendingRequest);
    bench.flow().escape();
    bench.finder.stop();
    bench.request("anything");
    EXPECT_EQ(bench.flow().view().error,
              "Can't see this folder. Enable Automation for Brindlet in System Settings > Privacy & Security?");
    bench.finish();
    EXPECT_TRUE(bench.models.asked.size() <= 1);
}

TEST(PromptFlow, EscapeLeadsBackFromEveryWait) {
    struct Case {
        const char* what;
        int steps;  // of workers' work before the escape
        PromptState before;
    };
    const Case cases[] = {{"the request", 0, sendingRequest},
                          {"the run", 1, runningCommand},
                          {"the summary", 2, completeButInterprettingResult},
                          {"the end", 3, complete}};
    for (const auto& [what, steps, before] : cases) {
        SCOPED_TRACE(what);
        Bench bench;
        bench.answer("wc -l");
        bench.answer("fine");
        bench.request("count something odd");
        for (int i = 0; i < steps; ++i) bench.step();
        ASSERT_EQ(bench.state(), before);
        bench.flow().escape();
        EXPECT_EQ(bench.state(), enteringPrompt);
        EXPECT_FALSE(bench.flow().isBusy());
        bench.finish();  // the late answer touches nothing
        EXPECT_EQ(bench.state(), enteringPrompt);
        EXPECT_EQ(bench.flow().view().result, "");
        EXPECT_FALSE(bench.flow().view().progressLine);
    }
}

TEST(PromptFlow, InputsOfTheEndStates) {
    // How a flow comes to each of them.
    const auto reach = [](Bench& bench, PromptState end) {
        bench.predicted["rm a.txt"] = Bench::deletes("/w/a.txt");
        bench.packages.missing = {"FFmpeg"};
        bench.predicted["ffmpeg x"].requiredPackages = {"FFmpeg"};
        bench.answer(end == question            ? "echo \"Which?\""
                     : end == installingPackage ? "ffmpeg x"
                     : end == complete          ? "echo \"Fine.\""
                                                : "rm a.txt");
        if (end == presentingError) bench.models.answers.front() = Failure{"no"};
        bench.request("do something odd");
        bench.step();
        if (end == installingPackage) bench.flow().confirm();
        ASSERT_EQ(bench.state(), end);
    };
    struct Case {
        PromptState from;
        void (PromptFlow::*input)();
        PromptState to;
    };
    const Case cases[] = {
        {installingPackage, &PromptFlow::escape, enteringPrompt},
        {installingPackage, &PromptFlow::close, enteringPrompt},
        {installingPackage, &PromptFlow::refine, installingPackage},
        {installingPackage, &PromptFlow::submit, installingPackage},
        {question, &PromptFlow::escape, enteringPrompt},
        {question, &PromptFlow::refine, question},
        {question, &PromptFlow::confirmOrDismiss, question},
        {complete, &PromptFlow::escape, enteringPrompt},
        {complete, &PromptFlow::refine, enteringFollowUpPrompt},
        {complete, &PromptFlow::confirmOrDismiss, enteringPrompt},
        {complete, &PromptFlow::confirm, complete},
        {presentingError, &PromptFlow::escape, enteringPrompt},
        {presentingError, &PromptFlow::refine, enteringFollowUpPrompt},
        {presentingError, &PromptFlow::confirmOrDismiss, enteringPrompt},
        {awaitingConfirmation, &PromptFlow::escape, enteringPrompt},
        {awaitingConfirmation, &PromptFlow::submit, awaitingConfirmation},
        {awaitingConfirmation, &PromptFlow::confirmOrDismiss, runningCommand},
    };
    for (const auto& [from, input, to] : cases) {
        Bench bench;
        reach(bench, from);
        (bench.flow().*input)();
        EXPECT_EQ(bench.state(), to) << caseName(from);
        if (to == runningCommand || to == installingPackage) continue;
        bench.finish();  // nothing late changes it
        EXPECT_EQ(bench.state(), to) << caseName(from);
    }
}

TEST(PromptFlow, SelectionMayChangeWhileARequestIsOut) {
    Bench bench;
    bench.answer("wc -l");
    bench.answer("fine");
    bench.request("count something odd");
    bench.finder.take({{"/w/b.txt"}, "/w"});
    bench.finish();
    EXPECT_EQ(bench.ran, std::vector<std::string>{"wc -l b.txt"});
    EXPECT_EQ(bench.analysedFiles, 1U);
}

TEST(PromptFlow, EchoIsAnAnswerOrAQuestion) {
    Bench bench;
    bench.answer("echo \"Which folder?\"");
    bench.request("move it there");
    bench.step();
    EXPECT_EQ(bench.state(), question);
    EXPECT_EQ(bench.flow().view().result, "Which folder?");
    EXPECT_EQ(bench.flow().view().prompt, "");
    EXPECT_TRUE(bench.ran.empty());
    bench.answer("echo \"Hello\"");
    bench.request("the first");
    bench.step();
    EXPECT_EQ(bench.state(), complete);
    const auto& sent = bench.models.asked.back().messages;
    ASSERT_EQ(sent.size(), 4U);
    EXPECT_EQ(sent[1].text, "PRIOR USER PROMPT: move it there");
    EXPECT_EQ(sent[2].text, "YOUR PRIOR COMMAND OUTPUT: echo \"Which folder?\"");
    EXPECT_EQ(sent[3].text, "USER AMMENDMENT: the first");
    EXPECT_EQ(bench.flow().view().command->prompt, "move it there");
}

TEST(PromptFlow, RefineKeepsTheCommandAndEscapeBringsItBack) {
    Bench bench;
    bench.predicted["rm a.txt"] = Bench::deletes("/w/a.txt");
    bench.answer("rm a.txt");
    bench.request("remove a");
    bench.step();
    bench.flow().refine();
    EXPECT_EQ(bench.state(), enteringFollowUpPrompt);
    bench.flow().escape();
    EXPECT_EQ(bench.state(), awaitingConfirmation);
    EXPECT_EQ(bench.flow().view().editedBashCommand, "rm a.txt");
    bench.flow().refine();
    bench.answer("ls");
    bench.request("rather list it");
    bench.step();
    EXPECT_EQ(bench.state(), runningCommand);
    bench.flow().refine();  // no use for it here
    EXPECT_EQ(bench.state(), runningCommand);
    bench.flow().close();
    EXPECT_FALSE(bench.flow().view().command);
}

TEST(PromptFlow, EditedCommandIsPredictedASecondLater) {
    Bench bench;
    bench.predicted["rm a.txt"] = bench.predicted["rm b.txt"] = Bench::deletes("/w/a.txt");
    bench.answer("rm a.txt");
    bench.request("remove a");
    bench.step();
    const int before = bench.analyses;
    const std::string id = bench.flow().view().command->id;
    bench.flow().editCommand("rm b.tx");
    bench.loop.pass(900ms);
    bench.flow().editCommand(" rm b.txt ");
    bench.loop.pass(900ms);
    EXPECT_EQ(bench.analyses, before);
    EXPECT_EQ(bench.flow().view().command->bashCommand, "rm b.txt");
    EXPECT_NE(bench.flow().view().command->id, id);
    bench.loop.pass(100ms);
    EXPECT_EQ(bench.analyses, before + 1);
    EXPECT_EQ(bench.flow().view().commandHistory.size(), 1U);
    bench.flow().editCommand("rm c.txt");
    bench.flow().confirm();  // the text as it stands is what runs
    bench.step();
    EXPECT_EQ(bench.ran, std::vector<std::string>{"rm c.txt a.txt b.txt"});
}

TEST(PromptFlow, PredictionFollowsTheSelectionUntilTheRun) {
    Bench bench;
    bench.predicted["mv \"${FILE_NAME}\" x"] = Bench::deletes("/w/a.txt");
    bench.answer("mv \"$FILE_NAME\" x");
    bench.request("move them");
    bench.step();
    bench.flow().setCommandSummaryShowing(false);
    bench.finder.take({{"/w/a.txt"}, "/w"});
    EXPECT_EQ(bench.analysedFiles, 1U);
    EXPECT_TRUE(bench.flow().view().commandSummaryShowing);
    bench.finder.take({{"/w/a.txt", "/w/b.txt"}, "/w"});
    bench.flow().confirm();
    const int before = bench.analyses;
    bench.finder.take({{}, "/w"});
    EXPECT_EQ(bench.analyses, before);
    bench.step();
    bench.step();
    EXPECT_EQ(bench.ran, (std::vector<std::string>{"mv \"${FILE_NAME}\" x a.txt", "mv \"${FILE_NAME}\" x b.txt"}));
}

TEST(PromptFlow, NothingRunsByAPredictionThatIsStillOut) {
    Bench bench;
    bench.answer("wc -l");
    bench.isPredictionOut = true;
    bench.request("count something odd");
    bench.step();
    EXPECT_EQ(bench.state(), responseReceived);
    bench.flow().confirmOrDismiss();
    bench.isPredictionOut = false;
    bench.flow().predictionArrived();
    EXPECT_EQ(bench.state(), runningCommand);  // harmless, as it turns out
    bench.finish();
    EXPECT_EQ(bench.flow().view().commandHistory.size(), 1U);

    bench.flow().escape();
    bench.isPredictionOut = true;
    bench.flow().historyStep(-1);
    EXPECT_EQ(bench.state(), awaitingConfirmation);
    bench.flow().confirm();
    EXPECT_EQ(bench.state(), awaitingConfirmation);
    bench.flow().editCommand("wc -c");
    bench.isPredictionOut = false;
    bench.flow().predictionArrived();  // of the text before
    EXPECT_TRUE(bench.flow().view().isPredicting);
    bench.loop.pass(1s);
    bench.flow().confirm();
    EXPECT_EQ(bench.state(), runningCommand);
    bench.finish();
    EXPECT_EQ(bench.ran.back(), "wc -c a.txt b.txt");

    bench.flow().escape();
    bench.answer("wc -l");
    bench.isPredictionOut = true;
    bench.request("count something odd");
    bench.step();
    bench.flow().escape();
    bench.isPredictionOut = false;
    bench.flow().predictionArrived();
    EXPECT_EQ(bench.state(), enteringPrompt);
    EXPECT_EQ(bench.ran.size(), 2U);
}

TEST(PatientPrediction, StandsInForWhatTakesLong) {
    HandCrankedLoop loop;
    HandCrankedWorkers workers;
    std::vector<std::string> predicted;
    int arrivals = 0;
    std::optional<PredictReport> fetched;
    PatientPrediction* patient = nullptr;
    PatientPrediction prediction(
        loop, workers,
        [&](const std::string& line, const std::vector<FilePath>&, const FilePath&) {
            predicted.push_back(line);
            PredictReport report{};
            report.runs = "made";
            return report;
        },
        [&] {
            ++arrivals;
            fetched = patient->predict("b", {}, FilePath("/w"));
        },
        0ms);
    patient = &prediction;
    EXPECT_TRUE(prediction.predict("a", {}, FilePath("/w")).result.analysisError);
    EXPECT_TRUE(prediction.isOut());
    prediction.predict("b", {}, FilePath("/w"));
    prediction.predict("b", {}, FilePath("/w"));  // is out already
    workers.crank();
    workers.crank();
    EXPECT_FALSE(workers.hasWork());
    EXPECT_EQ(predicted, std::vector<std::string>{"b"});  // nobody wanted the other one any more
    loop.crank();
    EXPECT_EQ(arrivals, 1);
    EXPECT_EQ(fetched->runs, "made");
    EXPECT_FALSE(fetched->result.analysisError);
    EXPECT_FALSE(prediction.isOut());

    EXPECT_TRUE(prediction.predict("c", {}, FilePath("/w")).result.analysisError);
    workers.crank();
    loop.crank();  // fetched by nobody: it would be old the next time
    EXPECT_EQ(arrivals, 2);
    EXPECT_TRUE(prediction.isOut());  // of the "b" that was asked for in its place
}

TEST(PromptFlow, OneFailingFileDoesNotStopTheOthers) {
    Bench bench;
    bench.runResults = {{"one", "no room", 3}, {"two", "", 0}};
    bench.answer("stat \"$FILE_NAME\"");
    bench.answer("half of it");
    bench.request("look at each");
    bench.step();
    bench.step();
    EXPECT_EQ(bench.flow().view().progressNorm, 0.5);  // one of two
    bench.finish();
    const PromptFlowView& view = bench.flow().view();
    EXPECT_EQ(view.fullCommandOutput, "one\ntwo");
    EXPECT_EQ(view.exitCode, 3);
    EXPECT_EQ(view.promptState, complete);
    EXPECT_NE(bench.models.asked.back().messages.front().text.find("THE COMMAND FAILED: no room"), std::string::npos);
}

TEST(PromptFlow, TooManyFilesAndRefusedLinesDoNotRun) {
    Bench bench;
    std::vector<std::string> many;
    for (int i = 0; i < 101; ++i) many.push_back("/w/" + std::to_string(i));
    bench.finder.take({many, "/w"});
    bench.answer("zip a.zip $SPACE_SEPARATED_FILE_NAMES");
    bench.request("put all into one archive please");
    bench.step();
    EXPECT_EQ(bench.flow().view().error,
              "Sorry, Brindlet can't process more than 100 files at once with 'SPACE_SEPARATED_FILE_NAMES'");
    bench.flow().escape();
    AnalysisResult banned;
    banned.analysisError = {BasherAnalysisError::Kind::bannedInBrindlet, "Never"};
    bench.predicted["sudo x"] = banned;
    bench.answer("sudo x");
    bench.request("as root");
    bench.step();
    bench.flow().confirm();
    EXPECT_EQ(bench.flow().view().error, "Never");
    EXPECT_TRUE(bench.ran.empty());
}

TEST(PromptFlow, MissingPackageIsInstalledFirst) {
    struct Case {
        bool isForPrediction;
        std::optional<Failure> failure;
        PromptState after;
    };
    const Case cases[] = {
        {false, {}, runningCommand}, {true, {}, awaitingConfirmation}, {false, Failure{"404"}, presentingError}};
    for (const Case& row : cases) {
        Bench bench;
        bench.packages.missing = {"FFmpeg"};
        bench.packages.isNeededForPrediction = row.isForPrediction;
        bench.packages.failure = row.failure;
        bench.predicted["ffmpeg x"].requiredPackages = {"FFmpeg"};
        bench.answer("ffmpeg x");
        bench.request("make it small");
        bench.step();
        ASSERT_EQ(bench.state(), awaitingConfirmation);  // although it is harmless
        EXPECT_EQ(confirmTitle(bench.flow().view(), bench.packages),
                  row.isForPrediction ? "Install" : "Install and Confirm");
        bench.flow().confirm();
        EXPECT_EQ(bench.state(), installingPackage);
        EXPECT_EQ(bench.flow().view().progressLine, "Downloading FFmpeg...");
        bench.step();
        EXPECT_EQ(bench.state(), row.after);
        EXPECT_EQ(bench.flow().view().missingPackageName.has_value(), row.failure.has_value());
    }
    Bench bench;
    bench.packages.missing = {"Gifsicle"};
    bench.packages.isHomebrewAbsent = true;
    bench.predicted["gifsicle x"].requiredPackages = {"Gifsicle"};
    bench.answer("gifsicle x");
    bench.request("make it smaller");
    bench.step();
    bench.flow().confirm();
    EXPECT_EQ(bench.state(), awaitingConfirmation);
}

TEST(PromptFlow, NewFilesAreRevealedWhereAllAreThere) {
    struct Case {
        std::initializer_list<const char*> created;
        std::size_t revealed;
    };
    const Case cases[] = {{{"/w/n.txt", "/w/m.txt"}, 2}, {{"/w/n.txt", "/w/never.txt"}, 0}, {{"/w/sub/n.txt"}, 0}};
    for (const auto& [created, revealed] : cases) {
        Bench bench;
        bench.predicted["touch n"] = Bench::creates(created);
        bench.answer("touch n");
        bench.request("make a new thing");
        bench.step();
        if (bench.state() == awaitingConfirmation) bench.flow().confirm();
        bench.finish();
        EXPECT_EQ(bench.revealed.size(), revealed);
    }
}

TEST(PromptFlow, HistoryIsWalkedWithItsPredictions) {
    Bench bench;
    bench.history.saveHistory(
        {{.id = newUuid(), .prompt = "from long ago"},
         {.id = newUuid(), .bashCommand = "ls", .prompt = "list", .messages = {{AIRole::user, "list"}}}});
    PromptFlow& flow = bench.flow();
    flow.historyStep(1);
    EXPECT_EQ(bench.state(), enteringPrompt);
    flow.historyStep(-1);
    EXPECT_EQ(bench.state(), awaitingConfirmation);
    EXPECT_EQ(flow.view().editedBashCommand, "ls");
    flow.historyStep(-1);
    flow.historyStep(-1);
    EXPECT_EQ(bench.state(), enteringPrompt);
    EXPECT_EQ(flow.view().prompt, "from long ago");
    flow.historyStep(1);
    flow.historyStep(1);
    EXPECT_EQ(bench.state(), enteringPrompt);
    EXPECT_EQ(flow.view().prompt, "");
    EXPECT_FALSE(flow.view().command);
    flow.chooseFromHistory(flow.view().commandHistory[1]);
    EXPECT_EQ(bench.state(), awaitingConfirmation);
    flow.removeFromHistory(flow.view().commandHistory[1]);
    EXPECT_EQ(flow.view().commandHistory.size(), 1U);
}

TEST(PromptFlow, WithoutAModelForTheSummaryTheOutputStandsForItself) {
    Bench bench;
    bench.models.problem = "No key for OpenAI.";
    bench.request("show me something odd");
    bench.step();
    EXPECT_EQ(bench.flow().view().error, "No key for OpenAI.");
    bench.flow().escape();
    bench.flow().submitCommand({.id = newUuid(), .bashCommand = "ls"});
    bench.finish();
    EXPECT_EQ(bench.state(), complete);
    EXPECT_EQ(bench.flow().view().result, "");
    EXPECT_EQ(bench.flow().view().fullCommandOutput, "done");

    bench.flow().escape();
    bench.flow().submitCommand({.id = newUuid(), .bashCommand = "pwd"}, /*asksFirst=*/true);
    EXPECT_EQ(bench.state(), awaitingConfirmation);  // harmless, yet nobody has agreed to it
}

TEST(PromptFlow, TailOfAnOutput) {
    const std::string long_(130, 'x');
    EXPECT_EQ(outputTail(" a\n\n  b \n"), "a, b");
    EXPECT_EQ(outputTail(std::string(100, 'a') + "\n" + std::string(60, 'b') + "\n" + std::string(58, 'c')),
              std::string(60, 'b') + ", " + std::string(58, 'c'));
    EXPECT_EQ(outputTail("a\n" + long_), std::string(120, 'x'));
    EXPECT_EQ(outputTail(long_ + "\r\n \n b\n\n"), "b");
    EXPECT_EQ(outputTail("\n"), "");
}

}  // namespace prompt_flow_tests
}  // namespace brindlet
