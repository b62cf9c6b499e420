// How the program ends, for scripts to read.
#pragma once

#include <string>

namespace brindlet {

enum ExitCode : int {
    exitDone = 0,
    exitFailed = 1,      // the thing asked about failed: a line that does not parse, a failed run, no match
    exitWrongUsage = 2,  // thrown as UsageError
    exitCancelled = 130,
};

// Wrong usage: one sentence that says what is wrong and how to mend it. Caught in one place, which adds the program's
// name.
struct UsageError {
    std::string sentence;
};

}  // namespace brindlet
