#include "glob/pattern.h"

#include <gtest/gtest.h>

#include <chrono>
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include "glob/matcher.h"
#include "glob/program.h"
#include "glob/reference_matcher.h"

namespace brindlet {
namespace pattern_tests {

using Options = Pattern::Options;

struct Case {
    std::string_view pattern;
    std::vector<std::string_view> matches, others;
};

template <std::size_t count>
void check(const Case (&cases)[count], const Options& options = Options::defaults()) {
    for (const auto& [text, matches, others] : cases) {
        const Pattern pattern(text, options);
        for (const auto name : matches) EXPECT_TRUE(pattern.match(name)) << text << " on " << name;
        for (const auto name : others) EXPECT_FALSE(pattern.match(name)) << text << " on " << name;
    }
}

TEST(Pattern, PlainSections) {
    const Case cases[] = {
        {"", {""}, {"a", "/"}},
        {"abc", {"abc"}, {"", "ab", "abcd", "xabc"}},
        {"a\\*b", {"a*b"}, {"ab", "axb"}},
        {"*", {"", "a", "a.b"}, {".git", "a/b", "/"}},
        {".*", {".git", ".", ".."}, {"a", ""}},
        {"*.txt", {"a.txt", ".txt", "a.b.txt"}, {".hidden.txt", "a.txt~", "txt"}},
        {"*.", {"a.", "."}, {"..", "a"}},
        {"a*", {"a", "ab", "a.b"}, {"ba", "a/b", ""}},
        {"*x*", {"x", "axb", "xx"}, {"ab", ".x", "a/x/b"}},
        {"*a*b*", {"ab", "xaxbx"}, {"ba", "b", ""}},
        {"a*a", {"aa", "aba"}, {"a", "ab"}},
        {"a?c", {"abc", "a.c"}, {"a/c", "ac", "abbc"}},
        {"?", {"a"}, {"/", ".", "", "ab"}},
        {"*?", {"a", "ab"}, {"", "/"}},
        {"[a-c]*", {"a", "bx"}, {"d", "", ".a"}},
        {"[!a]", {"b", "/"}, {"a", ".", ""}},
        {"x[!a]y", {"x/y", "x.y"}, {"xay"}},
        {"[.]a", {}, {".a"}},
        {"*[.]a", {".a", "x.a"}, {"..a"}},
        {"[a-]", {"a", "-"}, {"b"}},
        // Paths.
        {"**", {"", "a/b/c", ".x", "a/.x"}, {}},
        {"a/?b", {"a/bb"}, {"a/.b"}},
        {"*/b", {"a/b"}, {".a/b", "a/c/b", "b"}},
        {"*b*", {"a/b", "b"}, {"a/.b", "b/"}},
        {"**b", {"a/.b", ".b"}, {"a"}},
        {"**a*b*", {"a/.ab", "x/a/b"}, {"a/.b"}},
        {"*[!q].x*z*", {"a.x/.xz", "a.xz"}, {"a.x/.z"}},  // the first place isn't the right one
    };
    check(cases);
}

TEST(Pattern, Lists) {
    const Case cases[] = {
        {"@(a|b)", {"a", "b"}, {"", "ab", "c"}},
        {"@(a|ab)", {"a"}, {"ab"}},  // the first alternative that fits decides
        {"@(ab|a)", {"a", "ab"}, {"b"}},
        {"@(a|)b", {"ab", "b"}, {"a"}},
        {"?(a)b", {"b", "ab"}, {"aab", ""}},
        {"+(ab)", {"ab", "abab"}, {"", "aba"}},
        {"*(ab)", {"", "ab", "abab"}, {"aba", "x"}},
        {"+(a|b)c", {"ac", "abac"}, {"c", "abc/"}},
        {"*.@(jpg|png)", {"a.jpg", "a.b.png"}, {".jpg", ".a.jpg", "a.gif", "a.jpgx"}},
        {"!(a)", {"", "b", "ba"}, {"a", "ab", ".b", "b/c"}},  // "a" fits at the begin of "ab"
        {"!(*.txt)", {"a.jpg", ""}, {"a.txt", ".x"}},
        {"!(x|)", {""}, {"y", "x"}},
        {"img-?([0-9])@(.png|.jpg)", {"img-1.png", "img-.jpg"}, {"img-12.png", "img1.png"}},
        {"@(*)b@(*)", {"b", "abc"}, {"ac", ".b"}},
        {"+(a)*b*", {}, {"ab", "a"}},  // what stands behind a repeated list has to fit again behind its match
        {"*(a)b*", {"b", "bc"}, {"ab"}},
        {"+(a)*", {"a", "ab", "aab"}, {"b", ""}},
        {"@(+(a|b)|c)d", {"abd", "cd"}, {"d", "acd"}},
        // Leading periods.
        {"@(*)", {"a"}, {".a", "a/b"}},
        {"@(?|[.]|**)", {"a"}, {"."}},
        {"@(a/?)", {"a/b"}, {"a/.", "a//"}},
        {"?(a)*", {"ab", "b"}, {".b"}},
        {".@(a|b)", {".a"}, {"a"}},
        {"x@(*)", {"x.y"}, {}},
    };
    check(cases);
}

TEST(Pattern, OptionsOfMatching) {
    Options directories;
    directories.matchLeadingDirectories = true;
    const Case leading[] = {
        {"a", {"a", "a/b", "a/"}, {"ab", "b/a"}},
        {"*", {"a", "a/b"}, {".a"}},
        {"*b", {"ab", "ab/c", "ab/b"}, {"a", "abc"}},
        {"@(a)", {"a"}, {"a/b"}},
        {"@(*)", {"a/b"}, {".a"}},
        {"", {"", "/a"}, {"a"}},
    };
    check(leading, directories);

    Options noSeparator;
    noSeparator.pathSeparator = std::nullopt;
    const Case flat[] = {{"*", {"a/b"}, {".a"}}, {"a?b", {"a/b"}, {}}, {"@(*)", {"a/.b"}, {}}};
    check(flat, noSeparator);

    Options flags;
    flags.pathSeparator = "🇩🇪";
    flags.requiresExplicitLeadingPeriods = false;
    const Case odd[] = {{"*", {"a/b", ".a"}, {"a🇩🇪b"}}, {"?", {".", "🇫🇷"}, {"🇩🇪"}}};
    check(odd, flags);
}

TEST(Pattern, CharactersAsPeopleSeeThem) {
    const Case cases[] = {
        {"?", {"é", "e\u0301", "🇩🇪", "👨‍👩‍👧", "\r\n", "\xff", "\r"}, {"éa", "\xff\xfe"}},
        {"é", {"é", "e\u0301"}, {"e"}},
        {"*e", {"ae"}, {"ae\u0301", "aé"}},
        {"*\u0301", {}, {"e\u0301"}},
        {"K", {"K", "\u212A"}, {"k"}},  // the Kelvin sign is another spelling of K
        {"[a-z]", {"e"}, {"é", "e\u0301", "E"}},
        {"[à-ü]", {"é", "e\u0301"}, {"a", "ÿ"}},
        {"[!é]", {"e", "\xc3"}, {"e\u0301"}},
        {"*\xff*", {"a\xff", "\xff.txt"}, {"a\xfe", "ÿ"}},
        {"\\\r\\\n", {"\r\n"}, {"\r", "\n"}},
        {"*.@(jpg|пнг)", {"фото.jpg", "a.пнг"}, {"фото.gif"}},
    };
    check(cases);
}

TEST(Pattern, NamedClasses) {
    const Case cases[] = {
        {"[[:alnum:]]", {"a", "5", "é", "中", "½"}, {"_", "-", " "}},
        {"[[:alpha:]]", {"a", "Z", "é", "e\u0301", "中", "Ⅳ"}, {"1", "_", ".", "\xff"}},
        {"[[:blank:]]", {" ", "\t", "\n", "\u00a0", "\r\n"}, {"a", "\u200b"}},
        {"[[:space:]]", {" ", "\v", "\u2028"}, {"a"}},
        {"[[:cntrl:]]", {"\x01", "\x7f", "\r\n", "\u0085"}, {"a", "\u200b"}},
        {"[[:digit:]]", {"0", "٣", "½", "Ⅳ", "三", "1\u0301"}, {"a"}},
        {"[[:graph:]]", {"a", "!", "\u00a0", "👍"}, {" ", "\n", "\u200b"}},
        {"[[:print:]]", {"a", " ", "👍"}, {"\n", "\u200b", "👨‍👩‍👧"}},  // the joiner is a format character
        {"[[:lower:]]", {"a", "é", "e\u0301", "ª", "ß"}, {"A", "1", "中", "ǅ"}},
        {"[[:upper:]]", {"A", "É", "E\u0301", "Ⅳ"}, {"a", "1", "ǅ"}},
        {"[[:punct:]]", {"!", "-", "«", "_"}, {"$", "+", "a", " "}},  // signs such as $ are symbols
        {"[[:xdigit:]]", {"0", "f", "F", "Ｆ", "９"}, {"g", "é", "a\u0308"}},
        {"[![:alpha:]1]", {"2", "-"}, {"1", "é"}},
    };
    check(cases);
}

// No more than 10 ms for a pattern of 200 characters and a name of 255, in an optimised build. What is tried again and
// again would take years, so the bound has room for sanitizers.
TEST(Pattern, HostilePatternsAreFast) {
    const auto repeated = [](std::string_view text, std::size_t length) {
        std::string result;
        while (result.size() + text.size() <= length) result += text;
        return result;
    };
    const auto nested = [](std::string_view opening, std::string_view core) {
        std::string text;
        const std::size_t depth = (200 - core.size()) / (opening.size() + 1);
        for (std::size_t level = 0; level < depth; ++level) text += opening;
        return text + std::string(core) + std::string(depth, ')');
    };
    const std::string patterns[] = {
        repeated("*a", 199) + "b",
        repeated("*a", 198) + "b*",
        repeated("**a", 198) + "b*",
        repeated("*(*(a))", 199) + "b",
        repeated("+(a|*)", 199),
        repeated("!(a|b)", 199),
        repeated("*[[:lower:]]", 199),
        nested("*(", "a"),
        nested("+(*", "a"),
        nested("!(", "x"),
        nested("!(a|", "*b*"),
        nested("?(*a|", "*"),
        "*(*(a))b",
        "+(+(+(a)))",
        "!(!(!(x)))*",
    };
    const std::string names[] = {std::string(255, 'a'), std::string(254, 'a') + "é", repeated("aé\u0301", 255),
                                 repeated("a/.", 255)};
    for (const auto& text : patterns) {
        const Pattern pattern(text);
        for (const auto& name : names) {
            const auto begin = std::chrono::steady_clock::now();
            pattern.match(name);
            EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(1)) << text << " on " << name;
        }
    }
}

// Patterns and names of a few characters that mean something, against the reference.
class RandomTexts {
  public:
    template <std::size_t count>
    std::string text(const std::string_view (&pieces)[count], std::size_t mostPieces) {
        std::string result;
        for (std::size_t left = number(mostPieces + 1); left > 0; --left) result += pieces[number(count)];
        return result;
    }
    std::size_t number(std::size_t end) { return std::uniform_int_distribution<std::size_t>(0, end - 1)(engine_); }

  private:
    std::mt19937 engine_{20240229};
};

Options randomOptions(RandomTexts& random) {
    Options options;
    if (random.number(2) == 0) return options;
    options.supportsPathLevelWildcards = random.number(4) != 0;
    options.requiresExplicitLeadingPeriods = random.number(3) != 0;
    options.matchLeadingDirectories = random.number(2) == 0;
    const std::optional<std::string> separators[] = {std::nullopt, "/", "b", "é", "\r"};
    options.pathSeparator = separators[random.number(std::size(separators))];
    return options;
}

TEST(Pattern, AgreesWithReference) {
    constexpr std::string_view patternPieces[] = {"a",    "b",    "a",     ".",  "/",   "*",  "**",  "?",
                                                  "*",    "|",    ")",     "@(", "?(",  "*(", "+(",  "!(",
                                                  "[ab]", "[!a]", "[.-b]", "é",  "[é]", "\r", "\\\n"};
    constexpr std::string_view nameLetters[] = {"a", "b", "a", "b", ".", "/", "a"};
    constexpr std::string_view nameCharacters[] = {"a", "b", ".", "/", "é", "e\u0301", "\r", "\n", "\xff"};
    RandomTexts random;
    int compared = 0, matched = 0;
    for (int round = 0; round < 40'000; ++round) {
        std::string text = random.text(patternPieces, 9);
        while (random.number(3) != 0) text += ")";
        try {
            const Pattern pattern(text, randomOptions(random));
            const glob::Program program = glob::compiled(pattern.sections(), pattern.options());
            for (int each = 0; each < 4; ++each) {
                const bool isAscii = random.number(3) != 0;
                const std::string name = isAscii ? random.text(nameLetters, 8) : random.text(nameCharacters, 6);
                const auto expected = ReferenceMatcher(pattern, name).match();
                if (!expected) continue;
                for (const int effort : {0, 20, glob::usualEffort})
                    ASSERT_EQ(glob::matches(program, name, effort), *expected) << text << " on " << name;
                ++compared;
                matched += *expected ? 1 : 0;
            }
        } catch (const InvalidPatternError&) {
        }
    }
    EXPECT_GT(compared, 50'000);
    EXPECT_GT(matched, 3'000);
}

}  // namespace pattern_tests
}  // namespace brindlet
