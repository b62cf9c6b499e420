// sysctl knows the keys under which another family of systems tells what the machine has, and hands all others to the
// real one.
//
//     $ sysctl hw.memsize
//     hw.memsize: 17179869184
//
// Exit codes: 0 done, 1 no such key, 64 wrong usage, 69 the real one is missing; otherwise that of the real one.
#include <sys/utsname.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <ctime>

#include <fmt/format.h>

#include "shared/machine.h"
#include "shared/tool.h"

namespace brindlet::tools {

namespace {

std::string bootTime() {
    const std::time_t second = bootSecond();
    std::tm local{};
    ::localtime_r(&second, &local);
    char date[64];
    std::strftime(date, sizeof date, "%a %b %e %H:%M:%S %Y", &local);
    return fmt::format("{{ sec = {}, usec = 0 }} {}", second, date);
}

std::string systemName(char (utsname::*part)[_UTSNAME_LENGTH]) {
    utsname system{};
    ::uname(&system);
    return system.*part;
}

std::string machineModel() {
    const std::string model = systemText("/sys/class/dmi/id/product_name");
    return model.empty() ? systemName(&utsname::machine) : model;
}

struct KeyRow {
    std::string_view key;
    std::string (*value)();
};
constexpr KeyRow keyRows[] = {
    {"hw.activecpu", [] { return std::to_string(processors().logical); }},
    {"hw.logicalcpu", [] { return std::to_string(processors().logical); }},
    {"hw.logicalcpu_max", [] { return std::to_string(processors().logical); }},
    {"hw.machine", [] { return systemName(&utsname::machine); }},
    {"hw.memsize", [] { return std::to_string(memoryBytes()); }},
    {"hw.model", machineModel},
    {"hw.ncpu", [] { return std::to_string(processors().logical); }},
    {"hw.pagesize", [] { return std::to_string(::sysconf(_SC_PAGESIZE)); }},
    {"hw.physicalcpu", [] { return std::to_string(processors().physical); }},
    {"hw.physicalcpu_max", [] { return std::to_string(processors().physical); }},
    {"kern.boottime", bootTime},
    {"kern.hostname", [] { return systemName(&utsname::nodename); }},
    {"kern.osrelease", [] { return systemName(&utsname::release); }},
    {"kern.ostype", [] { return systemName(&utsname::sysname); }},
    {"machdep.cpu.brand_string", [] { return processors().brand; }},
    {"machdep.cpu.core_count", [] { return std::to_string(processors().physical); }},
    {"machdep.cpu.thread_count", [] { return std::to_string(processors().logical); }},
};

// The rows of a key, or of all the keys below it: "hw" or "machdep.cpu".
std::vector<KeyRow> rowsOf(std::string_view word) {
    std::vector<KeyRow> rows;
    for (const KeyRow& row : keyRows)
        if (row.key == word || (row.key.starts_with(word) && row.key.substr(word.size()).starts_with('.')))
            rows.push_back(row);
    return rows;
}

bool isOption(std::string_view word) {
    return word.size() > 1 && word.front() == '-';
}

// It lies in a folder that ordinary users may not have on their path.
std::string realSysctl() {
    if (const auto path = programPath("sysctl")) return *path;
    for (const char* const path : {"/usr/sbin/sysctl", "/sbin/sysctl"})
        if (::access(path, X_OK) == 0) return path;
    return neededProgram("sysctl", "procps");
}

void printRow(const KeyRow& row, bool namesToo) {
    const std::string line = (namesToo ? std::string(row.key) + ": " : "") + row.value() + '\n';
    std::fwrite(line.data(), 1, line.size(), stdout);
}

int sysctl(const std::vector<std::string>& words) {
    const bool knowsAny =
        std::any_of(words.begin(), words.end(), [](const std::string& word) { return !rowsOf(word).empty(); });
    if (!knowsAny) {
        std::vector<std::string> real{realSysctl()};
        real.insert(real.end(), words.begin(), words.end());
        return run(real);
    }
    std::vector<std::string> options;
    for (const std::string& word : words)
        if (isOption(word)) options.push_back(word);
    const bool isBare = std::any_of(options.begin(), options.end(), [](std::string_view each) { return each == "-n"; });
    if (options.size() > (isBare ? 1U : 0U)) throw ToolFailure{"only -n goes with such keys", statusWrongUsage};
    int status = 0;
    for (const std::string& word : words) {
        if (isOption(word)) continue;
        const std::vector<KeyRow> rows = rowsOf(word);
        for (const KeyRow& row : rows) printRow(row, !isBare);
        if (!rows.empty()) continue;
        std::fflush(stdout);
        std::vector<std::string> real{realSysctl()};
        real.insert(real.end(), options.begin(), options.end());
        real.push_back(word);
        status = std::max(status, run(real));
    }
    return status;
}

}  // namespace

}  // namespace brindlet::tools

int main(int count, char** words) {
    return brindlet::tools::toolMain("sysctl", count, words, brindlet::tools::sysctl);
}
