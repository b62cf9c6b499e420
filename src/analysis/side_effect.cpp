#include "analysis/side_effect.h"

#include "text/enum_rows.h"
#include "text/overloaded.h"

namespace brindlet {

namespace {

struct PowerRow {
    PowerAction key;
    std::string_view name;
    std::string_view description;
};
constexpr PowerRow powerRows[] = {
    {PowerAction::sleep, "sleep", "Puts computer to sleep"},
    {PowerAction::shutdown, "shutdown", "Shuts down computer"},
    {PowerAction::restart, "restart", "Restarts computer"},
    {PowerAction::preventSleep, "preventSleep", "Prevents system sleep"},
};
static_assert(rowsCover(powerRows, PowerAction::preventSleep));

struct PlainRow {
    PlainSideEffect key;
    std::string_view name;
    std::string_view description;
};
constexpr PlainRow plainRows[] = {
    {PlainSideEffect::launchesApp, "launchesApp", "Launches an app"},
    {PlainSideEffect::revealsInFinder, "revealsInFinder", "Shows an file or folder in Finder"},
    {PlainSideEffect::opensFile, "opensFile", "Opens a file"},
    {PlainSideEffect::longRunning, "longRunning", "Long-running operation"},
    {PlainSideEffect::indefinite, "indefinite", "Runs indefinitely"},
    {PlainSideEffect::networkAccess, "networkAccess", "Makes network request"},
    {PlainSideEffect::modifiesSystemSetting, "modifiesSystemSetting", "Modifies system setting"},
    {PlainSideEffect::kill, "kill", "Force quits a process"},
    {PlainSideEffect::runsInBackground, "runsInBackground", "Runs in background"},
    {PlainSideEffect::runningUnknownScript, "runningUnknownScript", "Runs an unknown script"},
    {PlainSideEffect::copyToClipboard, "copyToClipboard", "Copies to clipboard"},
    {PlainSideEffect::readsFromClipboard, "readsFromClipboard", "Reads from clipboard"},
    {PlainSideEffect::unknownCommand, "unknownCommand", "Command unsupported, it has unknown effects"},
    {PlainSideEffect::partialSupport, "partialSupport", "Command partially supported, effects may be unpredictable"},
    {PlainSideEffect::unknownFileChanges, "unknownFileChanges", "Command writes files, but we cannot predict results"},
    {PlainSideEffect::filesChangedBeforeReadingFiles, "filesChangedBeforeReadingFiles",
     "New files may unpredictably affect file system search result"},
    {PlainSideEffect::renameToInvisible, "renameToInvisible", "Renames item to invisible (dot-prefixed) name"},
    {PlainSideEffect::homebrewInstall, "homebrewInstall", "Installs Homebrew package"},
    {PlainSideEffect::homebrewUninstall, "homebrewUninstall", "Uninstalls Homebrew package"},
    {PlainSideEffect::printsDocument, "printsDocument", "Prints document"},
};
static_assert(rowsCover(plainRows, PlainSideEffect::printsDocument));

}  // namespace

std::string_view caseName(const SideEffectType& type) {
    return std::visit(Overloaded{
                          [](PowerAction) -> std::string_view { return "powerAction"; },
                          [](const ExtraFileChanges&) -> std::string_view { return "extraFileChanges"; },
                          [](const ComplexCommand&) -> std::string_view { return "complexCommand"; },
                          [](PlainSideEffect plain) { return rowOf(plainRows, plain).name; },
                      },
                      type);
}

std::string_view caseName(PowerAction action) {
    return rowOf(powerRows, action).name;
}

std::string_view caseName(ExtraFileChanges::Kind kind) {
    return kind == ExtraFileChanges::Kind::moves ? "moves" : "copies";
}

std::string defaultDescription(const SideEffectType& type) {
    return std::visit(Overloaded{
                          [](PowerAction action) { return std::string(rowOf(powerRows, action).description); },
                          [](const ExtraFileChanges& extra) {
                              return "Also " + std::string(caseName(extra.kind)) + " " + std::to_string(extra.count) +
                                     " other files not listed";
                          },
                          [](const ComplexCommand& complex) { return complex.message; },
                          [](PlainSideEffect plain) { return std::string(rowOf(plainRows, plain).description); },
                      },
                      type);
}

}  // namespace brindlet
