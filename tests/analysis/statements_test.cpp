#include <gtest/gtest.h>

#include "support/predict.h"

namespace brindlet {
namespace statements_tests {

using Texts = std::vector<std::string>;

FakeDisk ordinaryDisk() {
    return FakeDisk{"a", "b", "x", "text=text\n", "moved=gone\n", "one.txt", "two.txt", "sub/inner", "/usr/bin/"};
}

// Answers `test` by comparing numbers, so that loops end.
ToolOutcome answerTest(const ToolLaunch& launch) {
    const auto& words = launch.arguments;
    if (words.size() == 4 && words[2] == "-lt") return {std::stoi(words[1]) < std::stoi(words[3]) ? 0 : 1, ""};
    return {};
}

AnalysisResult predicted(std::string_view line, FakeDisk& disk) {
    FakeLauncher launcher;
    launcher.answer = answerTest;
    return predict(line, disk, {.launcher = &launcher});
}

TEST(Statements, OutcomesAndChanges) {
    struct Row {
        std::string_view line, outcome;
        Texts changes = {};
    };
    const Row rows[] = {
        {"false; echo x", "0 'x\n'"},
        {"false && echo x", "1"},
        {"true || rm x", "0"},
        {"false || echo x", "0 'x\n'"},
        {"cat missing && rm x", "1 'cat: missing: No such file or directory'"},
        {"for f in *.txt; do mv \"$f\" \"$f.bak\"; done",
         "0",
         {"move one.txt -> one.txt.bak", "move two.txt -> two.txt.bak"}},
        {"for f in $NONE; do rm x; done; echo on", "0 'on\n'"},
        {"n=1; while [ $n -lt 3 ]; do ((n++)); echo $n; done", "0 '2\n3\n'"},
        {"while false; do rm x; done", "1"},
        {"if false; then rm x; elif true; then echo b; else echo c; fi", "0 'b\n'"},
        {"if false; then rm x; fi", "0"},
        {"if unsaid; then echo a; else echo b; fi", "0 'b\n'"},
        {"cat < missing", "1 'bash: missing: No such file or directory'"},
        {"cat < text", "0 'text\n'"},
        {"mv moved z; cat < moved", "1 'bash: moved: No such file or directory'", {"move moved -> z"}},
        {"mv moved z; cat < z", "? unknown", {"move moved -> z"}},
        {"echo new >> text; cat < text", "0 'text\n'", {"modify text"}},
        {"echo hi > f", "0", {"create f"}},
        {"echo hi 2> f", "0 'hi\n'", {"create f"}},
        {"(echo hi) > f; echo on", "0 'on\n'", {"create f"}},
        {"(cat) < text", "0 'text\n'"},
        {"X=1 echo $X", "0 '1\n'"},
        {"(cd sub) && touch f", "0", {"create sub/f"}},
        {"echo a | cat", "0 'a\n'"},
        {"echo a | true | cat", "0"},
        {"x=keep; x=$NONE; echo $x", "0 'keep\n'"},
        {"touch f &", "0", {"create f"}},
        {"f=old; for f in 1; do true; done; echo $f", "0 'old\n'"},
    };
    for (const auto& [line, expected, changes] : rows) {
        SCOPED_TRACE(line);
        FakeDisk disk = ordinaryDisk();
        const AnalysisResult result = predicted(line, disk);
        EXPECT_EQ(described(result.analysisError), "");
        EXPECT_EQ(outcome(result), expected);
        EXPECT_EQ(described(result), changes);
    }
}

TEST(Statements, EndsOfASimulation) {
    FakeDisk disk = ordinaryDisk();
    const AnalysisResult endless = predicted("touch n; while true; do echo x; done", disk);
    EXPECT_EQ(described(endless.analysisError), "simulationError: While loop exceeded safe iteration limit");
    EXPECT_TRUE(endless.changes.empty());
    FakeDisk bytes;
    bytes.addFile("raw", "\xff\xfe");
    EXPECT_THROW((void)predict("cat < raw", bytes), BasherAnalysisFailure);
    EXPECT_EQ(described(predicted("echo x > $NONE", disk).sideEffects),
              Texts{"unknownFileChanges: Outputs to an unknown file"});
    EXPECT_EQ(described(predicted("true &", disk).sideEffects), Texts{"runsInBackground: Runs in background"});
}

// What a shell may do beyond the simulation is said, and changes nothing else.
TEST(BlindSpots, AreSaid) {
    struct Row {
        std::string_view line;
        Texts notes;
    };
    const std::string another = " may stand for something else than this prediction shows";
    const Row rows[] = {
        {"rm -rf build/*", {"unknownFileChanges: 'build/*' may match files that this prediction doesn't see"}},
        {"cat sub/*", {}},
        {"for f in sub/*; do echo $f; done", {}},
        {"for f in sub/*; do rm -f \"$f\"; done",
         {"unknownFileChanges: 'sub/*' may match files that this prediction doesn't see"}},
        {"echo sub/* | xargs rm", {"unknownFileChanges: 'sub/*' may match files that this prediction doesn't see"}},
        {"rm -f \"one\"*", {"unknownFileChanges: '\"one\"*' may match files that this prediction doesn't see"}},
        {"rm -f [^a]*", {"unknownFileChanges: '[^a]*' may match files that this prediction doesn't see"}},
        {"rm -f *.nothing", {}},
        {"rm -f my\\ file", {"unknownFileChanges: 'my\\ file'" + another}},
        {"rm -f \"$q\"", {"unknownFileChanges: '$q'" + another}},
        {"p=s/u/b; rm -f ${p##*/}", {"unknownFileChanges: '${p##*/}'" + another}},
        {"p=b.c; rm -f ${p%.*}", {}},
        {"rm -f ${p%$NONE}", {"unknownFileChanges: '${p%$NONE}'" + another}},
        {"rm -f x$RANDOM",
         {"unknownFileChanges: The shell gives '${RANDOM}' a value that this prediction doesn't know"}},
        {"false && rm a || rm b", {"partialSupport: 'rm b' may run too, which isn't shown here"}},
        {"true || rm a && rm b", {"partialSupport: 'rm b' may run too, which isn't shown here"}},
        {"cal && rm b", {"partialSupport: 'rm b' may run too, which isn't shown here"}},
        {"cal && echo b", {}},
        {"if cal; then rm b; fi", {"partialSupport: 'rm b' may run too, which isn't shown here"}},
        {"while cal; do rm b; done", {"partialSupport: 'rm b' may run too, which isn't shown here"}},
        {"(cd sub); rm -f inner",
         {"unknownFileChanges: A shell leaves the folder of a 'cd' in parentheses, substitutions and pipes behind "
          "them, "
          "so the rest may work in another folder than shown here"}},
        {"cd sub; rm -f nothing", {}},
        {"IFS=,; rm -f nothing",
         {"unknownFileChanges: Setting 'IFS' changes how the rest of the line works, which isn't shown here"}},
        {"for f in a; do true; done; rm -f x$f",
         {"unknownFileChanges: A shell keeps the last value of '$f' behind its loop, which isn't shown here"}},
        {"rm -f \"$NONE\"",
         {"unknownFileChanges: An empty name stands for the current folder here, and for nothing in a shell"}},
        {"sed -i '' s/t/T/ text", {}},  // no name of a file
        {"cat > b < missing",
         {"unknownFileChanges: '> b' may write its file although the command fails, which isn't shown"}},
        {"eval rm b", {"partialSupport: 'eval' is part of the shell itself, and what it does isn't shown here"}},
    };
    for (const auto& [line, notes] : rows) {
        SCOPED_TRACE(line);
        FakeDisk disk = ordinaryDisk();
        EXPECT_EQ(described(predict(line, disk, {.environment = {{"q", "quo\"te"}}}).sideEffects), notes);
    }
    struct Spliced {
        std::string_view line, names;
        bool isRisky;
    };
    const Spliced spliced[] = {
        {"rm \"${SPACE_SEPARATED_FILE_NAMES}\"", "\"a;cmd\"", true},
        {"rm 'x ${SPACE_SEPARATED_FILE_NAMES}'", "\"a'b\"", true},
        {"rm \"${SPACE_SEPARATED_FILE_NAMES}\"", "\"a.txt\"", false},
        {"f=${SPACE_SEPARATED_FILE_NAMES}", "\"a\" \"reboot\"", true},
        {"f=${SPACE_SEPARATED_FILE_NAMES}", "\"a b\"", false},
        {"rm ${SPACE_SEPARATED_FILE_NAMES}", "\"a;cmd\"", false},
        {"echo \"$(cat ${SPACE_SEPARATED_FILE_NAMES})\"", "\"a;cmd\"", false},
    };
    for (const auto& [line, names, isRisky] : spliced) {
        SCOPED_TRACE(line);
        FakeDisk disk = ordinaryDisk();
        const auto error =
            predict(line, disk, {.environment = {{"SPACE_SEPARATED_FILE_NAMES", std::string(names)}}}).analysisError;
        EXPECT_EQ(error && error->kind == BasherAnalysisError::Kind::highRisk, isRisky);
    }
    const std::pair<std::string_view, std::size_t> caseTwins[] = {
        {"cp a A", 1},
        {"mv a A", 1},
        {"touch b; rm B", 1},    // a shell deletes another file than the one just made
        {"touch b; mv b B", 1},  // and overwrites it
        {"touch new; mv new NEW", 1},
        {"mv one ONE; rm ONE", 0},
        {"rm -f c; rm -f C", 0},
    };
    for (const auto& [line, notes] : caseTwins) {
        SCOPED_TRACE(line);
        FakeDisk disk{"a", "A", "B", "one"};
        EXPECT_EQ(predict(line, disk).sideEffects.size(), notes);
    }
}

}  // namespace statements_tests
}  // namespace brindlet
