// The icns format: one file that holds an icon in several sizes, most of them as PNG.
//
// The file begins with "icns" and its length, four bytes each, high byte first; then come entries of a four-letter
// type, their length (those eight bytes counted) and the data.
//
//     const IconFamily family = readIconFamily(bytes);
//     for (const IconEntry& entry : family) ...
#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace brindlet::tools {

// One size of an icon, and how it is called in a folder of images and in the file.
struct IconSize {
    std::string_view name;  // "icon_16x16@2x.png"
    std::string_view type;  // "ic11"
    int pixels = 0;
};
std::span<const IconSize> iconSizes();

struct IconEntry {
    std::string type;
    std::string data;

    bool operator==(const IconEntry&) const = default;
};

std::string iconFamilyText(const std::vector<IconEntry>& entries);
// A ToolFailure where it is none, or cut off.
std::vector<IconEntry> readIconFamily(std::string_view bytes);

struct PixelSize {
    int width = 0;
    int height = 0;
};
// None where it is no PNG.
std::optional<PixelSize> sizeOfPng(std::string_view bytes);

// An entry that holds bare pixels: four bytes each, red first. None where it isn't such an entry, or damaged.
struct IconPixels {
    int side = 0;
    std::string rgba;
};
// `masks` are the other entries of the file: what is transparent stands apart in the old types.
std::optional<IconPixels> iconPixels(const IconEntry& entry, std::span<const IconEntry> masks);

}  // namespace brindlet::tools
