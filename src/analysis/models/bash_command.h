// `bash`: a script given as a word or on the standard input is simulated like a line of its own; one in a file is not
// looked into.
//
//     bash -c 'a=1; rm x'   deletes x, and leaves `a` as it was
#pragma once

#include "analysis/basher_analysis.h"

namespace brindlet {

CommandResult runShell(BasherAnalysis& analysis, const ModelInput& input);

}  // namespace brindlet
