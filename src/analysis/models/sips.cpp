#include <algorithm>

#include <fmt/format.h>

#include "analysis/doubts.h"
#include "analysis/models/image_support.h"
#include "analysis/models/image_tools.h"
#include "text/characters.h"

namespace brindlet {

namespace {

constexpr std::string_view sipsHelpWords[] = {"-h", "--help", "-v", "--version"};
constexpr std::string_view outputWord = "--out";

constexpr std::string_view sourceExtensions[] = {
    ".jpg",  ".jpeg", ".png", ".gif", ".tiff", ".tif", ".bmp", ".ico",  ".psd",  ".heic",
    ".heif", ".webp", ".jp2", ".jpx", ".j2k",  ".j2c", ".fpx", ".pict", ".qtif", ".sgi",
    ".tga",  ".pdf",  ".eps", ".ai",  ".svg",  ".dng", ".cr2", ".nef",  ".arw",  ".avif",
};

enum class Effect { changes, reads };

struct Option {
    std::string_view name;
    std::size_t values;
    Effect effect = Effect::changes;
};

// `man sips` of macOS. Any other option is said to be in doubt.
constexpr Option sipsOptions[] = {
    {"-r", 1},
    {"--rotate", 1},
    {"-f", 1},
    {"--flip", 1},
    {"-s", 2},
    {"--setProperty", 2},
    {"-d", 1},
    {"--deleteProperty", 1},
    {"--deleteColorManagementProperties", 0},
    {"-e", 1},
    {"--embedProfile", 1},
    {"-E", 1},
    {"--embedProfileIfNone", 1},
    {"-m", 1},
    {"--matchTo", 1},
    {"-M", 2},
    {"--matchToWithIntent", 2},
    {"-z", 2},
    {"--resampleHeightWidth", 2},
    {"-Z", 1},
    {"--resampleHeightWidthMax", 1},
    {"--resampleWidth", 1},
    {"--resampleHeight", 1},
    {"-c", 2},
    {"--cropToHeightWidth", 2},
    {"-p", 2},
    {"--padToHeightWidth", 2},
    {"--padColor", 1},
    {"-i", 0},
    {"--addIcon", 0},
    {"--deleteTag", 1},
    {"--copyTag", 2},
    {"--loadTag", 2},
    {"--repair", 0},
    {"-g", 1, Effect::reads},
    {"--getProperty", 1, Effect::reads},
    {"-1", 0, Effect::reads},
    {"--oneLine", 0, Effect::reads},
    {"--cropOffset", 2, Effect::reads},
    {"--verify", 0, Effect::reads},
    {"--formats", 0, Effect::reads},
    {"-H", 0, Effect::reads},
    {"--helpProperties", 0, Effect::reads},
    {"--debug", 0, Effect::reads},
};

const Option* optionNamed(std::string_view word) {
    const auto found = std::find_if(std::begin(sipsOptions), std::end(sipsOptions),
                                    [&](const Option& option) { return option.name == word; });
    return found == std::end(sipsOptions) ? nullptr : found;
}

bool isChange(std::string_view word) {
    const Option* option = optionNamed(word);
    return option && option->effect == Effect::changes;
}

// Other sources than the last word, and options that may write and aren't known here.
void noteUnshown(BasherAnalysis& analysis, const Words& words, bool changesSources) {
    std::size_t said = 0;
    for (std::size_t at = 0; at + 1 < words.size() && said < mostSentences; ++at) {
        const std::string& word = words[at];
        if (const Option* option = optionNamed(word)) {
            at += option->values;
        } else if (word.starts_with('-')) {
            noteMore(analysis, fmt::format("sips may do more than is shown here with {}", quotedForSentence(word)));
            ++said;
        } else if (changesSources) {
            noteUnknownChanges(analysis, fmt::format("sips may change {} too", quotedForSentence(word)));
            ++said;
        }
    }
}

}  // namespace

CommandResult sips(BasherAnalysis& analysis, const ModelInput& input) {
    if (input.args.empty() || hasAnyFlag(input.args, sipsHelpWords)) return runForHelp(analysis, "sips", input.args);

    Words words = input.args;
    std::optional<std::string> output;
    if (const auto found = std::find(words.begin(), words.end(), outputWord); found != words.end()) {
        if (found + 1 == words.end()) return failureInWords("sips: --out flag must be followed by a filename");
        output = found[1];
        words.erase(found, found + 2);
    }
    const std::string source = words.empty() ? std::string() : words.back();
    if (!endsInAny(lowercased(source), sourceExtensions))
        return analysis.addCommandError("Image processor: not known image format",
                                        fmt::format("sips: {}: Not a known image format", source));
    const FilePath url = analysis.resolveURL(source);
    if (!analysis.fileExists(url))
        return analysis.addCommandError(fmt::format("Image processor: {} doesn't exist", url.name()),
                                        fmt::format("sips: {}: No such file or directory", source));
    const bool changes = std::any_of(words.begin(), words.end(), isChange);
    noteUnshown(analysis, words, changes && !output);
    if (changes || output) noteMayFail(analysis, "sips");
    if (output) {
        analysis.addFileChange(creation(analysis.resolveURL(*output)), false);
        return CommandResult::success();
    }
    if (changes) analysis.addFileChange(modification(url), std::nullopt);
    return printedSomething();
}

}  // namespace brindlet
