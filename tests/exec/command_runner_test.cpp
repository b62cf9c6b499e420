#include "exec/command_runner.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>

#include "support/scratch_folder.h"

namespace brindlet {

namespace command_runner_tests {

struct FakeTracker final : ProgressTracker {
    std::function<void()> onElapsed;
    void handleOutputLine(std::string_view line, const Report& report) override {
        report(OutputLine{"tracked " + std::string(line)});
    }
    void handleElapsed(double seconds, const Report& report) override {
        if (onElapsed) onElapsed();
        report(ProgressNorm{seconds});
    }
};

class CommandRunnerTest : public testing::Test {
  protected:
    std::optional<CommandRunResult> run(const std::string& command, const std::vector<FilePath>& selection = {}) {
        CommandRunner runner(searchPath, nullptr, chooser);
        return runner.run(command, selection, scratch.path(), base, onLine, onProgress, stop.get_token());
    }

    // A named pipe that a command reads from, and lets go on from a callback: so that nothing has to sleep.
    void makeGate() { ASSERT_EQ(::mkfifo(scratch.path("gate").text().c_str(), 0600), 0); }
    void openGate() { scratch.write("gate", "go\n"); }

    ScratchFolder scratch;
    Environment base{{"FILE_NAME", "of the parent"}, {"LC_ALL", "C.UTF-8"}, {"PATH", "/usr/bin:/bin"}};
    std::unique_ptr<FileSystem> files = openFileSystem();
    ToolSearchPath searchPath{*files, FilePath("/none"), {}, {{"SHELL", "/bin/false"}}};
    TrackerChooser chooser;
    std::function<void(std::string_view)> onLine;
    std::function<void(const CommandProgress&)> onProgress;
    std::stop_source stop;
};

std::string scriptFor(std::string_view command, const std::vector<FilePath>& files) {
    const FilePath folder("/w");
    return CommandRunner::script(command, "/a:/b", environmentWithFiles({}, files, folder), files, folder);
}

TEST(CommandRunnerScript, ExactTexts) {
    const std::vector<FilePath> none;
    const std::vector<FilePath> two{FilePath("/w/a b"), FilePath("/w/-c\"!")};
    struct Case {
        std::string_view command;
        const std::vector<FilePath>& files;
        std::string script;
    };
    const Case cases[] = {
        {"ls", none, "PATH=\"/a:/b\"; ls 2>&1"},
        {"ls ${SPACE_SEPARATED_FILE_NAMES} | finderSelect", none, "PATH=\"/a:/b\"; ls   2>&1"},
        {"cat ${SPACE_SEPARATED_FILE_NAMES} \"${SPACE_SEPARATED_FILE_NAMES[@]}\"", two,
         "PATH=\"/a:/b\"; SPACE_SEPARATED_FILE_NAMES=(\"a b\" \"-c\\\"!\"); "
         "cat \"a b\" \"-c\\\"!\" \"${SPACE_SEPARATED_FILE_NAMES[@]}\" 2>&1"},
    };
    for (const auto& [command, files, script] : cases) EXPECT_EQ(scriptFor(command, files), script);
    EXPECT_EQ(CommandRunner::script("ls", "/$(reboot):/`a`\"\\", {}, {}, FilePath("/")),
              R"(PATH="/\$(reboot):/\`a\`\"\\"; ls 2>&1)");
}

TEST_F(CommandRunnerTest, OutputAndStatus) {
    struct Case {
        std::string command, output;
        int exitCode;
    };
    const Case cases[] = {
        {"echo one; echo; printf 'two\\rthree\\r\\nlast'", "one\ntwo\nthree\nlast\n", 0},
        {"printf 'caf\\351\\n\\303\\251'", "caf\uFFFD\n\u00E9\n", 0},
        {"echo \"[$FILE_NAME]${FILE_BASENAME-unset}\"", "[]\n", 0},
        {"cat; echo \"$PATH\"", "/opt/homebrew/bin:/usr/bin:/bin:/usr/sbin:/sbin:/usr/local/bin\n", 0},
        {"true; bash -c 'echo problem >&2'", "problem\n", 0},
        {"echo shown; exit 3", "shown\n", 3},
        {"kill -KILL $$", "", 137},
        {"exec >/dev/null; exit 4", "", 4},  // the pipe closes before the end
        {"exit 5 | finderSelect", "", 5},
        {"seq 100000 | tail -n 1", "100000\n", 0},
    };
    for (const auto& [command, output, exitCode] : cases) {
        SCOPED_TRACE(command);
        const auto result = run(command);
        ASSERT_TRUE(result);
        EXPECT_EQ(result->output, output);
        EXPECT_EQ(result->exitCode, exitCode);
        EXPECT_EQ(result->failureMessage,
                  exitCode == 0 ? "" : "Command exited with status " + std::to_string(exitCode) + " - possible error?");
    }
    EXPECT_EQ(run("find . -name '*.txt' | finderSelect"), (CommandRunResult{"", "Zero files to select", 1}));
    scratch.write("a.txt", "");
    EXPECT_EQ(run("find . -name '*.txt' | finderSelect"), (CommandRunResult{"Selected 1 items in Finder", "", 0}));
}

// Its beginning and its end are kept, and what is no text holds nothing back.
TEST_F(CommandRunnerTest, OutputWithoutEnd) {
    const auto result = run(R"-(printf 'first \377\n'; yes "$(printf %01000d 7)" | head -c 100100000; echo last)-");
    ASSERT_TRUE(result);
    EXPECT_LE(result->output.size(), (std::size_t{64} << 20) + 100);
    EXPECT_TRUE(result->output.starts_with("first \uFFFD\n0000"));
    EXPECT_TRUE(result->output.ends_with("0007\nlast\n"));
    EXPECT_NE(result->output.find("7\n["), std::string::npos);
    EXPECT_NE(result->output.find(" lines of output left out here]\n0"), std::string::npos);
}

TEST_F(CommandRunnerTest, WhatCannotBeLaunchedIsAFailure) {
    const auto gone = CommandRunner(searchPath).run("touch x", {}, scratch.path("gone"), base, {}, {}, {});
    ASSERT_TRUE(gone);
    EXPECT_TRUE(gone->failureMessage.starts_with("Error executing command: ")) << gone->failureMessage;
    EXPECT_EQ(gone->exitCode, 1);
    const auto cut = run(std::string("touch x\0y", 9));  // bash would be given "touch x"
    EXPECT_EQ(cut->exitCode, 1);
    EXPECT_FALSE(scratch.exists("x"));
}

TEST_F(CommandRunnerTest, TheFolderHasItsLinksResolved) {
    scratch.makeFolder("real");
    const FilePath link = scratch.link("link", "real");
    base["PWD"] = link.text();
    const auto result = CommandRunner(searchPath).run("pwd", {}, link, base, {}, {}, {});
    EXPECT_EQ(result->output, files->resolvingLinks(link).text() + "\n");
}

TEST_F(CommandRunnerTest, EveryNameArrivesAsItIs) {
    std::string everyByte;
    for (int byte = 1; byte < 256; ++byte)
        if (byte != '/') everyByte += static_cast<char>(byte);
    const std::vector<std::string> names{
        everyByte, "plain.txt",     " a  b ",  "$(touch x)`touch x`", "\\\"",  "ends in\\", "-n",
        "*",       "line\nbreak\n", "!!$HOME", "\"; touch x; \"",     "\\\nz", "(1) & 2",   "~",
        "'"};
    std::string expected;
    std::vector<FilePath> selection;
    for (const std::string& name : names) {
        selection.push_back(scratch.path().child(name));
        expected += name + '\0';
    }
    for (const std::string locale : {"C", "C.UTF-8"}) {
        base["LC_ALL"] = locale;
        const auto result = run(
            "printf '%s\\0' \"${SPACE_SEPARATED_FILE_NAMES[@]}\" > out1; printf '%s\\0' ${SPACE_SEPARATED_FILE_NAMES} "
            "> out2; printf '%s' \"$FILE_NAME\" > out3",
            selection);
        EXPECT_EQ(result, (CommandRunResult{"", "", 0}));
        EXPECT_EQ(scratch.read("out1"), expected);
        EXPECT_EQ(scratch.read("out2"), expected);
        EXPECT_EQ(scratch.read("out3"), everyByte);
        EXPECT_FALSE(scratch.exists("x"));
    }
}

TEST_F(CommandRunnerTest, ThousandsOfSelectedFilesKeepNothingFromRunning) {
    const std::vector<FilePath> selection(5000, scratch.path(std::string(200, 'n')));
    EXPECT_EQ(run("echo fine", selection), (CommandRunResult{"fine\n", "", 0}));
    EXPECT_EQ(run("echo ${SPACE_SEPARATED_FILE_NAMES}", selection)->exitCode, 1);
}

TEST_F(CommandRunnerTest, LinesAndTicksComeWhileTheCommandRuns) {
    makeGate();
    onLine = [&](std::string_view line) {
        if (line == "first") openGate();
    };
    EXPECT_EQ(run("echo first; cat gate"), (CommandRunResult{"first\ngo\n", "", 0}));

    onLine = nullptr;
    std::string asked;
    std::vector<std::string> lines;
    double elapsed = 0;
    chooser = [&](std::string_view command) {
        asked = command;
        auto tracker = std::make_unique<FakeTracker>();
        tracker->onElapsed = [&] {
            if (elapsed == 0) openGate();
        };
        return tracker;
    };
    onProgress = [&](const CommandProgress& progress) {
        if (const auto* line = std::get_if<OutputLine>(&progress)) lines.push_back(line->text);
        if (const auto* norm = std::get_if<ProgressNorm>(&progress)) elapsed = norm->value;
    };
    EXPECT_TRUE(run("cat gate | finderSelect"));
    EXPECT_EQ(asked, "cat gate | finderSelect");  // chosen by the uncut text
    EXPECT_EQ(lines, std::vector<std::string>{"tracked go"});
    EXPECT_GE(elapsed, 0.25);
    EXPECT_LT(elapsed, 5);
}

TEST_F(CommandRunnerTest, AStopEndsTheWholeGroup) {
    onLine = [&](std::string_view) { stop.request_stop(); };
    const auto begin = std::chrono::steady_clock::now();
    EXPECT_EQ(run("sleep 1000 & echo $! > child; echo started; sleep 1000; touch after"), std::nullopt);
    EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::milliseconds(1500));
    EXPECT_FALSE(scratch.exists("after"));
    // It is gone, or dead and not yet reaped by whoever inherited it.
    const auto status =
        files->readFile(FilePath("/proc/" + std::to_string(std::stoi(scratch.read("child"))) + "/stat"), 4096);
    EXPECT_TRUE(!status || status->find(") Z ") != std::string::npos || status->empty());

    EXPECT_EQ(run("touch after"), std::nullopt);  // a stop that was there before
    EXPECT_FALSE(scratch.exists("after"));
}

TEST(PureEcho, OnlyOneQuotedLiteral) {
    struct Case {
        std::string_view command;
        std::optional<std::string> text;
    };
    const Case cases[] = {
        {"echo \"Done\"", "Done"},     {"  echo\t-n ' it is \"so\" ' \n", "it is \"so\""},
        {"echo \"it's\"", "it's"},     {"echo ' '", ""},
        {"echo hello", std::nullopt},  {"echo \"a\" \"b\"", std::nullopt},
        {"echo \"\"", std::nullopt},   {"echo \"$HOME\"", std::nullopt},
        {"echo '`'", std::nullopt},    {"echo 'a\\b'", std::nullopt},
        {"echo 'a\nb'", std::nullopt}, {"echo 'a'; rm b", std::nullopt},
        {"echo -e 'a'", std::nullopt},
    };
    for (const auto& [command, text] : cases) EXPECT_EQ(pureEchoText(command), text) << command;
}

}  // namespace command_runner_tests
}  // namespace brindlet
