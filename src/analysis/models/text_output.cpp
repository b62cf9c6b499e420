#include "analysis/models/text_output.h"

#include <fmt/format.h>

#include "analysis/models/model_support.h"
#include "text/strings.h"

namespace brindlet {

CommandResult echoWords(BasherAnalysis&, const ModelInput& input) {
    ArgExtractor args = wordsOf(input);
    const bool endsLine = !args.removeArg("-n");
    return {0, SimString::known(joined(args.remainingArgs(), " ") + (endsLine ? "\n" : ""))};
}

CommandResult printFormatted(BasherAnalysis& analysis, const ModelInput& input) {
    if (!input.standardInput.isKnown()) return {0, SimString::unknown()};
    return analysis.runRealCommand("printf", input.standardInput, input.args);
}

CommandResult printCurrentFolder(BasherAnalysis& analysis, const ModelInput&) {
    return {0, SimString::known(analysis.currentDirectoryURL().text())};
}

CommandResult concatenate(BasherAnalysis& analysis, const ModelInput& input) {
    ArgExtractor args = wordsOf(input);
    args.extractFlagsAndOptions();
    if (args.remainingArgs().empty()) return {0, input.standardInput};
    const auto check = [&](const std::string& path) -> std::optional<CommandResult> {
        const FilePath url = analysis.resolveURL(path);
        if (analysis.isExistingDirectory(url) || path.empty())
            analysis.doubtResult("'cat' can't print the folder '" + path + "'");
        if (analysis.fileExists(url)) return std::nullopt;
        return failureInWords(fmt::format("cat: {}: No such file or directory", path));
    };
    return firstFailure(args.remainingArgs(), check).value_or(CommandResult{0, SimString::unknown()});
}

}  // namespace brindlet
