#include "rendering.h"

#include <algorithm>
#include <iterator>

#include <fmt/format.h>

#include "shared/tool.h"
#include "text/characters.h"
#include "text/strings.h"

namespace brindlet::tools {

namespace {

namespace fs = std::filesystem;

// Debian's policy for ImageMagick forbids it to read pages, and what it calls for the others is in no package or not
// among those that come with it (imagemagick 6.9.11, delegates.xml and policy.xml).
constexpr Renderer renderers[] = {
    {"ai pdf", "pdftoppm", "poppler-utils", "-png -f 1 -l 1 -r 72 -singlefile"},
    {"eps ps", "gs", "ghostscript",
     "-q -dSAFER -dBATCH -dNOPAUSE -dEPSCrop -dLastPage=1 -sDEVICE=pngalpha -r72 -sOutputFile=-"},
    {"svg svgz", "rsvg-convert", "librsvg2-bin", "--format=png"},
    {"arw cr2 dng nef", "dcraw", "dcraw", "-c -w"},
};

}  // namespace

const Renderer* rendererFor(const fs::path& file) {
    const std::string ending = lowercased(file.extension().string());
    const auto* const row = std::ranges::find_if(renderers, [&](const Renderer& renderer) {
        const std::vector<std::string> endings = splitNonEmpty(renderer.endings, " ");
        return std::ranges::any_of(endings, [&](const std::string& each) { return ending == "." + each; });
    });
    return row == std::end(renderers) ? nullptr : row;
}

void render(const Renderer& renderer, const fs::path& file, const fs::path& place) {
    // The image may be larger than what is kept of another program's output.
    std::vector<std::string> words{"/bin/sh", "-c",           "out=$1; shift; exec \"$@\" >\"$out\"",
                                   "sh",      place.string(), neededProgram(renderer.program, renderer.package)};
    for (std::string& option : splitNonEmpty(renderer.options, " ")) words.push_back(std::move(option));
    words.push_back(fs::absolute(file).string());
    const Captured captured = capture(words);
    std::error_code error;
    if (captured.status == 0 && fs::file_size(place, error) > 0 && !error) return;
    const std::string_view errors = trimmed(captured.errors);
    throw ToolFailure{fmt::format("'{}' can't be read by {}: {}", file.string(), renderer.program,
                                  errors.empty() ? "it gave no reason" : errors.substr(0, errors.find('\n')))};
}

}  // namespace brindlet::tools
