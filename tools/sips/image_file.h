// Image files under names that ImageMagick can't take for anything else.
//
//     const ImageFile image("50%: [a].png");
//     capture({convert, image.frames(Frames::first), "png:-"});
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "shared/tool.h"

namespace brindlet::tools {

enum class Frames { first, all };

// A file that is opened for as long as this lives, where its name could be read as a pattern, a format or a command; of
// one that ImageMagick doesn't read, an image that another program has made.
class ImageFile {
  public:
    // A ToolFailure where it isn't there or can't be read, or that program is missing.
    explicit ImageFile(const std::string& name);
    ~ImageFile();
    ImageFile(const ImageFile&) = delete;
    ImageFile& operator=(const ImageFile&) = delete;

    std::string frames(Frames which) const;
    // Whether it is such an image, whose format is not the file's own.
    bool isRendered() const { return rendering_.has_value(); }

  private:
    std::optional<WorkFolder> rendering_;
    int file_ = -1;
    std::string source_;
};

// One sentence of what ImageMagick complained of, without the places in its own code.
std::string imageMagickWords(std::string_view errors);

}  // namespace brindlet::tools
