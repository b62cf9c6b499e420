// What several tests of tools ask of their bench.
#pragma once

#include <sys/stat.h>

#include <initializer_list>
#include <map>
#include <optional>
#include <string>

#include "tools/tool_bench.h"

namespace brindlet {

// A sentence that names the first of the programs that isn't there.
inline std::optional<std::string> missingIn(const ToolBench& bench, std::initializer_list<const char*> programs) {
    for (const char* program : programs)
        if (!bench.has(program)) return std::string(program) + " is not installed";
    return std::nullopt;
}

// What lies in the folder "work", hidden files too. Times are left out: tools make files beside their outputs.
inline std::map<std::string, std::string> contents(const ToolBench& bench) {
    std::map<std::string, std::string> found;
    for (const auto& [path, state] : bench.scratch().snapshot())
        if (path.starts_with("work/")) found[path.substr(5)] = state.content;
    return found;
}

}  // namespace brindlet
