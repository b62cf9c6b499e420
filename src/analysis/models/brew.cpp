#include <fmt/format.h>

#include "analysis/models/model_support.h"
#include "analysis/models/system_commands.h"
#include "text/strings.h"

namespace brindlet {

namespace {

constexpr std::string_view informationFlags[] = {"--version", "-v", "-V", "--help", "-h"};
constexpr std::string_view listingCommands[] = {"list", "ls", "leaves"};
constexpr std::string_view removingCommands[] = {"uninstall", "remove", "rm"};

SideEffect packageChange(PlainSideEffect type, std::string_view what, const Words& packages) {
    if (packages.empty()) return {type, std::nullopt};
    return {type, fmt::format("{} {}", what, joined(packages, ", "))};
}

SideEffect partially(std::string description) {
    return {PlainSideEffect::partialSupport, std::move(description)};
}

std::optional<SideEffect> effectOf(const std::string& word, const Words& packages) {
    if (isAmong(word, informationFlags)) {
        // Homebrew 4: `brew -v install x` is `brew install x -v`.
        if (packages.empty()) return std::nullopt;
        return partially(fmt::format("'brew {}' may do more than show information", word));
    }
    if (word.starts_with('-')) return partially(fmt::format("'brew' '{}' not known, effect unpredictable", word));
    if (word == "install") return packageChange(PlainSideEffect::homebrewInstall, "Install", packages);
    if (isAmong(word, removingCommands))
        return packageChange(PlainSideEffect::homebrewUninstall, "Uninstall", packages);
    if (isAmong(word, listingCommands)) return std::nullopt;
    if (word == "search") return SideEffect{PlainSideEffect::networkAccess, std::nullopt};
    return partially(fmt::format("'brew {}' partially supported, full effects unpredictable", word));
}

}  // namespace

CommandResult managePackages(BasherAnalysis& analysis, const ModelInput& input) {
    if (!input.args.empty()) {
        const Words packages(input.args.begin() + 1, input.args.end());
        if (auto effect = effectOf(input.args.front(), packages)) analysis.addSideEffect(std::move(*effect));
    }
    return {0, SimString::unknown()};
}

}  // namespace brindlet
