// What a line asks of sips: which properties it shows, and what it makes of the images.
//
//     const SipsRequest request = readSipsRequest({"-Z", "300", "a.png", "--out", "b.jpg"});
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace brindlet::tools {

struct ImageFormat {
    std::string_view name;         // as `-s format` has it
    std::string_view imageMagick;  // as ImageMagick has it
    std::string_view ending;
    std::string_view type;  // its uniform type identifier
    bool isOpaque = false;  // holds no transparency
};

// By its name, another usual name or an ending, in small letters; null where sips writes no such images.
const ImageFormat* formatCalled(std::string_view name);
// By the name that ImageMagick has for what it read.
const ImageFormat* formatOfImageMagick(std::string_view name);

struct SipsRequest {
    bool wantsHelp = false;
    bool wantsVersion = false;
    bool writes = false;
    std::vector<std::string> properties;
    std::vector<std::string> steps;  // ImageMagick's words, in the order of the line
    std::string padColor = "black";
    std::vector<std::string> settings;       // the same, for the writing
    std::optional<std::int64_t> dotsAcross;  // in an inch
    std::optional<std::int64_t> dotsDown;
    const ImageFormat* format = nullptr;
    std::optional<std::string> output;
    std::vector<std::string> images;
};

// A ToolFailure of wrong usage where a word is not understood.
SipsRequest readSipsRequest(const std::vector<std::string>& words);

}  // namespace brindlet::tools
