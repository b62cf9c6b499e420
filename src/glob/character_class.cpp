#include "glob/character_class.h"

#include <algorithm>
#include <iterator>

#include "text/character_properties.h"
#include "text/characters.h"
#include "text/overloaded.h"
#include "text/utf8.h"

namespace brindlet {

namespace {

using Name = Pattern::ClassName;

char32_t firstScalar(std::string_view character) {
    return decodeScalar(character, 0).value;
}

bool hasNoScalar(std::string_view character, bool (*test)(char32_t)) {
    for (std::size_t at = 0; at < character.size();) {
        const Scalar scalar = decodeScalar(character, at);
        if (test(scalar.value)) return false;
        at += scalar.length;
    }
    return true;
}

bool isLetterOrNumber(std::string_view character) {
    return isAlphabetic(firstScalar(character)) || isNumber(firstScalar(character));
}

bool isLetterCharacter(std::string_view character) {
    return isAlphabetic(firstScalar(character));
}

bool isSpaceCharacter(std::string_view character) {
    return isWhitespaceOrNewline(firstScalar(character));
}

bool isControlCharacter(std::string_view character) {
    return hasNoScalar(character, [](char32_t scalar) { return !isControl(scalar); });
}

bool isNumberCharacter(std::string_view character) {
    return isNumber(firstScalar(character));
}

bool isPrintable(std::string_view character) {
    return hasNoScalar(character, [](char32_t scalar) { return isControl(scalar) || isFormat(scalar); });
}

bool isGraph(std::string_view character) {
    return character != " " && isPrintable(character);
}

bool isPunctuationCharacter(std::string_view character) {
    return isPunctuation(firstScalar(character));
}

// A digit with a mark on it has no value any more.
bool hasHexadecimalValue(std::string_view character) {
    const Scalar scalar = decodeScalar(character, 0);
    return scalar.length == character.size() && isHexadecimalDigit(scalar.value);
}

struct ClassRow {
    Name name;
    std::string_view text;
    bool (*holds)(std::string_view character);
};

// In the order of the names.
constexpr ClassRow classRows[] = {
    {Name::alphaNumeric, "alnum", isLetterOrNumber},
    {Name::alpha, "alpha", isLetterCharacter},
    {Name::blank, "blank", isSpaceCharacter},
    {Name::control, "cntrl", isControlCharacter},
    {Name::numeric, "digit", isNumberCharacter},
    {Name::graph, "graph", isGraph},
    {Name::lower, "lower", isLowercaseCharacter},
    {Name::printable, "print", isPrintable},
    {Name::punctuation, "punct", isPunctuationCharacter},
    {Name::space, "space", isSpaceCharacter},
    {Name::upper, "upper", isUppercaseCharacter},
    {Name::hexadecimalDigit, "xdigit", hasHexadecimalValue},
};

const ClassRow& rowOf(Name name) {
    return classRows[static_cast<std::size_t>(name)];
}

}  // namespace

std::string_view classText(Name name) {
    return rowOf(name).text;
}

namespace glob {

std::optional<Name> classNamed(std::string_view text) {
    const auto row = std::find_if(std::begin(classRows), std::end(classRows),
                                  [&](const ClassRow& candidate) { return candidate.text == text; });
    if (row == std::end(classRows)) return std::nullopt;
    return row->name;
}

bool isInClass(std::string_view character, const Pattern::CharacterClass& characterClass) {
    return std::visit(
        Overloaded{[&](const Pattern::Range& range) { return range.lower <= character && character <= range.upper; },
                   [&](Name name) { return rowOf(name).holds(character); }},
        characterClass);
}

}  // namespace glob

}  // namespace brindlet
