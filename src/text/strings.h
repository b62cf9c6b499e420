// Small operations on texts that the standard library lacks.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace brindlet {

// Without the blanks (space, tab, Unicode space separators), or blanks and line ends, or line ends alone, at both ends.
std::string_view trimmedBlanks(std::string_view text);
std::string_view trimmed(std::string_view text);
std::string_view trimmedNewlines(std::string_view text);

// The pieces between the separators; empty pieces stay, so an empty text gives one empty piece. `separator` must not
// be empty.
std::vector<std::string> split(std::string_view text, std::string_view separator);
// The same without the empty pieces.
std::vector<std::string> splitNonEmpty(std::string_view text, std::string_view separator);

std::string joined(const std::vector<std::string>& pieces, std::string_view separator);

// Every occurrence, from left to right, none overlapping. An empty `from` changes nothing.
std::string replacedAll(std::string_view text, std::string_view from, std::string_view to);

// The whole text as a decimal number with an optional sign; none if it is anything else or does not fit.
std::optional<std::int64_t> parsedInteger(std::string_view text);

inline bool contains(std::string_view text, std::string_view part) {
    return text.find(part) != std::string_view::npos;
}

}  // namespace brindlet
