#include "shared/machine.h"

#include <sys/utsname.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <set>
#include <utility>

#include "text/strings.h"

namespace brindlet::tools {

namespace {

namespace fs = std::filesystem;

constexpr std::string_view supplies = "/sys/class/power_supply";
constexpr double microUnits = 1e6;

struct Field {
    std::string key, value;
};

// The lines "key : value" of a file below /proc.
std::vector<Field> fieldsOf(std::string_view path) {
    std::vector<Field> fields;
    for (const std::string& line : split(systemText(path), "\n")) {
        const std::size_t colon = line.find(':');
        if (colon == std::string::npos) continue;
        fields.push_back({std::string(trimmed(std::string_view(line).substr(0, colon))),
                          std::string(trimmed(std::string_view(line).substr(colon + 1)))});
    }
    return fields;
}

// The number at the beginning of a text; none where it has none.
std::optional<double> numberIn(const std::string& text) {
    char* end = nullptr;
    const double number = std::strtod(text.c_str(), &end);
    return end == text.c_str() ? std::nullopt : std::optional<double>(number);
}

// One supply's folder, with its values in whole units.
class Supply {
  public:
    explicit Supply(std::string name) : folder_(std::string(supplies) + '/' + std::move(name)) {}

    std::string text(std::string_view key) const { return systemText(folder_ + '/' + std::string(key)); }
    std::optional<double> number(std::string_view key) const { return numberIn(text(key)); }
    // In watts and watt hours, or amperes and ampere hours: their quotient is hours either way.
    std::optional<double> firstOf(std::initializer_list<std::string_view> keys) const {
        for (const std::string_view key : keys)
            if (const auto value = number(key)) return *value / microUnits;
        return std::nullopt;
    }

  private:
    std::string folder_;
};

std::optional<int> minutesLeft(const Supply& supply, const std::string& status) {
    const auto rate = supply.firstOf({"power_now", "current_now"});
    const auto now = supply.firstOf({"energy_now", "charge_now"}),
               full = supply.firstOf({"energy_full", "charge_full"});
    // Some drivers give a negative rate while the battery is being emptied.
    if (!rate || !now || !full || std::abs(*rate) < 1e-3) return std::nullopt;
    if (status != "Charging" && status != "Discharging") return std::nullopt;
    const double left = status == "Charging" ? *full - *now : *now;
    return static_cast<int>(std::clamp(left / std::abs(*rate) * 60, 0.0, 100.0 * 24 * 60));
}

Battery batteryOf(const std::string& name, const Supply& supply) {
    Battery battery{.name = name,
                    .status = supply.text("status"),
                    .percent = static_cast<int>(supply.number("capacity").value_or(0)),
                    .minutesLeft = std::nullopt,
                    .cycles = std::nullopt};
    battery.minutesLeft = minutesLeft(supply, battery.status);
    if (const auto cycles = supply.number("cycle_count"); cycles && *cycles > 0)
        battery.cycles = static_cast<int>(*cycles);
    return battery;
}

Charger chargerOf(const Supply& supply) {
    Charger charger{.isConnected = supply.number("online").value_or(0) > 0, .watts = std::nullopt};
    // What was agreed on with a USB charger; plain mains adapters say nothing of their power.
    const auto volts = supply.firstOf({"voltage_now", "voltage_max"}), amperes = supply.firstOf({"current_max"});
    if (const auto limit = supply.firstOf({"input_power_limit"}); limit && *limit > 0) {
        charger.watts = limit;
    } else if (volts && amperes && *volts * *amperes > 0) {
        charger.watts = *volts * *amperes;
    }
    return charger;
}

std::vector<std::string> namesIn(std::string_view folder) {
    std::vector<std::string> names;
    std::error_code error;
    for (fs::directory_iterator at(systemPath(folder), error), end; !error && at != end; at.increment(error))
        names.push_back(at->path().filename().string());
    std::sort(names.begin(), names.end());
    return names;
}

}  // namespace

fs::path systemPath(std::string_view path) {
    const char* const root = std::getenv("BRINDLET_SYSTEM_ROOT");
    return (root ? root : "") + std::string(path);
}

std::string systemText(std::string_view path) {
    std::ifstream stream(systemPath(path), std::ios::binary);
    std::string text(std::istreambuf_iterator<char>(stream), {});
    std::erase(text, '\0');  // as the device tree ends its texts
    return std::string(trimmed(text));
}

Processors processors() {
    Processors found;
    std::set<std::pair<std::string, std::string>> cores;
    std::string package;
    for (const auto& [key, value] : fieldsOf("/proc/cpuinfo")) {
        if (key == "processor") ++found.logical;
        if (key == "model name" && found.brand.empty()) found.brand = value;
        if (key == "physical id") package = value;
        if (key == "core id") cores.emplace(package, value);
    }
    if (found.logical == 0) found.logical = static_cast<int>(std::max(1L, ::sysconf(_SC_NPROCESSORS_ONLN)));
    found.physical = cores.empty() ? found.logical : static_cast<int>(cores.size());
    if (found.brand.empty()) found.brand = systemText("/sys/firmware/devicetree/base/model");
    if (found.brand.empty()) {
        utsname system{};
        ::uname(&system);
        found.brand = system.machine;
    }
    return found;
}

std::uint64_t memoryBytes() {
    for (const auto& [key, value] : fieldsOf("/proc/meminfo"))
        if (key == "MemTotal") return static_cast<std::uint64_t>(numberIn(value).value_or(0)) * 1024;
    return 0;
}

std::int64_t bootSecond() {
    for (const std::string& line : split(systemText("/proc/stat"), "\n"))
        if (line.starts_with("btime ")) return parsedInteger(trimmed(std::string_view(line).substr(6))).value_or(0);
    return 0;
}

bool Power::isOnMains() const {
    const auto isConnected = [](const Charger& each) { return each.isConnected; };
    if (std::any_of(chargers.begin(), chargers.end(), isConnected) || batteries.empty()) return true;
    const auto empties = [](const Battery& each) { return each.status == "Discharging"; };
    return chargers.empty() && std::none_of(batteries.begin(), batteries.end(), empties);
}

Power power() {
    Power found;
    for (const std::string& name : namesIn(supplies)) {
        const Supply supply(name);
        if (supply.text("scope") == "Device") continue;  // a mouse's
        const std::string type = supply.text("type");
        if (type == "Battery") found.batteries.push_back(batteryOf(name, supply));
        if (type == "Mains" || type.starts_with("USB")) found.chargers.push_back(chargerOf(supply));
    }
    return found;
}

}  // namespace brindlet::tools
