// `fiotraf` tidies a folder: it moves or copies files into a folder for each category. Without "--execute" it only
// prints what it would do; that preview is run for real, and read.
//
//     fiotraf organize . --execute   moves a.pdf to Documents/a.pdf, if the preview says so
#pragma once

#include "analysis/basher_analysis.h"

namespace brindlet {

CommandResult tidyFolder(BasherAnalysis& analysis, const ModelInput& input);

}  // namespace brindlet
