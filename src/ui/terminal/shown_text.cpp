#include "ui/terminal/shown_text.h"

#include <fmt/format.h>

#include <algorithm>
#include <iterator>

#include "text/utf8.h"

namespace brindlet {

namespace {

struct ScalarRange {
    char32_t first, last;
};
// C1 control characters; then what reorders or breaks lines unseen (Unicode Annex 9, section 2, and U+2028, U+2029) and
// the byte order mark.
constexpr ScalarRange escapedRanges[] = {
    {0x0080, 0x009F}, {0x061C, 0x061C}, {0x200E, 0x200F}, {0x2028, 0x202E}, {0x2066, 0x2069}, {0xFEFF, 0xFEFF},
};

bool isEscaped(char32_t scalar) {
    return std::ranges::any_of(
        escapedRanges, [scalar](const ScalarRange& range) { return range.first <= scalar && scalar <= range.last; });
}

std::string escapedByte(unsigned char byte) {
    switch (byte) {
        case '\n':
            return "\\n";
        case '\r':
            return "\\r";
        case '\t':
            return "\\t";
        default:
            return fmt::format("\\x{:02x}", byte);
    }
}

bool isAsciiControl(char32_t scalar) {
    return scalar < 0x20 || scalar == 0x7F;
}

}  // namespace

std::string shownText(std::string_view text) {
    std::string shown;
    shown.reserve(text.size());
    for (std::size_t at = 0; at < text.size();) {
        const Scalar scalar = decodeScalar(text, at);
        if (!scalar.isValid || isAsciiControl(scalar.value)) {
            shown += escapedByte(static_cast<unsigned char>(text[at]));
        } else if (isEscaped(scalar.value)) {
            fmt::format_to(std::back_inserter(shown), "\\u{{{:x}}}", static_cast<unsigned>(scalar.value));
        } else {
            shown += text.substr(at, scalar.length);
        }
        at += scalar.length;
    }
    return shown;
}

}  // namespace brindlet
