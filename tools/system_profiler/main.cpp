// system_profiler reports what the machine has: displays, power, hardware, memory, software.
//
//     $ system_profiler SPDisplaysDataType | grep Resolution
//               Resolution: 1920 x 1080
//
// Exit codes: 0 done, 64 wrong usage, 69 another program reports that here.
#include <sys/utsname.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <ctime>

#include <fmt/format.h>

#include "displays.h"
#include "shared/command_line.h"
#include "shared/machine.h"
#include "shared/tool.h"

namespace brindlet::tools {

namespace {

constexpr OptionRow profilerOptions[] = {{"-timeout", true}, {"-detailLevel", true}, {"-listDataTypes"}, {"-usage"}};

constexpr std::string_view profilerUsage =
    "Usage: system_profiler [-listDataTypes] [-detailLevel LEVEL] [-timeout SECONDS] [DATATYPE...]\n";

void say(const std::string& text) {
    std::fwrite(text.data(), 1, text.size(), stdout);
}

void sayFact(std::string_view name, const std::string& value, std::size_t indent = 6) {
    if (!value.empty()) say(fmt::format("{:{}}{}: {}\n", "", indent, name, value));
}

std::string yesOrNo(bool value) {
    return value ? "Yes" : "No";
}

std::string gibibytes(std::uint64_t bytes) {
    const double size = static_cast<double>(bytes) / (1 << 30);
    return fmt::format("{:.{}f} GB", size, size < 10 ? 1 : 0);
}

std::string systemFact(std::string_view key) {
    utsname system{};
    ::uname(&system);
    return key == "kernel" ? fmt::format("{} {}", system.sysname, system.release) : std::string(system.nodename);
}

void reportDisplays() {
    say("Graphics/Displays:\n\n    Displays:\n\n");
    for (const Display& each : displays()) {
        say(fmt::format("        {}:\n", each.name));
        sayFact("Resolution", fmt::format("{} x {}", each.width, each.height), 10);
        if (each.isMain) sayFact("Main Display", "Yes", 10);
        say("\n");
    }
}

std::string healthOf(const std::string& status) {
    return status.empty() ? "Unknown" : status;
}

void reportPower() {
    const Power state = power();
    say("Power:\n\n");
    for (const Battery& each : state.batteries) {
        say("    Battery Information:\n\n");
        sayFact("Name", each.name);
        sayFact("State of Charge (%)", std::to_string(each.percent));
        sayFact("Status", healthOf(each.status));
        if (each.cycles) sayFact("Cycle Count", std::to_string(*each.cycles));
        say("\n");
    }
    say("    AC Charger Information:\n\n");
    sayFact("Connected", yesOrNo(state.isOnMains()));
    for (const Charger& each : state.chargers)
        if (each.isConnected && each.watts) sayFact("Wattage (W)", fmt::format("{:.0f}", *each.watts));
    // Someone who asks for it alone is to get an answer.
    const auto tellsWatts = [](const Charger& each) { return each.isConnected && each.watts; };
    if (state.isOnMains() && std::none_of(state.chargers.begin(), state.chargers.end(), tellsWatts))
        sayFact("Wattage (W)", "Unknown (this charger doesn't tell)");
    const auto charges = [](const Battery& each) { return each.status == "Charging"; };
    sayFact("Charging", yesOrNo(std::any_of(state.batteries.begin(), state.batteries.end(), charges)));
    say("\n");
}

void reportHardware() {
    const Processors processor = processors();
    say("Hardware:\n\n    Hardware Overview:\n\n");
    sayFact("Model Name", systemText("/sys/class/dmi/id/product_name"));
    sayFact("Vendor", systemText("/sys/class/dmi/id/sys_vendor"));
    sayFact("Processor Name", processor.brand);
    sayFact("Total Number of Cores", std::to_string(processor.physical));
    sayFact("Number of Threads", std::to_string(processor.logical));
    sayFact("Memory", gibibytes(memoryBytes()));
    say("\n");
}

void reportMemory() {
    say("Memory:\n\n");
    sayFact("Size", gibibytes(memoryBytes()));
    say("\n");
}

std::string releaseName() {
    const std::string text = systemText("/etc/os-release"), key = "PRETTY_NAME=\"";
    const std::size_t at = text.find(key);
    if (at == std::string::npos) return "";
    const std::size_t begin = at + key.size();
    return text.substr(begin, text.find('"', begin) - begin);
}

std::string timeSinceBoot() {
    const std::int64_t minutes = std::max<std::int64_t>(0, std::time(nullptr) - bootSecond()) / 60;
    return fmt::format("{} days, {}:{:02}", minutes / (24 * 60), minutes / 60 % 24, minutes % 60);
}

void reportSoftware() {
    const char* const user = std::getenv("USER");
    say("Software:\n\n    System Software Overview:\n\n");
    sayFact("System Version", releaseName());
    sayFact("Kernel Version", systemFact("kernel"));
    sayFact("Computer Name", systemFact("name"));
    sayFact("User Name", user ? user : "");
    sayFact("Time since boot", timeSinceBoot());
    say("\n");
}

struct Report {
    std::string_view type;
    void (*print)();
};
constexpr Report reports[] = {
    {"SPDisplaysDataType", reportDisplays}, {"SPHardwareDataType", reportHardware}, {"SPMemoryDataType", reportMemory},
    {"SPPowerDataType", reportPower},       {"SPSoftwareDataType", reportSoftware},
};

// What has a program of its own here.
struct Elsewhere {
    std::string_view type, instead;
};
constexpr Elsewhere elsewhere[] = {
    {"SPAirPortDataType", "nmcli device wifi"},
    {"SPApplicationsDataType", "apt list --installed"},
    {"SPAudioDataType", "wpctl status"},
    {"SPBluetoothDataType", "bluetoothctl show"},
    {"SPCameraDataType", "v4l2-ctl --list-devices"},
    {"SPEthernetDataType", "ip link"},
    {"SPFirewallDataType", "nft list ruleset"},
    {"SPFontsDataType", "fc-list"},
    {"SPInstallHistoryDataType", "cat /var/log/apt/history.log"},
    {"SPLogsDataType", "journalctl"},
    {"SPNVMeDataType", "lsblk"},
    {"SPNetworkDataType", "ip address"},
    {"SPNetworkVolumeDataType", "findmnt -t nfs,nfs4,cifs"},
    {"SPPCIDataType", "lspci"},
    {"SPPrintersDataType", "lpstat -p"},
    {"SPSerialATADataType", "lsblk"},
    {"SPStorageDataType", "df -h"},
    {"SPThunderboltDataType", "boltctl list"},
    {"SPUSBDataType", "lsusb"},
    {"SPUSBHostDataType", "lsusb"},
};

const Report& reportOf(std::string_view type) {
    const auto* report =
        std::find_if(std::begin(reports), std::end(reports), [&](const Report& each) { return each.type == type; });
    if (report != std::end(reports)) return *report;
    for (const Elsewhere& each : elsewhere)
        if (each.type == type)
            throw ToolFailure{fmt::format("{} is not reported here; use '{}'", type, each.instead),
                              statusMissingEngine};
    throw ToolFailure{fmt::format("there is no data type '{}' (-listDataTypes tells those that there are)", type),
                      statusWrongUsage};
}

int profile(const std::vector<std::string>& words) {
    const CommandLine line = readCommandLine(words, profilerOptions);
    if (line.has("-usage")) {
        say(std::string(profilerUsage));
        return 0;
    }
    if (line.has("-listDataTypes")) {
        say("Available Datatypes:\n");
        for (const Report& each : reports) say(fmt::format("{}\n", each.type));
        return 0;
    }
    std::vector<Report> wanted;
    for (const std::string& type : line.operands) wanted.push_back(reportOf(type));
    if (wanted.empty()) wanted.assign(std::begin(reports), std::end(reports));
    for (const Report& each : wanted) each.print();
    return 0;
}

}  // namespace

}  // namespace brindlet::tools

int main(int count, char** words) {
    return brindlet::tools::toolMain("system_profiler", count, words, brindlet::tools::profile);
}
