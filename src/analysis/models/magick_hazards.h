// What ImageMagick may do beyond what the reading of its words shows: options that write, names that are programs or
// addresses to it.
//
//     magickHazards({"a.png", "-write", "b.png", "c.png"}, {"a.png", "c.png"})
//         // {unknownFileChanges "magick: '-write' may write files that aren't shown here"}
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "analysis/side_effect.h"

namespace brindlet {

std::vector<SideEffect> magickHazards(const std::vector<std::string>& words, const std::vector<std::string>& operands);

// "png:a.jpg": the file is "a.jpg".
bool beginsWithFormat(std::string_view name);

}  // namespace brindlet
