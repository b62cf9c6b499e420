// A plan, and what became of it, in lines.
//
//     Images (12 files)
//       → a.jpg
//       ...
//       → … and 2 more
//
// Programs read the headings, with a count in brackets, and the entries behind the arrow; no other line looks like one.
#pragma once

#include <string>

#include "execute.h"
#include "options.h"
#include "plan.h"

namespace fiotraf {

std::string describe(const Plan& plan, const Options& options);

std::string describe(const Outcome& outcome, const Options& options);

}  // namespace fiotraf
