#include "displays.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>

#include "shared/machine.h"
#include "shared/tool.h"
#include "text/regex.h"
#include "text/strings.h"

namespace brindlet::tools {

namespace {

namespace fs = std::filesystem;

int number(const RegexMatch& match, std::size_t group) {
    return static_cast<int>(parsedInteger(match.group(group).value_or("")).value_or(0));
}

// "HDMI-1 connected primary 1920x1080+0+0 (normal left ...", and for one that is turned off no size.
std::vector<Display> displaysIn(const std::string& listing) {
    static const Regex connected(R"(^(\S+) connected( primary)? (\d{1,6})x(\d{1,6})\+)");
    std::vector<Display> found;
    for (const std::string& line : split(listing, "\n"))
        if (const auto match = connected.find(line))
            found.push_back({.name = std::string(*match->group(1)),
                             .width = number(*match, 3),
                             .height = number(*match, 4),
                             .isMain = match->group(2).has_value()});
    return found;
}

// Below each connector stands a list of sizes, the best one first.
std::vector<Display> kernelDisplays() {
    static const Regex size(R"(^(\d{1,6})x(\d{1,6}))");
    std::vector<Display> found;
    std::error_code error;
    for (fs::directory_iterator at(systemPath("/sys/class/drm"), error), end; !error && at != end;
         at.increment(error)) {
        const std::string name = at->path().filename().string();
        const std::string folder = "/sys/class/drm/" + name;
        if (systemText(folder + "/status") != "connected") continue;
        const std::string modes = systemText(folder + "/modes");
        const auto match = size.find(modes);
        if (!match) continue;
        const std::size_t hyphen = name.find('-');  // behind the card: "card0-eDP-1"
        found.push_back({.name = name.substr(hyphen == std::string::npos ? 0 : hyphen + 1),
                         .width = number(*match, 1),
                         .height = number(*match, 2),
                         .isMain = false});
    }
    std::sort(found.begin(), found.end(),
              [](const Display& left, const Display& right) { return left.name < right.name; });
    if (found.size() == 1) found.front().isMain = true;
    return found;
}

}  // namespace

std::vector<Display> displays() {
    const char* const display = std::getenv("DISPLAY");
    const char* const wayland = std::getenv("WAYLAND_DISPLAY");
    const bool asksServer = display && *display && !(wayland && *wayland);  // else it may tell scaled sizes
    const auto xrandr = programPath("xrandr");
    if (asksServer && xrandr) {
        const Captured asked = capture({*xrandr, "--current"});
        if (asked.status == 0) return displaysIn(asked.output);
    }
    std::vector<Display> found = kernelDisplays();
    if (found.empty() && asksServer) neededProgram("xrandr", "x11-xserver-utils");
    return found;
}

}  // namespace brindlet::tools
