// Shows at a terminal how far an installation or removal of a tool is.
//
//     auto failure = shownInstallation(packages, [&] { return packages.install("FFmpeg", nullptr, stop); });
#pragma once

#include <functional>
#include <optional>

#include "exec/packages.h"
#include "platform/result.h"

namespace brindlet {

// Does `work`, which installs or removes, with a bar and what is being done below all else on standard output where
// that is a terminal. Gives back what `work` does.
std::optional<Failure> shownInstallation(PackageManager& packages, const std::function<std::optional<Failure>()>& work);

}  // namespace brindlet
