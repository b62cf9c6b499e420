// What an ffmpeg command line asks for: which files go in, which come out, and whether it is well formed.
//
//     FFmpegArgumentParser::parse({"-i", "in.mov", "-b:v", "2M", "out.mp4"}).videoBitrate  // 2000000
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace brindlet {

struct FFmpegParsedArguments {
    std::string inputPath;   // the first input
    std::string outputPath;  // the last output
    std::vector<std::string> inputPaths;
    std::vector<std::string> outputPaths;     // the words at the end that look like file names
    std::optional<std::int64_t> targetWidth;  // from a plain scale filter or from -s
    std::optional<std::int64_t> targetHeight;
    std::optional<std::int64_t> videoBitrate;  // bits per second, as the audio's
    std::optional<std::string> videoCodec;
    std::optional<std::int64_t> audioBitrate;
    std::optional<std::int64_t> audioChannels;
    std::optional<std::int64_t> sampleRate;
    std::optional<std::string> audioCodec;
    bool overwriteOutput = false;
    bool noOverwrite = false;
    std::optional<std::string> rawVideoFilter;  // a video filter that is more than a plain scale
    bool operator==(const FFmpegParsedArguments&) const = default;
};

struct FFmpegParseError {
    std::string invalidUsage;
    const std::string& errorDescription() const { return invalidUsage; }
};

struct FFmpegArgumentParser {
    FFmpegArgumentParser() = delete;

    // Throws the FFmpegParseError of the first fault.
    static FFmpegParsedArguments parse(std::vector<std::string> words);

    // Takes each "-i" out of the words, with its value if it has one that doesn't begin with "-". Returns the values.
    static std::vector<std::string> takeInputs(std::vector<std::string>& words);
};

}  // namespace brindlet
