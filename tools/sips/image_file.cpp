#include "image_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <iterator>

#include <fmt/format.h>

#include "rendering.h"
#include "shared/tool.h"
#include "text/strings.h"

namespace brindlet::tools {

namespace {

namespace fs = std::filesystem;

// ImageMagick's own limit of a name is 4096 bytes.
constexpr std::size_t longestPlainName = 4000;

// Formats that it knows by the ending alone.
constexpr std::string_view formatsWithoutMark[] = {"ico", "pct", "pict", "tga"};

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

int openedFile(const std::string& name) {
    // A pipe without a writer would keep a reader waiting at this.
    const int file = ::open(name.c_str(), O_RDONLY | O_NONBLOCK);
    if (file < 0) throw ToolFailure{fmt::format("'{}': {}", name, std::strerror(errno))};
    struct stat status {};
    if (::fstat(file, &status) == 0 && S_ISREG(status.st_mode)) return file;
    ::close(file);
    throw ToolFailure{fmt::format("'{}' is no file", name)};
}

}  // namespace

ImageFile::ImageFile(const std::string& name) {
    int file = openedFile(name);
    std::string readable = name;
    if (const Renderer* renderer = rendererFor(name)) {
        ::close(file);
        readable = rendering_.emplace(fs::temp_directory_path()).path() / "image";
        render(*renderer, name, readable);
        file = openedFile(readable);
    }
    std::error_code error;
    const std::string path = fs::absolute(readable, error);
    if (error || !isPlain(path)) {
        file_ = file;
        source_ = fmt::format("{}/proc/self/fd/{}", prefixByEnding(readable), file);
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
