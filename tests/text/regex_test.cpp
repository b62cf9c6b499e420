#include "text/regex.h"

#include <gtest/gtest.h>

#include <thread>

namespace brindlet {
namespace regex_tests {

TEST(Regex, Finds) {
    struct Case {
        std::string_view pattern, subject;
        std::optional<std::string> found;
        std::size_t from = 0;
        Regex::Options options = {};
    };
    const Regex::Options ignoresCase{.ignoresCase = true};
    const Regex::Options dotMatchesAll{.dotMatchesLineEnds = true};
    const Regex::Options lineAnchors{.anchorsMatchLines = true};
    const Case cases[] = {
        {"", "", ""},
        {"b+", "abbb", "bbb"},
        {"^\\w+$", "né٣", "né٣"},  // classes are Unicode's
        {"\\d\\b", "٣", "٣"},
        {"ÉTÉ", "un été", "été", 0, ignoresCase},
        {"a.b", "a\nb", std::nullopt},
        {"a.b", "a\nb", "a\nb", 0, dotMatchesAll},
        {"a$", "a\nb", std::nullopt},
        {"^b", "a\nb", "b", 0, lineAnchors},
        {".+$", "line\r\n", "line"},  // every line end is one
        {"(?<=a)b", "ab", "b", 1},    // what stands before is seen
        {"^b", "ab", std::nullopt, 1},
        {"\\Bb", "ab", "b", 1},
        {".", "é-", "-", 1},  // from inside a scalar: the next one
        {"$", "ab", "", 2},
        {"a", "ab", std::nullopt, 3},
        {"a", "a\xFF", std::nullopt},  // no UTF-8
        {"(", "(", std::nullopt},      // no pattern
        {"*a", "a", std::nullopt},
        {"\\C", "a", std::nullopt},
        {"\xFF", "\xFF", std::nullopt},
    };
    for (const auto& [pattern, subject, found, from, options] : cases) {
        SCOPED_TRACE(pattern);
        const auto match = Regex(pattern, options).find(subject, from);
        EXPECT_EQ(match ? match->group(0) : std::nullopt, found);
    }
    EXPECT_FALSE(Regex("a)").isValid());
    EXPECT_TRUE(Regex("a").matches("a"));
    EXPECT_TRUE(Regex("^$").matches({}));
}

TEST(Regex, Groups) {
    const Regex regex("(?<key>\\w+)=(?:'(?<quoted>.*?)'|(\\w*))");
    const std::string subject = "; k=v";
    const auto match = regex.find(subject);
    ASSERT_TRUE(match);
    EXPECT_EQ(match->begin(), 2U);
    EXPECT_EQ(match->end(), 5U);
    EXPECT_EQ(match->group("key"), "k");
    EXPECT_EQ(match->group("quoted"), std::nullopt);  // took no part
    EXPECT_EQ(match->group("nobody"), std::nullopt);
    EXPECT_EQ(match->group(3), "v");
    EXPECT_EQ(match->group(4), std::nullopt);
    EXPECT_EQ(regex.find("k=")->group(3), "");  // took part, though empty
}

TEST(Regex, ReplacesAll) {
    struct Case {
        std::string_view pattern, subject, replacement;
        std::string replaced;
    };
    const Case cases[] = {
        {"(a)(b)", "ab-ab", "$2$1", "ba-ba"},
        {"(a)", "a", "$12", "a2"},                                           // one digit is enough for one group
        {"(a)(b)(c)(d)(e)(f)(g)(h)(i)(j)", "abcdefghij", "$10$1$11", "ja"},  // two are read where there are ten
        {"(a)|b", "ab", "[$1$7]", "[a][]"},
        {"a", "a", "$0$0", "aa"},
        {"a", "a", "$ $x $", "$ $x $"},
        {"a", "a", R"(\$0\\\n)", "$0\\n"},
        {"a", "a", "x\\", "x"},
        {"x*", "né", "-", "-n-é-"},  // an empty match goes on by one character
        {".*", "abc", "<$0>", "<abc><>"},
        {"b*", "abc", "-", "-a--c-"},
        {"$", "a\n", "!", "a!\n!"},
        {"^", "aa", "-", "-aa"},
        {"(?<=a)", "aa", "-", "a-a-"},
        {"a\\Kb", "abab", "-", "a-a-"},
        {"a", "a\xFF", "-", "a\xFF"},
        {"(", "(", "-", "("},
    };
    for (const auto& [pattern, subject, replacement, replaced] : cases) {
        SCOPED_TRACE(pattern);
        EXPECT_EQ(Regex(pattern).replacedAll(subject, replacement), replaced);
    }
}

TEST(Regex, ReplacesFirstLiterally) {
    EXPECT_EQ(Regex("(b)").replacedFirst("abb", "$1\\"), "a$1\\b");
    EXPECT_EQ(Regex("x").replacedFirst("abb", "y"), "abb");
}

// Each of these would run for hours or past the stack; what counts is that they end and leave the text as it was.
TEST(Regex, HostilePatternsEnd) {
    const std::string letters(50000, 'a');
    for (const auto pattern : {"(a+)+[bc]", "(a|aa)*[bc]", "a*a*a*a*a*[bc]", "(?:a|b)*a{30}[bc]", "(.*)*[bc]",
                               "(?:(?=a)a|b)*[bc]", "((((((a*)*)*)*)*)*)*[bc]", "(?R)*[bc]", "(a(?1)?)+[bc]"}) {
        SCOPED_TRACE(pattern);
        EXPECT_EQ(Regex(pattern).replacedAll(letters, "-"), letters);
    }
    EXPECT_FALSE(Regex(std::string(100000, '(')).isValid());
    EXPECT_FALSE(Regex("((((a{1,999}){1,999}){1,999}){1,999})").isValid());
}

TEST(Regex, ReplacesInLongTextsInLinearTime) {
    std::string subject, expected;
    for (int count = 0; count < 100000; ++count) {
        subject += "é ";
        expected += "<é> ";
    }
    EXPECT_TRUE(Regex("\\w").replacedAll(subject, "<$0>") == expected);
    // More ways back than the JIT's stack holds.
    EXPECT_EQ(Regex("(\\w| )*").replacedFirst(subject.substr(0, 240000), ""), "");
}

TEST(Regex, IsUsedByManyThreads) {
    static const Regex regex("(\\w+)@(\\w+)");
    std::vector<std::thread> threads;
    for (int number = 0; number < 4; ++number)
        threads.emplace_back([name = std::string(static_cast<std::size_t>(number) + 1, 'n')] {
            for (int round = 0; round < 500; ++round)
                EXPECT_EQ(regex.replacedAll(name + "@host", "$2:$1"), "host:" + name);
        });
    for (auto& thread : threads) thread.join();
}

}  // namespace regex_tests
}  // namespace brindlet
