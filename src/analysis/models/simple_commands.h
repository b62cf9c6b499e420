// The commands whose whole prediction is one sentence: those with a fixed result, those that are really run as they
// stand, those that can't work here. Which name is predicted how is said in the command table.
#pragma once

#include "analysis/basher_analysis.h"

namespace brindlet {

// A fixed result, whatever the words.
CommandResult succeed(BasherAnalysis& analysis, const ModelInput& input);
CommandResult fail(BasherAnalysis& analysis, const ModelInput& input);
CommandResult printSomething(BasherAnalysis& analysis, const ModelInput& input);    // exit 0, unknown output
CommandResult saySomething(BasherAnalysis& analysis, const ModelInput& input);      // nothing is known
CommandResult calculateOnStack(BasherAnalysis& analysis, const ModelInput& input);  // dc
CommandResult showHistory(BasherAnalysis& analysis, const ModelInput& input);       // history
CommandResult askNetwork(BasherAnalysis& analysis, const ModelInput& input);        // host
CommandResult download(BasherAnalysis& analysis, const ModelInput& input);          // wget

// Really run. The first looks at files and says that it sees only the real ones; the second needs a known standard
// input.
CommandResult runOnRealFiles(BasherAnalysis& analysis, const ModelInput& input);
CommandResult runOnInput(BasherAnalysis& analysis, const ModelInput& input);

// Refused. All but an editor end the analysis.
CommandResult refuseBreak(BasherAnalysis& analysis, const ModelInput& input);
CommandResult refuseRootCommand(BasherAnalysis& analysis, const ModelInput& input);  // shutdown, halt, reboot
CommandResult refuseFsUsage(BasherAnalysis& analysis, const ModelInput& input);
CommandResult refuseBanned(BasherAnalysis& analysis, const ModelInput& input);  // sudo, su
CommandResult refuseEditor(BasherAnalysis& analysis, const ModelInput& input);

}  // namespace brindlet
