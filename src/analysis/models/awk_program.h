// Reads an awk program for what it could do besides printing: write files, run programs, load code.
//
//     awkHazard("{ print $1 | \"sort\" }")  // "a pipe"
#pragma once

#include <optional>
#include <string_view>

namespace brindlet {

// The first feature that reaches beyond the program's input and output, or what keeps the program from being read; none
// for a program that can only print. Holds for gawk, mawk and the one true awk.
std::optional<std::string_view> awkHazard(std::string_view program);

}  // namespace brindlet
