#include "text/characters.h"

#include <unicode/bytestream.h>
#include <unicode/casemap.h>
#include <unicode/uchar.h>

#include <algorithm>
#include <cstdint>
#include <limits>

#include "text/character_properties.h"
#include "text/utf8.h"

namespace brindlet {

namespace {

// What the rules of Annex 29 ask about one scalar. The rules are applied here and not by ICU's break iterator: that
// one wants an object per text and reads its rules from the data file, a property is a look-up in a table.
struct BreakClass {
    std::int32_t cluster = U_GCB_OTHER;
    bool isPictographic = false;
};

bool isAscii(char byte) {
    return static_cast<unsigned char>(byte) < 0x80;
}

BreakClass asciiClass(char32_t value) {
    if (value == '\r') return {U_GCB_CR};
    if (value == '\n') return {U_GCB_LF};
    return {value < 0x20 || value == 0x7F ? U_GCB_CONTROL : U_GCB_OTHER};
}

// A byte that is no UTF-8 stands alone, as a control does.
BreakClass breakClass(const Scalar& scalar) {
    if (!scalar.isValid) return {U_GCB_CONTROL};
    if (scalar.value < 0x80) return asciiClass(scalar.value);
    const auto value = static_cast<UChar32>(scalar.value);
    return {u_getIntPropertyValue(value, UCHAR_GRAPHEME_CLUSTER_BREAK),
            u_hasBinaryProperty(value, UCHAR_EXTENDED_PICTOGRAPHIC) != 0};
}

// Whether two neighbours belong to one character, as far as they alone can tell.
enum class Joint { never, always, afterPicture, afterUnpairedFlagHalf };

bool isLineOrControl(std::int32_t cluster) {
    return cluster == U_GCB_CONTROL || cluster == U_GCB_CR || cluster == U_GCB_LF;
}

bool isHangulJoint(std::int32_t left, std::int32_t right) {
    const bool isRightVowel = right == U_GCB_V;
    const bool isRightTail = right == U_GCB_T;
    switch (left) {
        case U_GCB_L:
            return right == U_GCB_L || isRightVowel || right == U_GCB_LV || right == U_GCB_LVT;
        case U_GCB_LV:
        case U_GCB_V:
            return isRightVowel || isRightTail;
        case U_GCB_LVT:
        case U_GCB_T:
            return isRightTail;
        default:
            return false;
    }
}

Joint joint(const BreakClass& left, const BreakClass& right) {
    if (left.cluster == U_GCB_CR && right.cluster == U_GCB_LF) return Joint::always;
    if (isLineOrControl(left.cluster) || isLineOrControl(right.cluster)) return Joint::never;
    if (right.cluster == U_GCB_EXTEND || right.cluster == U_GCB_ZWJ || right.cluster == U_GCB_SPACING_MARK)
        return Joint::always;
    if (left.cluster == U_GCB_PREPEND || isHangulJoint(left.cluster, right.cluster)) return Joint::always;
    if (left.cluster == U_GCB_ZWJ && right.isPictographic) return Joint::afterPicture;
    if (left.cluster == U_GCB_REGIONAL_INDICATOR && right.cluster == U_GCB_REGIONAL_INDICATOR)
        return Joint::afterUnpairedFlagHalf;
    return Joint::never;
}

// Reads one character from its begin, keeping what the rules for pictures and flags want to know of what went before.
class ForwardReader {
  public:
    explicit ForwardReader(BreakClass first) { accept(first); }

    // Whether the next scalar still belongs to the character; if so it is taken in.
    bool takes(BreakClass next) {
        if (!isJoined(joint(last_, next))) return false;
        accept(next);
        return true;
    }

  private:
    bool isJoined(Joint kind) const {
        switch (kind) {
            case Joint::never:
                return false;
            case Joint::always:
                return true;
            case Joint::afterPicture:
                return isPictureJoined_;
            case Joint::afterUnpairedFlagHalf:
                return hasUnpairedFlagHalf_;
        }
        return false;
    }

    void accept(BreakClass next) {
        isPictureJoined_ = isPicture_ && next.cluster == U_GCB_ZWJ;
        isPicture_ = next.isPictographic || (isPicture_ && next.cluster == U_GCB_EXTEND);
        hasUnpairedFlagHalf_ = next.cluster == U_GCB_REGIONAL_INDICATOR && !hasUnpairedFlagHalf_;
        last_ = next;
    }

    BreakClass last_;
    bool isPicture_ = false;        // a picture and its modifiers came last
    bool isPictureJoined_ = false;  // and then a joiner
    bool hasUnpairedFlagHalf_ = false;
};

// Whether a picture and its modifiers stand before the joiner that begins at byte `end`.
bool isPictureBefore(std::string_view text, std::size_t end) {
    while (end > 0) {
        const Scalar scalar = decodeScalarBefore(text, end);
        const BreakClass kind = breakClass(scalar);
        if (kind.isPictographic) return true;
        if (kind.cluster != U_GCB_EXTEND) return false;
        end -= scalar.length;
    }
    return false;
}

// Whether the flag half that begins at byte `end` is the first of its pair. Only the begin of a run of halves can tell;
// behind so many, which nobody writes, all before are taken as paired, so that a walk back along a run stays linear.
bool isFirstFlagHalf(std::string_view text, std::size_t end) {
    constexpr int mostHalves = 64;
    int halves = 0;
    for (; end > 0 && halves < mostHalves; ++halves) {
        const Scalar scalar = decodeScalarBefore(text, end);
        if (breakClass(scalar).cluster != U_GCB_REGIONAL_INDICATOR) break;
        end -= scalar.length;
    }
    return halves % 2 == 0;
}

// `leftBegin` is where the left one of the two neighbours begins.
bool isJoinedBefore(std::string_view text, std::size_t leftBegin, Joint kind) {
    switch (kind) {
        case Joint::never:
            return false;
        case Joint::always:
            return true;
        case Joint::afterPicture:
            return isPictureBefore(text, leftBegin);
        case Joint::afterUnpairedFlagHalf:
            return isFirstFlagHalf(text, leftBegin);
    }
    return false;
}

std::size_t lengthByRules(std::string_view text, std::size_t at) {
    const Scalar first = decodeScalar(text, at);
    ForwardReader reader(breakClass(first));
    std::size_t end = at + first.length;
    while (end < text.size()) {
        const Scalar next = decodeScalar(text, end);
        if (!reader.takes(breakClass(next))) break;
        end += next.length;
    }
    return end - at;
}

std::size_t lengthBeforeByRules(std::string_view text, std::size_t end) {
    const Scalar last = decodeScalarBefore(text, end);
    std::size_t begin = end - last.length;
    bool isFlag = false;  // both halves found
    for (BreakClass right = breakClass(last); begin > 0;) {
        const Scalar scalar = decodeScalarBefore(text, begin);
        const BreakClass left = breakClass(scalar);
        const std::size_t leftBegin = begin - scalar.length;
        const Joint kind = joint(left, right);
        if ((kind == Joint::afterUnpairedFlagHalf && isFlag) || !isJoinedBefore(text, leftBegin, kind)) break;
        isFlag = kind == Joint::afterUnpairedFlagHalf;
        begin = leftBegin;
        right = left;
    }
    return end - begin;
}

bool isAsciiLetter(char32_t scalar) {
    return (scalar >= 'a' && scalar <= 'z') || (scalar >= 'A' && scalar <= 'Z');
}

char asciiLowercased(char letter) {
    return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
}

char asciiUppercased(char letter) {
    return letter >= 'a' && letter <= 'z' ? static_cast<char>(letter - 'a' + 'A') : letter;
}

using CaseMapping = void (*)(const char*, std::uint32_t, icu::StringPiece, icu::ByteSink&, icu::Edits*, UErrorCode&);

// ICU copies malformed bytes as they stand. It counts in 32 bits: of a text past that only ASCII is changed.
std::string caseMapped(std::string_view text, char (*mapAscii)(char), CaseMapping mapAll) {
    std::string mapped;
    const bool isPlain = asciiRunLength(text, 0) == text.size();
    if (!isPlain && text.size() <= std::numeric_limits<std::int32_t>::max()) {
        UErrorCode status = U_ZERO_ERROR;
        icu::StringByteSink<std::string> sink(&mapped, static_cast<std::int32_t>(text.size()));
        mapAll("", 0, icu::StringPiece(text.data(), static_cast<std::int32_t>(text.size())), sink, nullptr, status);
        if (U_SUCCESS(status)) return mapped;
    }
    mapped.assign(text);
    std::transform(mapped.begin(), mapped.end(), mapped.begin(), mapAscii);
    return mapped;
}

}  // namespace

std::size_t characterLength(std::string_view text, std::size_t at) {
    if (!isAscii(text[at])) return lengthByRules(text, at);
    if (at + 1 == text.size()) return 1;
    if (!isAscii(text[at + 1])) return lengthByRules(text, at);
    return text[at] == '\r' && text[at + 1] == '\n' ? 2 : 1;
}

std::size_t characterLengthBefore(std::string_view text, std::size_t end) {
    if (!isAscii(text[end - 1])) return lengthBeforeByRules(text, end);
    if (end == 1) return 1;
    if (!isAscii(text[end - 2])) return lengthBeforeByRules(text, end);
    return text[end - 1] == '\n' && text[end - 2] == '\r' ? 2 : 1;
}

std::size_t characterCount(std::string_view text) {
    std::size_t count = 0;
    for (std::size_t at = 0; at < text.size(); at += characterLength(text, at)) ++count;
    return count;
}

std::vector<std::string_view> characters(std::string_view text) {
    std::vector<std::string_view> pieces;
    pieces.reserve(text.size());
    for (std::size_t at = 0; at < text.size(); at += pieces.back().size())
        pieces.push_back(text.substr(at, characterLength(text, at)));
    return pieces;
}

std::string_view firstCharacters(std::string_view text, std::size_t count) {
    std::size_t end = 0;
    for (; count > 0 && end < text.size(); --count) end += characterLength(text, end);
    return text.substr(0, end);
}

bool isLetter(char32_t scalar) {
    return scalar < 0x80 ? isAsciiLetter(scalar) : hasGeneralCategory(scalar, U_GC_L_MASK | U_GC_M_MASK);
}

bool isDecimalDigit(char32_t scalar) {
    return scalar < 0x80 ? scalar >= '0' && scalar <= '9' : hasGeneralCategory(scalar, U_GC_ND_MASK);
}

bool isBlank(char32_t scalar) {
    return scalar < 0x80 ? scalar == ' ' || scalar == '\t' : hasGeneralCategory(scalar, U_GC_ZS_MASK);
}

bool isWhitespaceOrNewline(char32_t scalar) {
    if (scalar < 0x80) return scalar == ' ' || (scalar >= '\t' && scalar <= '\r');
    return u_isUWhiteSpace(static_cast<UChar32>(scalar)) != 0;
}

bool isNewline(char32_t scalar) {
    return (scalar >= '\n' && scalar <= '\r') || scalar == 0x85 || scalar == 0x2028 || scalar == 0x2029;
}

std::string lowercased(std::string_view text) {
    return caseMapped(text, asciiLowercased, icu::CaseMap::utf8ToLower);
}

std::string uppercased(std::string_view text) {
    return caseMapped(text, asciiUppercased, icu::CaseMap::utf8ToUpper);
}

}  // namespace brindlet
