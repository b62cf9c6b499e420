#include <fmt/format.h>

#include "analysis/models/file_commands.h"
#include "analysis/models/model_support.h"

namespace brindlet {

namespace {

constexpr std::string_view helpFlags[] = {"h", "help"};

}  // namespace

CommandResult trashFiles(BasherAnalysis& analysis, const ModelInput& input) {
    ArgExtractor args = wordsOf(input);
    const bool saysStop = args.removeArg("-stopOnError");
    const Words flags = args.extractFlagsAndOptions().flags;
    const bool stopsOnError = saysStop || hasFlag(flags, "s");
    if (hasAnyFlag(flags, helpFlags)) return CommandResult::success();
    if (args.remainingArgs().empty())
        return analysis.addCommandError("Trash command incorrectly written", "trash: missing operand");

    const FilePath trashFolder = analysis.resolveURL("~/.Trash");
    std::optional<std::string> firstMissing;
    for (const auto& path : args.remainingArgs()) {
        const FilePath url = analysis.resolveURL(path);
        if (analysis.fileExists(url)) {
            analysis.addFileChange(moving(url, placeIn(trashFolder, url)), analysis.isDirectory(url));
            continue;
        }
        if (!firstMissing) firstMissing = url.name();
        if (stopsOnError) break;
    }
    if (!firstMissing) return CommandResult::success();
    return analysis.addCommandError(fmt::format("Trash: {} doesn't exist", *firstMissing),
                                    fmt::format("trash: cannot move '{}': No such file or directory", *firstMissing));
}

}  // namespace brindlet
