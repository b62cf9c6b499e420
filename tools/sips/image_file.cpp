#include "image_file.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <iterator>

#include <fmt/format.h>

#include "shared/tool.h"
#include "text/strings.h"

namespace brindlet::tools {

namespace {

namespace fs = std::filesystem;

// ImageMagick's own limit of a name is 4096 bytes.
constexpr std::size_t longestPlainName = 4000;

// Formats that it knows by the ending alone.
constexpr std::string_view formatsWithoutMark[] = {"arw", "cr2", "dng", "ico", "nef", "pct", "pict", "svg", "tga"};

bool isPlain(std::string_view name) {
    return name.size() < longestPlainName && std::ranges::all_of(name, [](unsigned char byte) {
               return std::isalnum(byte) || byte >= 0x80 ||
                      std::string_view("/._-+ ,=()").find(static_cast<char>(byte)) != std::string_view::npos;
           });
}

std::string prefixByEnding(const fs::path& name) {
    std::string ending = name.extension();
    std::ranges::transform(ending, ending.begin(), [](unsigned char byte) { return std::tolower(byte); });
    const bool isKnown = !ending.empty() && std::ranges::find(formatsWithoutMark, std::string_view(ending).substr(1)) !=
                                                std::end(formatsWithoutMark);
    return isKnown ? ending.substr(1) + ":" : "";
}

}  // namespace

ImageFile::ImageFile(const std::string& name) {
    const int file = ::open(name.c_str(), O_RDONLY);
    if (file < 0) throw ToolFailure{fmt::format("'{}': {}", name, std::strerror(errno))};
    std::error_code error;
    const std::string path = fs::absolute(name, error);
    if (error || !isPlain(path)) {
        file_ = file;
        source_ = fmt::format("{}/proc/self/fd/{}", prefixByEnding(name), file);
    } else {
        ::close(file);
        source_ = path;
    }
}

ImageFile::~ImageFile() {
    if (file_ >= 0) ::close(file_);
}

std::string ImageFile::frames(Frames which) const {
    return which == Frames::first ? source_ + "[0]" : source_;
}

std::string imageMagickWords(std::string_view errors) {
    std::string_view line = errors.substr(0, errors.find('\n'));
    line = line.substr(0, line.find(" @ "));
    // "convert-im6.q16: " stands in front.
    if (const std::size_t end = line.find(": "); end != std::string_view::npos) line.remove_prefix(end + 2);
    return line.empty() ? "ImageMagick gave no reason" : std::string(trimmed(line));
}

}  // namespace brindlet::tools
