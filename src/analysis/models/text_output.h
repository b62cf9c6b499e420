// The commands that print text that the line itself holds, or pass on what they are given.
#pragma once

#include "analysis/basher_analysis.h"

namespace brindlet {

// The words joined with blanks. The first -n, wherever it stands, takes the newline away; no escapes, no other flags.
CommandResult echoWords(BasherAnalysis& analysis, const ModelInput& input);
// The real printf's words, as long as the standard input is known.
CommandResult printFormatted(BasherAnalysis& analysis, const ModelInput& input);
// The simulated current folder, with no newline behind it.
CommandResult printCurrentFolder(BasherAnalysis& analysis, const ModelInput& input);
// Its standard input; unknown where it has files to read, which are only looked up.
CommandResult concatenate(BasherAnalysis& analysis, const ModelInput& input);

}  // namespace brindlet
