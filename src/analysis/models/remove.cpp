#include <algorithm>

#include <fmt/format.h>

#include "analysis/models/file_commands.h"
#include "analysis/models/model_support.h"
#include "text/strings.h"

namespace brindlet {

namespace {

constexpr std::string_view rmFlags[] = {"f", "i", "I", "r", "R", "d", "v"};
constexpr std::string_view promptingFlags[] = {"i", "I"};
constexpr std::string_view recursiveRemovalFlags[] = {"r", "R"};

struct RemoveOptions {
    bool isForced = false;
    bool isRecursive = false;
    bool removesEmptyFolders = false;
};

CommandResult rmIncorrectlyWritten(BasherAnalysis& analysis, std::string technical) {
    return analysis.addCommandError("Delete command incorrectly written", std::move(technical));
}

bool namesThisCommand(std::string_view word) {
    const std::string_view name = lastPathComponent(word);
    return name == "rm" || name == "unlink";
}

bool isPrompt(char letter) {
    return letter == 'i' || letter == 'I';
}

// The line's words, as printed, without the flags that make the tool ask: nobody is there to answer.
Words withoutPrompts(Words words) {
    // Behind `xargs` or `find -exec` the words in front are another command's.
    const auto command = std::find_if(words.begin(), words.end(), namesThisCommand);
    const auto first = command == words.end() ? std::min(words.begin() + 1, words.end()) : command + 1;
    // What stands behind "--" are names, and must stay whole.
    const auto last = std::find(first, words.end(), "--");
    Words kept(words.begin(), first);
    for (auto word = first; word != last; ++word) {
        if (*word == "-i" || *word == "-I") continue;
        if (word->starts_with('-') && word->size() > 2) {
            std::erase_if(*word, isPrompt);
            if (*word == "-") continue;  // -iI held nothing else; "-" would be the name of a file
        }
        kept.push_back(*word);
    }
    kept.insert(kept.end(), last, words.end());
    return kept;
}

std::optional<CommandResult> removeFolder(BasherAnalysis& analysis, const std::string& path, const FilePath& url,
                                          const RemoveOptions& options) {
    if (!options.isRecursive && !options.removesEmptyFolders)
        return analysis.addCommandError("Wrong command used to delete directory",
                                        fmt::format("rm: cannot remove '{}': Is a directory", path));
    if (!options.isRecursive && !analysis.isDirectoryEmpty(url))
        return rmIncorrectlyWritten(analysis, fmt::format("rm: cannot remove '{}': Directory not empty", path));
    analysis.addFileChange(deletion(url), std::nullopt);
    return std::nullopt;
}

// A link that leads nowhere counts as missing, but the tool takes it away, and with -f nothing else is said of it.
void noteLinkToNowhere(BasherAnalysis& analysis, const FilePath& url) {
    if (url.isRoot() || analysis.fileHistory(url).history.size() > 1) return;
    const auto& names = analysis.state().overlay.realNames(url.parent());
    if (names && std::find(names->begin(), names->end(), url.name()) != names->end())
        noteUnknownChanges(analysis, "A link that leads nowhere is deleted too, which isn't shown here");
}

std::optional<CommandResult> removeItem(BasherAnalysis& analysis, const std::string& path,
                                        const RemoveOptions& options) {
    const std::string_view name = lastPathComponent(path);
    if (name == "." || name == "..")
        return rmIncorrectlyWritten(analysis, fmt::format("rm: cannot remove '{}': Invalid argument", path));
    const FilePath url = analysis.resolveURL(path);
    if (!analysis.fileExists(url)) {
        if (options.isForced) {
            noteLinkToNowhere(analysis, url);
            return std::nullopt;
        }
        return analysis.addCommandError(fmt::format("Delete command: {} doesn't exist", url.name()),
                                        fmt::format("rm: cannot remove '{}': No such file or directory", path));
    }
    if (analysis.isDirectory(url)) return removeFolder(analysis, path, url, options);
    analysis.addFileChange(deletion(url), false);
    return std::nullopt;
}

}  // namespace

CommandResult removeFiles(BasherAnalysis& analysis, const ModelInput& input) {
    ArgExtractor args = wordsOf(input);
    const Words flags = args.extractAllFlagsAtStart();
    if (args.remainingArgs().empty()) return rmIncorrectlyWritten(analysis, "rm: missing operand");
    if (const Words unsupported = allUnsupported(flags, rmFlags); !unsupported.empty())
        return rmIncorrectlyWritten(analysis, "rm: unsupported option(s): -" + joined(unsupported, ", -"));
    if (hasAnyFlag(flags, promptingFlags)) input.command.rewriteRule = withoutPrompts;

    const RemoveOptions options{.isForced = hasFlag(flags, "f"),
                                .isRecursive = hasAnyFlag(flags, recursiveRemovalFlags),
                                .removesEmptyFolders = hasFlag(flags, "d")};
    noteEndOfOptions(analysis, input.name, args.remainingArgs());
    const auto remove = [&](const std::string& path) { return removeItem(analysis, path, options); };
    return firstFailure(args.remainingArgs(), remove).value_or(CommandResult::success());
}

}  // namespace brindlet
