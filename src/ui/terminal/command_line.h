// The whole command line: which subcommands there are, how their words are read, what the exit code is.
//
//     return runCommandLine({argv + 1, argv + argc}, "0.1.0");
#pragma once

#include <span>
#include <string>

namespace brindlet {

// Never throws; what goes wrong is one line on standard error.
int runCommandLine(std::span<const char* const> arguments, const std::string& version);

}  // namespace brindlet
