#include <gtest/gtest.h>

#include "support/predict.h"
#include "text/strings.h"

namespace brindlet {
namespace text_filters_tests {

using Texts = std::vector<std::string>;

struct Row {
    std::string_view line;
    std::string outcome = "0 'real'";
    Texts launched = {};  // "wc -l < text" for a launch on a text
    Texts changes = {};
    Texts errors = {};       // "friendly / technical"
    Texts sideEffects = {};  // "name: description"
};

FakeDisk ordinaryDisk() {
    return FakeDisk{"a", "b=x  y z\n", "2", "d/x", "e/"};
}

Texts described(const std::vector<ToolLaunch>& launches) {
    Texts texts;
    for (const auto& launch : launches)
        texts.push_back(joined(launch.arguments, " ") +
                        (launch.standardInput.empty() ? "" : " < " + launch.standardInput));
    return texts;
}

void expectRows(const std::vector<Row>& rows) {
    for (const Row& row : rows) {
        SCOPED_TRACE(row.line);
        FakeDisk disk = ordinaryDisk();
        FakeLauncher launcher;
        launcher.answer = [](const auto&) { return ToolOutcome{.exitCode = 0, .output = "real"}; };
        const AnalysisResult result = predict(row.line, disk, {.launcher = &launcher});
        EXPECT_EQ(described(result.analysisError), "");
        EXPECT_EQ(outcome(result), row.outcome);
        EXPECT_EQ(described(launcher.launches), row.launched);
        EXPECT_EQ(described(result), row.changes);
        EXPECT_EQ(described(result.commandErrors), row.errors);
        EXPECT_EQ(described(result.sideEffects), row.sideEffects);
    }
}

void expectEnds(std::string_view line, std::string_view error) {
    SCOPED_TRACE(line);
    FakeDisk disk = ordinaryDisk();
    FakeLauncher launcher;
    EXPECT_EQ(described(predict(line, disk, {.launcher = &launcher}).analysisError), error);
    EXPECT_TRUE(launcher.launches.empty());
}

std::string unlisted(std::string_view command, std::string_view file) {
    return "unknownFileChanges: '" + std::string(command) + "' may also write '" + std::string(file) +
           "', which isn't shown here";
}
std::string seesRealFiles(std::string_view command) {
    return "filesChangedBeforeReadingFiles: '" + std::string(command) +
           "' sees only real files, not interim simulated changes";
}

TEST(TextFilters, WhatTheLineItselfHolds) {
    const std::string setsVariable = "partialSupport: 'printf' sets a variable, which isn't shown here";
    expectRows({
        {"echo -n -n a", "0 '-n a'"},
        {"echo a -n b", "0 'a b'"},
        {"echo -e 'a\\tb' -E", "0 '-e a\\tb -E\n'"},
        {"pwd | cat", "0 '/w'"},
        {"printf '%s' x", "0 'real'", {"printf %s x"}},
        {"echo hi | printf x", "0 'real'", {"printf x < hi\n"}},
        {"cat a | printf x", "0 unknown"},
        {"printf -v x '[%s]' y", "0 'real'", {"printf -v x [%s] y"}, {}, {}, {setsVariable}},
        {"printf '%5n' x", "0 'real'", {"printf %5n x"}, {}, {}, {setsVariable}},
        {"printf '%%n %s' x", "0 'real'", {"printf %%n %s x"}},
        {"cat a -n", "0 unknown"},
        {"cat a no", "1 'cat: no: No such file or directory'"},
        {"echo hi | cat -u", "0 'hi\n'"},
        {"cat -", "1 'cat: -: No such file or directory'"},
        // Where a shell does otherwise, what hangs on it is said.
        {"echo hi | cat - || touch new", "0 'cat: -: No such file or directory'", {}, {"create new"}},
        {"cat - && rm a",
         "1 'cat: -: No such file or directory'",
         {},
         {},
         {},
         {"partialSupport: 'rm a' may run too, which isn't shown here"}},
        {"cp a \"$(echo -ne b)\"",
         "1 'cp: missing destination file operand after 'a''",
         {},
         {},
         {"Copy command missing destination / cp: missing destination file operand after 'a'"},
         {"unknownFileChanges: 'echo' prints something else than shown here"}},
    });
    expectEnds("printf -v 'x[$(rm a)]' y",
               "highRisk: 'printf' evaluates 'x[$(rm a)]', and would run a command inside it, which isn't simulated");
}

TEST(TextFilters, HeadAndTail) {
    expectRows({
        {"head -n 1 no", "1 'head: no: No such file or directory'"},
        {"head -n 1 a", "0 unknown"},
        {"tail -qb 1 a", "0 unknown"},
        {"tail -b 1 a || rm a",
         "0 unknown",
         {},
         {},
         {},
         {"partialSupport: 'rm a' may run too, which isn't shown here"}},
        {"echo hi | tail -f", "0 unknown"},
        {"head -5 a", "0 unknown"},
        {"head --lines 2 a", "0 unknown"},
        {"tail +2 a && rm b",
         "1 'tail: +2: No such file or directory'",
         {},
         {},
         {},
         {"partialSupport: 'rm b' may run too, which isn't shown here"}},
        {"cp -r d e; head e/d/x; true",
         "0 'head: e/d/x: No such file or directory'",
         {},
         {"create e/d/"},
         {},
         {seesRealFiles("head")}},
    });
}

TEST(TextFilters, Cut) {
    expectRows({
        {"cut -f2 a", "0 'real'", {"cut -f2 a"}},
        {"cut -f 2 -d, a", "0 'real'", {"cut -f 2 -d, a"}},
        {"echo hi | cut -c 1 -", "0 'real'", {"cut -c 1 - < hi\n"}},
        {"cat a | cut -c1", "0 unknown"},
        {"cut a", "0 'real'", {"cut"}},
        {"cut -d : a", "0 'real'", {"cut"}},
        {"cut -f 1 -d", "0 'real'", {"cut -d"}},
        {"cut -f-2 a", "0 'real'", {"cut -f"}},
        {"cut --fields=2 a", "0 'real'", {"cut"}},
        {"touch $(cut --fields=2 a)",
         "0",
         {"cut"},
         {"create real"},
         {},
         {"unknownFileChanges: 'cut' takes some of its words otherwise than shown here"}},
        {"cut -f1 a no", "1 'cut: no: No such file or directory'"},
        {"rm a; touch a; cut -f1 a no", "? unknown", {}, {"create a", "overwrite a"}},
    });
}

TEST(TextFilters, Sort) {
    const std::string written = "Sort command incorrectly written / sort: option requires an argument -- o";
    const std::string missing = "Sort source file doesn't exist / sort: /w/no: No such file or directory";
    expectRows({
        {"sort -k2 a", "0 'real'", {"sort -k2 a"}},
        {"sort -k no a", "1 'sort: /w/no: No such file or directory'", {}, {}, {missing}},
        {"echo b | sort -", "0 'real'", {"sort - < b\n"}},
        {"cat a | sort -r", "0 unknown"},
        {"sort -o out a", "0", {}, {"create out"}},
        {"sort a b -uo b", "0", {}, {"modify b"}},
        {"sort -o", "1 'sort: option requires an argument -- o'", {}, {}, {written}},
        {"mv b a; sort a", "0 unknown", {}, {"move b -> a", "overwrite a"}},
        // Outputs that the model takes for flags.
        {"sort -oout a", "0 'real'", {"sort -oout a"}, {}, {}, {unlisted("sort", "out")}},
        {"sort --out=b a", "0 'real'", {"sort --out=b a"}, {}, {}, {unlisted("sort", "b")}},
        {"cat a | sort -uob", "0 unknown", {}, {}, {}, {unlisted("sort", "b")}},
        {"sort --compress-program=rm a",
         "0 'real'",
         {"sort --compress-program=rm a"},
         {},
         {},
         {"unknownFileChanges: 'sort' may run other commands, which isn't shown here"}},
    });
}

TEST(TextFilters, UniqAndWc) {
    expectRows({
        {"uniq -c a", "0 'real'", {"uniq -c a"}},
        {"uniq a out", "0", {}, {"create out"}},
        {"uniq -f 1 a b", "0", {}, {"modify b"}},
        {"uniq a -", "0 'real'", {"uniq a -"}},
        {"uniq no", "1 'uniq: no: No such file or directory'"},
        {"echo b | uniq - ", "0 'real'", {"uniq - < b\n"}},
        {"cat a | uniq - b", "0 unknown", {}, {}, {}, {unlisted("uniq", "b")}},
        {"uniq --skip-f 1 a b", "1 'uniq: 1: No such file or directory'", {}, {}, {}, {unlisted("uniq", "b")}},
        {"wc -l a b", "0 'real'", {"wc -l a b"}},
        {"echo b | wc -", "0 'real'", {"wc - < b\n"}},
        {"wc d/no",
         "1 'wc: d/no: No such file or directory'",
         {},
         {},
         {"Word/line counter: no doesn't exist / wc: d/no: No such file or directory"}},
        {"touch c; wc c", "0 unknown", {}, {"create c"}},
        {"touch c; wc --files0-from=c", "0 'real'", {"wc --files0-from=c"}, {"create c"}, {}, {seesRealFiles("wc")}},
    });
}

TEST(TextFilters, Grep) {
    expectRows({
        {"grep x a b", "0 'real'", {"grep x a b"}},
        {"grep -e x a b", "0 'real'", {"grep -e x a b"}},
        {"grep -A1 --include '*.c' -m 1 x a", "0 'real'", {"grep -A1 --include *.c -m 1 x a"}},
        {"echo b | grep b", "0 'real'", {"grep b < b\n"}},
        {"cat a | grep b", "0 unknown"},
        {"grep x no && rm a", "1 'grep: no: No such file or directory'"},
        {"grep -q x a no && rm a",
         "1 'grep: no: No such file or directory'",
         {},
         {},
         {},
         {"partialSupport: 'rm a' may run too, which isn't shown here"}},
        {"grep -f no a", "1 'grep: no: No such file or directory'"},
        {"touch c; grep x c no", "? unknown", {}, {"create c"}},
        {"touch c; grep -f c a", "0 'real'", {"grep -f c a"}, {"create c"}, {}, {seesRealFiles("grep")}},
        {"touch c; grep -d recurse x d",
         "0 'real'",
         {"grep -d recurse x d"},
         {"create c"},
         {},
         {seesRealFiles("grep")}},
        {"grep --max-count 2 x a", "1 'grep: x: No such file or directory'"},
        {"cat a | grep -q x || rm b",
         "0 unknown",
         {},
         {},
         {},
         {"partialSupport: 'rm b' may run too, which isn't "
          "shown here"}},
    });
    expectEnds("grep -nr x .", "highRisk: grep -r/-R (recursive) is not supported in simulation");
}

TEST(TextFilters, Diff) {
    expectRows({
        {"diff -u a b", "0 'real'", {"diff -u a b"}},
        {"echo hi | diff -U 2 - a", "0 'real'", {"diff -U 2 - a < hi\n"}},
        {"cat a | diff a -", "0 unknown"},
        {"diff a", "1 'diff: missing operand'"},
        {"diff a no", "1 'diff: no: No such file or directory'"},
        {"diff -r d e", "? unknown"},
        {"diff -R d a", "1 'diff: a: Not a directory'"},
        {"diff a b 2", "0 unknown"},
        {"touch c; diff a c || rm b",
         "0 unknown",
         {},
         {"create c"},
         {},
         {"partialSupport: 'rm b' may run too, which "
          "isn't shown here"}},
        {"touch c; diff d a", "0 'real'", {"diff d a"}, {"create c"}, {}, {seesRealFiles("diff")}},
    });
}

TEST(TextFilters, Jq) {
    const std::string written = "Text processing command incorrectly written / jq: error: Missing filter expression";
    expectRows({
        {"jq . a", "0 'real'", {"jq . a"}},
        {"jq -f a b", "0 'real'", {"jq -f a b"}},
        {"jq -Ld --arg k v .k a --args no", "0 'real'", {"jq -Ld --arg k v .k a --args no"}},
        {"echo 1 | jq .", "0 'real'", {"jq . < 1\n"}},
        {"echo 1 | jq . a -", "0 'real'", {"jq . a - < 1\n"}},
        {"touch c; jq . c", "0 unknown", {}, {"create c"}},
        {"touch c; jq --slurpfile x c . a",
         "0 'real'",
         {"jq --slurpfile x c . a"},
         {"create c"},
         {},
         {seesRealFiles("jq")}},
        {"jq -r", "1 'jq: error: Missing filter expression'", {}, {}, {written}},
        {"jq -f no a",
         "1 'jq: filter file no: No such file or directory'",
         {},
         {},
         {"JSON filter file doesn't exist / jq: filter file no: No such file or directory"}},
        {"jq . no",
         "1 'jq: error: opening file no: No such file or directory'",
         {},
         {},
         {"Text processing source doesn't exist / jq: error: opening file no: No such file or directory"}},
    });
}

TEST(TextFilters, Bc) {
    expectRows({
        {"echo 1+1 | bc", "0 'real'", {"bc < 1+1\n"}},
        {"echo 1 | bc -q --mathlib a -ls", "0 'real'", {"bc -qls --mathlib a < 1\n"}},
        {"bc -l -f a --file=b -qf 2", "0 'real'", {"bc -lq -f a -f 2 -f b"}},
        {"bc -f no", "1 'bc: no: No such file or directory'"},
        {"touch c; bc --file=c", "0 unknown", {}, {"create c"}},
    });
    expectEnds("bc -li", "wontWorkInBrindlet: bc: -i (interactive) flag won't work in Brindlet");
    expectEnds("bc -lxz", "simulationError: bc: unsupported flags: x, z");
    expectEnds("bc -l --foo", "simulationError: bc: unsupported option '--foo'");
}

TEST(TextFilters, DateAndFile) {
    const std::string setsClock = "modifiesSystemSetting: Sets the system's date and time";
    expectRows({
        {"date +%Y", "0 'real'", {"date +%Y"}},
        {"cat a | date", "0 unknown"},
        {"date -r a +%Y", "0 'real'", {"date -r a +%Y"}},
        {"date -r no", "1 'date: usage information'"},
        {"touch c; date -r c", "0 unknown", {}, {"create c"}},
        {"touch c; date --ref=c", "0 'real'", {"date --ref=c"}, {"create c"}, {}, {seesRealFiles("date")}},
        {"cat a | date -us 2001-01-01", "0 unknown", {}, {}, {}, {setsClock}},
        {"cat a | date --se=2001-01-01", "0 unknown", {}, {}, {}, {setsClock}},
        {"cat a | date 01010101", "0 unknown", {}, {}, {}, {setsClock}},
        {"cat a | date -d 2001-01-01 -I +%s", "0 unknown"},
        {"file -b a", "0 'real'", {"file -b a"}},
        {"file", "0 unknown"},
        {"file -f a no", "0 unknown"},
        {"file no && rm a",
         "1 'file: no: cannot open: No such file or directory'",
         {},
         {},
         {},
         {"partialSupport: 'rm a' may run too, which isn't shown here"}},
        {"file -bC -m d/my", "0 unknown", {}, {}, {}, {unlisted("file", "d/my.mgc")}},
    });
}

TEST(TextFilters, StatAndReadlink) {
    expectRows({
        {"stat", "0 'real'", {"stat"}},
        {"stat -f %z -L a", "0 'real'", {"stat -f %z -L a"}},
        {"readlink -n -f a", "0 'real'", {"readlink -n -f a"}},
        {"readlink", "1"},
        {"touch c; stat -- c", "0 unknown", {}, {"create c"}},
        {"stat -c %s a",
         "1 'stat: unsupported flag 'c''",
         {},
         {},
         {"File info command incorrectly written / stat: unsupported flag 'c'"}},
        {"readlink d/no",
         "1 'readlink: no: No such file or directory'",
         {},
         {},
         {"File info: no doesn't exist / readlink: no: No such file or directory"}},
    });
}

TEST(TextFilters, Read) {
    const std::string limited = "partialSupport: `read` command has limited support, full effects unpredictable";
    expectRows({
        {"read x y < b; echo \"$x|$y\"", "0 'x| y z\n'", {}, {}, {}, {limited}},
        {"read -r x y z u v < b; echo \"$x|$y|$z|$u|$v\"", "0 'x||y|z|\n'", {}, {}, {}, {limited}},
        {"read -p hi -n 1 < b; echo $REPLY", "0 'x y z\n'", {}, {}, {}, {limited}},
        {"x=1; cat a | read x", "1", {}, {}, {}, {limited}},
        {"read -qrz x",
         "1 'read: unsupported option(s): -q, -z'",
         {},
         {},
         {"Read command incorrectly written / read: unsupported option(s): -q, -z"}},
    });
    expectEnds("read 'x[$(rm a)]'",
               "highRisk: 'read' evaluates 'x[$(rm a)]', and would run a command inside it, which isn't simulated");
}

}  // namespace text_filters_tests
}  // namespace brindlet
