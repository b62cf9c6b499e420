#include "analysis/models/text_output.h"

#include <algorithm>

#include "analysis/models/filter_support.h"
#include "analysis/models/model_support.h"
#include "text/regex.h"
#include "text/strings.h"

namespace brindlet {

namespace {

// bash's own echo takes these in front, each as often as it stands there.
bool isShellsEchoOption(std::string_view word) {
    return word.size() > 1 && word.starts_with('-') && word.find_first_not_of("neE", 1) == std::string_view::npos;
}

bool doesShellEchoOtherwise(const Words& words) {
    const auto text = std::find_if_not(words.begin(), words.end(), isShellsEchoOption);
    const Words options(words.begin(), text);
    return options.empty() ? hasFlag(words, "-n") : options != Words{"-n"};
}

// The names of the variables that bash's own printf would set: the one behind -v, or any of its words where the format
// holds "%n".
Words namesSetByPrintf(const Words& words) {
    static const Regex countsInto("%[-+ #0-9.*'hlLjzt]*n");
    if (words.empty()) return {};
    if (words.front() == "-v") return words.size() > 1 ? Words{words[1]} : Words{};
    if (words.front().starts_with("-v")) return {words.front().substr(2)};
    if (countsInto.matches(replacedAll(words.front(), "%%", ""))) return {words.begin() + 1, words.end()};
    return {};
}

void notePrintfVariables(BasherAnalysis& analysis, const Words& words) {
    const Words names = namesSetByPrintf(words);
    for (const auto& name : names) refuseSubscript("printf", name);
    if (!names.empty())
        analysis.addSideEffect({PlainSideEffect::partialSupport, "'printf' sets a variable, which isn't shown here"});
    if (!words.empty() && contains(words.front(), "%("))
        analysis.doubtResult("The shell's own 'printf' prints dates, unlike the tool");
}

}  // namespace

CommandResult echoWords(BasherAnalysis& analysis, const ModelInput& input) {
    ArgExtractor args = wordsOf(input);
    if (doesShellEchoOtherwise(input.args)) analysis.doubtResult("'echo' prints something else than shown here");
    const bool endsLine = !args.removeArg("-n");
    return {0, SimString::known(joined(args.remainingArgs(), " ") + (endsLine ? "\n" : ""))};
}

CommandResult printFormatted(BasherAnalysis& analysis, const ModelInput& input) {
    notePrintfVariables(analysis, input.args);
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
        if (isThere(analysis, "cat", path)) return std::nullopt;
        if (path == "-") analysis.doubtResult("'cat' reads its standard input for '-'");
        return noSuchFile("cat", path);
    };
    return firstFailure(args.remainingArgs(), check).value_or(CommandResult{0, SimString::unknown()});
}

}  // namespace brindlet
