// Signals that come while a tool waits for another program, or has something to clean up: they are passed on to that
// program, and the tool ends of them once it has unwound.
#pragma once

namespace brindlet::tools {

// Thrown where a signal ended the wait. Only toolMain catches it.
struct Interrupted {
    int signal = 0;
};

// From the first hold to the last release, SIGINT, SIGTERM and SIGHUP wait until a program is run or nothing is held.
void holdSignals();
void releaseSignals();

}  // namespace brindlet::tools
