#include <fmt/format.h>

#include "analysis/models/model_support.h"
#include "analysis/models/system_commands.h"
#include "text/characters.h"

namespace brindlet {

namespace {

using FlagsAndOptions = ArgExtractor::FlagsAndOptions;

constexpr std::string_view appFlags[] = {"e", "t", "f", "F"};

// Of files that run where they are opened.
constexpr std::string_view runnableExtensions[] = {"command", "tool", "workflow", "action", "terminal"};
constexpr std::string_view runningApps[] = {"terminal", "terminal.app", "iterm", "iterm.app"};

// Where the app's own output goes.
constexpr std::string_view outputOptions[] = {"stdout", "stderr"};

void noteUnshown(BasherAnalysis& analysis, const FlagsAndOptions& taken, const Words& operands) {
    const bool hasRunningApp = isAmong(lowercased(lastPathComponent(taken.value("a").value_or(""))), runningApps);
    for (const auto& operand : operands)
        if (hasRunningApp || isAmong(lowercased(pathExtension(operand)), runnableExtensions))
            analysis.addSideEffect({PlainSideEffect::runningUnknownScript, operand});
    for (const auto name : outputOptions)
        if (const auto path = taken.value(name))
            analysis.addSideEffect(
                {PlainSideEffect::unknownFileChanges,
                 fmt::format("'open' may also write {}, which isn't shown here", quotedForSentence(*path))});
}

SideEffect effectOfOpening(BasherAnalysis& analysis, const Words& words, const FlagsAndOptions& taken,
                           const Words& operands) {
    if (taken.options.contains("a") || hasAnyFlag(taken.flags, appFlags)) {
        if (operands.empty()) return {PlainSideEffect::launchesApp, std::nullopt};
        return {PlainSideEffect::opensFile, "Opens file in app"};
    }
    const FilePath url = analysis.resolveURL(words.back());
    if (analysis.isExistingDirectory(url)) return {PlainSideEffect::revealsInFinder, std::nullopt};
    return {PlainSideEffect::opensFile, fmt::format("Opens {}", url.name())};
}

}  // namespace

CommandResult openItem(BasherAnalysis& analysis, const ModelInput& input) {
    ArgExtractor args = wordsOf(input);
    const auto taken = args.extractFlagsAndOptions({{"a", 1},
                                                    {"b", 1},
                                                    {"arch", 1},
                                                    {"u", 1},
                                                    {"s", 1},
                                                    {"args", 1},
                                                    {"env", 1},
                                                    {"stdin", 1},
                                                    {"stdout", 1},
                                                    {"stderr", 1}});
    analysis.doubtResult("'open' is taken to succeed");
    if (taken.hasFlag("W")) analysis.addSideEffect({PlainSideEffect::longRunning, std::nullopt});
    if (taken.hasFlag("R")) {
        analysis.addSideEffect({PlainSideEffect::revealsInFinder, std::nullopt});
        return CommandResult::success();
    }
    if (input.args.empty()) return CommandResult::success();
    analysis.addSideEffect(effectOfOpening(analysis, input.args, taken, args.remainingArgs()));
    noteUnshown(analysis, taken, args.remainingArgs());
    return CommandResult::success();
}

}  // namespace brindlet
