// Drawings, documents and the raw data of cameras, which other programs turn into an image.
//
//     if (const Renderer* renderer = rendererFor("plan.pdf")) render(*renderer, "plan.pdf", "/tmp/x/image");
#pragma once

#include <filesystem>
#include <string_view>

namespace brindlet::tools {

struct Renderer {
    std::string_view endings;  // of what it reads, separated by blanks
    std::string_view program, package;
    std::string_view options;  // with which it prints an image of the file that is named behind them
};

// By the file's ending; null where ImageMagick reads it by itself.
const Renderer* rendererFor(const std::filesystem::path& file);

// The first page, a point becoming a pixel, or the whole picture. A ToolFailure where the program is missing or can't
// read the file.
void render(const Renderer& renderer, const std::filesystem::path& file, const std::filesystem::path& place);

}  // namespace brindlet::tools
