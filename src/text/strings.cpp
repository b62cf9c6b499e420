#include "text/strings.h"

#include <charconv>
#include <system_error>

#include "text/characters.h"
#include "text/utf8.h"

namespace brindlet {

namespace {

std::string_view trimmedWhere(std::string_view text, bool (*isTrimmed)(char32_t)) {
    while (!text.empty()) {
        const Scalar first = decodeScalar(text, 0);
        if (!isTrimmed(first.value)) break;
        text.remove_prefix(first.length);
    }
    while (!text.empty()) {
        const Scalar last = decodeScalarBefore(text, text.size());
        if (!isTrimmed(last.value)) break;
        text.remove_suffix(last.length);
    }
    return text;
}

template <class Visit>
void forEachPiece(std::string_view text, std::string_view separator, Visit visit) {
    std::size_t begin = 0;
    for (std::size_t end = text.find(separator); end != std::string_view::npos; end = text.find(separator, begin)) {
        visit(text.substr(begin, end - begin));
        begin = end + separator.size();
    }
    visit(text.substr(begin));
}

}  // namespace

std::string_view trimmedBlanks(std::string_view text) {
    return trimmedWhere(text, isBlank);
}

std::string_view trimmed(std::string_view text) {
    return trimmedWhere(text, isWhitespaceOrNewline);
}

std::string_view trimmedNewlines(std::string_view text) {
    return trimmedWhere(text, isNewline);
}

std::vector<std::string> split(std::string_view text, std::string_view separator) {
    std::vector<std::string> pieces;
    forEachPiece(text, separator, [&](std::string_view piece) { pieces.emplace_back(piece); });
    return pieces;
}

std::vector<std::string> splitNonEmpty(std::string_view text, std::string_view separator) {
    std::vector<std::string> pieces;
    forEachPiece(text, separator, [&](std::string_view piece) {
        if (!piece.empty()) pieces.emplace_back(piece);
    });
    return pieces;
}

std::string joined(const std::vector<std::string>& pieces, std::string_view separator) {
    std::string whole;
    bool isFirst = true;
    for (const std::string& piece : pieces) {
        if (!isFirst) whole += separator;
        isFirst = false;
        whole += piece;
    }
    return whole;
}

std::string replacedAll(std::string_view text, std::string_view from, std::string_view to) {
    if (from.empty()) return std::string(text);
    std::string replaced;
    bool isFirst = true;
    forEachPiece(text, from, [&](std::string_view piece) {
        if (!isFirst) replaced += to;
        isFirst = false;
        replaced += piece;
    });
    return replaced;
}

std::optional<std::int64_t> parsedInteger(std::string_view text) {
    // from_chars knows the minus only, and must not meet one behind a plus.
    if (text.starts_with('+')) {
        text.remove_prefix(1);
        if (text.starts_with('-')) return std::nullopt;
    }
    std::int64_t value = 0;
    const char* const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, value);
    if (error != std::errc() || stop != end) return std::nullopt;
    return value;
}

}  // namespace brindlet
