// Lines that a shell reads otherwise than the tree, and near misses that it doesn't.
#include "shell/reading_guard.h"

#include <gtest/gtest.h>

#include "shell/basher.h"

namespace brindlet {
namespace reading_guard_tests {

std::string hazardIn(std::string_view line) {
    return readingHazard(Basher(std::string(line)).parse()).value_or("");
}

TEST(ReadingGuard, SaysWhatTheShellWouldDo) {
    EXPECT_EQ(hazardIn("echo \"a `date +%F` b\""), "The shell would run `date +%F`, which this prediction can't show.");
    EXPECT_EQ(hazardIn("echo \"`rm $x`\""), "The shell would run `rm $x`, which this prediction can't show.");
    EXPECT_EQ(hazardIn("echo {a;rm}"), "The shell would cut up the word `{a;rm}`, which this prediction can't show.");
}

TEST(ReadingGuard, FindsHazards) {
    for (const std::string_view line :
         {// line breaks in words of all kinds
          "a\nrm b", "A=1\nb", "a > f\nrm", "for i in a\\\nb; do c; done", "a \"b\\\nc\"", "a\rb", "a\\",
          // run inside raw text
          "a ${x:-$(rm b)}", "a ${x:-`rm b`}", "a \"${x%'$(rm b)'}\"", "a ${x:-<(rm b)}", "a ${#$(b)}", "a ${x$(b)}",
          "a $((x[$(b)]))", "((`b`))", "\"${x:-${y}}\"",
          // quotes and parentheses that close elsewhere
          "a \"${x:-'}\" b \"'}\"", "a \"${x:-\\}\"", "((a $(b)); c", "((( 1 ))",
          // braces
          "{ rm x; }", "a {b|c}", "a {\"b c\"}", "a {'b',c}", "a {b\\,c}", "a {a..bc}", "a {1..03}", "a {1..a}",
          "a {A..z}", "A={b,c}", "a > {b,c}",
          // one command for a shell
          "a > f b", "a 2>&1x", "a b(c)", "(a) b", "A=1 (b)", "a > f A=1", "a \xC2\xA0 b",
          // words that a shell knows
          "! rm x", "time rm x", "a | coproc b", "a+=b", "a[$x]=b", "1a=b", "[[ a && b ]]", "[[ a > b ]]", "a # b",
          "echo $(#a)", "for i in #; do a; done",
          // names and numbers
          "a $1b", "a $b\xC3\xA9", "\xC3\xA9=1", "for 1 in a; do b; done", "a 4294967297> f", "a >&4294967297",
          // in every corner of the tree
          "if a \"`b`\"; then c; fi", "if a; then b; else c \"`d`\"; fi", "while a \"`b`\"; do c; done",
          "(a) > \"`b`\"", "a || (b | c \"$(d \"`e`\")\")"}) {
        EXPECT_NE(hazardIn(line), "") << line;
    }
    EXPECT_NE(hazardIn(std::string_view("a \0 b", 5)), "");
}

TEST(ReadingGuard, LetsPass) {
    for (const std::string_view line : {"echo \"\\`date\\`\"",
                                        "echo '`date`' '$(x)' 'a\nb'",
                                        "a `b` $(c)",
                                        "a ${x:-\\$(b)} ${x//'a b'/_} ${x:-$y}",
                                        "find . -exec a {} +",
                                        "a {} {b} {c,d}.e {1..3} {01..10} {a..e} {-1..1}",
                                        "a \\{b\\;c\\} d\\ e \\`",
                                        "A=1 B=2 a",
                                        "a b#c '#' \"#\"",
                                        "[[ -f a ]] && b",
                                        "[ ! -f a ]",
                                        "a ! time",
                                        "$((1 + (2) ))",
                                        "((x++))",
                                        "a=b[1]=c",
                                        "a $1 $? ${10} $b\\c",
                                        "a 2>&1 | b",
                                        "a & b",
                                        "a \"b\\nc\"",
                                        "awk '{ print $1; }' f"}) {
        EXPECT_EQ(hazardIn(line), "") << line;
    }
}

}  // namespace reading_guard_tests
}  // namespace brindlet
