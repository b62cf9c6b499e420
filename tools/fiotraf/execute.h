// Carries a plan out. No file is ever replaced, and none is gone before it stands in its new place.
//
//     const Outcome outcome = execute(plan, options);
//     return outcome.failures.empty() ? 0 : 1;
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "options.h"
#include "plan.h"

namespace fiotraf {

struct Outcome {
    std::size_t placed = 0;
    std::size_t folders = 0;            // that got files
    std::vector<std::string> failures;  // a sentence for each file or folder that couldn't be dealt with
};

// Goes on with the rest where a file fails. Where a name is taken " 2", " 3" and so on go behind it, before the
// extension.
Outcome execute(const Plan& plan, const Options& options);

}  // namespace fiotraf
