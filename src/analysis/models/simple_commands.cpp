#include "analysis/models/simple_commands.h"

#include <algorithm>

#include <fmt/format.h>

#include "analysis/models/model_support.h"

namespace brindlet {

using ErrorKind = BasherAnalysisError::Kind;

namespace {

// GNU dc 1.4: the rest of a line behind "!" goes to a shell, but for the comparisons !<, !> and !=.
bool runsShell(std::string_view program) {
    for (auto at = program.find('!'); at != std::string_view::npos; at = program.find('!', at + 1))
        if (at + 1 == program.size() || std::string_view("<>=").find(program[at + 1]) == std::string_view::npos)
            return true;
    return false;
}

// Whether dc is given a program that can't be read here, or one that runs commands.
bool mayRunShell(const ModelInput& input) {
    bool isProgram = false, readsInput = true;
    for (const std::string& word : input.args) {
        if (runsShell(word)) return true;
        const bool isFile = word.starts_with("-f") || word.starts_with("--file") || !word.starts_with('-');
        if (isFile && !isProgram) return true;
        readsInput = word == "-";
        isProgram = word == "-e" || word == "--expression";
    }
    return readsInput && (!input.standardInput.isKnown() || runsShell(input.standardInput.text()));
}

// bash 5.2, `help history`: -w and -a write the list to a file.
bool writesHistory(const std::string& word) {
    return word.starts_with('-') && word.find_first_of("wa") != std::string::npos;
}

}  // namespace

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

CommandResult calculateOnStack(BasherAnalysis& analysis, const ModelInput& input) {
    if (mayRunShell(input))
        analysis.addSideEffect({PlainSideEffect::partialSupport, "'dc' may run commands, which isn't shown here"});
    return printSomething(analysis, input);
}

CommandResult showHistory(BasherAnalysis& analysis, const ModelInput& input) {
    if (std::any_of(input.args.begin(), input.args.end(), writesHistory))
        noteUnknownChanges(analysis, "'history' writes its list to a file, which isn't shown here");
    return saySomething(analysis, input);
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

}  // namespace brindlet
