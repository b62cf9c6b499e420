#include "icon_family.h"

#include <algorithm>
#include <cstdint>
#include <iterator>

#include "shared/tool.h"

namespace brindlet::tools {

namespace {

constexpr std::size_t headerLength = 8;
constexpr std::string_view pngMark = "\x89PNG\r\n\x1a\n";

constexpr IconSize sizes[] = {
    {"icon_16x16.png", "icp4", 16},        {"icon_16x16@2x.png", "ic11", 32},    {"icon_32x32.png", "icp5", 32},
    {"icon_32x32@2x.png", "ic12", 64},     {"icon_128x128.png", "ic07", 128},    {"icon_128x128@2x.png", "ic13", 256},
    {"icon_256x256.png", "ic08", 256},     {"icon_256x256@2x.png", "ic14", 512}, {"icon_512x512.png", "ic09", 512},
    {"icon_512x512@2x.png", "ic10", 1024},
};

// Types that hold each color in a plane of its own, packed; the transparency may be in an entry of another type.
struct PackedType {
    std::string_view type;
    int side;
    int planes;
    std::string_view mask;  // "" where it is the first plane, behind the word "ARGB"
    std::size_t skipped = 0;
};
constexpr PackedType packedTypes[] = {
    {"is32", 16, 3, "s8mk"},     {"il32", 32, 3, "l8mk"}, {"ih32", 48, 3, "h8mk"},
    {"it32", 128, 3, "t8mk", 4}, {"ic04", 16, 4, "", 4},  {"ic05", 32, 4, "", 4},
};

std::uint32_t numberAt(std::string_view bytes, std::size_t at) {
    std::uint32_t number = 0;
    for (std::size_t offset = 0; offset < 4; ++offset)
        number = (number << 8) | static_cast<unsigned char>(bytes[at + offset]);
    return number;
}

std::string bigEndian(std::size_t number) {
    std::string bytes;
    for (int shift = 24; shift >= 0; shift -= 8) bytes += static_cast<char>((number >> shift) & 0xFF);
    return bytes;
}

// A length byte below 128 says how many bytes follow, less one; else the next byte stands for 3 to 130 of its kind.
std::optional<std::string> unpacked(std::string_view bytes, std::size_t length) {
    std::string plain;
    plain.reserve(length);
    for (std::size_t at = 0; plain.size() < length && at + 1 < bytes.size();) {
        const auto count = static_cast<unsigned char>(bytes[at++]);
        if (count < 128) {
            plain += bytes.substr(at, count + std::size_t{1});
            at += count + std::size_t{1};
        } else {
            plain.append(count - std::size_t{125}, bytes[at++]);
        }
    }
    if (plain.size() < length) return std::nullopt;
    plain.resize(length);
    return plain;
}

}  // namespace

std::span<const IconSize> iconSizes() {
    return sizes;
}

std::string iconFamilyText(const std::vector<IconEntry>& entries) {
    std::string body;
    for (const IconEntry& entry : entries)
        body += entry.type + bigEndian(entry.data.size() + headerLength) + entry.data;
    return "icns" + bigEndian(body.size() + headerLength) + body;
}

std::vector<IconEntry> readIconFamily(std::string_view bytes) {
    const ToolFailure damaged{"the icon file is damaged"};
    if (bytes.size() < headerLength || !bytes.starts_with("icns")) throw ToolFailure{"it is no icns file"};
    const std::size_t end = numberAt(bytes, 4);
    if (end > bytes.size()) throw damaged;
    std::vector<IconEntry> entries;
    for (std::size_t at = headerLength; at < end;) {
        if (end - at < headerLength) throw damaged;
        const std::size_t length = numberAt(bytes, at + 4);
        if (length < headerLength || length > end - at) throw damaged;
        entries.push_back(
            {std::string(bytes.substr(at, 4)), std::string(bytes.substr(at + headerLength, length - headerLength))});
        at += length;
    }
    return entries;
}

std::optional<PixelSize> sizeOfPng(std::string_view bytes) {
    constexpr std::size_t endOfSize = 24;
    constexpr std::uint32_t mostSide = 1U << 20;
    if (bytes.size() < endOfSize || !bytes.starts_with(pngMark) || bytes.substr(12, 4) != "IHDR") return std::nullopt;
    const std::uint32_t width = numberAt(bytes, 16);
    const std::uint32_t height = numberAt(bytes, 20);
    if (width > mostSide || height > mostSide) return std::nullopt;
    return PixelSize{static_cast<int>(width), static_cast<int>(height)};
}

std::optional<IconPixels> iconPixels(const IconEntry& entry, std::span<const IconEntry> masks) {
    const auto* const row = std::ranges::find(packedTypes, entry.type, &PackedType::type);
    if (row == std::end(packedTypes) || entry.data.size() < row->skipped) return std::nullopt;
    const auto area = static_cast<std::size_t>(row->side) * static_cast<std::size_t>(row->side);
    const auto planes =
        unpacked(std::string_view(entry.data).substr(row->skipped), area * static_cast<std::size_t>(row->planes));
    if (!planes) return std::nullopt;
    const bool hasOwnAlpha = row->mask.empty();
    const auto mask = std::ranges::find(masks, row->mask, &IconEntry::type);
    const bool hasMask = mask != masks.end() && mask->data.size() == area;
    const std::size_t colors = hasOwnAlpha ? area : 0;
    IconPixels pixels{.side = row->side, .rgba = {}};
    for (std::size_t at = 0; at < area; ++at) {
        for (std::size_t color = 0; color < 3; ++color) pixels.rgba += (*planes)[colors + color * area + at];
        pixels.rgba += hasOwnAlpha ? (*planes)[at] : hasMask ? mask->data[at] : '\xff';
    }
    return pixels;
}

}  // namespace brindlet::tools
