// pmset tells the state of the batteries and puts the machine or its display to sleep.
//
//     $ pmset -g ps
//     Now drawing from 'Battery Power'
//      -BAT0	64%; discharging; 3:07 remaining present: true
//
// Exit codes: 0 done, 64 wrong usage, 69 a program is missing or there is no such thing here.
#include <algorithm>
#include <cstdio>
#include <cstdlib>

#include <fmt/format.h>

#include "shared/machine.h"
#include "shared/tool.h"

namespace brindlet::tools {

namespace {

constexpr std::string_view pmsetUsage = "pmset takes -g ps, -g batt, sleepnow or displaysleepnow";

struct StatusWord {
    std::string_view kernel, shown;
};
constexpr StatusWord statusWords[] = {
    {"Charging", "charging"},
    {"Discharging", "discharging"},
    {"Full", "charged"},
    {"Not charging", "AC attached; not charging"},
};

std::string shownStatus(const Battery& battery) {
    for (const StatusWord& each : statusWords)
        if (each.kernel == battery.status) return std::string(each.shown);
    return "unknown";
}

std::string shownTime(const Battery& battery) {
    if (battery.status == "Full") return "0:00 remaining";
    if (!battery.minutesLeft) return "(no estimate)";
    return fmt::format("{}:{:02} remaining", *battery.minutesLeft / 60, *battery.minutesLeft % 60);
}

int showBatteries() {
    const Power state = power();
    std::printf("Now drawing from '%s Power'\n", state.isOnMains() ? "AC" : "Battery");
    for (const Battery& each : state.batteries)
        fmt::print(" -{}\t{}%; {}; {} present: true\n", each.name, each.percent, shownStatus(each), shownTime(each));
    return 0;
}

int sleepNow() {
    return run({neededProgram("systemctl", "systemd"), "suspend"});
}

bool isSet(const char* variable) {
    const char* const value = std::getenv(variable);
    return value && *value;
}

// Each desktop has its own way under Wayland; xset has one for all of X.
int turnDisplayOff() {
    if (isSet("WAYLAND_DISPLAY")) {
        if (const auto gdbus = programPath("gdbus")) {
            const Captured asked =
                capture({*gdbus, "call", "--session", "--dest", "org.gnome.Mutter.DisplayConfig", "--object-path",
                         "/org/gnome/Mutter/DisplayConfig", "--method", "org.freedesktop.DBus.Properties.Set",
                         "org.gnome.Mutter.DisplayConfig", "PowerSaveMode", "<int32 1>"});
            if (asked.status == 0) return 0;
        }
        if (const auto doctor = programPath("kscreen-doctor"))
            if (capture({*doctor, "--dpms", "off"}).status == 0) return 0;
        throw ToolFailure{"this desktop offers no way to turn the display off", statusMissingEngine};
    }
    if (!isSet("DISPLAY")) throw ToolFailure{"there is no desktop session here", statusMissingEngine};
    return run({neededProgram("xset", "x11-xserver-utils"), "dpms", "force", "off"});
}

struct Action {
    std::string_view words;
    int (*act)();
};
constexpr Action actions[] = {
    {"-g", showBatteries},
    {"-g ps", showBatteries},
    {"-g batt", showBatteries},
    {"sleepnow", sleepNow},
    {"displaysleepnow", turnDisplayOff},
};

int pmset(const std::vector<std::string>& words) {
    const std::string line = fmt::format("{}", fmt::join(words, " "));
    const auto* action =
        std::find_if(std::begin(actions), std::end(actions), [&](const Action& each) { return each.words == line; });
    if (action != std::end(actions)) return action->act();
    if (line == "noidle") throw ToolFailure{"use caffeinate to keep the machine awake", statusWrongUsage};
    if (!words.empty() && words.front() != "-g")
        throw ToolFailure{"the desktop's power settings decide that here; " + std::string(pmsetUsage),
                          statusWrongUsage};
    throw ToolFailure{std::string(pmsetUsage), statusWrongUsage};
}

}  // namespace

}  // namespace brindlet::tools

int main(int count, char** words) {
    return brindlet::tools::toolMain("pmset", count, words, brindlet::tools::pmset);
}
