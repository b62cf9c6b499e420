// Tests a name against a compiled pattern.
//
//     const Program program = compiled(sections, options);
//     matches(program, "a.txt")
#pragma once

#include <string_view>

#include "glob/program.h"

namespace brindlet::glob {

// So much searching is tried step by step before the way is taken that is linear in the pattern times the name.
constexpr int usualEffort = 2000;

bool matches(const Program& program, std::string_view name, int effort = usualEffort);

}  // namespace brindlet::glob
