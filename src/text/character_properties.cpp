#include "text/character_properties.h"

#include <unicode/bytestream.h>
#include <unicode/normalizer2.h>
#include <unicode/uchar.h>

#include <cstdint>
#include <limits>

#include "text/utf8.h"

namespace brindlet {

namespace {

bool hasProperty(char32_t scalar, UProperty property) {
    return u_hasBinaryProperty(static_cast<UChar32>(scalar), property) != 0;
}

bool hasAnyWith(std::string_view character, UProperty property) {
    for (std::size_t at = 0; at < character.size();) {
        const Scalar scalar = decodeScalar(character, at);
        if (hasProperty(scalar.value, property)) return true;
        at += scalar.length;
    }
    return false;
}

bool isCased(std::string_view character, UProperty caseProperty, UProperty changes, UProperty staysAs) {
    const Scalar first = decodeScalar(character, 0);
    if (first.length == character.size() && hasProperty(first.value, caseProperty)) return true;
    return hasAnyWith(character, changes) && !hasAnyWith(character, staysAs);
}

}  // namespace

bool hasGeneralCategory(char32_t scalar, std::uint32_t mask) {
    return (U_GET_GC_MASK(static_cast<UChar32>(scalar)) & mask) != 0;
}

std::string composed(std::string_view text) {
    // ICU counts in 32 bits; nobody compares texts past that.
    if (asciiRunLength(text, 0) == text.size() || text.size() > std::numeric_limits<std::int32_t>::max())
        return std::string(text);
    UErrorCode status = U_ZERO_ERROR;
    const icu::Normalizer2* normalizer = icu::Normalizer2::getNFCInstance(status);
    if (U_FAILURE(status)) return std::string(text);
    std::string result;
    icu::StringByteSink<std::string> sink(&result, static_cast<std::int32_t>(text.size()));
    const icu::StringPiece piece(text.data(), static_cast<std::int32_t>(text.size()));
    normalizer->normalizeUTF8(0, piece, sink, nullptr, status);
    return U_SUCCESS(status) ? result : std::string(text);
}

bool isAlphabetic(char32_t scalar) {
    return hasProperty(scalar, UCHAR_ALPHABETIC);
}

bool isNumber(char32_t scalar) {
    return u_getIntPropertyValue(static_cast<UChar32>(scalar), UCHAR_NUMERIC_TYPE) != U_NT_NONE;
}

bool isPunctuation(char32_t scalar) {
    return hasGeneralCategory(scalar, U_GC_P_MASK);
}

bool isControl(char32_t scalar) {
    return hasGeneralCategory(scalar, U_GC_CC_MASK);
}

bool isFormat(char32_t scalar) {
    return hasGeneralCategory(scalar, U_GC_CF_MASK);
}

bool isHexadecimalDigit(char32_t scalar) {
    return hasProperty(scalar, UCHAR_HEX_DIGIT);
}

bool isLowercaseCharacter(std::string_view character) {
    return isCased(character, UCHAR_LOWERCASE, UCHAR_CHANGES_WHEN_UPPERCASED, UCHAR_CHANGES_WHEN_LOWERCASED);
}

bool isUppercaseCharacter(std::string_view character) {
    return isCased(character, UCHAR_UPPERCASE, UCHAR_CHANGES_WHEN_LOWERCASED, UCHAR_CHANGES_WHEN_UPPERCASED);
}

}  // namespace brindlet
