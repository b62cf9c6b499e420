// magick runs ImageMagick under the one name that its version 7 has: the first word says which of its tools is meant.
//
// What it makes is put in its place once it is complete.
//
// Exit codes: that of the tool, 64 wrong usage, 69 ImageMagick is missing.
#include <algorithm>
#include <cctype>
#include <cstdio>
#include <filesystem>
#include <iterator>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <fmt/format.h>

#include "option_names.h"
#include "shared/tool.h"
#include "text/strings.h"

namespace brindlet::tools {

namespace {

namespace fs = std::filesystem;
using Words = std::vector<std::string>;

// Whether the last word of its line names what it makes.
struct ImageTool {
    std::string_view name;
    bool hasOutput = false;
};
constexpr ImageTool imageTools[] = {
    {"convert", true}, {"compare", true}, {"composite", true}, {"identify"}, {"mogrify"}, {"montage", true},
};

// compare says with it that the images differ.
constexpr int statusDifferent = 1;

// What may stand in front of an output's name, with a colon.
constexpr std::string_view outputFormats[] = {
    "avif", "bmp",   "bmp2",  "bmp3", "cmyk", "eps",  "fax", "gif",  "gray", "heic", "histogram", "ico",
    "info", "jp2",   "jpeg",  "jpg",  "json", "miff", "mpc", "null", "pbm",  "pdf",  "pgm",       "pict",
    "png",  "png24", "png32", "png8", "pnm",  "ppm",  "ps",  "psd",  "rgb",  "rgba", "sgi",       "show",
    "svg",  "tga",   "tif",   "tiff", "txt",  "webp", "win", "x",    "xbm",  "xpm",  "yuv",
};

constexpr std::string_view magickHelp =
    "Usage: magick [TOOL] [OPTION | FILE]... OUTPUT\n\n"
    "Makes one image of others, or tells about them, with ImageMagick. TOOL is one of convert (where none is\n"
    "named), compare, composite, identify, mogrify and montage.\n\n"
    "  -list KIND   what it can do: format, color, font, option, ...\n"
    "  -version     the version of ImageMagick\n\n"
    "Example: magick photo.png -resize 50% -rotate 90 small.jpg\n";

bool isKnownOption(std::string_view word) {
    return word.size() > 1 && (word[0] == '-' || word[0] == '+') && !contains(word, " ") &&
           contains(imageMagickOptions, fmt::format(" {} ", word.substr(1)));
}

// "-12" is the value of some option.
bool looksLikeOption(std::string_view word) {
    return word.size() > 1 && word[0] == '-' && std::isalpha(static_cast<unsigned char>(word[1]));
}

bool isThere(const std::string& name) {
    std::error_code error;
    return fs::exists(name, error);
}

// ImageMagick reads "a:b" as an image of the kind a, and "@b" as a list of images.
std::string plainName(const std::string& word) {
    const bool isSpecial = word.find(':') != std::string::npos || word.starts_with('@') || word.starts_with('-');
    return isSpecial && word != "-" && !word.starts_with('/') && isThere(word) ? "./" + word : word;
}

Words checkedWords(const Words& words) {
    Words checked;
    bool isBehindOption = false;
    for (const std::string& word : words) {
        const bool isOption = isKnownOption(word);
        if (isOption || isBehindOption) {
            checked.push_back(word);
        } else if (looksLikeOption(word) && !isThere(word)) {
            throw ToolFailure{fmt::format("ImageMagick 6 has no option '{}'", word), statusWrongUsage};
        } else {
            checked.push_back(plainName(word));
        }
        isBehindOption = isOption;
    }
    return checked;
}

// The last word of a line, taken apart: "png:" and "a/b.png".
struct OutputWord {
    std::string format;
    std::string name;
};

OutputWord takenApart(const std::string& word) {
    const std::size_t colon = word.find(':');
    if (colon == std::string::npos) return {"", word};
    std::string format = word.substr(0, colon);
    std::ranges::transform(format, format.begin(), [](unsigned char byte) { return std::tolower(byte); });
    if (!std::binary_search(std::begin(outputFormats), std::end(outputFormats), format)) return {"", word};
    return {word.substr(0, colon + 1), word.substr(colon + 1)};
}

bool isFile(const OutputWord& output) {
    std::error_code error;
    const fs::file_status status = fs::status(output.name, error);
    const bool isStream = fs::exists(status) && !fs::is_regular_file(status);
    return !output.name.empty() && output.name != "-" && !isStream;
}

// ImageMagick may make several files where one is named ("a.png" becomes "a-0.png" and "a-1.png"), so it works in a
// folder of its own, from which all are taken.
int runInto(const OutputWord& output, Words words, bool mayDiffer) {
    const fs::path place = realPlace(output.name);
    const fs::path folder = place.parent_path().empty() ? "." : place.parent_path();
    const WorkFolder work(folder);
    words.back() = output.format + (work.path() / place.filename()).string();
    const int status = run(words);
    if (status != 0 && !(mayDiffer && status == statusDifferent)) return status;
    bool hasAny = false;
    for (const auto& entry : fs::directory_iterator(work.path())) {
        putInPlace(entry.path(), folder / entry.path().filename());
        hasAny = true;
    }
    if (!hasAny && status == 0) throw ToolFailure{fmt::format("'{}' could not be made", output.name)};
    return status;
}

int runTool(const ImageTool& tool, const Words& arguments) {
    Words words = checkedWords(arguments);
    words.insert(words.begin(), neededProgram(tool.name, "imagemagick"));
    const bool mayHaveOutput =
        tool.hasOutput && arguments.size() > 1 && arguments.front() != "-list" && !isKnownOption(arguments.back());
    const OutputWord output = takenApart(words.back());
    if (!mayHaveOutput || !isFile(output)) return run(words);
    return runInto(output, std::move(words), tool.name == "compare");
}

int magick(const Words& words) {
    if (const auto real = programPath("magick")) {
        Words line = words;
        line.insert(line.begin(), *real);
        return run(line);
    }
    const std::string first = words.empty() ? "--help" : words.front();
    if (first == "-h" || first == "-help" || first == "--help") {
        std::fwrite(magickHelp.data(), 1, magickHelp.size(), stdout);
        return 0;
    }
    if (first == "--version") return runTool(imageTools[0], {"-version"});
    const auto* const tool = std::find_if(std::begin(imageTools), std::end(imageTools),
                                          [&](const ImageTool& row) { return row.name == first; });
    if (tool == std::end(imageTools)) return runTool(imageTools[0], words);
    return runTool(*tool, {words.begin() + 1, words.end()});
}

}  // namespace

}  // namespace brindlet::tools

int main(int count, char** words) {
    return brindlet::tools::toolMain("magick", count, words, brindlet::tools::magick);
}
