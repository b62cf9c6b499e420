#include "analysis/arg_extractor.h"

#include <gtest/gtest.h>

#include "text/strings.h"

namespace brindlet {
namespace arg_extractor_tests {

using Words = std::vector<std::string>;
using Style = ArgExtractor::Style;

ArgExtractor extractor(std::string_view line, Style style = Style::defaultStyle) {
    return ArgExtractor("tool", style, splitNonEmpty(line, " "));
}

Words words(std::string_view line) {
    return splitNonEmpty(line, " ");
}

TEST(ArgExtractor, FlagsAtTheStart) {
    struct Case {
        std::string_view line, flags, rest;
        std::vector<std::string_view> stoppingAt = {};
        Style style = Style::defaultStyle;
    };
    const Case cases[] = {
        {"-a -- -b c", "a", "-- -b c"},
        {"-vn 5 x", "", "-vn 5 x", {"n"}},  // one letter keeps the whole cluster
        {"-rf --long -é x -q", "r f long é", "x -q"},
        {"--long x", "", "--long x", {"long"}},
        {"- x", "", "- x"},
        {"--- x", "-", "x"},
        {"-vf --x a", "vf -x", "a", {}, Style::singleHyphenLongOptions},
        {"-v -- a", "v", "-- a", {}, Style::singleHyphenLongOptions},
        {"- a", "", "- a", {}, Style::singleHyphenLongOptions},
        {"", "", ""},
    };
    for (const auto& [line, flags, rest, stoppingAt, style] : cases) {
        SCOPED_TRACE(line);
        ArgExtractor args = extractor(line, style);
        EXPECT_EQ(args.extractAllFlagsAtStart(stoppingAt), words(flags));
        EXPECT_EQ(args.remainingArgs(), words(rest));
    }
}

TEST(ArgExtractor, SingleLettersAtTheStart) {
    for (const auto& [line, flags, rest] :
         {std::array{"-ab -c x -d", "a b c", "x -d"}, {"-a --b", "a", "--b"}, {"- -a", "", "- -a"}}) {
        SCOPED_TRACE(line);
        ArgExtractor args = extractor(line);
        EXPECT_EQ(args.extractSingleLetterFlagsAtStart(), words(flags));
        EXPECT_EQ(args.remainingArgs(), words(rest));
    }
}

// "o=x,y" for an option with two values.
Words described(const std::optional<std::vector<ArgExtractor::Option>>& options) {
    if (!options) return {"none"};
    Words texts;
    for (const auto& [name, values] : *options) texts.push_back(name + "=" + joined(values, ","));
    return texts;
}

TEST(ArgExtractor, OptionsAtTheStart) {
    struct Case {
        std::string_view line, options, rest;
        Style style = Style::defaultStyle;
    };
    const Case cases[] = {
        {"-o x --two a b c", "o=x two=a,b", "c"},
        {"-two a -o -o x y", "two=a o= o=x", "y"},  // a value never begins with a hyphen
        {"-o", "o=", ""},
        {"-x -o y", "none", "-x -o y"},
        {"-- -o y", "none", "-- -o y"},
        {"a -o y", "none", "a -o y"},
        {"-o x a", "o=x", "a", Style::singleHyphenLongOptions},
        {"--o x a", "none", "--o x a", Style::singleHyphenLongOptions},
    };
    for (const auto& [line, options, rest, style] : cases) {
        SCOPED_TRACE(line);
        ArgExtractor args = extractor(line, style);
        EXPECT_EQ(described(args.extractOptionsAtStart({{"o", 1}, {"two", 2}})), words(options));
        EXPECT_EQ(args.remainingArgs(), words(rest));
    }
}

TEST(ArgExtractor, OptionsAnywhere) {
    struct Case {
        std::string_view line, options, rest;
    };
    const Case cases[] = {
        {"a -p -m 755 -m 644 b", "-m=755 -p=", "a -m 644 b"},  // in the order asked for, the first of each
        {"a -m -x", "-m=", "a -x"},
        {"-- -m 1 b", "-m=1", "-- b"},
        {"-pm 755", "none", "-pm 755"},
    };
    for (const auto& [line, options, rest] : cases) {
        SCOPED_TRACE(line);
        ArgExtractor args = extractor(line);
        EXPECT_EQ(described(args.extractOptionsAnywhere({{"-m", 1}, {"-p", 0}})), words(options));
        EXPECT_EQ(args.remainingArgs(), words(rest));
    }
}

TEST(ArgExtractor, OnePass) {
    struct Case {
        std::string_view line, flags, options, rest;
        Style style = Style::defaultStyle;
    };
    const Case cases[] = {
        {"a -v -- -x", "v", "", "a -x"},
        {"-o -x", "x", "o=", ""},
        {"-xo name", "x", "o=name", ""},
        {"-ox name", "o x", "", "name"},  // only the last letter of a cluster takes a value
        {"a -o 1 b -o 2 --two c d e", "", "o=2 two=c,d", "a b e"},
        {"- --o=1 -v", "o=1 v", "", "-"},
        {"-vf -o a -", "vf", "o=a", "-", Style::singleHyphenLongOptions},
        {"--new=1 --o=a=b --two= --=x -ro v", "two= =x r", "new=1 o=v", "", Style::doubleHyphenEquals},
        {"--o x --two=a b", "", "o=x two=a", "b", Style::doubleHyphenEquals},
        {"-- -- -o x", "", "", "-- -o x"},
    };
    for (const auto& [line, flags, options, rest, style] : cases) {
        SCOPED_TRACE(line);
        ArgExtractor args = extractor(line, style);
        const auto taken = args.extractFlagsAndOptions({{"o", 1}, {"two", 2}});
        EXPECT_EQ(taken.flags, words(flags));
        Words found;
        for (const auto& [name, values] : taken.options) found.push_back(name + "=" + joined(values, ","));
        EXPECT_EQ(found, words(options));
        EXPECT_EQ(args.remainingArgs(), words(rest));
    }
}

TEST(ArgExtractor, OperandsAndSingleWords) {
    ArgExtractor args("tool", Style::defaultStyle, {"", "a", "-x", "b", "-", "c", "d"});
    EXPECT_EQ(args.extractLeadingOperands(), (Words{"", "a"}));
    EXPECT_EQ(args.extractTrailingOperands(), (Words{"c", "d"}));
    EXPECT_FALSE(args.removeArgIfFirst("b"));
    EXPECT_TRUE(args.removeArg("b"));
    EXPECT_TRUE(args.removeArgIfFirst("-x"));
    EXPECT_EQ(args.extractFirst(), "-");
    EXPECT_EQ(args.extractFirst(), std::nullopt);
    EXPECT_TRUE(args.extractLeadingOperands().empty());
    EXPECT_TRUE(args.extractTrailingOperands().empty());
}

TEST(ArgExtractorDeathTest, StylesThatAnOperationCannotRead) {
    EXPECT_DEATH(extractor("-a", Style::singleHyphenLongOptions).extractSingleLetterFlagsAtStart(),
                 "Non-bash mode means that single character flags are not supported");
    EXPECT_DEATH(extractor("-a", Style::doubleHyphenEquals).extractAllFlagsAtStart(),
                 "doubleHyphenEquals style is not currently supported for extractAllFlagsAtStart");
    EXPECT_DEATH(extractor("-a", Style::doubleHyphenEquals).extractOptionsAtStart({}),
                 "doubleHyphenEquals style is not currently supported for extractOptionsAtStart");
}

}  // namespace arg_extractor_tests
}  // namespace brindlet
