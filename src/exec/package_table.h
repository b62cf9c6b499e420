// The tools that the program can offer to install, as rows.
//
//     for (const PackageInfo& info : availablePackages()) print(info.name, info.description);
#pragma once

#include <optional>
#include <span>
#include <string_view>

namespace brindlet {

enum class PackageSource {
    homebrew,  // installed with the user's Homebrew
    fenwold,   // a zip archive on the maker's asset server, unpacked into the program's own folder
    bundled,   // came with the program
};

struct PackageInfo {
    std::string_view name;  // as it is shown, and the key
    std::optional<std::string_view> homebrewPackageName;
    PackageSource source;
    std::string_view zipName;                    // empty unless from fenwold
    std::span<const std::string_view> binaries;  // the commands that it provides
    std::string_view description;
    bool requiresInstallForPrediction;  // what its commands do can be foretold only by the tool itself
    std::string_view licenseName;
    std::string_view licenseURL;
    std::string_view sourceURL;
};

// In the order in which they are shown.
std::span<const PackageInfo> availablePackages();

}  // namespace brindlet
