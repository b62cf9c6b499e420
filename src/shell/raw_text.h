// What stands inside "${" and "}" or inside "{" and "}": text that is cut up, not parsed.
//
//     parseParameter("x%.*")       // removeShortestMatchEnd(".*") on "x"
//     expandBraces("1..3", budget) // a BraceExpansion of "1", "2", "3"
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "shell/syntax_tree.h"

namespace brindlet {

// The text between "${" and "}". Throws BasherError.
BashWordElement parseParameter(std::string_view text);

// The text between "{" and "}": a BraceExpansion, or a Text where a shell leaves the braces alone. `rangeBytes` counts
// what ranges have taken in this parse: past a limit they are refused, so that {1..999999999} costs nothing. Throws
// BasherError.
BashWordElement expandBraces(std::string_view inner, std::size_t& rangeBytes);

// The pieces between the occurrences of `separator` that are not directly preceded by a backslash. Pieces keep their
// backslashes, empty ones stay, an empty text gives one empty piece.
std::vector<std::string_view> splitUnescaped(std::string_view separator, std::string_view text);

}  // namespace brindlet
