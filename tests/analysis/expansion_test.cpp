#include <gtest/gtest.h>

#include "support/predict.h"

namespace brindlet {
namespace expansion_tests {

using Texts = std::vector<std::string>;

struct Row {
    std::string_view line;
    std::string_view output;
};

FakeDisk ordinaryDisk() {
    return FakeDisk{"a.txt", "b.txt", "c d.txt", ".hidden.txt", "sub/x.txt", "/w/quo'te"};
}

void expectOutputs(const std::vector<Row>& rows, const Environment& environment = {}) {
    for (const auto& [line, output] : rows) {
        SCOPED_TRACE(line);
        FakeDisk disk = ordinaryDisk();
        const AnalysisResult result = predict(line, disk, {.environment = environment});
        ASSERT_TRUE(result.output.isKnown());
        EXPECT_EQ(result.output.text(), output);
    }
}

TEST(Expansion, WordsAndQuotes) {
    expectOutputs({
        {"FOO=\"a  b\"; echo $FOO", "a b\n"},
        {"FOO=\"a  b\"; echo \"$FOO\"", "a  b\n"},
        {"echo '$HOME' \"*.txt\" '*.txt'", "$HOME *.txt *.txt\n"},
        {"echo x $UNSET y", "x y\n"},
        {"echo x \"\" y", "x  y\n"},
        {"echo my\\ file", "my file\n"},
        {"echo \"a\\nb\"", "a\nb\n"},
        {"echo \"\\$HOME\" \"a'b\"", "$HOME a'b\n"},
        {"echo a\"b c\"d'e f'", "ab cde f\n"},
        {"echo {a,b}{1,2} {3..1} {a..c}.txt", "a1 b1 a2 b2 3 2 1 a.txt b.txt c.txt\n"},
        {"echo ~ ~/x", "~ ~/x\n"},
        {"X=y; echo $X${X}z $?", "yyz 0\n"},
    });
}

TEST(Expansion, Globs) {
    expectOutputs({
        {"echo *.txt", "a.txt b.txt c d.txt\n"},
        {"echo *.nothing", "*.nothing\n"},
        {"echo sub/*.txt", "sub/*.txt\n"},
        {"rm a.txt; touch new.txt; echo *.txt", "b.txt c d.txt new.txt\n"},
        {"cd sub; echo *", "x.txt\n"},
        {"echo [ab].txt ?.txt", "a.txt b.txt a.txt b.txt\n"},
        {"echo [z-a]*", "[z-a]*\n"},  // no pattern at all
    });
}

TEST(Expansion, Parameters) {
    expectOutputs(
        {
            {"echo ${f%.*} ${f%%.*} ${f#*.} ${f##*.}", "a.b a b.c c\n"},
            {"echo ${f%x} ${e%x}", "a.b.c\n"},
            {"echo ${t/.txt/.md} ${t//t/T} ${t/#n/N} ${t/%t/T}", "name.md name.TxT Name.txt name.txT\n"},
            {"echo ${t/axt/x} ${t/n?m/_} ${t/.*/-}", "name.txt _e.txt name-\n"},
            {"echo ${#f} ${#u}", "5 4\n"},
            {"echo ${u^^} ${t^} ${U,,} ${U,}", "NAÏF Name.txt abc aBC\n"},
            {"echo ${e:-none} ${f:-none} ${f:+yes}${e:+yes}", "none a.b.c yes\n"},
            {"echo ${n:=set} $n", "set set\n"},
            {"echo ${f:2} ${f:0:3} ${f:9}${f:1:0}${f:-9}", "b.c a.b a.b.c\n"},
            {"echo ${x:-$HOME}", "$HOME\n"},
            {"echo ${e:?no value}; echo on", "no valueon\n"},
        },
        {{"f", "a.b.c"}, {"t", "name.txt"}, {"u", "naïf"}, {"U", "ABC"}, {"e", ""}});
}

TEST(Expansion, Substitutions) {
    expectOutputs({
        {"echo $(echo a b) \"$(echo 'c  d')\"", "a b c  d\n"},
        {"echo `echo hi`", "hi\n"},
        {"echo $((2 + 3)) $((x)) $((7 / 2)) $((3 >= 3))", "5 0 3 1\n"},
        {"x=4; echo $((x)) $((x*x)) $((x++)) $x", "4 16 4 5\n"},
    });
    FakeDisk disk = ordinaryDisk();
    EXPECT_EQ(described(predict("echo $(touch made)", disk)), Texts{"create made"});
    EXPECT_EQ(described(predict("echo x $(cat a.txt)", disk).analysisError),
              "simulationError: Can not analyse command with unknown arguments");
    EXPECT_EQ(described(predict("$(cat a.txt) x", disk).analysisError),
              "simulationError: Can not analyse command with unknown name");
    EXPECT_EQ(described(predict("\"\" x", disk).analysisError),
              "simulationError: Can not analyse command with unknown name");
    EXPECT_EQ(described(predict("for f in $(cat a.txt); do echo; done", disk).analysisError),
              "simulationError: Can not analyse unknown items in for loop");
}

TEST(Arithmetic, ValuesAndExitCodes) {
    struct Case {
        std::string_view line, outcome;
    };
    const Case cases[] = {
        {"((1))", "0"},
        {"((0))", "1"},
        {"((5 - 5))", "1"},
        {"x=3; ((x -= 1)); echo $x", "0 '2\n'"},
        {"((x = 7)); echo $x", "0 '7\n'"},
        {"((1 == 1))", "0"},
        {"x=a; ((x++)); echo on", "0 'In expression x++, expected a number but saw aon\n'"},
        {"((1 = 2))", "1 'Invalid expression: 1 = 2 - cannot assign to a number'"},
        {"((5 / 0))", "1 'In expression 5 / 0, division by zero'"},
        {"((5 % 0))", "1 'In expression 5 % 0, division by zero'"},
        {"echo $((9223372036854775807 + 1))", "0 '-9223372036854775808\n'"},
    };
    for (const auto& [line, expected] : cases) {
        SCOPED_TRACE(line);
        FakeDisk disk;
        EXPECT_EQ(outcome(predict(line, disk)), expected);
    }
    FakeDisk disk;
    EXPECT_EQ(described(predict("((1 + 2 * 3))", disk).analysisError),
              "unimplemented: Arithmetic expression has limited support in Brindlet, the following isn't supported: "
              "((1 + 2 * 3))");
    // A shell evaluates a value in its turn.
    EXPECT_TRUE(predict("((x))", disk, {.environment = {{"x", "a[$(rm b)]"}}}).analysisError);
    const std::string smallest = "x=1; ((x = -1)); echo $x";
    EXPECT_TRUE(predict(smallest, disk).analysisError);  // a sign is no part of an operand
}

}  // namespace expansion_tests
}  // namespace brindlet
