#include <algorithm>

#include <fmt/format.h>

#include "analysis/models/file_commands.h"
#include "analysis/models/model_support.h"
#include "text/strings.h"

namespace brindlet {

namespace {

// --- mkdir ---

constexpr std::string_view mkdirFlags[] = {"p", "v", "m"};

// PATH_MAX of Linux. A path of many thousand missing folders would otherwise cost memory with its length squared.
constexpr std::size_t longestPath = 4096;

CommandResult cannotCreate(BasherAnalysis& analysis, std::string_view path, std::string_view reason) {
    return analysis.addCommandError("Can't create folder", fmt::format("mkdir: {}: {}", path, reason));
}

std::optional<CommandResult> makeFolder(BasherAnalysis& analysis, const std::string& path) {
    const FilePath url = analysis.resolveURL(path);
    if (!analysis.isExistingDirectory(url.parent()))
        return cannotCreate(analysis, path, "folder doesn't exist to create a new folder in");
    if (analysis.fileExists(url))
        return cannotCreate(analysis, path, "can't make a folder because an item already exists with that name");
    analysis.addFileChange(creation(url), true);
    return std::nullopt;
}

std::optional<CommandResult> makeFolderWithParents(BasherAnalysis& analysis, const std::string& path) {
    FilePath at = analysis.resolveURL(path);
    if (at.text().size() > longestPath) return cannotCreate(analysis, path, "File name too long");
    std::vector<FilePath> missing;
    for (; !at.isRoot() && !analysis.fileExists(at); at = at.parent()) missing.push_back(at);
    if (!at.isRoot() && !analysis.isDirectory(at))
        return cannotCreate(analysis, at.text(), "folder doesn't exist to create a new folder in");
    std::for_each(missing.rbegin(), missing.rend(),
                  [&](const FilePath& folder) { analysis.addFileChange(creation(folder), true); });
    return std::nullopt;
}

// --- rmdir ---

constexpr std::string_view rmdirFlags[] = {"p", "v"};

CommandResult cannotDelete(BasherAnalysis& analysis, std::string_view path, std::string_view reason) {
    return analysis.addCommandError("Can't delete folder", fmt::format("rmdir: {}: {}", path, reason));
}

void removeEmptyParents(BasherAnalysis& analysis, const FilePath& url) {
    const FilePath here = analysis.currentDirectoryURL();
    for (FilePath at = url.parent(); !at.isRoot() && at != here; at = at.parent()) {
        if (!analysis.isExistingDirectory(at) || !analysis.isDirectoryEmpty(at)) return;
        analysis.addFileChange(deletion(at), true);
    }
}

std::optional<CommandResult> removeFolder(BasherAnalysis& analysis, const std::string& path, bool withParents) {
    const FilePath url = analysis.resolveURL(path);
    if (!analysis.isExistingDirectory(url)) return cannotDelete(analysis, path, "folder doesn't exist to be removed");
    if (!analysis.isDirectoryEmpty(url))
        return cannotDelete(analysis, path, "folder isn't empty, so it can't be removed");
    analysis.addFileChange(deletion(url), true);
    if (withParents) removeEmptyParents(analysis, url);
    return std::nullopt;
}

// --- cd ---

constexpr std::string_view cdFlags[] = {"L", "P"};
constexpr std::string_view cdpathSkipped[] = {"/", "~/", "./", "../"};

CommandResult cdIncorrectlyWritten(BasherAnalysis& analysis, std::string technical) {
    return analysis.addCommandError("`cd` command written incorrectly", std::move(technical));
}

std::optional<std::string> nonEmptyVariable(const BasherAnalysis& analysis, std::string_view name) {
    auto value = analysis.variable(name);
    return value && !value->empty() ? value : std::nullopt;
}

bool isSearchedInCdpath(std::string_view target) {
    const auto begins = [&](std::string_view start) { return target.starts_with(start); };
    return target != "." && target != ".." && std::none_of(std::begin(cdpathSkipped), std::end(cdpathSkipped), begins);
}

FilePath resolveCdTarget(BasherAnalysis& analysis, const std::string& target) {
    const auto searched = nonEmptyVariable(analysis, "CDPATH");
    if (searched && isSearchedInCdpath(target)) {
        for (const auto& folder : splitNonEmpty(*searched, ":")) {
            const FilePath candidate = analysis.resolveURL(folder + "/" + target);
            if (analysis.isExistingDirectory(candidate)) return candidate;
        }
    }
    return analysis.resolveURL(target);
}

CommandResult enter(BasherAnalysis& analysis, const std::string& target, bool printsPath) {
    const FilePath url = resolveCdTarget(analysis, target);
    if (!analysis.fileExists(url))
        return analysis.addCommandError("Can't go to directory",
                                        fmt::format("cd: {}: No such file or directory", target));
    if (!analysis.isDirectory(url))
        return analysis.addCommandError("Can't go to directory", fmt::format("cd: {}: Not a directory", target));
    analysis.setVariable("OLDPWD", analysis.variable("PWD").value_or(analysis.currentDirectoryURL().text()));
    analysis.setVariable("PWD", url.text());
    return {0, SimString::known(printsPath ? url.text() + "\n" : "")};
}

}  // namespace

CommandResult makeFolders(BasherAnalysis& analysis, const ModelInput& input) {
    ArgExtractor args = wordsOf(input);
    args.extractOptionsAnywhere({{"-m", 1}});
    const Words flags = args.extractAllFlagsAtStart();
    if (auto flag = firstUnsupported(flags, mkdirFlags))
        return analysis.addCommandError(
            "`mkdir` command incorrectly written",
            fmt::format("mkdir: unsupported option when attempting to create a folder: '-{}'", *flag));
    const Words operands = args.extractLeadingOperands();
    if (operands.empty())
        return analysis.addCommandError("`mkdir` command incorrectly written", "mkdir: no folder name specified");

    const auto make = hasFlag(flags, "p") ? makeFolderWithParents : makeFolder;
    if (auto failure = firstFailure(operands, [&](const std::string& path) { return make(analysis, path); }))
        return *failure;
    return {0, hasFlag(flags, "v") ? SimString::unknown() : SimString::known("")};
}

CommandResult removeFolders(BasherAnalysis& analysis, const ModelInput& input) {
    ArgExtractor args = wordsOf(input);
    const Words flags = args.extractAllFlagsAtStart();
    if (auto flag = firstUnsupported(flags, rmdirFlags))
        return analysis.addCommandError(
            "`rmdir` command incorrectly written",
            fmt::format("rmdir: unsupported option when attempting to remove a folder: '-{}'", *flag));
    const Words operands = args.extractLeadingOperands();
    if (operands.empty())
        return analysis.addCommandError("`rmdir` command incorrectly written",
                                        "rmdir: no folder specified to be removed");

    const bool withParents = hasFlag(flags, "p");
    const auto remove = [&](const std::string& path) { return removeFolder(analysis, path, withParents); };
    return firstFailure(operands, remove).value_or(CommandResult{0, SimString::unknown()});
}

CommandResult changeDirectory(BasherAnalysis& analysis, const ModelInput& input) {
    ArgExtractor args = wordsOf(input);
    const bool goesBack = args.removeArg("-");
    if (auto flag = firstUnsupported(args.extractAllFlagsAtStart(), cdFlags))
        return cdIncorrectlyWritten(analysis, fmt::format("cd: unsupported option: '-{}'", *flag));
    if (goesBack) {
        const auto before = nonEmptyVariable(analysis, "OLDPWD");
        if (!before) return analysis.addCommandError("Can't return to previous directory", "cd: OLDPWD not set");
        return enter(analysis, *before, true);
    }
    // Left in place, "--" would send the rest of the line to the home folder, and every later change with it.
    const Words operands = args.removeArgIfFirst("--") ? args.remainingArgs() : args.extractLeadingOperands();
    if (operands.size() > 1) return cdIncorrectlyWritten(analysis, "cd: too many arguments");
    const auto target = operands.empty() ? nonEmptyVariable(analysis, "HOME") : operands.front();
    if (!target) return analysis.addCommandError("Can't go to home directory", "cd: HOME not set");
    return enter(analysis, *target, false);
}

}  // namespace brindlet
