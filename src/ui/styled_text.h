// Lines of text whose parts are marked by what they are for; whoever draws them chooses how that looks.
//
//     StyledLine line = {{"! ", TextStyle::red}, {"Risky command"}};
//     print(ansiText(line, wantsColour(STDOUT_FILENO)));
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace brindlet {

enum class TextStyle { plain, bold, dim, red, green, yellow, blue, orange, marked };

// The style of a colour's name, such as "red"; plain for a name that is none.
TextStyle styleNamed(std::string_view color);

struct StyledSpan {
    std::string text;
    TextStyle style = TextStyle::plain;

    bool operator==(const StyledSpan&) const = default;
};
using StyledLine = std::vector<StyledSpan>;

// Without a line end. With colours the control sequences of ECMA-48 stand around what isn't plain.
std::string ansiText(const StyledLine& line, bool hasColor);

// How many columns of a terminal a character or a text takes: 2 for wide ones, 0 for marks that combine.
std::size_t columnsOf(std::string_view text);

// The line cut to at most so many columns, with "…" (or "." without Unicode) where something is left out.
StyledLine fitted(StyledLine line, std::size_t columns, bool hasUnicode);
// The line broken into pieces of at most so many columns, at blanks where there are any. The second and further ones
// begin with `indent` blanks. At least one.
std::vector<StyledLine> wrapped(const StyledLine& line, std::size_t columns, std::size_t indent);

}  // namespace brindlet
