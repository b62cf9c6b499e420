// The commands that carry another command and run it on what they find: each run goes back to the dispatcher, so that
// the carried command's own model predicts it.
//
//     find . -name '*.tmp' -exec rm {} \;   runs `rm` once for each path that the real find lists
//     printf 'a b' | xargs rm               runs `rm a b`
//
// `find` launches the real tool for its listing alone: no action of the line is handed over.
#pragma once

#include "analysis/basher_analysis.h"

namespace brindlet {

CommandResult findFiles(BasherAnalysis& analysis, const ModelInput& input);        // find
bool onlyFinds(const std::vector<std::string>& args);
CommandResult runOnInputWords(BasherAnalysis& analysis, const ModelInput& input);  // xargs

}  // namespace brindlet
