// sips prints properties of images, and changes images: their format, their size, their orientation.
//
// Exit codes: 0 done, 1 an image couldn't be read or written, 64 wrong usage, 69 ImageMagick is missing.
#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>

#include <fmt/format.h>

#include "image_file.h"
#include "options.h"
#include "properties.h"
#include "shared/tool.h"
#include "text/characters.h"

namespace brindlet::tools {

namespace {

namespace fs = std::filesystem;

constexpr std::string_view sipsVersion = "sips 1, over ImageMagick";

constexpr std::string_view sipsHelp =
    "Usage: sips [-g PROPERTY]... [CHANGE]... IMAGE... [--out FILE | FOLDER]\n\n"
    "Prints properties of images and changes images; without --out, in their place.\n\n"
    "  -g, --getProperty PROPERTY           pixelWidth, pixelHeight, dpiWidth, dpiHeight, space, format, all, ...\n"
    "  -s, --setProperty format FORMAT      jpeg, png, tiff, gif, jp2, pict, bmp, psd, sgi, tga, heic, avif, webp, "
    "ico\n"
    "  -s formatOptions VALUE               low, normal, high, best, a percentage; lzw, packbits\n"
    "  -s dpiWidth N, -s dpiHeight N        the resolution that is told of it\n"
    "  -Z, --resampleHeightWidthMax N       as large as fits into a square\n"
    "  -z, --resampleHeightWidth H W        exactly that size\n"
    "      --resampleWidth W                that width, the height follows\n"
    "      --resampleHeight H               that height, the width follows\n"
    "  -r, --rotate DEGREES                 clockwise\n"
    "  -f, --flip horizontal | vertical\n"
    "  -c, --cropToHeightWidth H W          the middle of it\n"
    "  -p, --padToHeightWidth H W           with a margin, in the color of --padColor RRGGBB\n"
    "      --deleteColorManagementProperties\n"
    "  -h, --help; -v, --version\n";

// What an ending says; none where it isn't that of a format.
const ImageFormat* formatByEnding(const fs::path& name) {
    const std::string ending = name.extension();
    return ending.empty() ? nullptr : formatCalled(lowercased(std::string_view(ending).substr(1)));
}

fs::path outputPlace(const SipsRequest& request, const std::string& image) {
    if (!request.output) return image;
    std::error_code error;
    if (!fs::is_directory(*request.output, error)) return *request.output;
    fs::path name = fs::path(image).filename();
    if (request.format && formatByEnding(name) != request.format)
        name.replace_extension("." + std::string(request.format->ending));
    return *request.output / name;
}

// As asked, else as the output's name says, else as the image is.
const ImageFormat& outputFormat(const SipsRequest& request, const std::string& image, const fs::path& place) {
    if (request.format) return *request.format;
    const ImageFormat* const format = formatByEnding(place) ? formatByEnding(place) : formatByEnding(image);
    if (format) return *format;
    throw ToolFailure{fmt::format("'{}': say with -s format which format it is to have", place.string()),
                      statusWrongUsage};
}

void append(std::vector<std::string>& words, const std::vector<std::string>& more) {
    words.insert(words.end(), more.begin(), more.end());
}

std::vector<std::string> convertWords(const SipsRequest& request, const ImageFile& source, bool keepsFrames,
                                      const ImageFormat& format) {
    std::vector<std::string> words{neededProgram("convert", "imagemagick"),
                                   source.frames(keepsFrames ? Frames::all : Frames::first)};
    if (keepsFrames) words.emplace_back("-coalesce");
    // What a camera has only noted is done, so that sizes and angles mean what one sees.
    append(words, {"-auto-orient", "-background", request.padColor});
    append(words, request.steps);
    if (format.isOpaque) append(words, {"-background", "white", "-alpha", "remove", "-alpha", "off"});
    if (keepsFrames) append(words, {"-layers", "optimize"});
    // A photo's own compression would else go on in it.
    if (format.name == "tiff") append(words, {"-compress", "LZW"});
    append(words, request.settings);
    if (request.dotsAcross || request.dotsDown) {
        const auto across = request.dotsAcross ? request.dotsAcross : request.dotsDown;
        const auto down = request.dotsDown ? request.dotsDown : across;
        append(words, {"-units", "PixelsPerInch", "-density", fmt::format("{}x{}", *across, *down)});
    }
    return words;
}

void makeImage(const SipsRequest& request, const std::string& image) {
    const ImageFile source(image);
    const fs::path place = outputPlace(request, image);
    const ImageFormat& format = outputFormat(request, image, place);
    const bool isAnimation = format.name == "gif" && formatByEnding(image) == &format;
    Output output(place);
    // By its number, since in a name ImageMagick would read a "%d".
    const int file = ::open(output.path().c_str(), O_WRONLY | O_CREAT, 0666);
    if (file < 0) throw ToolFailure{fmt::format("'{}' can't be written: {}", place.string(), std::strerror(errno))};
    std::vector<std::string> words = convertWords(request, source, isAnimation, format);
    words.push_back(fmt::format("{}:/proc/self/fd/{}", format.imageMagick, file));
    const Captured captured = capture(words);
    ::close(file);
    if (captured.status != 0)
        throw ToolFailure{fmt::format("'{}' can't be converted: {}", image, imageMagickWords(captured.errors))};
    output.keep();
}

void treatImage(const SipsRequest& request, const std::string& image) {
    if (!request.properties.empty()) {
        const std::string text = describedProperties(image, request.properties);
        std::fwrite(text.data(), 1, text.size(), stdout);
    }
    if (request.writes) makeImage(request, image);
}

int sips(const std::vector<std::string>& words) {
    const SipsRequest request = readSipsRequest(words);
    if (request.wantsHelp || request.wantsVersion || words.empty()) {
        std::fputs(request.wantsVersion ? fmt::format("{}\n", sipsVersion).c_str() : sipsHelp.data(), stdout);
        return 0;
    }
    if (request.images.empty()) throw ToolFailure{"which image? (see sips --help)", statusWrongUsage};
    if (!request.writes && request.properties.empty())
        throw ToolFailure{"what is to be done with it? (see sips --help)", statusWrongUsage};
    std::error_code error;
    if (request.images.size() > 1 && request.output && !fs::is_directory(*request.output, error))
        throw ToolFailure{"for several images, --out has to be a folder that is there", statusWrongUsage};
    int status = 0;
    for (const std::string& image : request.images) {
        try {
            treatImage(request, image);
        } catch (const ToolFailure& failure) {
            if (failure.status != 1 || request.images.size() == 1) throw;
            std::fflush(stdout);
            complain("sips", failure.sentence);
            status = failure.status;
        }
    }
    return status;
}

}  // namespace

}  // namespace brindlet::tools

int main(int count, char** words) {
    return brindlet::tools::toolMain("sips", count, words, brindlet::tools::sips);
}
