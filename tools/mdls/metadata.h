// What is known of a file: what the system keeps of it, what is written in it, where it came from.
//
//     metadataOf("photo.jpg", needed).at("kMDItemPixelWidth") == Number{"640"}
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "shared/tool.h"

namespace brindlet::tools {

struct Number {
    std::string digits;
    bool operator==(const Number&) const = default;
};
struct Moment {
    std::int64_t second = 0;  // since 1970
    bool operator==(const Moment&) const = default;
};
using Value = std::variant<Number, Moment, std::string, std::vector<std::string>>;
using Metadata = std::map<std::string, Value, std::less<>>;

// All of it, or with `wanted` at least those; what is not known is left out. What stands in the file itself is read by
// exiftool and ffprobe: where one that is needed is missing, `missing` says so.
Metadata metadataOf(const std::string& file, const std::set<std::string>& wanted, std::optional<ToolFailure>& missing);

}  // namespace brindlet::tools
