// Starts programs of the desktop that go on by themselves.
#pragma once

#include <string>
#include <vector>

namespace brindlet::tools {

struct Launch {
    std::vector<std::string> words;  // the program's path first
    std::string folder{};            // where it starts; "" for this process's own
    bool waits = false;              // until it ends
};

// The exit status. Without `waits` the program has a session of its own and no streams, so that it outlives this one
// and keeps nobody's pipe open; it has failed only if it says so at once, else the status is 0.
int launch(const Launch& launch);

}  // namespace brindlet::tools
