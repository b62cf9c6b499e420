#include "text/characters.h"

#include <gtest/gtest.h>
#include <unicode/brkiter.h>
#include <unicode/unistr.h>

#include <algorithm>
#include <iterator>
#include <memory>
#include <random>

#include "text/utf8.h"

namespace brindlet {
namespace characters_tests {

using Pieces = std::vector<std::string_view>;

Pieces charactersBackwards(std::string_view text) {
    Pieces pieces;
    for (std::size_t end = text.size(); end > 0;) {
        const std::size_t length = characterLengthBefore(text, end);
        pieces.push_back(text.substr(end - length, length));
        end -= length;
    }
    std::reverse(pieces.begin(), pieces.end());
    return pieces;
}

TEST(Characters, AreWhatPeopleSee) {
    const Pieces cases[] = {
        {},
        {"a", "\r\n", "\n", "\r", "\r\n", "b"},
        {"n", "e\u0301", "é", " \u0301"},
        {"👨‍👩‍👧‍👦", "👍🏽", "❤️", "1️⃣"},
        {"🇩🇪", "🇫🇷", "🇮"},
        {"각", "\u1100\u1161\u11A8", "கி"},
        {"\u0600"
         "1",
         "\u00AD"},                          // a sign in front; a control past ASCII
        {"\xFF", "\xCC", "a", "\x81", "é"},  // bytes that are no UTF-8
        {"\xFF", "\u0301", "\r", "\u0301"},  // a mark with nothing to stand on
    };
    for (const Pieces& pieces : cases) {
        std::string text;
        for (const auto piece : pieces) text += piece;
        SCOPED_TRACE(testing::PrintToString(text));
        EXPECT_EQ(characters(text), pieces);
        EXPECT_EQ(charactersBackwards(text), pieces);
        EXPECT_EQ(characterCount(text), pieces.size());
        EXPECT_EQ(firstCharacters(text, pieces.size() + 1), text);
        EXPECT_EQ(firstCharacters(text, 1), pieces.empty() ? "" : pieces.front());
        EXPECT_EQ(firstCharacters(text, 0), "");
    }
}

Pieces piecesByIcu(icu::BreakIterator& iterator, std::string_view text) {
    const auto wide = icu::UnicodeString::fromUTF8(icu::StringPiece(text.data(), static_cast<int32_t>(text.size())));
    iterator.setText(wide);
    Pieces pieces;
    std::size_t at = 0;
    for (int32_t begin = iterator.first(), end = iterator.next(); end >= 0; begin = end, end = iterator.next()) {
        std::string piece;
        wide.tempSubStringBetween(begin, end).toUTF8String(piece);
        pieces.push_back(text.substr(at, piece.size()));
        at += piece.size();
    }
    return pieces;
}

// The rules are our own; ICU's iterator is the judge, over texts made of one or two scalars of every class.
TEST(Characters, BreakWhereIcuBreaks) {
    constexpr char32_t pool[] = {'a',     '\r',    '\n',   0x00,   0xAD,   0x301,  0x200D,  0x903,   0x600,
                                 0x110BD, 0x1100,  0x1161, 0x11A8, 0xAC00, 0xAC01, 0x1F1E9, 0x1F1EA, 0x1F468,
                                 0xA9,    0x1F3FD, 0xFE0F, 0x200C, 0x4E2D, 0xFFFD, 0xE33,   0x1F3FB};
    UErrorCode status = U_ZERO_ERROR;
    const std::unique_ptr<icu::BreakIterator> iterator(
        icu::BreakIterator::createCharacterInstance(icu::Locale::getRoot(), status));
    ASSERT_TRUE(U_SUCCESS(status));
    std::mt19937 random(20240817);
    for (int round = 0; round < 20000; ++round) {
        std::string text;
        for (auto length = random() % 12; length > 0; --length) appendScalar(text, pool[random() % std::size(pool)]);
        const Pieces judged = piecesByIcu(*iterator, text);
        ASSERT_EQ(characters(text), judged) << testing::PrintToString(text);
        ASSERT_EQ(charactersBackwards(text), judged) << testing::PrintToString(text);
    }
}

// Text of a stranger: long runs that belong together, or whose pairing only their begin can tell.
TEST(Characters, LongRunsAreWalkedInLinearTime) {
    std::string marks = "a", flags, family = "👨";
    for (int count = 0; count < 100000; ++count) {
        marks += "\u0301";
        flags += "🇩🇪";
        family += "\u200D👨";
    }
    EXPECT_EQ(characterCount(marks), 1U);
    EXPECT_EQ(characterLengthBefore(marks, marks.size()), marks.size());
    EXPECT_EQ(characterCount(family), 1U);
    EXPECT_EQ(characterLengthBefore(family, family.size()), family.size());
    EXPECT_EQ(characterCount(flags), 100000U);
    EXPECT_EQ(charactersBackwards(flags), characters(flags));
}

TEST(Characters, ClassesOfScalars) {
    struct Case {
        bool (*is)(char32_t);
        std::u32string members, others;
    };
    const Case cases[] = {
        {isLetter, U"azAZéßЖ中ªʰ\u0301\u0903", U"@[`{0_ ٣Ⅷ€😀"},
        {isDecimalDigit, U"09٣९𝟘", U"/:a²½Ⅷ一"},
        {isBlank, U" \t\u00A0\u2003\u3000\u202F", U"\n\r\v\f\u0085\u2028\u200Ba"},
        {isWhitespaceOrNewline, U" \t\n\v\f\r\u0085\u00A0\u2028\u2029\u3000", U"a\x1C\u200B\uFEFF\0"},
        {isNewline, U"\n\v\f\r\u0085\u2028\u2029", U"\t \x1C\u00A0"},
    };
    for (std::size_t row = 0; row < std::size(cases); ++row) {
        const auto& [is, members, others] = cases[row];
        for (const char32_t scalar : members) EXPECT_TRUE(is(scalar)) << "row " << row << ", " << std::uint32_t{scalar};
        for (const char32_t scalar : others) EXPECT_FALSE(is(scalar)) << "row " << row << ", " << std::uint32_t{scalar};
        for (const char32_t scalar : {0x110000U, 0xFFFFFFFFU}) EXPECT_FALSE(is(scalar));
    }
}

TEST(Characters, Cases) {
    struct Case {
        std::string text, lower, upper;
    };
    const Case cases[] = {
        {"", "", ""},
        {"aZ[`@{09", "az[`@{09", "AZ[`@{09"},
        {"Straße", "straße", "STRASSE"},  // a mapping to two letters
        {"ΟΔΟΣ", "οδος", "ΟΔΟΣ"},         // the sigma at a word's end
        {"iI", "ii", "II"},               // no language's own rules
        {"İ", "i\u0307", "İ"},
        {"ǆ", "ǆ", "Ǆ"},
        {"\xFFÉ\xC3z\xE2\x82", "\xFFé\xC3z\xE2\x82", "\xFFÉ\xC3Z\xE2\x82"},  // no UTF-8
    };
    for (const auto& [text, lower, upper] : cases) {
        EXPECT_EQ(lowercased(text), lower);
        EXPECT_EQ(uppercased(text), upper);
    }
}

}  // namespace characters_tests
}  // namespace brindlet
