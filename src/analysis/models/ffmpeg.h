// The models of the video tools: which files they read and make. No film is looked into.
//
//     {"ffmpeg", convertMedia}
#pragma once

#include "analysis/command_table.h"

namespace brindlet {

CommandResult convertMedia(BasherAnalysis& analysis, const ModelInput& input);     // ffmpeg
CommandResult probeMedia(BasherAnalysis& analysis, const ModelInput& input);       // ffprobe
CommandResult makeAnimatedGif(BasherAnalysis& analysis, const ModelInput& input);  // brindlet_animated_gif

}  // namespace brindlet
