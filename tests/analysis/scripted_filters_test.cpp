// sed and awk: what their models make of a line, and what is read out of their scripts.
#include <gtest/gtest.h>

#include <random>

#include "analysis/models/awk_program.h"
#include "analysis/models/sed_script.h"
#include "platform/read_only_launcher.h"
#include "support/ordinary_user.h"
#include "support/predict.h"
#include "text/strings.h"

namespace brindlet {
namespace scripted_filters_tests {

using Texts = std::vector<std::string>;

struct Row {
    std::string_view line;
    std::string outcome = "0 'real'";
    Texts changes = {};
    Texts errors = {};
    Texts sideEffects = {};
};

void expectRows(const std::vector<Row>& rows) {
    for (const Row& row : rows) {
        SCOPED_TRACE(row.line);
        FakeDisk disk{"a", "b", "d/x"};
        FakeLauncher launcher;
        launcher.answer = [](const auto&) { return ToolOutcome{.exitCode = 0, .output = "real"}; };
        const AnalysisResult result = predict(row.line, disk, {.launcher = &launcher});
        EXPECT_EQ(described(result.analysisError), "");
        EXPECT_EQ(outcome(result), row.outcome);
        EXPECT_EQ(launcher.launches.size(), row.outcome == "0 'real'" ? 1U : 0U);
        EXPECT_EQ(described(result), row.changes);
        EXPECT_EQ(described(result.commandErrors), row.errors);
        EXPECT_EQ(described(result.sideEffects), row.sideEffects);
    }
}

void expectEnds(std::string_view line, std::string_view error) {
    SCOPED_TRACE(line);
    FakeDisk disk{"a"};
    EXPECT_EQ(described(predict(line, disk).analysisError), error);
}

std::string unlisted(std::string_view files) {
    return "unknownFileChanges: 'sed' may also write " + std::string(files) + ", which isn't shown here";
}
const std::string sedRuns = "unknownFileChanges: 'sed' may run other commands, which isn't shown here";

TEST(Sed, OnItsInput) {
    const std::string missing = "Text modification expects file / sed: no: No such file or directory";
    const std::string noScript = "Text modification command written wrong / sed: missing script argument";
    expectRows({
        {"sed s/a/b/ a"},
        {"echo x | sed -En 's/a/b/'"},
        {"sed -n -e 1p -e 2p a"},
        {"cat a | sed s/a/b/ no", "0 unknown"},
        {"sed 1p a no", "1 'sed: no: No such file or directory'", {}, {missing}},
        {"sed -n", "1 'sed: missing script argument'", {}, {noScript}},
        {"touch c; sed 1p c",
         "0 'real'",
         {"create c"},
         {},
         {"filesChangedBeforeReadingFiles: 'sed' sees only real files, not interim simulated changes"}},
        // Scripts that do more, with nothing launched or not.
        {"cat a | sed 'w out'", "0 unknown", {}, {}, {unlisted("'out'")}},
        {"cat a | sed -n -e p -e 's/x/y/w b'", "0 unknown", {}, {}, {unlisted("'b'")}},
        {"cat a | sed -nEe'W out' --expr='1w b' --sandbox p", "0 unknown", {}, {}, {unlisted("'out' and 1 more")}},
        {"cat a | sed '1e rm b'", "0 unknown", {}, {}, {sedRuns}},
        {"cat a | sed --posix 's/x/rm b/e'", "0 unknown", {}, {}, {sedRuns}},
        {"cat a | sed 'w /dev/stdout'", "0 unknown"},
        {"cat a | sed s/we/few/", "0 unknown"},
        {"cat a | sed nonsense", "0 unknown", {}, {}, {sedRuns}},
        {"cat a | sed -nfb", "1 'sed: missing script argument'", {}, {noScript}, {"runningUnknownScript: b"}},
        {"cat a | sed --file=b", "1 'sed: missing script argument'", {}, {noScript}, {"runningUnknownScript: b"}},
    });
    for (const char* line : {"sed -f a b", "sed -r s/a/b/ a", "sed 1p a -s", "sed --separate 1p a", "sed -w x 1p a"})
        expectEnds(line, "simulationError: sed: script files, read/write operations not supported in simulation");
}

TEST(Sed, InPlace) {
    const std::string onInput =
        "Text modification command written wrong / sed: can't do in-place editing on standard input";
    const std::string noScript = "Text modification command written wrong / sed: missing script argument";
    const std::string noFile = "1 'sed: can't do in-place editing on standard input'";
    expectRows({
        {"sed -i.bak s/a/b/ a b", "0 unknown", {"modify a", "create a.bak", "modify b", "create b.bak"}},
        {"sed -i -e s/a/b/ a", "0 unknown", {"modify a"}},
        {"sed s/a/b/ a -i", "0 unknown", {"modify a"}},
        {"sed -i.x s/a/b/ a no",
         "1 'sed: no: No such file or directory'",
         {"modify a", "create a.x"},
         {"Text modification expects file / sed: no: No such file or directory"}},
        {"sed -i.bak s/a/b/", noFile, {}, {onInput}},
        // What the tool here changes besides: it takes no suffix in a word of its own, and knows more spellings.
        {"sed -i s/a/b/ a", noFile, {}, {onInput}, {unlisted("'a'")}},
        {"sed -i 1p a b", "0 unknown", {"modify b", "create b1p"}, {}, {unlisted("'a'")}},
        {"sed -ni s/a/b/ a", "1 'sed: missing script argument'", {}, {noScript}, {unlisted("'a'")}},
        {"sed --in-place=.bak 1p a", "0 'real'", {}, {}, {unlisted("'a' and 1 more")}},
        {"cat b | sed 1p a --in-pl", "0 unknown", {}, {}, {unlisted("'a'")}},
        {"sed -i'd/*' 1p a", "0 unknown", {"modify a", "create ad/*"}, {}, {unlisted("'ad/*'")}},
        {"sed -i.x 'w b' a", "0 unknown", {"modify a", "create a.x"}, {}, {unlisted("'b'")}},
    });
}

TEST(Sed, SuffixInAWordOfItsOwn) {
    FakeDisk disk{"a"};
    for (const char* line : {"sed -i '' s/a/b/ a", "sed -n -i '' -e s/a/b/ a"}) {
        const AnalysisResult result = predict(line, disk);
        EXPECT_EQ(outcome(result), "0 unknown");
        EXPECT_EQ(described(result), Texts{"modify a"});
        EXPECT_TRUE(result.commandErrors.empty());
    }
}

TEST(SedScripts, WhatTheyDo) {
    struct Case {
        std::string_view script;
        std::string does;  // "w FILE", "r FILE", "e", "?" for not understood
    };
    const Case cases[] = {
        {"p;s/a/b/g;y/a/b/;$!N;/x/,/y/d", ""},
        {"/a/I,+3{s|x|y|2p;ba};:a;q5", ""},
        {"1~2 ! { l 5 }", ""},
        {"\\,x,w out", "w out"},
        {"s,a\\,b,c,w out;p", "w out;p"},
        {"s/[/]/x/w out", "w out"},
        {"s/[[:digit:]/]/x/e", "e"},
        {"a\\\nw no\np", ""},
        {"a w no\\\ne no\nw yes", "w yes"},
        {"$!{i txt\n};R f\nW g", "r fw g"},
        {"# w no\n:x;tx;e ls\nr f", "er f"},
        {"s/a/b", "?"},
        {"w", "?"},
        {"pw x", "?"},
        {":a#w x", "?"},
    };
    for (const auto& [script, does] : cases) {
        const SedScript found = readSedScript(script);
        std::string text = found.runsCommands ? "e" : "";
        for (const auto& file : found.readFiles) text += "r " + file;
        for (const auto& file : found.writtenFiles) text += "w " + file;
        EXPECT_EQ(text + (found.isUnderstood ? "" : "?"), does) << script;
    }
}

// The real sed refuses the same commands where it is told to keep to itself.
TEST(SedScripts, AgreeWithTheRealTool) {
    inOrdinaryProcess([] {
        const auto launcher = openReadOnlyLauncher();
        if (launcher->layers() == "none") GTEST_SKIP() << "nothing is launched here";
        const std::string_view pieces[] = {"s/a/b/", "s",     "/",    "[",   "]",    "\\",  "w out",   "e",  "e id",
                                           "p",      ";",     "\n",   "{",   "}",    "r f", "1",       "$",  ",",
                                           "!",      "y/a/b", "i\\",  "a x", "I",    "g",   " ",       "#n", ":a",
                                           "ba",     "[^/]",  "[[:a", ":]",  "s|x|", "~2",  "s/[/]/w", "x",  "[]"};
        std::mt19937 random(1);
        const auto below = [&](std::size_t count) { return random() % count; };
        for (int count = 0; count < 300; ++count) {
            std::string script;
            for (std::size_t left = 1 + below(8); left > 0; --left) script += pieces[below(std::size(pieces))];
            const ToolOutcome judged = launcher->run({.arguments = {"sed", "--sandbox", "-e", script},
                                                      .folder = FilePath("/"),
                                                      .environment = {{"PATH", "/usr/bin:/bin"}, {"LC_ALL", "C"}}});
            const SedScript found = readSedScript(script);
            const bool doesMore = found.runsCommands || !found.readFiles.empty() || !found.writtenFiles.empty();
            if (contains(judged.output, "disabled in sandbox mode")) {
                EXPECT_TRUE(doesMore) << script;
            }
            if (judged.exitCode == 0) {
                EXPECT_TRUE(found.isUnderstood && !doesMore) << script;
            }
        }
    });
}

TEST(AwkPrograms, Hazards) {
    const char* const harmless[] = {
        "{print $1}",
        "/a|b/ { n++ } END { print n / 2 }",
        "$1 > 5 || $2 >= x { s = s \"|\" $1 } END { print (s > 1) }",
        "BEGIN { if (a) /x|y/; for (;;) print a[b > c] / 2 / 3 } # | 'x'",
        "/[^]|[:digit:]]/ && length > 3",
    };
    for (const char* program : harmless) EXPECT_EQ(awkHazard(program), std::nullopt) << program;
    const char* const hazards[] = {
        "{ print | \"sh\" }",
        "{ print $1 > $2 }",
        "{ print(1)(2) > (\"a\" b) }",
        "{ \"ls\" | getline x }",
        "{ \"ls\" |& getline }",
        "BEGIN { f = \"system\"; @f(\"rm b\") }",
        "{ getline x \\\n < f }",
        "BEGIN { if ((a) / b | \"sh\") x = 1 / 2 }",
        "{ x = a / \"/\" | \"sh\" / 2 }",
        "BEGIN { length /\"/ | \"sh\"; x = /\"/ }",
        "/[/]\"/ { print | \"sh\" } /\"/",
        "/[[:alpha:]/\"]/ | \"sh\" { x = /\"/ }",
        "{ print \"x\n\" | \"sh\" }",
        "\xff system(x)",
    };
    for (const char* program : hazards) EXPECT_NE(awkHazard(program), std::nullopt) << program;
}

TEST(Awk, Model) {
    const auto mayDoMore = [](std::string_view what) {
        return "unknownFileChanges: 'awk' may do more with " + std::string(what) + " than is shown here";
    };
    expectRows({
        {"awk '{print $1}' a"},
        {"awk -F, -v x=1 '{print $1}' a"},
        {"cat a | awk '{print}'", "0 unknown"},
        {"awk -f b a", "? unknown", {}, {}, {"runningUnknownScript: b"}},
        {"touch c; awk 1 c no", "? unknown", {"create c"}},
        {"awk", "1 'awk: missing program'", {}, {"Text processing command incorrectly written / awk: missing program"}},
        {"awk 1 no",
         "1 'awk: no: No such file or directory'",
         {},
         {"Text processing source doesn't exist / awk: no: No such file or directory"}},
        {"cat a | awk '{print | \"sh\"}'", "0 unknown", {}, {}, {mayDoMore("a pipe")}},
        {"cat a | awk -i inplace 1",
         "1 'awk: 1: No such file or directory'",
         {},
         {"Text processing source doesn't exist / awk: 1: No such file or directory"},
         {mayDoMore("'-i'")}},
        {"cat a | awk --profile=b 1", "0 unknown", {}, {}, {mayDoMore("'--profile'")}},
        {"cat a | awk -va=W '{print > $2}' 1", "0 unknown", {}, {}, {mayDoMore("output redirection")}},
    });
    const std::pair<std::string_view, std::string_view> refused[] = {
        {"{print >> f}", "append redirection (>>)"},
        {"{print > \"x\"}", "output redirection to quoted filename"},
        {"$1 > x", "output redirection to filename"},
        {"BEGIN { system (\"ls\") }", "system() function call"},
        {"BEGIN { getline l < f }", "getline with file input"},
        {"BEGIN { close(f) }", "close() function call"},
        {"BEGIN { x = \"fflush(\" }", "fflush() function call"},
    };
    for (const auto& [program, feature] : refused)
        expectEnds("awk '" + std::string(program) + "' a",
                   "highRisk: awk inline program contains dangerous feature: " + std::string(feature));
    expectEnds("awk \"{print > 'x'}\" a",
               "highRisk: awk inline program contains dangerous feature: output redirection to single-quoted filename");
}

}  // namespace scripted_filters_tests
}  // namespace brindlet
