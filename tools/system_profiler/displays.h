// The displays that are connected, and the sizes that they show.
#pragma once

#include <string>
#include <vector>

namespace brindlet::tools {

struct Display {
    std::string name;  // of its connector: "HDMI-1"
    int width = 0, height = 0;
    bool isMain = false;
};

// As the X server has set them, else as the kernel knows them, with their own best sizes. A ToolFailure where only the
// X server knows and xrandr is missing.
std::vector<Display> displays();

}  // namespace brindlet::tools
