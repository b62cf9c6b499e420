// The vocabulary in which models report what is no file change.
//
//     analysis.addSideEffect({PlainSideEffect::networkAccess, "Downloads 'a.zip'"});
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <variant>

namespace brindlet {

enum class PowerAction { sleep, shutdown, restart, preventSleep };

// File changes beyond those listed, as when a tool reports only the first entries of a long preview.
struct ExtraFileChanges {
    enum class Kind { moves, copies };
    Kind kind = Kind::moves;
    std::int64_t count = 0;
    bool operator==(const ExtraFileChanges&) const = default;
};

struct ComplexCommand {
    std::string message;
    bool operator==(const ComplexCommand&) const = default;
};

enum class PlainSideEffect {
    launchesApp,
    revealsInFinder,
    opensFile,
    longRunning,
    indefinite,
    networkAccess,
    modifiesSystemSetting,
    kill,
    runsInBackground,
    runningUnknownScript,
    copyToClipboard,
    readsFromClipboard,
    unknownCommand,
    partialSupport,
    unknownFileChanges,
    filesChangedBeforeReadingFiles,
    renameToInvisible,
    homebrewInstall,
    homebrewUninstall,
    printsDocument,
};

using SideEffectType = std::variant<PowerAction, ExtraFileChanges, ComplexCommand, PlainSideEffect>;

// The case's name, such as "networkAccess" or "powerAction".
std::string_view caseName(const SideEffectType& type);
std::string_view caseName(PowerAction action);
std::string_view caseName(ExtraFileChanges::Kind kind);

// What is said of a side effect that has no words of its own.
std::string defaultDescription(const SideEffectType& type);

struct SideEffect {
    SideEffectType type;
    std::optional<std::string> specificDescription;

    std::string description() const { return specificDescription ? *specificDescription : defaultDescription(type); }
    bool operator==(const SideEffect&) const = default;
};

}  // namespace brindlet
