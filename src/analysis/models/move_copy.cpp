#include <algorithm>

#include <fmt/format.h>

#include "analysis/models/file_commands.h"
#include "analysis/models/model_support.h"

namespace brindlet {

namespace {

// --- mv ---

// Where a link leads, as long as the disk still tells the truth about the path; -h keeps to the link itself.
FilePath followingLinks(BasherAnalysis& analysis, const FilePath& url, bool keepsLinks) {
    if (keepsLinks || !analysis.fileHistory(url).isUnchangedOriginal()) return url;
    return analysis.files().resolvingLinks(url);
}

bool isSameOrInside(const FilePath& path, const FilePath& folder) {
    return path == folder || path.isInside(folder);
}

CommandResult moveSourceMissing(BasherAnalysis& analysis, const FilePath& url) {
    return analysis.addCommandError(fmt::format("Move: {} doesn't exist", url.name()), "mv: source file doesn't exist");
}

CommandResult moveIntoItself(BasherAnalysis& analysis, const std::string& source, const std::string& destination) {
    return analysis.addCommandError("Move: can't move folder into itself",
                                    fmt::format("mv: rename {} to {}: Invalid argument", source, destination));
}

void recordMove(BasherAnalysis& analysis, const FilePath& source, const FilePath& target, bool isDirectory) {
    if (source == target)  // GNU and BSD tools alike refuse it
        analysis.doubtResult(fmt::format("'mv' fails for '{}', which would stay where it is", source.name()));
    analysis.addFileChange(moving(source, target), isDirectory);
}

CommandResult moveOne(BasherAnalysis& analysis, const std::string& from, const std::string& to, bool keepsLinks) {
    const FilePath written = analysis.resolveURL(from);
    if (!analysis.fileExists(written)) return moveSourceMissing(analysis, written);
    const FilePath source = followingLinks(analysis, written, keepsLinks);
    const bool isDirectory = analysis.isDirectory(source);
    const FilePath target = placeAt(analysis, analysis.resolveURL(to), source);
    if (isDirectory && isSameOrInside(analysis.files().resolvingLinks(target), analysis.files().resolvingLinks(source)))
        return moveIntoItself(analysis, from, to);
    recordMove(analysis, source, target, isDirectory);
    return CommandResult::success();
}

CommandResult moveIntoFolder(BasherAnalysis& analysis, const Words& sources, const std::string& destination,
                             bool keepsLinks) {
    const FilePath written = analysis.resolveURL(destination);
    if (!analysis.fileExists(written))
        return analysis.addCommandError("Move: destination folder doesn't exist",
                                        fmt::format("mv: target '{}' not found", destination));
    if (!analysis.isDirectory(written))
        return analysis.addCommandError("Move: destination isn't a folder",
                                        fmt::format("mv: target '{}' is not a directory", destination));
    const FilePath folder = followingLinks(analysis, written, keepsLinks);

    bool hasFailed = false;
    for (const auto& from : sources) {
        const FilePath source = analysis.resolveURL(from);
        if (!analysis.fileExists(source)) return moveSourceMissing(analysis, source);
        const bool isDirectory = analysis.isDirectory(source);
        if (isDirectory && isSameOrInside(folder, source)) {
            moveIntoItself(analysis, from, destination);
            hasFailed = true;
        } else {
            recordMove(analysis, source, placeIn(folder, source), isDirectory);
        }
    }
    return silentResult(hasFailed);
}

// --- cp ---

constexpr std::string_view recursiveCopyFlags[] = {"r", "R", "a"};
constexpr std::string_view linkingFlags[] = {"l", "s"};
constexpr std::string_view contentsFlags[] = {"T", "no-target-directory", "parents"};

struct CopyOptions {
    bool isRecursive = false;
    bool mayOverwrite = true;
    bool makesLinks = false;
};

CopyOptions copyOptions(const Words& flags) {
    CopyOptions options{.isRecursive = hasAnyFlag(flags, recursiveCopyFlags),
                        .makesLinks = hasAnyFlag(flags, linkingFlags)};
    for (const auto& flag : flags) {
        if (flag == "f") options.mayOverwrite = true;
        if (flag == "n") options.mayOverwrite = false;
    }
    return options;
}

bool isReadOtherwise(const std::string& flag) {
    return flag == "t" || flag.starts_with("target-directory");
}

bool namesFolderItself(const std::string& source) {
    const std::string_view name = lastPathComponent(source);
    return name == "." || name == "..";
}

// GNU coreutils 9.1, cp: the folder in front (-t), what a folder holds straight into another (`dir/.`, -T), files under
// their folders' names (--parents). Each can hit files that stand where no copy is shown.
void noteOtherPlaces(BasherAnalysis& analysis, const Words& flags, const Words& operands, const CopyOptions& options) {
    if (!options.mayOverwrite) return;
    const bool isUnlikeNames =
        hasAnyFlag(flags, contentsFlags) ||
        (options.isRecursive && std::any_of(operands.begin(), operands.end() - 1, namesFolderItself));
    const bool fills = isUnlikeNames && analysis.isExistingDirectory(analysis.resolveURL(operands.back()));
    if (fills || std::any_of(flags.begin(), flags.end(), isReadOtherwise))
        noteUnknownChanges(analysis, "'cp' may put files elsewhere than shown here, and over what stands there");
}

CommandResult copySourceMissing(BasherAnalysis& analysis, const FilePath& url, const std::string& source) {
    return analysis.addCommandError(fmt::format("Copy: {} doesn't exist", url.name()),
                                    fmt::format("cp: '{}': No such file or directory", source));
}

void recordCopy(BasherAnalysis& analysis, const FilePath& source, const FilePath& target, const CopyOptions& options) {
    if (!options.mayOverwrite && analysis.fileExists(target)) return;
    analysis.addFileChange(creation(target), analysis.isDirectory(source) && !options.makesLinks);
}

CommandResult copyOne(BasherAnalysis& analysis, const std::string& from, const std::string& to,
                      const CopyOptions& options) {
    const FilePath source = analysis.resolveURL(from);
    if (!analysis.fileExists(source)) return copySourceMissing(analysis, source, from);
    if (analysis.isDirectory(source) && !options.isRecursive)
        return analysis.addCommandError("Copy command incorrectly written",
                                        fmt::format("cp: -r not specified; omitting directory '{}'", from));
    recordCopy(analysis, source, placeAt(analysis, analysis.resolveURL(to), source), options);
    return CommandResult::success();
}

CommandResult copyIntoFolder(BasherAnalysis& analysis, const Words& sources, const std::string& destination,
                             const CopyOptions& options) {
    const FilePath folder = analysis.resolveURL(destination);
    if (!analysis.fileExists(folder))
        return analysis.addCommandError(fmt::format("Copy: '{}' doesn't exist", destination),
                                        fmt::format("cp: target '{}' not found", destination));
    if (!analysis.isDirectory(folder))
        return analysis.addCommandError(fmt::format("Copy destination '{}' isn't a folder", destination),
                                        fmt::format("cp: target '{}' is not a directory", destination));
    bool hasFailed = false;
    for (const auto& from : sources) {
        const FilePath source = analysis.resolveURL(from);
        if (!analysis.fileExists(source)) return copySourceMissing(analysis, source, from);
        if (analysis.isDirectory(source) && !options.isRecursive) {
            analysis.addCommandError(fmt::format("Won't copy folder {} without recursive flag", source.name()),
                                     fmt::format("cp: {} is a directory (not copied), no recursive flag passed", from));
            hasFailed = true;
        } else {
            recordCopy(analysis, source, placeIn(folder, source), options);
        }
    }
    return silentResult(hasFailed);
}

Words allButLast(const Words& operands) {
    return Words(operands.begin(), operands.end() - 1);
}

}  // namespace

CommandResult moveFiles(BasherAnalysis& analysis, const ModelInput& input) {
    ArgExtractor args = wordsOf(input);
    const bool keepsLinks = args.extractFlagsAndOptions().hasFlag("h");
    const Words& operands = args.remainingArgs();
    if (operands.empty()) return analysis.addCommandError("Move command missing file", "mv: missing file operand");
    if (operands.size() == 1)
        return analysis.addCommandError(
            "Move command missing destination",
            fmt::format("mv: missing destination file operand after '{}'", operands.front()));
    if (operands.size() == 2) return moveOne(analysis, operands.front(), operands.back(), keepsLinks);
    return moveIntoFolder(analysis, allButLast(operands), operands.back(), keepsLinks);
}

CommandResult copyFiles(BasherAnalysis& analysis, const ModelInput& input) {
    ArgExtractor args = wordsOf(input);
    const Words flags = args.extractFlagsAndOptions().flags;
    const Words& operands = args.remainingArgs();
    if (operands.empty()) return analysis.addCommandError("Copy command missing file", "cp: missing file operand");
    if (operands.size() == 1)
        return analysis.addCommandError(
            "Copy command missing destination",
            fmt::format("cp: missing destination file operand after '{}'", operands.front()));
    if (hasFlag(flags, "i"))
        throw BasherAnalysisError{BasherAnalysisError::Kind::wontWorkInBrindlet,
                                  "cp: -i (interactive) flag won't work in Brindlet"};
    if (hasFlag(flags, "l") && hasFlag(flags, "s"))
        return analysis.addCommandError("Copy command incorrectly written",
                                        "cp: cannot specify both -l (hard links) and -s (symbolic links)");
    const CopyOptions options = copyOptions(flags);
    noteOtherPlaces(analysis, flags, operands, options);
    if (operands.size() == 2) return copyOne(analysis, operands.front(), operands.back(), options);
    return copyIntoFolder(analysis, allButLast(operands), operands.back(), options);
}

}  // namespace brindlet
