// The attributes of files that a search knows, and the values that they are compared with.
#pragma once

#include <ctime>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "candidate.h"

namespace brindlet::tools {

// What it costs to ask: nothing beyond the name, one call, the whole file.
inline constexpr int cheapest = 0, needsStatus = 1, needsText = 2;

struct AttributeRow {
    std::string_view name;
    int cost = cheapest;
    std::vector<std::string> (*texts)(Candidate&) = nullptr;  // any of them may match
    bool isProse = false;                                     // a match is looked for anywhere in it
    double (*number)(Candidate&) = nullptr;                   // where it has no texts
    bool isTime = false;
};

// In any case; a ToolFailure that lists those that there are.
const AttributeRow& attributeNamed(std::string_view name);

// "42", "$time.today(-7)", "$time.iso(2024-01-31T12:00:00Z)", "2024-01-31".
double numberValue(const AttributeRow& row, std::string_view text, std::time_t now);

struct Period {
    double begin = 0, end = 0;
};
// "today", "yesterday", "this week", "this month", "this year", or a day as "2024-01-31".
std::optional<Period> periodNamed(std::string_view word, std::time_t now);

}  // namespace brindlet::tools
