// What a line of xargs comes to: a command, and the groups of words on which it runs.
//
// There are two readings of a line. The simulation takes options from anywhere in it and splits the input at blanks;
// the real tool stops at the command's name and heeds quotes and backslashes. Where they differ, the line does
// something else than is shown.
//
//     const auto words = realOptions({"-n", "1", "rm", "-v"});  // command {"rm", "-v"}
//     words && realPlan(*words, "'a b' c") == XargsPlan{{"rm", "-v"}, {}, {{"a b"}, {"c"}}}
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "analysis/models/model_support.h"

namespace brindlet {

struct XargsOptions {
    bool isNulDelimited = false;
    std::optional<std::string> endText;      // -E
    std::optional<std::string> replaceText;  // -I
    std::optional<std::size_t> lineCount;    // -L; the three exclude each other
    std::optional<std::size_t> wordCount;    // -n
    Words command{"echo"};                   // its name and fixed arguments
};

struct XargsPlan {
    Words command;
    std::optional<std::string> replaceText;
    std::vector<Words> groups;  // one for each run; with a replace text of one word each
    bool operator==(const XargsPlan&) const = default;
};

// As the simulation has it: at least one run.
XargsPlan simulatedPlan(const XargsOptions& options, std::string_view input);

// As findutils 4.9.0 has it; none for options or quotes that can't be followed.
std::optional<XargsOptions> realOptions(const Words& words);
std::optional<XargsPlan> realPlan(const XargsOptions& options, std::string_view input);

}  // namespace brindlet
