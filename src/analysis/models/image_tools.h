// The models of the image tools: which files they read and make. No image is looked into.
//
//     {"convert", runUnderMagick},  // `convert a.png b.jpg` runs as `magick convert a.png b.jpg`
//     {"magick", magick},
#pragma once

#include "analysis/command_table.h"

namespace brindlet {

CommandResult magick(BasherAnalysis& analysis, const ModelInput& input);
// convert, mogrify, identify, compare, montage, composite: the tools of magick by the names that they have of old.
CommandResult runUnderMagick(BasherAnalysis& analysis, const ModelInput& input);
CommandResult sips(BasherAnalysis& analysis, const ModelInput& input);
CommandResult gifsicle(BasherAnalysis& analysis, const ModelInput& input);
CommandResult iconutil(BasherAnalysis& analysis, const ModelInput& input);

}  // namespace brindlet
