#include "text/utf8.h"

#include <gtest/gtest.h>

#include <vector>

namespace brindlet {
namespace utf8_tests {

using namespace std::string_literals;

TEST(Utf8, ReadsTheSameForwardsAndBackwards) {
    struct Case {
        std::string text;
        std::vector<char32_t> values;
        std::string shown;  // U+FFFD for each byte that is none
    };
    const std::string r = "\xEF\xBF\xBD";
    const char32_t x = 0xFFFD;
    const Case cases[] = {
        {"a\0\x7F"s, {'a', 0, 0x7F}, "a\0\x7F"s},
        {"\xC2\x80\xDF\xBF", {0x80, 0x7FF}, "\xC2\x80\xDF\xBF"},
        {"\xE0\xA0\x80\xEF\xBF\xBF", {0x800, 0xFFFF}, "\xE0\xA0\x80\xEF\xBF\xBF"},
        {"\xF0\x90\x80\x80\xF4\x8F\xBF\xBF", {0x10000, 0x10FFFF}, "\xF0\x90\x80\x80\xF4\x8F\xBF\xBF"},
        {"\xED\x9F\xBF\xEE\x80\x80", {0xD7FF, 0xE000}, "\xED\x9F\xBF\xEE\x80\x80"},  // around the surrogates
        {"\xEF\xBF\xBD", {x}, r},                                                    // a replacement that was there
        {"\x80", {x}, r},
        {"a\xBF\xBFz", {'a', x, x, 'z'}, "a" + r + r + "z"},
        {"\xC0\xAF", {x, x}, r + r},                        // overlong
        {"\xE0\x9F\xBF", {x, x, x}, r + r + r},             // overlong
        {"\xF0\x8F\xBF\xBF", {x, x, x, x}, r + r + r + r},  // overlong
        {"\xED\xA0\x80", {x, x, x}, r + r + r},             // a surrogate
        {"\xF4\x90\x80\x80", {x, x, x, x}, r + r + r + r},  // past the last
        {"\xE2\x82", {x, x}, r + r},                        // cut off
        {"\xE2\x82\xC3\xA9", {x, x, 0xE9}, r + r + "\xC3\xA9"},
        {"\xC3\xA9\xA9", {0xE9, x}, "\xC3\xA9" + r},  // one too many
        {"\xFF\xFE", {x, x}, r + r},
    };
    for (const auto& [text, values, shown] : cases) {
        SCOPED_TRACE(testing::PrintToString(text));
        std::vector<char32_t> forwards, backwards;
        bool isValid = true;
        for (std::size_t at = 0; at < text.size();) {
            const Scalar scalar = decodeScalar(text, at);
            forwards.push_back(scalar.value);
            isValid = isValid && scalar.isValid;
            at += scalar.length;
        }
        for (std::size_t end = text.size(); end > 0;) {
            const Scalar scalar = decodeScalarBefore(text, end);
            backwards.insert(backwards.begin(), scalar.value);
            end -= scalar.length;
        }
        EXPECT_EQ(forwards, values);
        EXPECT_EQ(backwards, values);
        EXPECT_EQ(isValidUtf8(text), isValid);
        EXPECT_EQ(isValidUtf8("twelve ASCII" + text + "twelve ASCII"), isValid);
        EXPECT_EQ(toValidUtf8(text), shown);
        std::string appended;
        for (const char32_t value : values) appendScalar(appended, value);
        EXPECT_EQ(appended, shown);
    }
}

TEST(Utf8, AppendsNothingThatIsNoScalar) {
    for (const char32_t value : {0xD800U, 0xDFFFU, 0x110000U, 0xFFFFFFFFU}) {
        std::string text;
        appendScalar(text, value);
        EXPECT_EQ(text, "\xEF\xBF\xBD");
    }
}

}  // namespace utf8_tests
}  // namespace brindlet
