// What is read, what is refused in which words, and how the tree prints.
#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "shell/basher.h"
#include "shell/printing.h"

namespace brindlet {
namespace parser_tests {

struct Read {
    std::string printed;  // or the error's description
    std::string remainder;
    bool operator==(const Read&) const = default;
};
void PrintTo(const Read& read, std::ostream* out) {
    *out << "[" << read.printed << "] rest [" << read.remainder << "]";
}

Read readBack(std::string_view line) {
    Basher basher{std::string(line)};
    try {
        const BashStatementList tree = basher.parse();
        return {print(tree), std::string(basher.unparsedRemainder())};
    } catch (const BasherError& error) {
        return {error.description(), "refused"};
    }
}

void expectPrinted(std::string_view line, std::string_view printed, std::string_view remainder = "") {
    SCOPED_TRACE(line);
    EXPECT_EQ(readBack(line), (Read{std::string(printed), std::string(remainder)}));
    if (!remainder.empty()) return;
    EXPECT_EQ(readBack(printed), (Read{std::string(printed), ""})) << "printed again";
}

BashPipeline onlyPipeline(std::string_view line) {
    return std::get<BashPipeline>(Basher(std::string(line)).parse().statements.at(0).parts.at(0));
}
BashWordElement elementOf(std::string_view word) {
    return std::get<BashCommand>(onlyPipeline(std::string("c ").append(word)).components.at(0))
        .arguments.at(0)
        .elements.at(0);
}

TEST(Parser, PrintsWhatItReads) {
    struct Case {
        std::string_view line, printed;
    };
    const Case cases[] = {
        {"a|b", "a | b"},
        {"a;b", "a; b"},
        {"mv  'a b'\t\"$c d\" e\\ f", "mv 'a b' \"$c d\" e\\ f"},
        {"a && b || c", "a && b || c"},
        {"if a; then b; elif c; then d; else e; fi", "if a; then b; elif c; then d; else e; fi"},
        {"for f in a $b 'c'; do echo $f; done", "for f in a $b 'c'; do echo $f; done"},
        {"while a; do b; done > f", "while a; do b; done > f"},
        {"(echo a | sort) > f 2>&1", "(echo a | sort) > f 2>&1"},
        {"(a) 2>/dev/null", "(a) 2> /dev/null"},  // the number belongs to the redirect, not to a command
        {"echo 2 > f", "echo 2 > f"},
        {"echo 2>> f <g", "echo 2>> f < g"},
        {"((x++)) && echo $((1 + 2)) ${x} $? ${#x}", "((x++)) && echo $((1 + 2)) ${x} $? ${#x}"},
        {"find . -exec rm {} +", "find . -exec rm {} +"},
        // side by side without a pipe
        {"A=1 B='2' make -j2", "A=1 B='2' make -j2"},
        {"cmd > out arg", "cmd > out arg"},
        // one opening parenthesis too near to another would be arithmetic
        {"echo $( (a) | b )", "echo $( (a) | b )"},
        {"echo `(a)`", "echo $( (a) )"},
        // "&" ends a statement by itself
        {"a & b", "a & b"},
        {"a &; b &", "a & b &"},
        {"if a & then b & else c & fi", "if a & then b & else c & fi"},
        {"while a & do b & done", "while a & do b & done"},
        // backticks lose a level of backslashes, also of the quotes where they stand inside quotes
        {"`date` `echo \\`a \\\\$b\\`` x", "$(date) $(echo $(a $b)) x"},
        {"echo \"\\n`echo \\\"a\\\"`\"", "echo \"\\n$(echo \"a\")\""},
        {"`echo a\\\\\\\\`", "$(echo a\\\\)"},
        {"`echo a\\\\`", "$(echo a\\\\)"},
        // a line break is word text, but behind ")"
        {"a\nb", "a\nb"},
        {"(a)\nb", "(a); b"},
        {"echo $(a)\nb", "echo $(a); b"},
        {"echo `a`\nb", "echo $(a); b"},
        {"for i in a \ndo b; done", "for i in a; do b; done"},
        {"\xFF\x80 \xC2", "\xFF\x80 \xC2"},
    };
    for (const auto& [line, printed] : cases) expectPrinted(line, printed);
}

TEST(Parser, LeavesARemainder) {
    struct Case {
        std::string_view line, printed, remainder;
    };
    const Case cases[] = {
        {"echo a;; echo b", "echo a", "; echo b"},
        {"(a)\n\nb", "(a)", "\nb"},
        {"cat a &> f", "cat a &", "> f"},
        {"x; while a; b; done", "x", "b; done"},
        {"a; case b in c) d;; esac", "a", "case b in c) d;; esac"},
        {"a; until b; do c; done", "a", "until b; do c; done"},
    };
    for (const auto& [line, printed, remainder] : cases) expectPrinted(line, printed, remainder);
}

TEST(Parser, RefusesInTheseWords) {
    const std::string long120(120, 'x');
    std::string accented;  // 100 characters of two scalars each, and some more
    for (int count = 0; count < 120; ++count) accented += "e\xCC\x81";
    struct Case {
        std::string line, error;
    };
    const Case cases[] = {
        {"", "Expected statement list, but saw: "},
        {" ls", "Expected statement list, but saw:  ls"},
        {" if a; then b; fi", "Expected statement list, but saw:  if a; then b; fi"},
        {"fi \nx", "Expected statement list, but saw: fi "},
        {"while a; b; done", "Expected statement list, but saw: while a; b; done"},
        {"\"" + long120, "Expected closing '\"' for double quoted expansion, but saw: "},
        {"a |\"$\"" + long120, "Expected identifier after $, but saw: \"" + long120.substr(0, 99)},
        {"$|" + accented, "Expected identifier after $, but saw: |" + accented.substr(0, 99 * 3)},
        {"a&&b", "Expected whitespace surrounding &&, but saw: b"},
        {"a ||b", "Expected whitespace surrounding ||, but saw: b"},
        {"a && ", "Expected statement following &&, but saw: "},
        {"echo done", "Expected terminator after pipeline, but saw: done"},
        {"(a) > f b", "Expected terminator after redirects, but saw: b"},
        {"if a; then b; fi c", "Expected terminator after if statement, but saw: c"},
        {"if a; then b; done", "Expected fi after if statement, but saw: done"},
        {"if fi", "Expected condition after if, but saw: fi"},
        {"if a; b; fi", "Expected 'then' after if condition, but saw: b; fi"},
        {"if a; then b; elif c; then fi", "Expected inner statements after elif, but saw: fi"},
        {"if a; then b; else fi", "Expected inner statements after else, but saw: fi"},
        {"for \"x\"", "Expected variable name after for, but saw: \"x\""},
        {"for x; do", "Expected whitespace after variable name, but saw: ; do"},
        {"for x of", "Expected 'in' after for loop's variable name, but saw: of"},
        {"for x in a do", "Expected terminator after for loop's iterable list, but saw: do"},
        {"for x in a; b", "Expected 'do' inside for loop, but saw: b"},
        {"for x in a; do b; fi c", "Expected 'done' after for loop, but saw:  c"},
        {"while a; do b; fi", "Expected 'done' after while loop, but saw: fi"},
        {"FOO=", "Expected value after assignment, but saw: "},
        {"a |& b", "Expected command after pipe, but saw: & b"},
        {"()", "Expected nested pipeline, but saw: )"},
        {"(a; b)", "Expected closing parenthesis, but saw: ; b)"},
        {"((1", "Expected )), but saw: "},
        {"(())", "Expected closing '))' for arithmetic expression, but saw: ))"},
        {"cat <<< x", "Expected filename after <, but saw: << x"},
        {"cat <(a)", "Expected filename after <, but saw: (a)"},
        {"a 2>&x", "Expected file descriptor after '&', but saw: x"},
        {"a'b", "Expected ', but saw: "},
        {"a'", "Expected closing \"'\" for single quoted expansion, but saw: "},
        {"\"a\"done", "Expected whitespace or operator: | & ; ( ) < >, but saw: done"},
        {"a} b", "Expected whitespace or operator: | & ; ( ) < >, but saw: } b"},
        {"echo $(a; b)", "Expected closing bracket for command expansion, but saw: ; b)"},
        {"echo $(", "Expected inner command of, but saw: "},
        {"echo `a; b` c", "Expected closing '`' for command expansion, but saw: ; b` c"},
        {"echo `a; \\$b` c", "Expected closing '`' for command expansion, but saw: ; $b` c"},
        {"echo `` c", "Expected inner command of, but saw: ` c"},
        {"echo `a", "Expected closing '`' for command expansion, but saw: "},
        {"echo \"a\nb\"", "Expected valid content inside double quotes, but saw: "},
        {"echo ${}", "Expected closing '}' for variable, but saw: }"},
        {"echo ${a", "Expected }, but saw: "},
        {"echo {a", "Expected }, but saw: "},
        {"echo {1..3..2}", "brace expansion with stepping"},
        {"echo {a,{b,c}}", "Unimplemented bash feature: nested brace expansion"},
        {"echo {$a,b}", "brace expansion with edge case contents: {$a,b}"},
        {"echo {1..9223372036854775807}", "brace expansion with too many elements"},
        {"echo ${x%a%b}", "valid use of % syntax"},
        {"echo ${:-b}", "Variable name in ${...} expansion"},
        {"echo ${x//a}", "valid replacement pattern"},
        {"echo ${x/a}", "valid var/a/b pattern"},
        {"echo ${x:a}", "valid numerical offset in var:a:b pattern"},
        {"echo ${x:1:}", "valid numerical length in var:a:b pattern"},
        {"echo ${x:1:2:3}", "valid var:a:b pattern"},
    };
    for (const auto& [line, error] : cases) {
        SCOPED_TRACE(line);
        EXPECT_EQ(readBack(line), (Read{error, "refused"}));
    }
}

TEST(Parser, TellsWordElementsApart) {
    const BashPipeline pipeline = onlyPipeline("echo 2>&1");
    EXPECT_EQ(std::get<BashCommand>(pipeline.components.at(0)).redirects,
              (std::vector<BashRedirect>{{">", 2, std::nullopt, 1}}));
    struct Case {
        std::string_view word;
        BashWordElement element;
    };
    const Case cases[] = {
        {"a\\ b", Text{"a b", "a\\ b"}},
        {"{a}", Text{"{a}", "{a}"}},
        {"\"a\\n$b`\"", DoubleQuotedExpansion{{Text{"a\n", "a\\n"}, VariableReference{"b", false}, Text{"`", "`"}}}},
        {"''", SingleQuotedText{""}},
        {"$1", VariableReference{"1", false}},
        {"{a,,b}c", BraceExpansion{{"a", "", "b"}, "a,,b"}},
        {"{a\\,b,c}", BraceExpansion{{"a\\,b", "c"}, "a\\,b,c"}},
        {"{01..03}", BraceExpansion{{"01", "02", "03"}, "01..03"}},
        {"{1..-1}", BraceExpansion{{"1", "0", "-1"}, "1..-1"}},
        {"{c..a}", BraceExpansion{{"c", "b", "a"}, "c..a"}},
        {"{a..bc}", BraceExpansion{{"a", "bc"}, "a..bc"}},
        {"{..3}", BraceExpansion{{"", "3"}, "..3"}},
        {"{\uD7FF..\uE000}", BraceExpansion{{"\uD7FF", "\uE000"}, "\uD7FF..\uE000"}},
        {"${x##*/}", ParameterExpansion{"x", RemoveLongestMatchStart{"*/"}}},
        {"${x%.*}", ParameterExpansion{"x", RemoveShortestMatchEnd{".*"}}},
        {"${x/a/b}", ParameterExpansion{"x", ReplaceFirst{"a", "b"}}},
        {"${x//\\//b}", ParameterExpansion{"x", ReplaceAll{"\\/", "b"}}},
        {"${x/%a/}", ParameterExpansion{"x", ReplaceAtEnd{"a", ""}}},
        {"${x:1:2}", ParameterExpansion{"x", Substring{1, 2}}},
        {"${x:0:-1}", ParameterExpansion{"x:0", DefaultIfEmpty{"1"}}},
        {"${x,,}", ParameterExpansion{"x", Lower{}}},
        {"${#x}", ParameterExpansion{"x", Length{}}},
        {"${x-y}", VariableReference{"x-y", true}},
    };
    for (const auto& [word, element] : cases) {
        SCOPED_TRACE(word);
        EXPECT_EQ(elementOf(word), element);
    }
}

TEST(Printing, RewritesTheWordsOnly) {
    BashStatementList tree = Basher("convert 'a b' > c").parse();
    auto& pipeline = std::get<BashPipeline>(tree.statements[0].parts[0]);
    std::get<BashCommand>(pipeline.components[0]).rewriteRule = [](std::vector<std::string> words) {
        words.insert(words.begin(), "magick");
        return words;
    };
    EXPECT_EQ(print(tree), "magick convert 'a b' > c");
}

std::string repeated(std::string_view piece, std::size_t count) {
    std::string text;
    for (std::size_t at = 0; at < count; ++at) text += piece;
    return text;
}

// Each of these once cost a parser of this kind its stack or quadratic time; the test's time limit is the judge.
TEST(Parser, SurvivesLongAndDeepTexts) {
    constexpr std::size_t many = 100'000;
    for (const std::string_view piece : {"$(", "(a | (", "if ", "while ", "\"\\n$(", "\"$(", "`", "for x in a; do "}) {
        EXPECT_EQ(readBack(repeated(piece, many)).remainder, "refused") << piece;
    }
    EXPECT_EQ(readBack("echo " + repeated("$(", 201) + "a" + repeated(")", 201)).printed,
              "The command is nested too deeply to be read.");
    const std::string deep = "echo " + repeated("$(", 199) + "a" + repeated(")", 199);
    EXPECT_EQ(readBack(deep).printed, deep);
    for (const std::string_view piece : {"a ", "'b'", "\"$c\" ", "{1..9}", "a; ", "1", "\\x", "`a` ", "`a\\\\` ",
                                         "a | ", "> f ", "a && ", "A=1 ", "${x%y}", "\xE2\x82\xAC", "\"\\n`a`\" "}) {
        SCOPED_TRACE(piece);
        const std::string line = "x " + repeated(piece, many) + "; a";
        EXPECT_NE(readBack(line).printed, "");
    }
}

}  // namespace parser_tests
}  // namespace brindlet
