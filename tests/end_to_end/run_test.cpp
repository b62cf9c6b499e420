// What run does, what it refuses, and how it is stopped.
#include <gtest/gtest.h>

#include <chrono>
#include <fstream>
#include <thread>

#include "end_to_end/program.h"

namespace brindlet {
namespace run_tests {

using Json = nlohmann::ordered_json;

TEST(Run, WhatWasPredictedHappens) {
    Program program;
    for (const char* name : {"a.jpg", "b.jpg", "c.txt"}) program.disk.write(name, "");
    const Outcome outcome = program.run({"run", "--yes", "mkdir -p sorted && mv *.jpg sorted/"});
    EXPECT_EQ(outcome.exitCode, 0);
    EXPECT_EQ(outcome.out, "");
    EXPECT_NE(outcome.err.find("Brindlet predicts:"), std::string::npos) << outcome.err;
    EXPECT_EQ(program.names(), "c.txt sorted");
    EXPECT_EQ(program.names("sorted"), "a.jpg b.jpg");
}

TEST(Run, OncePerFile) {
    Program program;
    program.disk.write("a.txt", "A");
    program.disk.write("b.txt", "B");
    const Json report = program
                            .run({"run", "--yes", "--json",
                                  R"(cp "$FILE_NAME" "${FILE_BASENAME}_copy.${FILE_EXTENSION}")", "a.txt", "b.txt"})
                            .json();
    EXPECT_EQ(program.names(), "a.txt a_copy.txt b.txt b_copy.txt");
    EXPECT_EQ(program.disk.read("b_copy.txt"), "B");
    std::vector<std::string> keys;
    for (const auto& [key, value] : report.items()) keys.push_back(key);
    EXPECT_EQ(keys, (std::vector<std::string>{"command", "prediction", "ran", "output", "failureMessage", "exitCode",
                                              "summary", "state", "error"}));
    EXPECT_EQ(report["prediction"]["runs"], "oncePerFile");
    EXPECT_EQ(report["ran"], true);
    EXPECT_EQ(report["summary"], nullptr);
    EXPECT_EQ(report["state"], "complete");
}

// A failing run doesn't keep the next from running; the first status that isn't 0 is the one told.
TEST(Run, ResultsAreJoined) {
    Program program;
    for (const char* name : {"a", "b", "c"}) program.disk.write(name, "");
    const std::vector<std::string> words = {"run", "--yes", R"(echo "$FILE_NAME"; [ "$FILE_NAME" != b ])",
                                            "a",   "b",     "c"};
    const Outcome human = program.run(words);
    EXPECT_EQ(human.exitCode, 1);
    EXPECT_EQ(human.out, "a\nb\nc\n");
    EXPECT_NE(human.err.find("brindlet: Command exited with status 1 - possible error?\n"), std::string::npos);
    std::vector<std::string> withJson = words;
    withJson.insert(withJson.begin() + 1, "--json");
    const Outcome outcome = program.run(withJson);
    EXPECT_EQ(outcome.exitCode, 1);
    EXPECT_EQ(outcome.json()["output"], "a\nb\nc\n");
    EXPECT_EQ(outcome.json()["exitCode"], 1);
    EXPECT_EQ(outcome.json()["failureMessage"], "Command exited with status 1 - possible error?");
    EXPECT_EQ(outcome.json()["state"], "complete");
}

TEST(Run, RefusalsRunNothing) {
    Program program;
    program.disk.write("a", "");
    std::vector<std::string> many = {"run", "--yes", "--json", "touch x $SPACE_SEPARATED_FILE_NAMES"};
    many.insert(many.end(), 101, "a");
    struct Case {
        std::vector<std::string> words;
        std::string_view says;  // on standard error, or as the error of the object
        std::string_view state;
    };
    const Case cases[] = {
        {{"run", "rm a"}, "Delete or overwrite files; --yes", ""},
        {{"run", "--json", "rm a"}, "Delete or overwrite files; --yes", "awaitingConfirmation"},
        {{"run", "echo \"a; rm a"}, "Commands with errors (Error analysing command: ", ""},
        {{"run", "--yes", "sudo rm a"}, "'sudo' command is banned in Brindlet for safety and security", ""},
        {{"run", "--yes", "--json", "sudo rm a"}, "'sudo' command is banned", "presentingError"},
        {many, "Sorry, Brindlet can't process more than 100 files at once with 'SPACE_SEPARATED_FILE_NAMES'",
         "presentingError"},
    };
    for (const auto& [words, says, state] : cases) {
        SCOPED_TRACE(says);
        const Outcome outcome = program.run(words);
        EXPECT_EQ(outcome.exitCode, 1);
        EXPECT_NE((outcome.err + outcome.out).find(says), std::string::npos) << outcome.err << outcome.out;
        EXPECT_EQ(program.names(), "a");
        if (state.empty()) {
            EXPECT_EQ(outcome.out, "");
        } else {
            EXPECT_EQ(outcome.json()["state"], state);
            EXPECT_EQ(outcome.json()["ran"], false);
        }
    }
}

// As over any other empty list: nothing is left to do, and nothing has failed.
TEST(Run, OncePerFileWithoutFilesIsDone) {
    Program program;
    program.disk.write("a", "");
    const Outcome outcome = program.run({"run", "--yes", "--json", "rm a \"$FILE_NAME\""});
    EXPECT_EQ(outcome.exitCode, 0);
    EXPECT_EQ(outcome.json()["ran"], false);
    EXPECT_EQ(outcome.json()["state"], "complete");
    EXPECT_NE(outcome.err.find("runs once for each FILE and none is given"), std::string::npos) << outcome.err;
    EXPECT_EQ(program.names(), "a");
}

TEST(Run, HarmlessLinesRunAtOnce) {
    Program program;
    program.disk.write("a", "one\ntwo");
    const Outcome outcome = program.run({"run", "cat a"});
    EXPECT_EQ(outcome.exitCode, 0);
    EXPECT_EQ(outcome.out, "one\ntwo\n");
    EXPECT_EQ(outcome.err, "");
}

// No process is needed to say a text; one that asks something waits for an answer.
TEST(Run, PureEcho) {
    Program program;
    program.environment["PATH"] = "";
    EXPECT_EQ(program.run({"run", "echo 'Done'"}).out, "Done\n");
    const std::pair<std::string, std::string> cases[] = {
        {"Done", "complete"}, {"Which one?", "question"}, {"Please choose", "question"}};
    for (const auto& [text, state] : cases) {
        const Json report = program.run({"run", "--json", "echo '" + text + "'"}).json();
        EXPECT_EQ(report["ran"], false);
        EXPECT_EQ(report["state"], state) << text;
        EXPECT_EQ(report["output"], "");
        EXPECT_EQ(report["summary"], text);
    }
}

TEST(Run, AtATerminalItAsks) {
    struct Case {
        std::string_view keys;
        bool runs;
    };
    for (const auto& [keys, runs] : {Case{"y", true}, Case{"\r", true}, Case{"x\ty", true}, Case{"n", false},
                                     Case{"\x1b", false}, Case{"\x03", false}, Case{"\x04", false}}) {
        SCOPED_TRACE(keys);
        Program program;
        program.disk.write("a", "");
        const Outcome outcome = program.runAtTerminal({"run", "rm a"}, "stops", keys);
        EXPECT_EQ(outcome.exitCode, runs ? 0 : 130) << outcome.out;
        EXPECT_EQ(program.names(), runs ? "" : "a");
        EXPECT_NE(outcome.out.find("Deletes a"), std::string::npos) << outcome.out;
    }
}

// What a line prints that shows files is no answer of its own; without a desktop it is told which they are.
TEST(Run, FilesThatAreToBeSelectedAreCounted) {
    const Program program;
    program.disk.write("a.txt", "");
    const std::string line = "find . -name '*.txt' | finderSelect";
    const Outcome outcome = program.run({"run", line});
    EXPECT_EQ(outcome.exitCode, 0);
    EXPECT_EQ(outcome.out, "Selected 1 items in Finder\n");
    EXPECT_NE(outcome.err.find("1 item selected: " + program.disk.path("a.txt").text()), std::string::npos)
        << outcome.err;
    EXPECT_EQ(program.run({"run", "--json", line}).json()["output"], "Selected 1 items in Finder");
    const Outcome none = program.run({"run", "find . -name '*.pdf' | finderSelect"});
    EXPECT_EQ(none.exitCode, 1);
    EXPECT_EQ(none.out + none.err, "brindlet: Zero files to select\n");
}

// The row is drawn while the tool works and is gone at the end, here that of a run that is stopped.
TEST(Run, AtATerminalABarShowsHowFarItIs) {
    const Program program;
    program.disk.write("ffmpeg.sh",
                       R"(echo "  Duration: 00:01:00.00, start"; printf 'frame=1 time=00:00:15.00\r'; sleep 1000)");
    const std::vector<std::string> words = {"run", "--yes", "bash ffmpeg.sh"};
    const Outcome outcome = program.runAtTerminal(words, "25%  frame=1 time=00:00:15.00", "");
    EXPECT_EQ(outcome.exitCode, 130);
    EXPECT_NE(outcome.out.find("Duration: 00:01:00.00, start\r\n"), std::string::npos) << outcome.out;
    const std::size_t cleared = outcome.out.rfind("\r\x1b[K");
    ASSERT_NE(cleared, std::string::npos);
    EXPECT_EQ(outcome.out.find('[', cleared + 4), std::string::npos) << outcome.out;

    program.disk.write("ffmpeg.sh", R"(printf 'time=00:00:15.00\r'; echo done)");
    EXPECT_EQ(program.run(words).out, "time=00:00:15.00\ndone\n");
}

// Gone, or dead and waiting for whoever looks after orphans here.
bool endsSoon(pid_t process) {
    for (int tries = 0; tries < 1000; ++tries) {
        std::ifstream status("/proc/" + std::to_string(process) + "/stat");
        std::string text;
        if (!std::getline(status, text) || text.find(") Z ") != std::string::npos) return true;
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    return false;
}

// Its children too, one of them deaf to everything gentle.
TEST(Run, AnInterruptionEndsTheCommandWithItsChildren) {
    const Program program;
    const std::string line =
        R"(sh -c 'trap "" TERM INT HUP; echo $$ > pid; while :; do sleep 1; done' & touch started; wait)";
    const Outcome outcome = program.interruptWhenExists("pid", {"run", "--yes", line});
    EXPECT_EQ(outcome.exitCode, 130);
    std::string pid;
    for (int tries = 0; pid.empty() && tries < 1000; ++tries) pid = program.disk.read("pid");
    ASSERT_NE(pid, "");
    EXPECT_TRUE(endsSoon(std::stoi(pid)));
    EXPECT_EQ(program.runAtTerminal({"run", "rm a"}, "stops", "").exitCode, 130);
}

}  // namespace run_tests
}  // namespace brindlet
