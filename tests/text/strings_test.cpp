#include "text/strings.h"

#include <gtest/gtest.h>

namespace brindlet {
namespace strings_tests {

TEST(Strings, Trimming) {
    struct Case {
        std::string_view text, blanks, all, newlines;
    };
    const Case cases[] = {
        {"", "", "", ""},
        {" \t ", "", "", " \t "},
        {" a b\n", "a b\n", "a b", " a b"},
        {"\r\n a \n", "\r\n a \n", "a", " a "},
        {"\u00A0\u3000é\u2028", "é\u2028", "é", "\u00A0\u3000é"},
        {" \xFF\x80 ", "\xFF\x80", "\xFF\x80", " \xFF\x80 "},
    };
    for (const auto& [text, blanks, all, newlines] : cases) {
        SCOPED_TRACE(testing::PrintToString(text));
        EXPECT_EQ(trimmedBlanks(text), blanks);
        EXPECT_EQ(trimmed(text), all);
        EXPECT_EQ(trimmedNewlines(text), newlines);
    }
}

TEST(Strings, SplittingAndReplacing) {
    struct Case {
        std::string_view text, separator;
        std::vector<std::string> pieces, filled;
        std::string replaced;  // by "<>"
    };
    const Case cases[] = {
        {"", ",", {""}, {}, ""},
        {",", ",", {"", ""}, {}, "<>"},
        {"a,,b,", ",", {"a", "", "b", ""}, {"a", "b"}, "a<><>b<>"},
        {"aaa", "aa", {"", "a"}, {"a"}, "<>a"},
        {"none", "::", {"none"}, {"none"}, "none"},
    };
    for (const auto& [text, separator, pieces, filled, replaced] : cases) {
        SCOPED_TRACE(text);
        EXPECT_EQ(split(text, separator), pieces);
        EXPECT_EQ(splitNonEmpty(text, separator), filled);
        EXPECT_EQ(joined(pieces, separator), text);
        EXPECT_EQ(replacedAll(text, separator, "<>"), replaced);
    }
    EXPECT_EQ(replacedAll("same", "", "x"), "same");
    EXPECT_EQ(joined({}, ", "), "");
}

TEST(Strings, Integers) {
    const std::pair<std::string_view, std::int64_t> numbers[] = {
        {"0", 0}, {"+007", 7}, {"-12", -12}, {"9223372036854775807", INT64_MAX}, {"-9223372036854775808", INT64_MIN}};
    for (const auto& [text, value] : numbers) EXPECT_EQ(parsedInteger(text), value) << text;
    for (const auto text : {"", "+", "-", "+-1", "--1", " 1", "1 ", "1.0", "0x1", "٣", "9223372036854775808"})
        EXPECT_EQ(parsedInteger(text), std::nullopt) << text;
}

}  // namespace strings_tests
}  // namespace brindlet
