#include <algorithm>

#include <fmt/format.h>

#include "analysis/doubts.h"
#include "analysis/models/image_support.h"
#include "analysis/models/image_tools.h"
#include "text/strings.h"

namespace brindlet {

namespace {

constexpr std::string_view gifsicleHelpWords[] = {"-h", "--help", "--version"};
constexpr std::string_view standardStream = "-";
const ArgExtractor::OptionArities gifsicleValueOptions = {{"o", 1}, {"output", 1}};

// gifsicle 1.93, `gifsicle --help`: the letters that take what stands behind them in their word as their value.
constexpr std::string_view gifsicleLettersWithValue = "BDLOScdfjklnopt";
constexpr std::string_view explodingLetters = "eE";
// Options that write, or run a program. It takes a long option by any part of its name that no other begins with.
constexpr std::string_view gifsicleWritingOptions[] = {"output", "batch", "explode", "explode-by-name",
                                                       "transform-colormap"};

struct GifsicleTask {
    std::optional<std::string> output;
    bool isBatch = false;
};

bool mayMeanWritingOption(std::string_view name) {
    const std::size_t equals = name.find('=');
    const std::string_view plain = name.substr(0, equals);
    const bool isAsModelled = equals == std::string_view::npos && (plain == "output" || plain == "batch");
    return !isAsModelled && !plain.empty() &&
           std::any_of(std::begin(gifsicleWritingOptions), std::end(gifsicleWritingOptions),
                       [&](auto option) { return option.starts_with(plain); });
}

// Whether a word such as -Oeo holds more than its letters say: a letter that explodes, or -o with its value glued on.
bool isWritingCluster(std::string_view word) {
    const std::size_t end = word.find_first_of(gifsicleLettersWithValue, 1);
    const std::size_t exploding = word.find_first_of(explodingLetters, 1);
    return exploding < end || (end < word.size() - 1 && word[end] == 'o');
}

void noteUnshown(BasherAnalysis& analysis, const Words& words, const ArgExtractor::FlagsAndOptions& taken) {
    const auto writes = [](const std::string& word) {
        if (isFlagCluster(word)) return isWritingCluster(word);
        return word.starts_with("--") && mayMeanWritingOption(std::string_view(word).substr(2));
    };
    if (const auto word = std::find_if(words.begin(), words.end(), writes); word != words.end())
        noteMore(analysis, fmt::format("gifsicle may do more than is shown here with {}", quotedForSentence(*word)));
    const bool isGivenTwice = taken.options.size() > 1 && taken.value("o") != taken.value("output");
    const bool hasNoName = std::any_of(taken.options.begin(), taken.options.end(),
                                       [](const auto& option) { return option.second.empty(); });
    if (isGivenTwice || (hasNoName && !hasFlag(words, standardStream)))
        noteUnknownChanges(analysis, "gifsicle may write to another file than is shown here");
}

// Said where a prediction that can't be made would otherwise look as if nothing happened to files that are there.
void noteChangesOf(BasherAnalysis& analysis, const GifsicleTask& task) {
    if (task.output && analysis.fileExists(analysis.resolveURL(*task.output)))
        noteUnknownChanges(analysis, fmt::format("gifsicle may overwrite {}", quotedForSentence(*task.output)));
    if (!task.output && task.isBatch) noteUnknownChanges(analysis, "gifsicle may change its sources");
}

}  // namespace

CommandResult gifsicle(BasherAnalysis& analysis, const ModelInput& input) {
    analysis.requirePackage("Gifsicle");
    if (input.args.empty() || hasAnyFlag(input.args, gifsicleHelpWords))
        return runForHelp(analysis, "gifsicle", input.args);

    ArgExtractor args = wordsOf(input);
    const auto taken = args.extractFlagsAndOptions(gifsicleValueOptions);
    noteUnshown(analysis, input.args, taken);
    GifsicleTask task{.output = taken.value("o"), .isBatch = taken.hasFlag("b") || taken.hasFlag("batch")};
    if (!task.output) task.output = taken.value("output");
    if (task.output == standardStream) task.output.reset();

    Words sources = args.remainingArgs();
    std::erase(sources, standardStream);
    for (const std::string& path : sources) {
        const FilePath url = analysis.resolveURL(path);
        if (!analysis.fileExists(url))
            return analysis.addCommandError("GIF source doesn’t exist",
                                            fmt::format("gifsicle: {}: No such file or directory", path));
        if (!analysis.fileHistory(url).isUnchangedOriginal()) {
            noteChangesOf(analysis, task);
            return CommandResult::unpredictable();
        }
    }
    if (task.output) {
        analysis.addFileChange(creation(analysis.resolveURL(*task.output)), false);
    } else if (task.isBatch) {
        for (const std::string& path : sources)
            analysis.addFileChange(modification(analysis.resolveURL(path)), std::nullopt);
    }
    analysis.addSideEffect({PlainSideEffect::longRunning, std::nullopt});
    noteMayFail(analysis, "gifsicle");
    return printedSomething();
}

}  // namespace brindlet
