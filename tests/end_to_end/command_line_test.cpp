// What holds for every subcommand: wrong usage, help, hostile words, streams that can't be written.
#include <gtest/gtest.h>

#include <algorithm>

#include "end_to_end/program.h"

namespace brindlet {
namespace command_line_tests {

TEST(CommandLine, WrongUsageIsOneHelpfulLine) {
    Program program;
    program.disk.write("a.txt", "");
    program.disk.link("loop", "loop");
    struct Case {
        std::vector<std::string> words;
        std::string_view says;
    };
    const Case cases[] = {
        {{}, "say what to do: predict, run"},
        {{"frobnicate"}, "there is no 'frobnicate'; choose from predict"},
        {{"predict"}, "COMMAND is missing"},
        {{"predict", "ls", "--frob"}, "there is no option '--frob'"},
        {{"predict", "-x"}, "goes after '--'"},
        {{"predict", "--batch"}, "--batch goes with --json"},
        {{"predict", "ls", "--folder", "gone"}, "there is no folder 'gone'"},
        {{"predict", "ls", "--folder", "loop"}, "there is no folder 'loop'"},
        {{"predict", "ls", "--folder", ""}, "--folder"},
        {{"predict", "ls", "--folder", "a.txt"}, "'a.txt' is no folder"},
        {{"predict", "ls", "gone\n\x1b[31m\xff"}, R"(there is no file 'gone\n\x1b[31m\xff')"},
        {{"run", ""}, "COMMAND is empty"},
        {{"run", " \n"}, "COMMAND is empty"},
        {{"run", "ls", "gone"}, "there is no file 'gone'"},
        {{"parse", "mv", "a", "b"}, "one word too many"},
        {{"settings"}, "say what to do: list, get"},
        {{"settings", "frob"}, "there is no 'frob'; choose from list"},
        {{"settings", "get", "frob"}, "the settings are analysisConfirmationToggles"},
        {{"settings", "set", "autoRunRiskLevel", "high"}, "'high' is no whole number"},
        {{"settings", "allow", "Frob", "on"}, "the effects are Harmless commands"},
        {{"settings", "allow", "rename files", "maybe"}, "neither on nor off"},
    };
    for (const auto& [words, says] : cases) {
        SCOPED_TRACE(says);
        const Outcome outcome = program.run(words);
        EXPECT_EQ(outcome.exitCode, 2);
        EXPECT_EQ(outcome.out, "");
        EXPECT_NE(outcome.err.find(says), std::string::npos) << outcome.err;
        EXPECT_EQ(std::ranges::count(outcome.err, '\n'), 1) << outcome.err;
    }
}

TEST(CommandLine, EverySubcommandHelpsWithAnExample) {
    const Program program;
    for (const char* name : {"predict", "run", "parse", "glob", "settings", "log"}) {
        const Outcome outcome = program.run({name, "--help"});
        EXPECT_EQ(outcome.exitCode, 0);
        EXPECT_NE(outcome.out.find("Example:\n  brindlet " + std::string(name)), std::string::npos) << outcome.out;
    }
    EXPECT_NE(program.run({"--version"}).out.find("sandbox of predictions: "), std::string::npos);
}

// Words arrive as they were written, whatever the option reader thinks of them.
TEST(CommandLine, OddWordsArriveUnchanged) {
    Program program;
    const std::string odd = "new\nline \xff";
    for (const std::string& name : {odd, std::string("[a,b]"), std::string("-n"), std::string("{}"), std::string("++")})
        program.disk.write(name, "");
    EXPECT_EQ(program.run({"glob", "*", "[a,b]", "{}", "++", "--", "-n", "--", "[]"}).out,
              "[a,b]\n{}\n++\n-n\n--\n[]\n");
    EXPECT_EQ(program.run({"predict", "--json", "--", "-x"}).json()["command"], "-x");
    EXPECT_EQ(program.run({"predict", "--json", "[ -f a ]"}).json()["command"], "[ -f a ]");
    const auto changes = [&](const std::string& name) {
        return program.run({"predict", "--json", "rm \"$FILE_NAME\"", "--", name}).json()["changes"];
    };
    for (const char* name : {"[a,b]", "-n", "{}", "++"}) {
        SCOPED_TRACE(name);
        ASSERT_EQ(program.run({"predict", "--json", "wc -l < \"$FILE_NAME\"", "--", name}).exitCode, 0);
    }
    EXPECT_EQ(changes("[a,b]").at(0)["path"], program.disk.path("[a,b]").text());
    EXPECT_EQ(changes(odd).at(0)["path"], program.disk.path("new\nline \uFFFD").text());
}

TEST(CommandLine, AMegabyteOfCommandIsAnswered) {
    const Program program;
    // The system takes no word longer than 128 KiB, a batch does.
    const std::string line = R"("echo )" + std::string(1 << 20, 'a') + "\"\n\"" + std::string(1 << 20, '(') + "\"\n";
    for (const char* name : {"predict", "parse"}) {
        const Outcome outcome = program.run({name, "--json", "--batch"}, line);
        EXPECT_EQ(outcome.exitCode, 0);
        EXPECT_EQ(std::ranges::count(outcome.out, '\n'), 2);
    }
}

TEST(CommandLine, OutputThatCannotBeWrittenIsSaid) {
    const Program program;
    for (const char* output : {"/dev/full", static_cast<const char*>(nullptr)}) {
        for (const std::vector<std::string>& words : {std::vector<std::string>{"parse", "ls"},
                                                      {"predict", "ls"},
                                                      {"--help"},
                                                      {"run", "--yes", "printf 'a\\n'"}}) {
            const Outcome outcome = program.runOnto(output, words);
            EXPECT_EQ(outcome.exitCode, 1);
            EXPECT_TRUE(outcome.err.starts_with("brindlet: standard output can't be written: ")) << outcome.err;
            EXPECT_EQ(std::ranges::count(outcome.err, '\n'), 1) << outcome.err;
        }
    }
}

TEST(Settings, RoundTrip) {
    const Program program;
    EXPECT_EQ(program.run({"settings", "get", "autoRunRiskLevel"}).out, "");
    EXPECT_EQ(program.run({"settings", "set", "autoRunRiskLevel", "4"}).exitCode, 0);
    EXPECT_EQ(program.run({"settings", "get", "autoRunRiskLevel"}).out, "4\n");
    // The older level counts until a list is kept, and keeping one is what the first prediction does.
    EXPECT_EQ(program.run({"predict", "--json", "touch x"}).json()["reasons"], nlohmann::json::array());
    EXPECT_NE(program.run({"settings", "get", "analysisConfirmationToggles"}).out.find("\"Rename files\""),
              std::string::npos);
    EXPECT_EQ(program.run({"settings", "allow", "create NEW files", "off"}).exitCode, 0);
    EXPECT_EQ(program.run({"predict", "--json", "touch x"}).json()["reasons"],
              nlohmann::json::array({"Create new files"}));
    EXPECT_EQ(program.run({"settings", "set", "translucentPromptWindow", "off"}).exitCode, 0);
    const auto all = program.run({"settings", "list", "--json"}).json();
    EXPECT_EQ(all["translucentPromptWindow"], false);
    EXPECT_EQ(all["selectedModelName"], nullptr);
    EXPECT_EQ(program.run({"settings", "unset", "translucentPromptWindow"}).exitCode, 0);
    EXPECT_EQ(program.run({"settings", "get", "translucentPromptWindow"}).out, "");
}

TEST(Log, HoldsWhatRunsAndOnlyThat) {
    const Program program;
    program.run({"predict", "ls"});
    EXPECT_EQ(program.run({"log", "show"}).exitCode, 1);
    EXPECT_EQ(program.run({"log", "path"}).out, program.home.path("data/Logs").text() + "\n");
    program.run({"run", "echo 'Done'"});
    EXPECT_NE(program.run({"log", "show"}).out.find("Command output was pure echo: Done"), std::string::npos);
}

}  // namespace command_line_tests
}  // namespace brindlet
