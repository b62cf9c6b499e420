// What sips tells of an image, one line for each property.
//
//     std::fputs(describedProperties("a.png", {"pixelWidth"}).c_str(), stdout);  // "/tmp/a.png\n  pixelWidth: 64\n"
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace brindlet::tools {

// "all" is one of them.
bool isImageProperty(std::string_view name);

// The image's absolute path, and below it the properties. A ToolFailure where it can't be read.
std::string describedProperties(const std::string& image, const std::vector<std::string>& names);

}  // namespace brindlet::tools
