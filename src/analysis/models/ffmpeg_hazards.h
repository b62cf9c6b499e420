// What ffmpeg and ffprobe may do beyond what the reading of their words shows: outputs that don't look like files,
// options and filters that write, inputs that are no files.
//
//     ffmpegHazards({"-i", "a.mov", "out%03d.png"}, parsed)
//         // {unknownFileChanges "ffmpeg may create more files than 'out%03d.png'"}
#pragma once

#include <string>
#include <vector>

#include "analysis/models/ffmpeg_arguments.h"
#include "analysis/side_effect.h"

namespace brindlet {

std::vector<SideEffect> ffmpegHazards(const std::vector<std::string>& words, const FFmpegParsedArguments& parsed);
std::vector<SideEffect> ffprobeHazards(const std::vector<std::string>& words);

// Said of an input that isn't there although ffmpeg may get something from it: "pipe:0", "https://...", "img%03d.png".
std::vector<SideEffect> missingInputHazards(const std::vector<std::string>& words, const std::string& input);

}  // namespace brindlet
