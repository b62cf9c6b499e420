// `[`, `[[` and `test`, which are really run: they see the real files, not what the line has changed before them.
//
// A shell takes some of their operands for arithmetic or for the name of a variable, and runs a command that stands in
// them: [[ 'a[$(rm b)]' -eq 1 ]] removes b. Such a line ends the analysis in `highRisk`.
#pragma once

#include "analysis/basher_analysis.h"

namespace brindlet {

CommandResult testInBrackets(BasherAnalysis& analysis, const ModelInput& input);        // [
CommandResult testInDoubleBrackets(BasherAnalysis& analysis, const ModelInput& input);  // [[
CommandResult testCondition(BasherAnalysis& analysis, const ModelInput& input);         // test

}  // namespace brindlet
