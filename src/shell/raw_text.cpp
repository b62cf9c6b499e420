#include "shell/raw_text.h"

#include <algorithm>
#include <cstdint>
#include <optional>
#include <utility>

#include "shell/basher.h"
#include "text/characters.h"
#include "text/strings.h"
#include "text/utf8.h"

namespace brindlet {

namespace {

using Pieces = std::vector<std::string_view>;

BasherError expected(std::string text) {
    return {BasherError::Kind::expected, std::move(text)};
}

// --- ${...} ---

// The operations that are told by a splitter, in the order in which they are looked for.
struct SplitterRow {
    std::string_view splitter;
    ParameterOperation (*make)(std::string_view operand);
};

template <class Operation>
ParameterOperation withText(std::string_view operand) {
    return Operation{std::string(operand)};
}

template <class Operation>
ParameterOperation withReplacement(std::string_view operand) {
    const Pieces pieces = splitUnescaped("/", operand);
    if (pieces.size() != 2) throw expected("valid replacement pattern");
    return Operation{std::string(pieces[0]), std::string(pieces[1])};
}

constexpr SplitterRow splitterTable[] = {
    {"##", withText<RemoveLongestMatchStart>}, {"%%", withText<RemoveLongestMatchEnd>},
    {":-", withText<DefaultIfEmpty>},          {":=", withText<DefaultSetIfEmpty>},
    {":+", withText<DefaultIfNonEmpty>},       {":?", withText<ErrorIfEmpty>},
    {"//", withReplacement<ReplaceAll>},       {"/#", withReplacement<ReplaceAtStart>},
    {"/%", withReplacement<ReplaceAtEnd>},     {"#", withText<RemoveShortestMatchStart>},
    {"%", withText<RemoveShortestMatchEnd>},
};

ParameterExpansion parseSplit(const SplitterRow& row, std::string_view text) {
    const Pieces pieces = splitUnescaped(row.splitter, text);
    if (pieces.size() != 2) throw expected("valid use of " + std::string(row.splitter) + " syntax");
    if (pieces[0].empty()) throw expected("Variable name in ${...} expansion");
    return {std::string(pieces[0]), row.make(pieces[1])};
}

std::optional<ParameterExpansion> parseCaseChange(std::string_view text) {
    const auto named = [&](std::size_t ending, ParameterOperation operation) {
        return ParameterExpansion{std::string(text.substr(0, text.size() - ending)), std::move(operation)};
    };
    if (text.ends_with("^^")) return named(2, Upper{});
    if (text.ends_with("^")) return named(1, UpperFirstChar{});
    if (text.ends_with(",,")) return named(2, Lower{});
    if (text.ends_with(",")) return named(1, LowerFirstChar{});
    return std::nullopt;
}

ParameterExpansion parseSubstring(const Pieces& pieces) {
    const auto offset = parsedInteger(pieces[1]);
    if (!offset) throw expected("valid numerical offset in var:a:b pattern");
    Substring operation{*offset, std::nullopt};
    if (pieces.size() == 3) {
        operation.length = parsedInteger(pieces[2]);
        if (!operation.length) throw expected("valid numerical length in var:a:b pattern");
    }
    if (pieces.size() > 3) throw expected("valid var:a:b pattern");
    return {std::string(pieces[0]), operation};
}

// --- {...} ---

// What the ranges of one command may take together. A shell would try the rest, and run out of memory.
constexpr std::size_t rangeBytesLimit = std::size_t{16} << 20;

void takeRangeBytes(std::size_t& rangeBytes, std::uint64_t steps, std::size_t width) {
    const std::size_t cost = sizeof(std::string) + width;
    if (steps >= rangeBytesLimit / cost || rangeBytes + (steps + 1) * cost > rangeBytesLimit) {
        throw BasherError(BasherError::Kind::unsupported, "brace expansion with too many elements");
    }
    rangeBytes += (steps + 1) * cost;
}

std::string zeroPadded(std::int64_t number, std::size_t width) {
    std::string digits = std::to_string(number);
    const std::size_t signs = number < 0 ? 1 : 0;
    if (digits.size() < width) digits.insert(signs, width - digits.size(), '0');
    return digits;
}

std::vector<std::string> numberRange(std::int64_t first, std::int64_t last, std::size_t width,
                                     std::size_t& rangeBytes) {
    const auto low = static_cast<std::uint64_t>(std::min(first, last));
    const std::uint64_t steps = static_cast<std::uint64_t>(std::max(first, last)) - low;
    takeRangeBytes(rangeBytes, steps, width);
    std::vector<std::string> elements;
    elements.reserve(steps + 1);
    for (std::uint64_t step = 0; step <= steps; ++step) {
        const auto offset = static_cast<std::int64_t>(step);
        elements.push_back(zeroPadded(first <= last ? first + offset : first - offset, width));
    }
    return elements;
}

std::optional<char32_t> onlyScalar(std::string_view text) {
    if (text.empty()) return std::nullopt;
    const Scalar scalar = decodeScalar(text, 0);
    if (!scalar.isValid || scalar.length != text.size()) return std::nullopt;
    return scalar.value;
}

std::vector<std::string> scalarRange(char32_t first, char32_t last, std::size_t& rangeBytes) {
    constexpr char32_t firstSurrogate = 0xD800;
    constexpr char32_t lastSurrogate = 0xDFFF;
    takeRangeBytes(rangeBytes, std::max(first, last) - std::min(first, last), 0);
    std::vector<std::string> elements;
    for (char32_t scalar = std::min(first, last); scalar <= std::max(first, last); ++scalar) {
        if (scalar >= firstSurrogate && scalar <= lastSurrogate) continue;
        appendScalar(elements.emplace_back(), scalar);
    }
    if (first > last) std::reverse(elements.begin(), elements.end());
    return elements;
}

std::vector<std::string> expandRange(std::string_view start, std::string_view end, std::size_t& rangeBytes) {
    const auto first = parsedInteger(start);
    const auto last = parsedInteger(end);
    if (first && last) {
        const bool isPadded = start.size() >= 2 && start.front() == '0';
        return numberRange(*first, *last, isPadded ? start.size() : 0, rangeBytes);
    }
    const auto firstScalar = onlyScalar(start);
    const auto lastScalar = onlyScalar(end);
    if (firstScalar && lastScalar) return scalarRange(*firstScalar, *lastScalar, rangeBytes);
    return {std::string(start), std::string(end)};
}

}  // namespace

std::vector<std::string_view> splitUnescaped(std::string_view separator, std::string_view text) {
    Pieces pieces;
    std::size_t start = 0;
    std::size_t at = text.find(separator);
    while (at != std::string_view::npos) {
        if (at > 0 && text[at - 1] == '\\') {
            at = text.find(separator, at + 1);
            continue;
        }
        pieces.push_back(text.substr(start, at - start));
        start = at + separator.size();
        at = text.find(separator, start);
    }
    pieces.push_back(text.substr(start));
    return pieces;
}

BashWordElement parseParameter(std::string_view text) {
    if (text.starts_with('#')) return ParameterExpansion{std::string(text.substr(1)), Length{}};
    if (auto change = parseCaseChange(text)) return std::move(*change);
    for (const SplitterRow& row : splitterTable) {
        if (contains(text, row.splitter)) return parseSplit(row, text);
    }
    if (const Pieces pieces = splitUnescaped("/", text); pieces.size() > 1) {
        if (pieces.size() != 3) throw expected("valid var/a/b pattern");
        return ParameterExpansion{std::string(pieces[0]), ReplaceFirst{std::string(pieces[1]), std::string(pieces[2])}};
    }
    if (const Pieces pieces = splitUnescaped(":", text); pieces.size() > 1) return parseSubstring(pieces);
    return VariableReference{std::string(text), true};
}

BashWordElement expandBraces(std::string_view inner, std::size_t& rangeBytes) {
    if (contains(inner, "$")) {
        throw BasherError(BasherError::Kind::unsupported,
                          "brace expansion with edge case contents: {" + std::string(inner) + "}");
    }
    if (contains(inner, "{")) throw BasherError(BasherError::Kind::unimplemented, "nested brace expansion");
    if (const Pieces pieces = splitUnescaped(",", inner); pieces.size() > 1) {
        return BraceExpansion{{pieces.begin(), pieces.end()}, std::string(inner)};
    }
    const Pieces ends = splitUnescaped("..", inner);
    if (ends.size() > 2) throw BasherError(BasherError::Kind::unsupported, "brace expansion with stepping");
    if (ends.size() == 2) return BraceExpansion{expandRange(ends[0], ends[1], rangeBytes), std::string(inner)};
    const std::string literal = std::string("{").append(inner).append("}");
    return Text{literal, literal};
}

}  // namespace brindlet
