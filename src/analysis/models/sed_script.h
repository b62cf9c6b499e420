// Reads a sed script for what it does besides printing: its commands can write files, read files and run programs.
//
//     readSedScript("s/a/b/w out").writtenFiles  // {"out"}
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace brindlet {

struct SedScript {
    std::vector<std::string> writtenFiles;  // w, W, s///w; not the standard streams
    std::vector<std::string> readFiles;     // r, R
    bool runsCommands = false;              // e, s///e
    bool isUnderstood = true;               // false: sed takes it for an error, or for something not known here
};

// The commands up to the end, or up to the first that is no command of GNU sed 4.9 or an older one.
SedScript readSedScript(std::string_view script);

}  // namespace brindlet
