#include "analysis/models/filter_support.h"

#include <algorithm>
#include <iterator>

#include <fmt/format.h>

#include "text/regex.h"

namespace brindlet {

namespace {

bool isChangedByLine(BasherAnalysis& analysis, const FilePath& url) {
    const FileHistory* history = analysis.state().overlay.known(url);
    return history != nullptr && !history->isUnchangedOriginal() && (history->history.size() > 1 || history->exists());
}

// A folder that the line has made may hold what was copied or moved with it, which the simulation doesn't list.
bool liesInChangedFolder(BasherAnalysis& analysis, FilePath url) {
    while (!url.isRoot()) {
        url = url.parent();
        if (isChangedByLine(analysis, url)) return true;
    }
    return false;
}

bool seesOtherwise(BasherAnalysis& analysis, const FilePath& url) {
    return isChangedByLine(analysis, url) || liesInChangedFolder(analysis, url);
}

void say(BasherAnalysis& analysis, PlainSideEffect type, std::string sentence) {
    analysis.addSideEffect({type, std::move(sentence)});
}

}  // namespace

Words realFilesAmong(const Words& operands) {
    Words files;
    std::copy_if(operands.begin(), operands.end(), std::back_inserter(files),
                 [](const auto& word) { return word != "-"; });
    return files;
}

bool isUnchanged(BasherAnalysis& analysis, std::string_view path) {
    return analysis.fileHistory(analysis.resolveURL(path)).isUnchangedOriginal();
}

bool areUnchanged(BasherAnalysis& analysis, const Words& paths) {
    return std::all_of(paths.begin(), paths.end(), [&](const auto& path) { return isUnchanged(analysis, path); });
}

bool isThere(BasherAnalysis& analysis, std::string_view command, std::string_view path) {
    const FilePath url = analysis.resolveURL(path);
    if (analysis.fileExists(url)) return true;
    if (liesInChangedFolder(analysis, url)) analysis.noteSeesOnlyRealFiles(command);
    return false;
}

std::optional<std::string> firstMissing(BasherAnalysis& analysis, std::string_view command, const Words& paths) {
    const auto missing =
        std::find_if(paths.begin(), paths.end(), [&](const auto& path) { return !isThere(analysis, command, path); });
    if (missing == paths.end()) return std::nullopt;
    return *missing;
}

void doubtFolders(BasherAnalysis& analysis, std::string_view command, const Words& paths) {
    for (const auto& path : paths)
        if (analysis.isExistingDirectory(analysis.resolveURL(path)))
            return analysis.doubtResult(fmt::format("'{}' can't print the folder '{}'", command, path));
}

CommandResult noSuchFile(std::string_view command, std::string_view path) {
    return failureInWords(fmt::format("{}: {}: No such file or directory", command, path));
}

CommandResult unknownText() {
    return {0, SimString::unknown()};
}

void noteFilesSeenOtherwise(BasherAnalysis& analysis, std::string_view command, const Words& paths) {
    const auto isChanged = [&](const auto& path) { return seesOtherwise(analysis, analysis.resolveURL(path)); };
    if (std::any_of(paths.begin(), paths.end(), isChanged)) analysis.noteSeesOnlyRealFiles(command);
}

CommandResult filterInput(BasherAnalysis& analysis, const ModelInput& input) {
    return filterInput(analysis, input, input.args);
}

CommandResult filterInput(BasherAnalysis& analysis, const ModelInput& input, const Words& words) {
    if (!input.standardInput.isKnown()) return unknownText();
    return analysis.runRealCommand(input.name, input.standardInput, words);
}

CommandResult filterFiles(BasherAnalysis& analysis, const ModelInput& input, const Words& operands) {
    const Words files = realFilesAmong(operands);
    if (files.empty()) return filterInput(analysis, input);
    doubtUnreadInput(analysis, input, operands);
    if (!areUnchanged(analysis, files)) return unknownText();
    return analysis.runRealCommand(input.name, SimString::known(""), input.args);
}

void noteUnlistedWrites(BasherAnalysis& analysis, std::string_view command, const Words& paths) {
    if (paths.empty()) return;
    const std::string others = paths.size() > 1 ? fmt::format(" and {} more", paths.size() - 1) : "";
    say(analysis, PlainSideEffect::unknownFileChanges,
        fmt::format("'{}' may also write {}{}, which isn't shown here", command, quotedForSentence(paths.front()),
                    others));
}

void noteUnlistedCommands(BasherAnalysis& analysis, std::string_view command) {
    say(analysis, PlainSideEffect::unknownFileChanges,
        fmt::format("'{}' may run other commands, which isn't shown here", command));
}

void noteMisreading(BasherAnalysis& analysis, std::string_view command) {
    analysis.doubtResult(fmt::format("'{}' takes some of its words otherwise than shown here", command));
}

void noteMisreadOperands(BasherAnalysis& analysis, const ModelInput& input, const Words& operands,
                         std::span<const ToolOption> options) {
    if (readAsTool(input.args, options).operands != operands) noteMisreading(analysis, input.name);
}

void doubtUnreadInput(BasherAnalysis& analysis, const ModelInput& input, const Words& operands) {
    if (hasFlag(operands, "-") && input.standardInput != SimString::known(""))
        analysis.doubtResult(fmt::format("'{}' also reads its standard input, which isn't shown here", input.name));
}

void refuseSubscript(std::string_view command, std::string_view variable) {
    static const Regex element(R"(^\w+\[)"), plainElement(R"(^\w+\[\d+\]$)");
    if (!element.matches(variable) || plainElement.matches(variable)) return;
    throw BasherAnalysisError{
        BasherAnalysisError::Kind::highRisk,
        fmt::format("'{}' evaluates '{}', and would run a command inside it, which isn't simulated", command,
                    variable)};
}

CommandResult saidIfStopped(BasherAnalysis& analysis, const ModelInput& input, CommandResult result) {
    if (!result.exitCode)
        say(analysis, PlainSideEffect::partialSupport,
            fmt::format("What '{}' does isn't known, as it can't be tried out to its end", input.name));
    return result;
}

}  // namespace brindlet
