#include "text/utf8.h"

#include <array>
#include <cstdint>
#include <cstring>

namespace brindlet {

namespace {

constexpr char32_t replacementValue = 0xFFFD;
constexpr Scalar invalidByte{replacementValue, 1, false};

// The well-formed sequences of Unicode's table 3-7. What the first two bytes allow keeps out overlong forms,
// surrogates and numbers past U+10FFFF.
struct LeadRow {
    std::uint8_t firstLead, lastLead;
    std::uint8_t firstSecond, lastSecond;
    std::uint8_t length;
    std::uint8_t leadBits;
};
constexpr LeadRow leadRows[] = {
    {0xC2, 0xDF, 0x80, 0xBF, 2, 0x1F}, {0xE0, 0xE0, 0xA0, 0xBF, 3, 0x0F}, {0xE1, 0xEC, 0x80, 0xBF, 3, 0x0F},
    {0xED, 0xED, 0x80, 0x9F, 3, 0x0F}, {0xEE, 0xEF, 0x80, 0xBF, 3, 0x0F}, {0xF0, 0xF0, 0x90, 0xBF, 4, 0x07},
    {0xF1, 0xF3, 0x80, 0xBF, 4, 0x07}, {0xF4, 0xF4, 0x80, 0x8F, 4, 0x07},
};

constexpr std::uint8_t noRow = 0xFF;
constexpr auto rowOfLead = [] {
    std::array<std::uint8_t, 256> rows{};
    rows.fill(noRow);
    for (std::uint8_t row = 0; row < std::size(leadRows); ++row)
        for (unsigned lead = leadRows[row].firstLead; lead <= leadRows[row].lastLead; ++lead) rows[lead] = row;
    return rows;
}();

std::uint8_t byteAt(std::string_view text, std::size_t at) {
    return static_cast<std::uint8_t>(text[at]);
}

bool isContinuation(std::uint8_t byte) {
    return (byte & 0xC0) == 0x80;
}

Scalar decodeSequence(std::string_view text, std::size_t at) {
    const std::uint8_t rowNumber = rowOfLead[byteAt(text, at)];
    if (rowNumber == noRow) return invalidByte;
    const LeadRow& row = leadRows[rowNumber];
    if (text.size() - at < row.length) return invalidByte;
    const std::uint8_t second = byteAt(text, at + 1);
    if (second < row.firstSecond || second > row.lastSecond) return invalidByte;

    char32_t value = byteAt(text, at) & row.leadBits;
    for (std::size_t index = 1; index < row.length; ++index) {
        const std::uint8_t byte = byteAt(text, at + index);
        if (!isContinuation(byte)) return invalidByte;
        value = (value << 6) | (byte & 0x3FU);
    }
    return {value, row.length, true};
}

}  // namespace

Scalar decodeScalar(std::string_view text, std::size_t at) {
    const std::uint8_t first = byteAt(text, at);
    return first < 0x80 ? Scalar{first, 1, true} : decodeSequence(text, at);
}

// A lead byte never stands inside a valid sequence, so what is found backwards is what reading forwards finds.
Scalar decodeScalarBefore(std::string_view text, std::size_t end) {
    const std::uint8_t last = byteAt(text, end - 1);
    if (last < 0x80) return {last, 1, true};
    std::size_t begin = end - 1;
    while (begin > 0 && end - begin < 4 && isContinuation(byteAt(text, begin))) --begin;
    const Scalar scalar = decodeScalar(text.substr(0, end), begin);
    return scalar.length == end - begin ? scalar : invalidByte;
}

void appendScalar(std::string& text, char32_t value) {
    if (value > 0x10FFFF || (value >= 0xD800 && value <= 0xDFFF)) value = replacementValue;
    const auto append = [&text](char32_t byte) { text += static_cast<char>(static_cast<std::uint8_t>(byte)); };
    const auto continuation = [&](unsigned shift) { append(0x80 | ((value >> shift) & 0x3F)); };
    if (value < 0x80) {
        append(value);
    } else if (value < 0x800) {
        append(0xC0 | (value >> 6));
        continuation(0);
    } else if (value < 0x10000) {
        append(0xE0 | (value >> 12));
        continuation(6);
        continuation(0);
    } else {
        append(0xF0 | (value >> 18));
        continuation(12);
        continuation(6);
        continuation(0);
    }
}

std::size_t asciiRunLength(std::string_view text, std::size_t at) {
    constexpr std::uint64_t highBits = 0x8080808080808080;
    const std::size_t begin = at;
    for (std::uint64_t word = 0; text.size() - at >= sizeof word; at += sizeof word) {
        std::memcpy(&word, text.data() + at, sizeof word);
        if (word & highBits) break;
    }
    while (at < text.size() && byteAt(text, at) < 0x80) ++at;
    return at - begin;
}

bool isValidUtf8(std::string_view text) {
    std::size_t at = asciiRunLength(text, 0);
    while (at < text.size()) {
        const Scalar scalar = decodeSequence(text, at);
        if (!scalar.isValid) return false;
        at += scalar.length;
        if (at < text.size() && byteAt(text, at) < 0x80) at += asciiRunLength(text, at);
    }
    return true;
}

std::string toValidUtf8(std::string_view text) {
    if (isValidUtf8(text)) return std::string(text);
    std::string valid;
    valid.reserve(text.size());
    for (std::size_t at = 0; at < text.size();) {
        const Scalar scalar = decodeScalar(text, at);
        if (scalar.isValid) {
            valid += text.substr(at, scalar.length);
        } else {
            appendScalar(valid, scalar.value);
        }
        at += scalar.length;
    }
    return valid;
}

}  // namespace brindlet
