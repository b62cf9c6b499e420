// What a command's name stands for: a file, a command with a row in the table, or a tool that the simulation can only
// name.
#include <algorithm>

#include <fmt/format.h>

#include "analysis/basher_analysis.h"
#include "analysis/known_commands.h"
#include "analysis/own_process.h"

namespace brindlet {

namespace {

bool namesFile(std::string_view name) {
    return name.find('/') != std::string_view::npos || name.starts_with('~') || name.starts_with('.');
}

// A file that is no tool of the search path. It is never looked into.
CommandResult runFile(BasherAnalysis& analysis, std::string_view name, const FilePath& url) {
    const std::string_view extension = pathExtension(url.text());
    if (!extension.empty() && extension != "app") {
        analysis.addSideEffect({PlainSideEffect::runningUnknownScript, std::string(name)});
        return CommandResult::unpredictable();
    }
    const std::string_view kind = extension.empty() ? "command" : "app";
    analysis.addSideEffect(
        {PlainSideEffect::unknownCommand, fmt::format("Unknown {} '{}' — proceed with caution.", kind, name)});
    return {0, SimString::unknown()};
}

// A name by which a shell would search, with no further look at whether it could be a path.
CommandResult runNamed(BasherAnalysis& analysis, ModelInput input) {
    if (const CommandRow* row = analysis.services().commands.find(input.name)) return row->model(analysis, input);
    if (!analysis.isOnSearchPath(input.name))
        return analysis.addCommandError(fmt::format("No '{}' command exists", input.name),
                                        fmt::format("{}: command not found", input.name));
    analysis.addSideEffect(sideEffectOfUnmodelled(input.name));
    return CommandResult::unpredictable();
}

CommandResult runPath(BasherAnalysis& analysis, ModelInput input) {
    const FilePath url = analysis.resolveURL(input.name);
    if (!analysis.fileExists(url))
        return analysis.addCommandError(fmt::format("{} doesn't exist", input.name),
                                        fmt::format("{}: No such file or directory", input.name));
    if (analysis.isDirectory(url))
        return analysis.addCommandError("Can't run a directory", fmt::format("{}: is a directory", input.name));

    const auto& prefixes = analysis.currentPathPrefixes();
    // "/" comes of an empty entry in the search path, and would make a tool of every file.
    const auto holdsUrl = [&](const std::string& prefix) { return prefix != "/" && url.text().starts_with(prefix); };
    if (std::none_of(prefixes.begin(), prefixes.end(), holdsUrl)) return runFile(analysis, input.name, url);
    // The bare name goes straight to the table: a name such as ".x" would otherwise come round here again for ever.
    return runNamed(analysis, {url.name(), std::move(input.args), std::move(input.standardInput), input.command});
}

}  // namespace

CommandResult BasherAnalysis::runCommand(std::string_view name, std::vector<std::string> args, SimString standardInput,
                                         const BashCommand& command) {
    countCommand();
    currentCommand_ = &command;
    if (isPartOfTheShell(name))
        addSideEffect({PlainSideEffect::partialSupport,
                       fmt::format("'{}' is part of the shell itself, and what it does isn't shown here", name)});
    ModelInput input{name, std::move(args), std::move(standardInput), command};
    return namesFile(name) ? runPath(*this, std::move(input)) : runNamed(*this, std::move(input));
}

CommandResult BasherAnalysis::runCarriedCommand(std::string_view name, std::vector<std::string> args,
                                                SimString standardInput, const BashCommand& command) {
    const Depth depth(*this);
    const OwnProcess process(*this);
    return runCommand(name, std::move(args), std::move(standardInput), command);
}

}  // namespace brindlet
