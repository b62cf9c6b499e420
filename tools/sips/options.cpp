#include "options.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <filesystem>
#include <iterator>
#include <span>
#include <system_error>

#include <fmt/format.h>

#include "properties.h"
#include "shared/tool.h"
#include "text/characters.h"
#include "text/strings.h"

namespace brindlet::tools {

namespace {

using Values = std::span<const std::string>;

constexpr ImageFormat formats[] = {
    {"jpeg", "JPEG", "jpg", "public.jpeg", true},     {"png", "PNG", "png", "public.png"},
    {"tiff", "TIFF", "tiff", "public.tiff"},          {"gif", "GIF", "gif", "com.compuserve.gif"},
    {"jp2", "JP2", "jp2", "public.jpeg-2000"},        {"pict", "PICT", "pict", "com.apple.pict", true},
    {"bmp", "BMP", "bmp", "com.microsoft.bmp", true}, {"psd", "PSD", "psd", "com.adobe.photoshop-image"},
    {"sgi", "SGI", "sgi", "com.sgi.sgi-image"},       {"tga", "TGA", "tga", "com.truevision.tga-image"},
    {"heic", "HEIC", "heic", "public.heic"},          {"avif", "AVIF", "avif", "public.avif"},
    {"webp", "WEBP", "webp", "org.webmproject.webp"}, {"ico", "ICO", "ico", "com.microsoft.ico"},
};

struct OtherName {
    std::string_view name, format;
};
constexpr OtherName otherNames[] = {
    {"jpg", "jpeg"}, {"tif", "tiff"}, {"heif", "heic"}, {"jpx", "jp2"}, {"j2k", "jp2"}, {"j2c", "jp2"}, {"pct", "pict"},
};

// What people ask for, and what makes it here.
constexpr OtherName unwritten[] = {
    {"pdf", "no PDF is written here; img2pdf makes one of images (Debian package img2pdf)"},
    {"icns", "no icns is written here; iconutil makes one of a folder of images"},
};

constexpr OtherName qualities[] = {{"low", "25"}, {"normal", "50"}, {"high", "75"}, {"best", "100"}};
constexpr std::string_view compressions[] = {"lzw", "packbits"};

// ImageMagick's own limit as Debian sets it.
constexpr std::int64_t mostPixels = 16000;
constexpr std::int64_t mostDots = 100'000;

[[noreturn]] void refuse(const std::string& sentence) {
    throw ToolFailure{sentence, statusWrongUsage};
}

std::int64_t wholeNumber(const std::string& text, std::int64_t least, std::int64_t most) {
    const auto number = parsedInteger(text);
    if (!number || *number < least || *number > most)
        refuse(fmt::format("'{}' is no whole number from {} to {}", text, least, most));
    return *number;
}

std::int64_t pixels(const std::string& text) {
    return wholeNumber(text, 1, mostPixels);
}

void addSteps(SipsRequest& request, std::initializer_list<std::string> words) {
    request.steps.insert(request.steps.end(), words);
    request.writes = true;
}

void askProperty(SipsRequest& request, Values values) {
    if (!isImageProperty(values[0])) refuse(fmt::format("there is no property '{}'", values[0]));
    request.properties.push_back(values[0]);
}

void setFormat(SipsRequest& request, const std::string& value) {
    const std::string name = lowercased(value);
    request.format = formatCalled(name);
    if (request.format) return;
    const auto* const hint = std::ranges::find(unwritten, name, &OtherName::name);
    refuse(hint == std::end(unwritten) ? fmt::format("'{}' is no format that is written here", value)
                                       : std::string(hint->format));
}

void setFormatOptions(SipsRequest& request, const std::string& value) {
    if (value == "default") return;
    if (std::ranges::find(compressions, value) != std::end(compressions)) {
        const std::string_view name = value == "lzw" ? "LZW" : "RLE";
        request.settings.insert(request.settings.end(), {"-compress", std::string(name)});
        return;
    }
    const auto* const row = std::ranges::find(qualities, value, &OtherName::name);
    const std::string percent = row != std::end(qualities) ? std::string(row->format)
                                : value.ends_with('%')     ? value.substr(0, value.size() - 1)
                                                           : value;
    request.settings.insert(request.settings.end(), {"-quality", fmt::format("{}", wholeNumber(percent, 0, 100))});
}

void setResolution(std::optional<std::int64_t>& dots, const std::string& value) {
    dots = wholeNumber(value, 1, mostDots);
}

void setProperty(SipsRequest& request, Values values) {
    request.writes = true;
    const std::string& name = values[0];
    if (name == "format") {
        setFormat(request, values[1]);
    } else if (name == "formatOptions") {
        setFormatOptions(request, values[1]);
    } else if (name == "dpiWidth") {
        setResolution(request.dotsAcross, values[1]);
    } else if (name == "dpiHeight") {
        setResolution(request.dotsDown, values[1]);
    } else {
        refuse(fmt::format("the property '{}' can't be set here; exiftool can", name));
    }
}

void rotate(SipsRequest& request, Values values) {
    double degrees = 0;
    const char* const end = values[0].data() + values[0].size();
    const auto [stop, error] = std::from_chars(values[0].data(), end, degrees, std::chars_format::fixed);
    if (error != std::errc() || stop != end || !std::isfinite(degrees))
        refuse(fmt::format("'{}' is no angle in degrees", values[0]));
    addSteps(request, {"-rotate", fmt::format("{}", degrees), "+repage"});
}

void flip(SipsRequest& request, Values values) {
    const bool isHorizontal = values[0] == "horizontal";
    if (!isHorizontal && values[0] != "vertical")
        refuse(fmt::format("an image is flipped horizontal or vertical, not '{}'", values[0]));
    addSteps(request, {isHorizontal ? "-flop" : "-flip"});
}

void resize(SipsRequest& request, Values values) {
    addSteps(request, {"-resize", fmt::format("{}x{}!", pixels(values[1]), pixels(values[0]))});
}

void resizeWithin(SipsRequest& request, Values values) {
    addSteps(request, {"-resize", fmt::format("{0}x{0}", pixels(values[0]))});
}

void resizeToWidth(SipsRequest& request, Values values) {
    addSteps(request, {"-resize", fmt::format("{}x", pixels(values[0]))});
}

void resizeToHeight(SipsRequest& request, Values values) {
    addSteps(request, {"-resize", fmt::format("x{}", pixels(values[0]))});
}

void crop(SipsRequest& request, Values values) {
    const std::string area = fmt::format("{}x{}+0+0", pixels(values[1]), pixels(values[0]));
    addSteps(request, {"-gravity", "center", "-crop", area, "+repage"});
}

void pad(SipsRequest& request, Values values) {
    const std::string area = fmt::format("{}x{}", pixels(values[1]), pixels(values[0]));
    addSteps(request, {"-gravity", "center", "-extent", area});
}

void setPadColor(SipsRequest& request, Values values) {
    const bool isHex =
        values[0].size() == 6 && values[0].find_first_not_of("0123456789abcdefABCDEF") == std::string::npos;
    if (!isHex) refuse(fmt::format("'{}' is no color of six hexadecimal digits", values[0]));
    request.padColor = "#" + values[0];
}

void dropProfile(SipsRequest& request, Values) {
    addSteps(request, {"+profile", "icc"});
}

void setOutput(SipsRequest& request, Values values) {
    request.output = values[0];
    request.writes = true;
}

void wantHelp(SipsRequest& request, Values) {
    request.wantsHelp = true;
}

void wantVersion(SipsRequest& request, Values) {
    request.wantsVersion = true;
}

struct SipsOption {
    std::string_view name, longName;
    std::size_t valueCount;
    void (*take)(SipsRequest& request, Values values);
};
constexpr SipsOption options[] = {
    {"-g", "--getProperty", 1, askProperty},
    {"-s", "--setProperty", 2, setProperty},
    {"-r", "--rotate", 1, rotate},
    {"-f", "--flip", 1, flip},
    {"-z", "--resampleHeightWidth", 2, resize},
    {"-Z", "--resampleHeightWidthMax", 1, resizeWithin},
    {"", "--resampleWidth", 1, resizeToWidth},
    {"", "--resampleHeight", 1, resizeToHeight},
    {"-c", "--cropToHeightWidth", 2, crop},
    {"-p", "--padToHeightWidth", 2, pad},
    {"", "--padColor", 1, setPadColor},
    {"", "--deleteColorManagementProperties", 0, dropProfile},
    {"-o", "--out", 1, setOutput},
    {"-h", "--help", 0, wantHelp},
    {"-v", "--version", 0, wantVersion},
};

const SipsOption* optionCalled(std::string_view word) {
    const auto* const row = std::ranges::find_if(
        options, [&](const SipsOption& option) { return option.name == word || option.longName == word; });
    return row == std::end(options) ? nullptr : row;
}

}  // namespace

const ImageFormat* formatCalled(std::string_view name) {
    const auto* const other = std::ranges::find(otherNames, name, &OtherName::name);
    const std::string_view usual = other == std::end(otherNames) ? name : other->format;
    const auto* const row = std::ranges::find(formats, usual, &ImageFormat::name);
    return row == std::end(formats) ? nullptr : row;
}

const ImageFormat* formatOfImageMagick(std::string_view name) {
    const auto* const row = std::ranges::find(formats, name, &ImageFormat::imageMagick);
    return row == std::end(formats) ? nullptr : row;
}

SipsRequest readSipsRequest(const std::vector<std::string>& words) {
    SipsRequest request;
    for (std::size_t at = 0; at < words.size(); ++at) {
        const std::string& word = words[at];
        if (word == "--") {
            request.images.insert(request.images.end(), words.begin() + static_cast<std::ptrdiff_t>(at) + 1,
                                  words.end());
            break;
        }
        const SipsOption* const option = word.starts_with('-') ? optionCalled(word) : nullptr;
        // "$FILE_NAME" may be "-photo.jpg".
        std::error_code error;
        if (!option && (!word.starts_with('-') || std::filesystem::is_regular_file(word, error))) {
            request.images.push_back(word);
            continue;
        }
        if (!option) refuse(fmt::format("the option '{}' is not known here", word));
        if (words.size() - at - 1 < option->valueCount)
            refuse(fmt::format("the option '{}' needs {} behind it", word,
                               option->valueCount == 1 ? "a value" : "two values"));
        option->take(request, Values(words).subspan(at + 1, option->valueCount));
        at += option->valueCount;
    }
    return request;
}

}  // namespace brindlet::tools
