#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <vector>

#include "glob/pattern.h"
#include "text/overloaded.h"

namespace brindlet {
namespace pattern_parser_tests {

using Options = Pattern::Options;
using Kind = PatternParsingError::Kind;

std::string described(const std::vector<Pattern::Section>& sections);

std::string described(const Pattern::OneOf& section) {
    std::string text = section.isNegated ? "not(" : "in(";
    for (const auto& each : section.classes)
        text += std::visit(Overloaded{[](const Pattern::Range& range) {
                                          return range.lower == range.upper ? range.lower
                                                                            : range.lower + ".." + range.upper;
                                      },
                                      [](Pattern::ClassName name) { return std::string(classText(name)); }},
                           each) +
                " ";
    text.back() = ')';
    return text;
}

std::string described(const Pattern::PatternList& list) {
    constexpr std::string_view openings = "?*+@!";
    std::string text(1, openings[static_cast<std::size_t>(list.style)]);
    for (const auto& alternative : list.alternatives) text += "{" + described(alternative) + "}";
    return text;
}

// Constants in quotes, wildcards as "component" and "path", "?" as "single".
std::string described(const std::vector<Pattern::Section>& sections) {
    std::string text;
    for (const auto& section : sections) {
        if (!text.empty()) text += " ";
        text += std::visit(Overloaded{[](const Pattern::Constant& constant) { return "'" + constant.text + "'"; },
                                      [](const Pattern::OneOf& oneOf) { return described(oneOf); },
                                      [](const Pattern::PatternList& list) { return described(list); },
                                      [](const Pattern::ComponentWildcard&) { return std::string("component"); },
                                      [](const Pattern::PathWildcard&) { return std::string("path"); },
                                      [](const Pattern::SingleCharacter&) { return std::string("single"); }},
                           section);
    }
    return text;
}

// The sections, or the error's case with the byte reached.
std::string parsed(std::string_view text, const Options& options = Options::defaults()) {
    try {
        return described(Pattern(text, options).sections());
    } catch (const InvalidPatternError& error) {
        EXPECT_EQ(error.pattern, text);
        EXPECT_NE(error.sentence.find(error.pattern), std::string::npos);
        std::string result(caseName(error.underlyingError.kind));
        if (!error.underlyingError.name.empty()) result += "(" + error.underlyingError.name + ")";
        return result + "@" + std::to_string(error.location);
    }
}

TEST(PatternParser, Sections) {
    struct Case {
        std::string_view text;
        std::string sections;
    };
    const Case cases[] = {
        {"", ""},
        {"*.txt", "component '.txt'"},
        {"a?c", "'a' single 'c'"},
        {"**", "path"},
        {"***", "path"},
        {"a**b*", "'a' path 'b' component"},
        {"\\**\\*", "'*' component '*'"},
        {"a\\*b", "'a*b'"},
        {"a]b)-:|^(", "'a]b)-:|^('"},
        {"a@b+c!d", "'a@b+c!d'"},
        {"+\\(a)", "'+(a)'"},
        {"\\+(a)", "'+(a)'"},
        {"?\u0301*", "'?\u0301' component"},  // a sign with an accent is a letter like others
        // Bracket expressions.
        {"[abc]", "in(a b c)"},
        {"[!a-z_]", "not(a..z _)"},
        {"[^a]", "in(^ a)"},
        {"[\\!a]", "in(! a)"},
        {"[a!]", "in(a !)"},
        {"[-a]", "in(- a)"},
        {"[a-]", "in(a -)"},
        {"[a-c-e]", "in(a..c - e)"},
        {"[--a]", "in(- - a)"},  // a "-" is never a lower bound
        {"[\\--a]", "in(-..a)"},
        {"[!--]", "not(- -)"},
        {"[+--]", "in(+..-)"},
        {"[a-\\]]", "rangeBoundsAreOutOfOrder@5"},
        {"[A-\\]]", "in(A..])"},
        {"[\\]]", "in(])"},
        {"[[a]", "in([ a)"},
        {"[[-a]", "in([ - a)"},
        {"[A-[:alpha:]]", "in(A..[ : a l p h a :) ']'"},
        {"[*?(|)]", "in(* ? ( | ))"},
        {"[[:alpha:]0-9]", "in(alpha 0..9)"},
        {"[[:alpha:]-z]", "in(alpha - z)"},
        {"[[\\:a]", "in([ : a)"},
        {"[é-ü]x", "in(é..ü) 'x'"},
        // Lists.
        {"@(a|b*)c", "@{'a'}{'b' component} 'c'"},
        {"@(a|)", "@{'a'}{}"},
        {"@()", "@{}"},
        {"@(|)", "@{}{}"},
        {"?(a)*(b)+(c)!(d)", "?{'a'} *{'b'} +{'c'} !{'d'}"},
        {"!(@(a|b)|\\)\\|)", "!{@{'a'}{'b'}}{')|'}"},
        {"*?(a)", "component ?{'a'}"},
        {"**(a)", "component *{'a'}"},
        {"***(a)*", "path *{'a'} component"},
        {"@((a)b)", "@{'(a'} 'b)'"},
        {"@([)])", "@{in())}"},
    };
    for (const auto& [text, sections] : cases) EXPECT_EQ(parsed(text), sections) << text;
}

TEST(PatternParser, Errors) {
    struct Case {
        std::string_view text;
        std::string error;
    };
    const Case cases[] = {
        {"a\\", "invalidEscapeCharacter@2"},
        {"[\\", "invalidEscapeCharacter@2"},
        {"[a\\", "invalidEscapeCharacter@3"},
        {"[a-\\", "invalidEscapeCharacter@4"},
        {"[[:alpha:\\", "invalidEscapeCharacter@10"},
        {"@(a\\", "invalidEscapeCharacter@4"},
        {"[]", "rangeIsEmpty@2"},
        {"[!]", "rangeIsEmpty@3"},
        {"[]a]", "rangeIsEmpty@2"},
        {"[", "rangeNotClosed@1"},
        {"[!", "rangeNotClosed@2"},
        {"[a", "rangeNotClosed@2"},
        {"[a-", "rangeNotClosed@3"},
        {"[a-z", "rangeNotClosed@4"},
        {"x[[", "rangeNotClosed@3"},
        {"[[:", "rangeNotClosed@3"},
        {"[[:foo", "rangeNotClosed@6"},
        {"[[:alpha:", "rangeNotClosed@9"},
        {"[[:alpha:a]", "rangeNotClosed@10"},
        {"[[:foo:]]", "invalidNamedCharacterClass(foo)@6"},
        {"[[:foo:", "invalidNamedCharacterClass(foo)@6"},
        {"[[::]]", "invalidNamedCharacterClass@3"},
        {"[[:ALPHA:]]", "invalidNamedCharacterClass(ALPHA)@8"},
        {"[z-a]", "rangeBoundsAreOutOfOrder@4"},
        {"[z-[:alpha:]]", "rangeBoundsAreOutOfOrder@4"},
        {"@(", "emptyPatternList@2"},
        {"a@(b+(", "emptyPatternList@6"},
        {"@(a", "patternListNotClosed@3"},
        {"@(a|", "patternListNotClosed@4"},
        {"@(a|+(b)", "patternListNotClosed@8"},
        {"@([)", "rangeNotClosed@4"},
    };
    for (const auto& [text, error] : cases) EXPECT_EQ(parsed(text), error) << text;
}

TEST(PatternParser, Options) {
    const auto with = [](auto change) {
        Options options;
        change(options);
        return options;
    };
    const Options noPathWildcards = with([](Options& options) { options.supportsPathLevelWildcards = false; });
    const Options noEscapes = with([](Options& options) { options.supportsEscapedCharacters = false; });
    const Options noDashes = with([](Options& options) { options.supportsRangeSeparatorAtBeginningAndEnd = false; });
    const Options noLists = with([](Options& options) { options.supportsPatternLists = false; });
    const Options caret = with(
        [](Options& options) { options.rangeNegationCharacter = decltype(options.rangeNegationCharacter)::caret; });
    const Options emptyRanges =
        with([](Options& options) { options.emptyRangeBehavior = Pattern::EmptyRangeBehavior::allow; });
    const Options brackets = with([](Options& options) {
        options.emptyRangeBehavior = Pattern::EmptyRangeBehavior::treatClosingBracketAsCharacter;
    });
    struct Case {
        std::string_view text;
        const Options& options;
        std::string result;
    };
    const Case cases[] = {
        {"a***b", noPathWildcards, "'a' component 'b'"},
        {"a\\*", noEscapes, "'a\\' component"},
        {"[\\]", noEscapes, "in(\\)"},
        {"a\\", noEscapes, "'a\\'"},
        {"[-a]", noDashes, "rangeMissingBounds@2"},
        {"[a-]", noDashes, "rangeNotClosed@4"},
        {"[a-c-]", noDashes, "rangeMissingBounds@5"},
        {"[a-c\\-]", noDashes, "in(a..c -)"},
        {"?(a)@(b)", noLists, "single '(a)@(b)'"},
        {"*(a)", noLists, "component '(a)'"},
        {"[^!a]", caret, "not(! a)"},
        {"[!a]", caret, "in(! a)"},
        {"a[]b[!]c", emptyRanges, "'abc'"},
        {"*[]*", emptyRanges, "path"},
        {"[]a]", brackets, "in(] a)"},
        {"[!]]", brackets, "not(])"},
        {"[]-a]", brackets, "in(] - a)"},
        {"[]", brackets, "rangeNotClosed@2"},
    };
    for (const auto& [text, options, result] : cases) EXPECT_EQ(parsed(text, options), result) << text;
}

TEST(PatternParser, NestsOnlySoDeep) {
    const auto nested = [](int depth) {
        std::string text;
        for (int level = 0; level < depth; ++level) text += "@(";
        return text + "a" + std::string(static_cast<std::size_t>(depth), ')');
    };
    EXPECT_TRUE(Pattern(nested(Pattern::maxNesting)).match("a"));
    EXPECT_EQ(parsed(nested(Pattern::maxNesting + 1)), "patternListNotClosed@402");
    EXPECT_EQ(parsed(nested(100'000)), "patternListNotClosed@402");
}

TEST(Pattern, ComparesSectionsAndOptions) {
    Options others;
    others.pathSeparator = std::nullopt;
    EXPECT_EQ(Pattern("a\\b"), Pattern("ab"));
    EXPECT_FALSE(Pattern("ab") == Pattern("ab", others));
    EXPECT_TRUE(Pattern("a\\*b").isConstant());
    EXPECT_FALSE(Pattern("").isConstant());
    EXPECT_FALSE(Pattern("[a]").isConstant());
}

}  // namespace pattern_parser_tests
}  // namespace brindlet
