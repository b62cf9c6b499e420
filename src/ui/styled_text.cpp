#include "ui/styled_text.h"

#include <unicode/uchar.h>

#include <algorithm>
#include <iterator>

#include "text/characters.h"
#include "text/enum_rows.h"
#include "text/utf8.h"

namespace brindlet {

namespace {

struct TextStyleRow {
    TextStyle key;
    std::string_view name;
    std::string_view escape;
};
// ECMA-48, 8.3.117; orange from the palette of 256.
constexpr TextStyleRow textStyleRows[] = {
    {TextStyle::plain, "", ""},
    {TextStyle::bold, "bold", "\x1b[1m"},
    {TextStyle::dim, "dim", "\x1b[2m"},
    {TextStyle::red, "red", "\x1b[31m"},
    {TextStyle::green, "green", "\x1b[32m"},
    {TextStyle::yellow, "yellow", "\x1b[33m"},
    {TextStyle::blue, "blue", "\x1b[34m"},
    {TextStyle::orange, "orange", "\x1b[38;5;208m"},
    {TextStyle::marked, "marked", "\x1b[7m"},
};
static_assert(rowsCover(textStyleRows, TextStyle::marked));
constexpr std::string_view textStyleEnd = "\x1b[0m";

// By the Unicode Annex 11 of a character's first scalar; a variation selector asks for a wide picture.
std::size_t columnsOfCharacter(std::string_view character) {
    if (character.size() == 1) return 1;
    const Scalar decoded = decodeScalar(character, 0);
    if (!decoded.isValid) return 1;
    const auto first = static_cast<UChar32>(decoded.value);
    constexpr std::string_view pictureSelector = "\xEF\xB8\x8F";
    if (character.ends_with(pictureSelector)) return 2;
    const auto width = static_cast<UEastAsianWidth>(u_getIntPropertyValue(first, UCHAR_EAST_ASIAN_WIDTH));
    if (width == U_EA_FULLWIDTH || width == U_EA_WIDE) return 2;
    const int category = u_charType(first);
    return category == U_NON_SPACING_MARK || category == U_ENCLOSING_MARK || category == U_FORMAT_CHAR ? 0 : 1;
}

struct StyledCharacter {
    std::string_view text;
    TextStyle style;
};

std::vector<StyledCharacter> charactersOf(const StyledLine& line) {
    std::vector<StyledCharacter> all;
    for (const StyledSpan& span : line)
        for (const std::string_view character : characters(span.text)) all.push_back({character, span.style});
    return all;
}

void append(StyledLine& line, const StyledCharacter& character) {
    if (line.empty() || line.back().style != character.style) line.push_back({"", character.style});
    line.back().text += character.text;
}

}  // namespace

TextStyle styleNamed(std::string_view color) {
    const auto row = std::ranges::find(textStyleRows, color, &TextStyleRow::name);
    return row == std::end(textStyleRows) ? TextStyle::plain : row->key;
}

std::string ansiText(const StyledLine& line, bool hasColor) {
    std::string text;
    for (const StyledSpan& span : line) {
        const bool isStyled = hasColor && span.style != TextStyle::plain;
        if (isStyled) text += rowOf(textStyleRows, span.style).escape;
        text += span.text;
        if (isStyled) text += textStyleEnd;
    }
    return text;
}

std::size_t columnsOf(std::string_view text) {
    std::size_t columns = 0;
    for (const std::string_view character : characters(text)) columns += columnsOfCharacter(character);
    return columns;
}

StyledLine fitted(StyledLine line, std::size_t columns, bool hasUnicode) {
    std::size_t needed = 0;
    for (const StyledSpan& span : line) needed += columnsOf(span.text);
    if (needed <= columns) return line;
    if (columns == 0) return {};
    StyledLine cut;
    std::size_t used = 1;  // of the mark
    for (const StyledCharacter& character : charactersOf(line)) {
        used += columnsOfCharacter(character.text);
        if (used > columns) break;
        append(cut, character);
    }
    append(cut, {hasUnicode ? "…" : ".", cut.empty() ? TextStyle::plain : cut.back().style});
    return cut;
}

std::vector<StyledLine> wrapped(const StyledLine& line, std::size_t columns, std::size_t indent) {
    const std::vector<StyledCharacter> all = charactersOf(line);
    std::vector<StyledLine> pieces;
    std::size_t at = 0;
    do {
        const std::size_t margin = pieces.empty() || indent >= columns ? 0 : indent;
        std::size_t end = at;
        std::size_t used = margin;
        std::size_t lastBlank = at;
        for (; end < all.size(); ++end) {
            used += columnsOfCharacter(all[end].text);
            if (used > columns && end > at) break;
            if (all[end].text == " ") lastBlank = end;
        }
        if (end < all.size() && all[end].text != " " && lastBlank > at) end = lastBlank;
        StyledLine piece;
        if (margin > 0) piece.push_back({std::string(margin, ' ')});
        for (; at < end; ++at) append(piece, all[at]);
        while (at < all.size() && !pieces.empty() && all[at].text == " ") ++at;
        if (at < all.size() && all[at].text == " ") ++at;
        pieces.push_back(std::move(piece));
    } while (at < all.size());
    return pieces;
}

}  // namespace brindlet
