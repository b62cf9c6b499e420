// Which characters belong to a class of a bracket expression.
//
//     isInClass("é", Pattern::ClassName::alpha)
#pragma once

#include <optional>
#include <string_view>

#include "glob/pattern.h"

namespace brindlet::glob {

// The class whose text stands between "[:" and ":]"; none if there is no such class.
std::optional<Pattern::ClassName> classNamed(std::string_view text);

// `character` is one whole character in canonical form, and so are the bounds of a range.
bool isInClass(std::string_view character, const Pattern::CharacterClass& characterClass);

}  // namespace brindlet::glob
