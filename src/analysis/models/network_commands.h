// The commands that reach out over the network, and the files that they bring.
//
//     curl -o a.zip https://example.com/a.zip   creates a.zip, and makes a network request
#pragma once

#include "analysis/basher_analysis.h"

namespace brindlet {

CommandResult transferUrls(BasherAnalysis& analysis, const ModelInput& input);  // curl
CommandResult pingHost(BasherAnalysis& analysis, const ModelInput& input);

}  // namespace brindlet
