#include <gtest/gtest.h>

#include <cstdio>

#include "analysis/models/xargs_plan.h"
#include "model_rows.h"

namespace brindlet {
namespace xargs_tests {

const std::initializer_list<std::string_view> disk = {"a", "b", "c", "a b", "f/"};

std::string otherWords(const std::string& name) {
    return "partialSupport: 'xargs' reads its input in its own way, so '" + name +
           "' may get other words than shown here";
}

// `printf` is really run: its answer is the standard input of the line.
ModelRow row(const std::string& input, const std::string& command, Texts changes, Texts errors = {},
             Texts sideEffects = {}, std::string outcome = "", std::string ends = "") {
    return {"printf x | " + command, {.exitCode = 0, .output = input}, {"printf|x"},       std::move(changes),
            std::move(errors),       std::move(sideEffects),           std::move(outcome), std::move(ends)};
}

TEST(Xargs, Runs) {
    using namespace std::string_literals;
    const std::string written = "Command incorrectly written / xargs: ";
    expectRows(disk, {
                         row("a b", "xargs rm", {"delete a", "delete b"}),
                         row("a b\0c"s, "xargs -0 rm", {"delete a b", "delete c"}),
                         row("a\nb\nc", "xargs -n 2 echo x", {}, {}, {}, "0 'x a b\nx c\n'"),
                         row("a\nb", "xargs -I {} mv {} {}.bak", {"move a -> a.bak", "move b -> b.bak"}),
                         row("a b", "xargs -I {} echo {}", {}, {}, {}, "0 'a\nb\n'"),
                         row("a\nb", "xargs", {}, {}, {}, "0 'a b\n'"),
                         row("", "xargs rm", {}, {"Delete command incorrectly written / rm: missing operand"}),
                         row("", "xargs -I X touch nX", {"create n"}),
                         row("a\nSTOP\nb", "xargs -E STOP echo", {}, {}, {}, "0 'a\n'"),
                         row("a\nxSTOPx\nb", "xargs -E STOP echo", {}, {}, {}, "0 'a xSTOPx b\n'"),
                         row("a\nxSTOPx\nb", "xargs -L 9 -E STOP echo", {}, {}, {}, "0 'a\n'"),
                         row("a\n\nb c\n", "xargs -L 1 -n 5 echo", {}, {}, {}, "0 'a\nb c\n'"),
                         row("a\xe2\x80\xa8"
                             "b",
                             "xargs echo", {}, {}, {}, "0 'a b\n'"),  // U+2028 separates lines
                         row("no a", "xargs -n 1 unlink", {"delete a"},
                             {"Delete command: no doesn't exist / rm: cannot remove 'no': No such file or directory"}),
                         row("a", "xargs -I X -n 0 -L x echo X", {}, {}, {}, "0 'a\n'"),
                         row("a", "xargs -n 0 rm", {}, {written + "-n value must be positive: 0"}),
                         row("a", "xargs -n 1 -L x rm", {}, {written + "-L value must be positive: x"}),
                         row("a", "xargs -p rm", {}, {written + "unsupported flags: p"}),
                         row("a", "xargs rm -rf --x", {}, {written + "unsupported flags: r, f, x"}),
                         row("a", "xargs -n 1 sudo", {}, {}, {}, "",
                             "bannedInBrindlet: 'sudo' command is banned in Brindlet for safety and security"),
                     });
}

TEST(Xargs, UnknownInput) {
    expectRows(disk, {
                         {.line = "cat a | xargs rm -rf",
                          .sideEffects = {"unknownFileChanges: 'rm' gets words that can't be foretold"},
                          .outcome = "0 unknown"},
                         {.line = "cat a | xargs -n 1 -0 echo", .outcome = "0 unknown"},
                         {.line = "cat a | xargs -p",
                          .sideEffects = {"unknownFileChanges: 'xargs' gets words that "
                                          "can't be foretold"},
                          .outcome = "0 unknown"},
                     });
}

// Input that the real tool splits otherwise, where it matters.
TEST(Xargs, BlindSpots) {
    using namespace std::string_literals;
    const auto touches = [](const std::string& input, const std::string& command, Texts changes) {
        return row(input, command, std::move(changes), {}, {otherWords("touch")});
    };
    expectRows(disk, {
                         touches("'x y'", "xargs touch", {"create 'x", "create y'"}),
                         touches("x\\ y", "xargs touch", {"create x\\", "create y"}),
                         touches("it's", "xargs touch", {"create it's"}),
                         touches("x y\n", "xargs -I {} touch {}", {"create x", "create y"}),
                         touches("x\0y"s, "xargs -0 -L 1 touch", {"create x" + "\0y"s}),
                         touches("x\fy", "xargs touch", {"create x", "create y"}),
                         touches("x", "xargs touch -n 1", {"create x"}),
                         row("echo", "xargs -I touch touch a", {}, {}, {otherWords("touch")}, "0 'a\n'"),
                         row("x y", "xargs -n 1 -L 9 touch", {"create x", "create y"}),
                         row("'x y'", "xargs echo", {}, {}, {}, "0 ''x y'\n'"),
                     });
}

// The real tool's reading against the tool itself: each run prints its words in brackets.
TEST(Xargs, RealReading) {
    using namespace std::string_literals;
    const std::string inputs[] = {"",           "\n\n",    "a b\nc",  " a  b \n c d\ne\n", "'a b' \"c\" d\\ e\n",
                                  "a'b\nc'd",   "\\",      "a\nS\nb", "a \nb\n\nc\n",      "''\n x ",
                                  "a\0b\0\0c"s, "a\fb\rc", "a\\\nb c"};
    const Texts options[] = {{},
                             {"-n", "1"},
                             {"-n2"},
                             {"-L", "1"},
                             {"-L2"},
                             {"-I", "{}"},
                             {"-0"},
                             {"-0L1"},
                             {"-E", "S"},
                             {"-I{}", "-n", "1"},
                             {"-I", "{}", "-n", "2"},
                             {"-L", "1", "-n", "5"},
                             {"-0", "-I", "{}"}};
    const auto launcher = openReadOnlyLauncher();
    if (launcher->layers() == "none") GTEST_SKIP();
    for (const auto& input : inputs) {
        for (const auto& option : options) {
            Texts words = option;
            words.insert(words.end(), {"printf", "%s", "<", "{}"});
            SCOPED_TRACE(joined(words, "|") + " on " + testing::PrintToString(input));
            const auto read = realOptions(words);
            ASSERT_TRUE(read);
            const auto plan = realPlan(*read, input);
            if (!plan) continue;  // an open quote, which is said to the user
            std::string expected;
            for (const auto& group : plan->groups) {
                expected += "<";
                const std::string rest = joined(group, "");
                expected += plan->replaceText ? replacedAll("{}", *plan->replaceText, rest) : "{}" + rest;
            }
            ToolLaunch launch{.arguments = {"bash", "-c", "exec 2>&-; xargs \"$@\"", "xargs"},
                              .standardInput = input,
                              .environment = {{"PATH", "/usr/bin:/bin"}}};
            launch.arguments.insert(launch.arguments.end(), words.begin(), words.end());
            EXPECT_EQ(launcher->run(launch).output, expected);
        }
    }
}

// Deep nesting ends the analysis, long inputs don't hold it up.
TEST(Xargs, HostileSizes) {
    std::string nested = "xargs";
    for (int at = 0; at < 5'000; ++at) nested += " xargs";
    std::string input;
    for (int at = 0; at < 200'000; ++at) input += "w ";
    expectRows(disk, {row("a", nested, {}, {}, {}, "", "simulationError: The line nests commands too deep to simulate"),
                      row(input, "xargs -n 1 true", {}, {}, {}, "",
                          "simulationError: The line runs more than 100000 commands, which is too many to simulate"),
                      row(input, "xargs true", {})});
}

}  // namespace xargs_tests
}  // namespace brindlet
