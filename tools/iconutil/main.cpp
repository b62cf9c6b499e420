// iconutil makes an icns file of a folder of images, and such a folder of an icns file.
//
// Exit codes: 0 done, 1 it couldn't be made, 64 wrong usage, 69 ImageMagick is missing (for old icons only).
#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <optional>

#include <fmt/format.h>

#include "icon_family.h"
#include "shared/command_line.h"
#include "shared/tool.h"
#include "text/characters.h"

namespace brindlet::tools {

namespace {

namespace fs = std::filesystem;

constexpr OptionRow iconutilOptions[] = {{"-c", true}, {"--convert", true}, {"-o", true}, {"--output", true},
                                         {"-h"},       {"--help"}};

constexpr std::string_view iconutilHelp =
    "Usage: iconutil -c icns [-o FILE] FOLDER.iconset\n"
    "       iconutil -c iconset [-o FOLDER] FILE.icns\n\n"
    "Makes an icon file of a folder of PNG images, or the folder of the file; beside it, unless -o says where.\n"
    "The images are called icon_16x16.png, icon_16x16@2x.png, ..., with 16, 32, 128, 256 and 512. One of another name\n"
    "takes the place that its size fits.\n";

constexpr std::uintmax_t mostImageBytes = std::uintmax_t{64} << 20;

std::string contentOf(const fs::path& file) {
    std::error_code error;
    if (const auto size = fs::file_size(file, error); error || size > mostImageBytes)
        throw ToolFailure{fmt::format("'{}': {}", file.string(), error ? error.message() : "it is too large")};
    std::ifstream stream(file, std::ios::binary);
    std::string content{std::istreambuf_iterator<char>(stream), {}};
    if (!stream.is_open()) throw ToolFailure{fmt::format("'{}' can't be read", file.string())};
    return content;
}

void writeFile(const fs::path& place, std::string_view content) {
    Output output(place);
    std::ofstream stream(output.path(), std::ios::binary);
    stream << content;
    stream.close();
    if (!stream) throw ToolFailure{fmt::format("'{}' can't be written", place.string())};
    output.keep();
}

// The images by their types. A square of the right size may have any name, if none has the right name.
class IconCollector {
  public:
    void take(const fs::path& file) {
        const std::string content = contentOf(file);
        const auto size = sizeOfPng(content);
        const auto named = std::ranges::find(iconSizes(), std::string_view(file.filename().native()), &IconSize::name);
        if (named != iconSizes().end()) {
            if (!size || size->width != named->pixels || size->height != named->pixels)
                throw ToolFailure{
                    fmt::format("'{}' is no PNG of {} by {} pixels", file.string(), named->pixels, named->pixels)};
            byType_[named->type] = content;
        } else if (size && size->width == size->height) {
            others_[size->width] = content;
        }
    }

    std::vector<IconEntry> entries() const {
        std::vector<IconEntry> entries;
        for (const IconSize& size : iconSizes()) {
            const auto named = byType_.find(size.type);
            const auto other = others_.find(size.pixels);
            if (named != byType_.end()) {
                entries.push_back({std::string(size.type), named->second});
            } else if (other != others_.end() && isUsualOfItsSize(size)) {
                entries.push_back({std::string(size.type), other->second});
            }
        }
        return entries;
    }

  private:
    // "@2x" is used for a size that is called nothing else.
    static bool isUsualOfItsSize(const IconSize& size) {
        return std::ranges::none_of(iconSizes(), [&](const IconSize& other) {
            return other.pixels == size.pixels && other.name.size() < size.name.size();
        });
    }

    std::map<std::string_view, std::string> byType_;
    std::map<int, std::string> others_;
};

void makeIcns(const fs::path& folder, const fs::path& place) {
    std::error_code error;
    if (!fs::is_directory(folder, error))
        throw ToolFailure{fmt::format("{} is not a .iconset directory", folder.string())};
    std::vector<fs::path> files;
    for (const auto& entry : fs::directory_iterator(folder))
        if (entry.is_regular_file()) files.push_back(entry.path());
    std::ranges::sort(files);
    IconCollector images;
    for (const fs::path& file : files) images.take(file);
    const std::vector<IconEntry> entries = images.entries();
    if (entries.empty())
        throw ToolFailure{
            fmt::format("'{}' holds no square PNG of 16, 32, 64, 128, 256, 512 or 1024 pixels", folder.string())};
    if (!place.parent_path().empty()) fs::create_directories(place.parent_path());
    writeFile(place, iconFamilyText(entries));
}

std::string converted(const std::vector<std::string>& words, std::string_view input) {
    std::vector<std::string> line{neededProgram("convert", "imagemagick")};
    line.insert(line.end(), words.begin(), words.end());
    const Captured captured = capture(line, input);
    return captured.status == 0 ? captured.output : "";
}

// As PNG; empty where it is no image, or of a kind that is not known.
std::string pngOf(const IconEntry& entry, std::span<const IconEntry> all) {
    constexpr std::string_view jpeg2000Marks[] = {{"\0\0\0\x0cjP  ", 8}, {"\xff\x4f\xff\x51", 4}};
    if (sizeOfPng(entry.data)) return entry.data;
    if (const auto pixels = iconPixels(entry, all))
        return converted({"-depth", "8", "-size", fmt::format("{0}x{0}", pixels->side), "rgba:-", "png:-"},
                         pixels->rgba);
    const bool isJpeg2000 =
        std::ranges::any_of(jpeg2000Marks, [&](std::string_view mark) { return entry.data.starts_with(mark); });
    return isJpeg2000 ? converted({"jp2:-", "png:-"}, entry.data) : "";
}

// The name that it has in a folder of images.
std::optional<std::string> imageName(const IconEntry& entry, const std::string& png) {
    const auto known = std::ranges::find(iconSizes(), std::string_view(entry.type), &IconSize::type);
    if (known != iconSizes().end()) return std::string(known->name);
    const auto size = sizeOfPng(png);
    return size ? std::optional(fmt::format("icon_{}x{}.png", size->width, size->height)) : std::nullopt;
}

void makeIconset(const fs::path& file, const fs::path& place) {
    std::error_code error;
    if (fs::is_directory(file, error)) throw ToolFailure{fmt::format("{} is a directory", file.string())};
    const std::vector<IconEntry> entries = readIconFamily(contentOf(file));
    const fs::path parent = place.parent_path().empty() ? "." : place.parent_path();
    fs::create_directories(parent);
    const WorkFolder work(parent);
    const fs::path folder = work.path() / "images";
    fs::create_directory(folder);
    bool hasAny = false;
    for (const IconEntry& entry : entries) {
        const std::string png = pngOf(entry, entries);
        const auto name = png.empty() ? std::nullopt : imageName(entry, png);
        // An old entry of a size stands beside the new one.
        if (!name || fs::exists(folder / *name)) continue;
        writeFile(folder / *name, png);
        hasAny = true;
    }
    if (!hasAny) throw ToolFailure{fmt::format("'{}' holds no image that can be read", file.string())};
    if (!fs::exists(place)) return fs::rename(folder, place);
    for (const auto& entry : fs::directory_iterator(folder)) putInPlace(entry.path(), place / entry.path().filename());
}

std::string conversion(const CommandLine& line) {
    auto type = line.value("--convert");
    if (const auto brief = line.value("-c")) {
        if (type && lowercased(*type) != lowercased(*brief))
            throw ToolFailure{"conflicting conversion types supplied", statusWrongUsage};
        type = brief;
    }
    if (!type) throw ToolFailure{"missing -c {icns|iconset}", statusWrongUsage};
    const std::string name = lowercased(*type);
    if (name != "icns" && name != "iconset")
        throw ToolFailure{fmt::format("unknown conversion type '{}'", *type), statusWrongUsage};
    return name;
}

int iconutil(const std::vector<std::string>& words) {
    const CommandLine line = readCommandLine(words, iconutilOptions);
    if (line.has("-h") || line.has("--help")) {
        std::fwrite(iconutilHelp.data(), 1, iconutilHelp.size(), stdout);
        return 0;
    }
    const std::string type = conversion(line);
    if (line.operands.empty()) throw ToolFailure{"missing input file", statusWrongUsage};
    if (line.operands.size() > 1)
        throw ToolFailure{fmt::format("extra argument '{}'", line.operands[1]), statusWrongUsage};
    // A folder may have been completed with its slash.
    fs::path input = line.operands.front();
    if (input.filename().empty()) input = input.parent_path();
    const std::string source = lowercased(std::string(input.extension()));
    if (source == ".car") throw ToolFailure{"catalogues of assets can't be read here", statusWrongUsage};
    if (source != ".iconset" && source != ".icns")
        throw ToolFailure{fmt::format("unsupported source type '{}'", source), statusWrongUsage};
    if (source == "." + type) throw ToolFailure{fmt::format("cannot convert {} to {}", type, type), statusWrongUsage};
    std::error_code error;
    if (!fs::exists(input, error)) throw ToolFailure{fmt::format("{}: No such file or directory", input.string())};
    auto output = line.value("-o");
    if (!output) output = line.value("--output");
    const fs::path place = output ? fs::path(*output) : fs::path(input).replace_extension(type);
    if (type == "icns") {
        makeIcns(input, place);
    } else {
        if (fs::exists(place, error) && !fs::is_directory(place, error))
            throw ToolFailure{fmt::format("output path '{}' is not a directory", place.string())};
        makeIconset(input, place);
    }
    return 0;
}

}  // namespace

}  // namespace brindlet::tools

int main(int count, char** words) {
    return brindlet::tools::toolMain("iconutil", count, words, brindlet::tools::iconutil);
}
