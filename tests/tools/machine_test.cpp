// What is told of a machine that the test makes up.
#include <gtest/gtest.h>

#include "tools/tool_bench.h"

namespace brindlet {

namespace machine_tests {

class Machine : public ToolBench {
  public:
    Machine() {
        set("BRINDLET_SYSTEM_ROOT", scratch().path("root").text());
        system("proc/cpuinfo",
               "processor\t: 0\nmodel name\t: Fine 9000\nphysical id\t: 0\ncore id\t: 0\n\n"
               "processor\t: 1\nmodel name\t: Fine 9000\nphysical id\t: 0\ncore id\t: 0\n\n"
               "processor\t: 2\nmodel name\t: Fine 9000\nphysical id\t: 0\ncore id\t: 1\n");
        system("proc/meminfo", "MemTotal:       16777216 kB\nMemFree: 1 kB\n");
        system("proc/stat", "cpu 1 2\nbtime 1700000000\n");
        system("etc/os-release", "PRETTY_NAME=\"Fine Linux 3\"\n");
    }

    void system(const std::string& path, std::string_view text) const { scratch().write("root/" + path, text); }
    void supply(const std::string& name, const std::map<std::string, std::string>& values) const {
        for (const auto& [key, value] : values) system("sys/class/power_supply/" + name + "/" + key, value + "\n");
    }
};

TEST(Machine, KeysOfAnotherSystem) {
    struct Case {
        std::string_view line;
        ToolRun run;
    };
    const Machine machine;
    machine.standIn("sysctl", "echo \"real: $*\"; [ $1 != bad.key ]");
    const std::string real = machine.scratch().path("bin/sysctl").text();
    const Case cases[] = {
        {"sysctl hw.memsize", {0, "hw.memsize: 17179869184\n"}},
        {"sysctl -n hw.ncpu hw.physicalcpu hw.logicalcpu", {0, "3\n2\n3\n"}},
        {"sysctl machdep.cpu",
         {0,
          "machdep.cpu.brand_string: Fine 9000\nmachdep.cpu.core_count: 2\n"
          "machdep.cpu.thread_count: 3\n"}},
        {"sysctl kern.boottime", {0, "kern.boottime: { sec = 1700000000, usec = 0 } Tue Nov 14 22:13:20 2023\n"}},
        {"sysctl -a", {0, "real: -a\n"}},
        {"sysctl -w kernel.x=1", {0, "real: -w kernel.x=1\n"}},
        {"sysctl -n hw.ncpu kernel.ostype", {0, "3\nreal: -n kernel.ostype\n"}},
        {"sysctl hw.ncpu bad.key", {1, "hw.ncpu: 3\nreal: bad.key\n"}},
        {"sysctl -w hw.ncpu", {64, "sysctl: only -n goes with such keys\n"}},
    };
    for (const auto& [line, run] : cases) {
        // The real one lies behind the wrapper on the path, as it does on a real system.
        EXPECT_EQ(machine.run("PATH=" BRINDLET_BINARIES "/overrides:$PATH; " + std::string(line)), run) << line;
    }
}

TEST(Machine, Batteries) {
    struct Case {
        std::map<std::string, std::string> battery;
        std::string_view mains, told;
    };
    const Case cases[] = {
        {{{"status", "Discharging"},
          {"capacity", "64"},
          {"energy_now", "30000000"},
          {"energy_full", "50000000"},
          {"power_now", "-10000000"}},
         "0",
         "Now drawing from 'Battery Power'\n -BAT0\t64%; discharging; 3:00 remaining present: true\n"},
        {{{"status", "Charging"},
          {"capacity", "60"},
          {"charge_now", "3000000"},
          {"charge_full", "5000000"},
          {"current_now", "1600000"}},
         "1",
         "Now drawing from 'AC Power'\n -BAT0\t60%; charging; 1:15 remaining present: true\n"},
        {{{"status", "Full"}, {"capacity", "100"}},
         "1",
         "Now drawing from 'AC Power'\n -BAT0\t100%; charged; 0:00 remaining present: true\n"},
        {{{"status", "Discharging"}, {"capacity", "7"}, {"power_now", "0"}},
         "0",
         "Now drawing from 'Battery Power'\n -BAT0\t7%; discharging; (no estimate) present: true\n"},
    };
    for (const auto& [battery, mains, told] : cases) {
        const Machine machine;
        machine.supply("AC", {{"type", "Mains"}, {"online", std::string(mains)}});
        machine.supply("BAT0", battery);
        machine.supply("BAT0", {{"type", "Battery"}});
        machine.supply("mouse", {{"type", "Battery"}, {"scope", "Device"}, {"capacity", "3"}});
        EXPECT_EQ(machine.run("pmset -g ps"), (ToolRun{0, std::string(told)}));
    }
    EXPECT_EQ(Machine().run("pmset -g batt"), (ToolRun{0, "Now drawing from 'AC Power'\n"}));
}

TEST(Machine, Sleep) {
    Machine machine;
    for (const std::string_view program : {"systemctl", "xset", "gdbus"}) machine.standIn(program);
    EXPECT_EQ(machine.run("pmset sleepnow; DISPLAY=:7 pmset displaysleepnow; WAYLAND_DISPLAY=w pmset displaysleepnow"),
              (ToolRun{0, ""}));
    EXPECT_EQ(machine.log(),
              "systemctl <suspend>\nxset <dpms> <force> <off>\n"
              "gdbus <call> <--session> <--dest> <org.gnome.Mutter.DisplayConfig> <--object-path> "
              "</org/gnome/Mutter/DisplayConfig> <--method> <org.freedesktop.DBus.Properties.Set> "
              "<org.gnome.Mutter.DisplayConfig> <PowerSaveMode> <<int32 1>>\n");
    EXPECT_EQ(machine.run("pmset -a sleep 0").status, 64);
    EXPECT_EQ(machine.run("pmset displaysleepnow").status, 69);
    EXPECT_EQ(machine.log(), "");
}

TEST(Machine, Reports) {
    struct Case {
        std::string_view line, output;
    };
    Machine machine;
    machine.supply("usb", {{"type", "USB"}, {"online", "1"}, {"voltage_now", "20000000"}, {"current_max", "3250000"}});
    machine.supply("BAT0", {{"type", "Battery"}, {"status", "Charging"}, {"capacity", "50"}, {"cycle_count", "12"}});
    machine.system("sys/class/drm/card0-eDP-1/status", "connected\n");
    machine.system("sys/class/drm/card0-eDP-1/modes", "1920x1200\n800x600\n");
    machine.system("sys/class/drm/card0-DP-1/status", "disconnected\n");
    machine.standIn("xrandr",
                    "printf '%s\\n' 'Screen 0: minimum 8 x 8' 'HDMI-1 connected primary 2560x1440+0+0 (normal)' "
                    "'   2560x1440 59.95*+' 'DP-2 connected (normal)' 'eDP-1 connected 1280x800+2560+0 (normal)'");
    const Case cases[] = {
        // The catalogue's own lines.
        {"system_profiler SPDisplaysDataType | grep Resolution", "          Resolution: 1920 x 1200\n"},
        {"system_profiler SPPowerDataType | grep -A 5 \"AC Charger Information\" | grep \"Wattage\"",
         "      Wattage (W): 65\n"},
        {"DISPLAY=:7 system_profiler -timeout 20 SPDisplaysDataType | grep -v '^$'",
         "Graphics/Displays:\n    Displays:\n        HDMI-1:\n          Resolution: 2560 x 1440\n"
         "          Main Display: Yes\n        eDP-1:\n          Resolution: 1280 x 800\n"},
        {"system_profiler -detailLevel mini SPHardwareDataType | grep -E 'Processor|Cores|Memory'",
         "      Processor Name: Fine 9000\n      Total Number of Cores: 2\n      Memory: 16 GB\n"},
        {"system_profiler | grep -cE '^[A-Z]'", "5\n"},
        {"system_profiler | grep -E 'System Version|Cycle'",
         "      Cycle Count: 12\n      System Version: Fine Linux 3\n"},
        {"system_profiler SPUSBDataType; echo $?",
         "system_profiler: SPUSBDataType is not reported here; use 'lsusb'\n69\n"},
        {"system_profiler -json; echo $?", "system_profiler: the option '-json' is not known here\n64\n"},
    };
    for (const auto& [line, output] : cases) EXPECT_EQ(machine.run(line).output, output) << line;
    EXPECT_EQ(
        machine.run(". /etc/os-release; [ \"$(sw_vers -productVersion)\" = \"${VERSION_ID:-$(uname -r)}\" ]").status,
        0);
}

}  // namespace machine_tests
}  // namespace brindlet
