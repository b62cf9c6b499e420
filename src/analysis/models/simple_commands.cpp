#include "analysis/models/simple_commands.h"

#include <fmt/format.h>

#include "analysis/known_commands.h"

namespace brindlet {

using ErrorKind = BasherAnalysisError::Kind;

CommandResult succeed(BasherAnalysis&, const ModelInput&) {
    return CommandResult::success();
}

CommandResult fail(BasherAnalysis&, const ModelInput&) {
    return {1, SimString::known("")};
}

CommandResult printSomething(BasherAnalysis&, const ModelInput&) {
    return {0, SimString::unknown()};
}

CommandResult saySomething(BasherAnalysis&, const ModelInput&) {
    return CommandResult::unpredictable();
}

CommandResult askNetwork(BasherAnalysis& analysis, const ModelInput&) {
    analysis.addSideEffect({PlainSideEffect::networkAccess, std::nullopt});
    return CommandResult::unpredictable();
}

CommandResult download(BasherAnalysis& analysis, const ModelInput& input) {
    analysis.addSideEffect({PlainSideEffect::networkAccess, std::nullopt});
    analysis.addSideEffect({PlainSideEffect::partialSupport,
                            fmt::format("'{}' partially supported, full effects unpredictable", input.name)});
    return CommandResult::unpredictable();
}

CommandResult runOnRealFiles(BasherAnalysis& analysis, const ModelInput& input) {
    analysis.noteSeesOnlyRealFiles(input.name);
    return analysis.runRealCommand(input.name, SimString::known(""), input.args);
}

CommandResult runOnInput(BasherAnalysis& analysis, const ModelInput& input) {
    if (!input.standardInput.isKnown()) return {0, SimString::unknown()};
    return analysis.runRealCommand(input.name, input.standardInput, input.args);
}

CommandResult refuseBreak(BasherAnalysis&, const ModelInput&) {
    throw BasherAnalysisError{ErrorKind::unimplemented, "`break` command is not supported for Brindlet analysis"};
}

CommandResult refuseRootCommand(BasherAnalysis&, const ModelInput& input) {
    throw BasherAnalysisError{
        ErrorKind::wontWorkInBrindlet,
        fmt::format("'{}' command requires root privileges, which are disallowed for safety and security.",
                    input.name)};
}

CommandResult refuseFsUsage(BasherAnalysis&, const ModelInput&) {
    throw BasherAnalysisError{ErrorKind::wontWorkInBrindlet, "fs_usage command requires root privileges"};
}

CommandResult refuseBanned(BasherAnalysis&, const ModelInput& input) {
    throw BasherAnalysisError{ErrorKind::bannedInBrindlet,
                              fmt::format("'{}' command is banned in Brindlet for safety and security", input.name)};
}

CommandResult refuseEditor(BasherAnalysis& analysis, const ModelInput& input) {
    return analysis.addCommandError("Won't work in Brindlet",
                                    fmt::format("Command '{}' is not supported in Brindlet", input.name));
}

CommandResult notYetModelled(BasherAnalysis& analysis, const ModelInput& input) {
    analysis.addSideEffect(sideEffectOfUnmodelled(input.name));
    return CommandResult::unpredictable();
}

}  // namespace brindlet
