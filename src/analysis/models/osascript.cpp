#include <fmt/format.h>

#include "analysis/models/model_support.h"
#include "analysis/models/system_commands.h"

namespace brindlet {

namespace {

CommandResult unknownScript(BasherAnalysis& analysis, std::string description) {
    analysis.addSideEffect({PlainSideEffect::runningUnknownScript, std::move(description)});
    return CommandResult::unpredictable();
}

}  // namespace

CommandResult runAppleScript(BasherAnalysis& analysis, const ModelInput& input) {
    ArgExtractor args = wordsOf(input);
    const auto taken = args.extractFlagsAndOptions({{"e", 1}, {"l", 1}, {"d", 1}, {"s", 1}});
    if (taken.options.contains("e")) return unknownScript(analysis, taken.value("l").value_or("AppleScript"));
    const Words& operands = args.remainingArgs();
    if (operands.empty())
        return analysis.addCommandError("Script file not specified", "osascript: missing script filename");
    if (!analysis.fileExists(analysis.resolveURL(operands.front())))
        return analysis.addCommandError("Script file doesn't exist",
                                        fmt::format("osascript: can't open file \"{}\"", operands.front()));
    return unknownScript(analysis, operands.front());
}

}  // namespace brindlet
