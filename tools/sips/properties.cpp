#include "properties.h"

#include <algorithm>
#include <filesystem>
#include <iterator>

#include <fmt/format.h>

#include "image_file.h"
#include "options.h"
#include "shared/content_types.h"
#include "shared/tool.h"
#include "text/characters.h"
#include "text/strings.h"

namespace brindlet::tools {

namespace {

// What no image's text holds.
constexpr std::string_view separator = "\x1f";
constexpr std::string_view noValue = "<nil>";
constexpr double centimetersInInch = 2.54;
constexpr double usualResolution = 72;

std::string asItIs(const std::string& value) {
    return value;
}

std::string typeOf(const std::string& value) {
    const ImageFormat* format = formatOfImageMagick(value);
    return format ? std::string(format->type) : "";
}

std::string nameOf(const std::string& value) {
    const ImageFormat* format = formatOfImageMagick(value);
    return format ? std::string(format->name) : "";
}

// Of "56.69 PixelsPerCentimeter"; an image may hold none.
std::string dotsPerInch(const std::string& value) {
    const std::size_t blank = value.find(' ');
    const std::string unit = blank == std::string::npos ? "" : value.substr(blank + 1);
    const double number = std::strtod(value.c_str(), nullptr);
    if (!(number > 0) || unit.starts_with("Undefined")) return fmt::format("{:.3f}", usualResolution);
    return fmt::format("{:.3f}", unit.starts_with("PixelsPerCentimeter") ? number * centimetersInInch : number);
}

std::string colorSpace(const std::string& value) {
    if (value == "sRGB" || value == "RGB" || value == "scRGB") return "RGB";
    return value.ends_with("Gray") || value.ends_with("GRAY") ? "Gray" : value;
}

bool hasAlphaChannel(std::string_view channels) {
    return channels.ends_with('a');
}

std::string alpha(const std::string& value) {
    return hasAlphaChannel(value) ? "yes" : "no";
}

std::string samples(const std::string& value) {
    const int colors = value.starts_with("gray") ? 1 : value.starts_with("cmyk") ? 4 : 3;
    return fmt::format("{}", colors + (hasAlphaChannel(value) ? 1 : 0));
}

struct PropertyRow {
    std::string_view name;
    std::string_view escape;  // what asks ImageMagick for it
    std::string (*shown)(const std::string& value) = asItIs;
    bool isInAll = true;
};
constexpr PropertyRow propertyRows[] = {
    {"pixelWidth", "%w"},
    {"pixelHeight", "%h"},
    {"typeIdentifier", "%m", typeOf},
    {"format", "%m", nameOf},
    {"dpiWidth", "%x %U", dotsPerInch},
    {"dpiHeight", "%y %U", dotsPerInch},
    {"samplesPerPixel", "%[channels]", samples},
    {"bitsPerSample", "%z"},
    {"hasAlpha", "%[channels]", alpha},
    {"space", "%[colorspace]", colorSpace},
    {"profile", "%[icc:description]"},
    {"creation", "%[EXIF:DateTimeOriginal]", asItIs, false},
    {"make", "%[EXIF:Make]", asItIs, false},
    {"model", "%[EXIF:Model]", asItIs, false},
    {"software", "%[EXIF:Software]", asItIs, false},
    {"description", "%[EXIF:ImageDescription]", asItIs, false},
    {"copyright", "%[EXIF:Copyright]", asItIs, false},
    {"artist", "%[EXIF:Artist]", asItIs, false},
};

const PropertyRow* propertyCalled(std::string_view name) {
    const auto* const row = std::ranges::find(propertyRows, name, &PropertyRow::name);
    return row == std::end(propertyRows) ? nullptr : row;
}

std::vector<const PropertyRow*> rowsFor(const std::vector<std::string>& names) {
    std::vector<const PropertyRow*> rows;
    for (const std::string& name : names) {
        if (const PropertyRow* row = propertyCalled(name)) {
            rows.push_back(row);
            continue;
        }
        for (const PropertyRow& row : propertyRows)
            if (row.isInAll) rows.push_back(&row);
    }
    return rows;
}

}  // namespace

bool isImageProperty(std::string_view name) {
    return name == "all" || propertyCalled(name) != nullptr;
}

std::string describedProperties(const std::string& image, const std::vector<std::string>& names) {
    const std::string identify = neededProgram("identify", "imagemagick");
    const ImageFile file(image);
    const std::vector<const PropertyRow*> rows = rowsFor(names);
    std::string format;
    for (const PropertyRow* row : rows) format.append(row->escape).append(separator);
    const Captured captured = capture({identify, "-ping", "-format", format, file.frames(Frames::first)});
    const std::vector<std::string> values = split(captured.output, separator);
    if (captured.status != 0 || values.size() != rows.size() + 1)
        throw ToolFailure{fmt::format("'{}' can't be read as an image: {}", image, imageMagickWords(captured.errors))};
    std::string text = std::filesystem::absolute(image).lexically_normal().string() + "\n";
    for (std::size_t at = 0; at < rows.size(); ++at) {
        std::string shown = rows[at]->shown(values[at]);
        if (file.isRendered() && rows[at]->shown == typeOf) shown = contentTypeOf(image).identifier;
        if (file.isRendered() && rows[at]->shown == nameOf)
            shown = lowercased(std::filesystem::path(image).extension().string().substr(1));
        text += fmt::format("  {}: {}\n", rows[at]->name, shown.empty() ? noValue : shown);
    }
    return text;
}

}  // namespace brindlet::tools
