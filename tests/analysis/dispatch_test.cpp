#include <gtest/gtest.h>

#include "support/predict.h"

namespace brindlet {
namespace dispatch_tests {

using Texts = std::vector<std::string>;

struct Row {
    std::string_view line;
    std::string outcome;
    Texts sideEffects = {};
    Texts errors = {};
};

FakeDisk diskWithTools() {
    FakeDisk disk{"x",    "rm",          "build.sh",          ".x",          "Foo.app/Contents/MacOS/foo",
                  "tool", "archive.tar", "/home/me/Desktop/", "/usr/bin/.x", "/usr/bin/sub/ls"};
    for (const char* tool : {"git", "less", "frobnicate", "rm", "sudo"})
        disk.addExecutable("/usr/bin/" + std::string(tool));
    return disk;
}

TEST(Dispatch, NamesOfAllKinds) {
    const std::string caution = " — proceed with caution.";
    const Row rows[] = {
        // Files: by where they lie, then by extension. They are never looked into.
        {"./rm x", "0 unknown", {"unknownCommand: Unknown command './rm'" + caution}},
        {"Foo.app/Contents/MacOS/foo",
         "0 unknown",
         {"unknownCommand: Unknown command 'Foo.app/Contents/MacOS/foo'" + caution}},
        {"./build.sh", "? unknown", {"runningUnknownScript: ./build.sh"}},
        {"./archive.tar", "? unknown", {"runningUnknownScript: ./archive.tar"}},
        {".x", "0 unknown", {"unknownCommand: Unknown command '.x'" + caution}},
        {"touch My.app; ./My.app", "0 unknown", {"unknownCommand: Unknown app './My.app'" + caution}},
        {"touch new; ./new", "0 unknown", {"unknownCommand: Unknown command './new'" + caution}},
        {"./missing.sh",
         "1 './missing.sh: No such file or directory'",
         {},
         {"./missing.sh doesn't exist / ./missing.sh: No such file or directory"}},
        {"rm x; ./x", "1 './x: No such file or directory'", {}, {"./x doesn't exist / ./x: No such file or directory"}},
        {"~/Desktop", "1 '~/Desktop: is a directory'", {}, {"Can't run a directory / ~/Desktop: is a directory"}},
        {"./Foo.app", "1 './Foo.app: is a directory'", {}, {"Can't run a directory / ./Foo.app: is a directory"}},
        {"..", "1 '..: is a directory'", {}, {"Can't run a directory / ..: is a directory"}},
        // A file of the search path is the command of its name, and comes to an end whatever that name is.
        {"/usr/bin/../bin/frobnicate",
         "? unknown",
         {"unknownCommand: Brindlet doesn’t know the command 'frobnicate'" + caution +
          "\nIf you'd like it to be supported, please let us know."}},
        {"/usr/bin/.x", "1 '.x: command not found'", {}, {"No '.x' command exists / .x: command not found"}},
        // Names without a row.
        {"git push", "? unknown", {"complexCommand: 'git' command is complex, outcome unpredictable"}},
        {"less x", "? unknown", {"unknownCommand: Prediction support for 'less' is coming soon."}},
        {"cargo build", "1 'cargo: command not found'", {}, {"No 'cargo' command exists / cargo: command not found"}},
        {"ECHO hi", "1 'ECHO: command not found'", {}, {"No 'ECHO' command exists / ECHO: command not found"}},
        // Names with a fixed answer.
        {"true", "0"},
        {"false", "1"},
        {"finderSelect x", "0"},
        {"host a.b", "? unknown", {"networkAccess: Makes network request"}},
        {"clear", "? unknown"},
        {"fold x", "0 unknown"},
        {"history 5", "? unknown"},
        {"history -w x",
         "? unknown",
         {"unknownFileChanges: 'history' writes its list to a file, which isn't shown here"}},
        {"dc -e '1 2 !=a p'; echo '2 3 + p' | dc", "0 unknown"},
        {"dc -e '!rm x'", "0 unknown", {"partialSupport: 'dc' may run commands, which isn't shown here"}},
        {"echo '!rm x' | dc", "0 unknown", {"partialSupport: 'dc' may run commands, which isn't shown here"}},
        {"dc x", "0 unknown", {"partialSupport: 'dc' may run commands, which isn't shown here"}},
        {"wget http://a.b/c",
         "? unknown",
         {"networkAccess: Makes network request",
          "partialSupport: 'wget' partially supported, full effects unpredictable"}},
        {"vim x; pwd",
         "0 'Command 'vim' is not supported in Brindlet/w'",
         {},
         {"Won't work in Brindlet / Command 'vim' is not supported in Brindlet"}},
    };
    for (const auto& [line, end, sideEffects, errors] : rows) {
        SCOPED_TRACE(line);
        FakeDisk disk = diskWithTools();
        const AnalysisResult result = predict(line, disk);
        EXPECT_EQ(described(result.analysisError), "");
        EXPECT_EQ(outcome(result), end);
        EXPECT_EQ(described(result.sideEffects), sideEffects);
        EXPECT_EQ(described(result.commandErrors), errors);
    }
}

TEST(Dispatch, PathsOfTheSearchPath) {
    FakeDisk disk = diskWithTools();
    EXPECT_EQ(described(predict("/usr/bin/rm x", disk)), (Texts{"delete x"}));
    // An empty entry in the search path makes no tool of the files here.
    const AnalysisResult other = predict("./rm x", disk, {.searchPath = "/usr/bin::~/tools"});
    EXPECT_TRUE(other.changes.empty());
    // A folder of tools of one's own, in which one stands.
    const AnalysisResult hidden = predict(".x", disk, {.searchPath = "/w"});
    EXPECT_EQ(described(hidden.commandErrors), (Texts{"No '.x' command exists / .x: command not found"}));
}

TEST(Dispatch, RefusedCommandsEndTheAnalysis) {
    struct Case {
        std::string_view line, error;
    };
    const Case cases[] = {
        {"rm x; sudo ls", "bannedInBrindlet: 'sudo' command is banned in Brindlet for safety and security"},
        {"/usr/bin/sudo ls", "bannedInBrindlet: 'sudo' command is banned in Brindlet for safety and security"},
        {"reboot",
         "wontWorkInBrindlet: 'reboot' command requires root privileges, which are disallowed for safety and "
         "security."},
        {"fs_usage", "wontWorkInBrindlet: fs_usage command requires root privileges"},
        {"for f in x; do break; done", "unimplemented: `break` command is not supported for Brindlet analysis"},
    };
    for (const auto& [line, error] : cases) {
        SCOPED_TRACE(line);
        FakeDisk disk = diskWithTools();
        const AnalysisResult result = predict(line, disk);
        EXPECT_EQ(described(result.analysisError), error);
        EXPECT_TRUE(result.changes.empty());
        EXPECT_EQ(result.rewrittenCommand, line);
    }
}

TEST(Dispatch, CommandsThatAreReallyRun) {
    struct Case {
        std::string_view line;
        std::vector<Texts> launched;
        std::string standardInput = "";
        bool isNoted = false;
    };
    const Case cases[] = {
        {"touch y; du -sh x", {{"du", "-sh", "x"}}, "", true},
        {"echo a | realpath x", {{"realpath", "x"}}},
        {"touch y; echo ab | tr a b", {{"tr", "a", "b"}}, "ab\n"},
        {"printf a", {{"printf", "a"}}},
        {"cat x | tr a b", {}},  // unknown input: nothing is run
        {"cat x | printf a", {}},
        {"touch y; test -f x", {{"test", "-f", "x"}}, "", true},
        {"[ -f 'a b' ]", {{"test", "-f", "a b"}}},
        {"[[ 1 -eq 1 ]]", {{"bash", "-c", "[[ 1 -eq 1 ]]"}}},
        {"[ -f x", {}},
    };
    for (const auto& [line, launched, standardInput, isNoted] : cases) {
        SCOPED_TRACE(line);
        FakeDisk disk = diskWithTools();
        FakeLauncher launcher;
        const AnalysisResult result = predict(line, disk, {.launcher = &launcher});
        std::vector<Texts> found;
        for (const auto& launch : launcher.launches) found.push_back(launch.arguments);
        EXPECT_EQ(found, launched);
        EXPECT_EQ(launcher.launches.empty() ? "" : launcher.launches.back().standardInput, standardInput);
        EXPECT_EQ(!result.sideEffects.empty(), isNoted);
    }
}

TEST(Dispatch, TestsThatWouldRunACommand) {
    const char* const refused[] = {
        "[[ 'a[$(rm x)]' -eq 1 ]]", "[[ 1 -lt 'a[`rm x`]' ]]",       "v='a[$(rm x)]'; [[ v -eq 1 ]]",
        "test -v 'a[$(rm x)]'",     "v='a[$(rm x)]'; [ -v 'b[v]' ]", "v='a[$(rm x)]'; w=v+1; [[ 2 -gt w ]]",
    };
    for (const char* line : refused) {
        SCOPED_TRACE(line);
        FakeDisk disk = diskWithTools();
        FakeLauncher launcher;
        const AnalysisResult result = predict(line, disk, {.launcher = &launcher});
        ASSERT_TRUE(result.analysisError);
        EXPECT_EQ(result.analysisError->kind, BasherAnalysisError::Kind::highRisk);
        EXPECT_TRUE(launcher.launches.empty());
    }
    for (const char* line : {"[ 'a[$(rm x)]' -eq 1 ]", "v=v; [[ v -eq 1 ]]", "[[ -v v ]]", "test '$(rm x)' = y"}) {
        FakeDisk disk = diskWithTools();
        EXPECT_EQ(described(predict(line, disk).analysisError), "") << line;
    }
}

TEST(TextOutput, WordsOfTheLine) {
    const Row rows[] = {
        {"echo -n -n a", "0 '-n a'"},
        {"echo a -n b", "0 'a b'"},
        {"echo -e 'a\\n'  b", "0 '-e a\\n b\n'"},
        {"echo", "0 '\n'"},
        {"pwd | cat", "0 '/w'"},
        {"echo hi | cat -v", "0 'hi\n'"},
        {"cat x", "0 unknown"},
        {"cat x | cat", "0 unknown"},
        {"cat x no also", "1 'cat: no: No such file or directory'"},
        {"cat -", "1 'cat: -: No such file or directory'"},
        {"cat no | cat", "0 'cat: no: No such file or directory'"},
        {"[ a", "1 '[: missing ']''"},
        {"[[ a ]", "1 '[[: missing ']]''"},
    };
    for (const auto& [line, end, sideEffects, errors] : rows) {
        SCOPED_TRACE(line);
        FakeDisk disk = diskWithTools();
        const AnalysisResult result = predict(line, disk);
        EXPECT_EQ(outcome(result), end);
        EXPECT_TRUE(result.commandErrors.empty());
    }
}

}  // namespace dispatch_tests
}  // namespace brindlet
