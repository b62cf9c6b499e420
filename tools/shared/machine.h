// What the kernel tells of the machine, below /proc and /sys. With BRINDLET_SYSTEM_ROOT set, it is read from below that
// folder: for machines that a test makes up.
//
//     systemText("/sys/class/dmi/id/product_name") == "Thinkstation"
#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace brindlet::tools {

std::filesystem::path systemPath(std::string_view path);
// A file's text without blanks and line ends around it; "" where it can't be read.
std::string systemText(std::string_view path);

struct Processors {
    std::string brand;
    int logical = 0;
    int physical = 0;
};
Processors processors();

std::uint64_t memoryBytes();
std::int64_t bootSecond();  // since 1970

struct Battery {
    std::string name;    // "BAT0"
    std::string status;  // in the kernel's words: "Charging", "Discharging", "Full", "Not charging", "Unknown"
    int percent = 0;
    std::optional<int> minutesLeft;  // until it is empty, or full where it charges
    std::optional<int> cycles;
};
struct Charger {
    bool isConnected = false;
    std::optional<double> watts;
};
struct Power {
    std::vector<Battery> batteries;
    std::vector<Charger> chargers;

    bool isOnMains() const;
};
Power power();

}  // namespace brindlet::tools
