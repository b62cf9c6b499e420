#include <algorithm>

#include <fmt/format.h>

#include "analysis/models/archives.h"
#include "analysis/models/archives_support.h"
#include "text/strings.h"

namespace brindlet {

namespace {

constexpr std::string_view listOptions[] = {"-i", "--include", "-x", "--exclude"};
constexpr std::size_t longestZipList = 1000;
const ArgExtractor::OptionArities outputOptions = {{"-O", 1}, {"--output-file", 1}};
const std::vector<std::string_view> valueOptions = {"b", "n", "t", "tt"};
const ArgExtractor::OptionArities valueOptionArities = {{"b", 1}, {"n", 1}, {"t", 1}, {"tt", 1}};

constexpr std::string_view inPlaceFlags[] = {"d", "delete", "u", "update"};
constexpr std::string_view movingFlags[] = {"m", "move"};

// zip 3.0: what only describes how the archive is packed, besides the flags that are modelled.
// clang-format off
constexpr std::string_view zipPlainFlags[] = {
    "d", "delete", "u", "update", "m", "move", "r", "recurse-paths", "R", "recurse-patterns", "q", "quiet", "v",
    "verbose", "0", "1", "2", "3", "4", "5", "6", "7", "8", "9", "j", "junk-paths", "D", "no-dir-entries", "y",
    "symlinks", "X", "no-extra", "k", "DOS-names", "o", "latest-time", "l", "to-crlf", "e", "encrypt", "g", "grow",
    "f", "freshen", "h", "help",
};
// clang-format on
constexpr std::string_view zipPlainGlued[] = {"exclude=", "include="};

struct ZipLine {
    Words flags;
    std::string output;
    Words inputs;
    bool hasLists = false;  // of what to include or to leave out
    Words rest;             // behind the operands, unread
};

CommandResult missing(BasherAnalysis& analysis, const FilePath& url, const std::string& path) {
    return analysis.addCommandError(fmt::format("Zip: {} doesn't exist", url.name()),
                                    fmt::format("zip: {}: No such file or directory", path));
}

// None for a line without the operands that it needs.
std::optional<ZipLine> readLine(const ModelInput& input) {
    ZipLine line;
    Words words = input.args;
    line.hasLists = takeOutEverywhere(words, listOptions, longestZipList);
    ArgExtractor args(input.name, ArgExtractor::Style::defaultStyle, std::move(words));
    std::optional<std::string> output;
    if (const auto taken = args.extractOptionsAnywhere(outputOptions))
        if (!taken->front().args.empty()) output = taken->front().args.front();
    line.flags = args.extractAllFlagsAtStart(valueOptions);
    args.extractOptionsAtStart(valueOptionArities);
    const Words operands = args.extractLeadingOperands();
    if (operands.empty() || (operands.size() < 2 && !output)) return std::nullopt;
    line.output = output.value_or(operands.front());
    line.inputs.assign(operands.begin() + 1, operands.end());
    line.rest = args.remainingArgs();
    return line;
}

std::optional<CommandResult> changeInPlace(BasherAnalysis& analysis, const ZipLine& line) {
    const FilePath archive = analysis.resolveURL(line.output);
    if (!analysis.fileExists(archive)) return missing(analysis, archive, line.output);
    analysis.addFileChange(modification(archive), std::nullopt);
    return std::nullopt;
}

std::optional<CommandResult> pack(BasherAnalysis& analysis, const ZipLine& line) {
    const auto check = [&](const std::string& path) -> std::optional<CommandResult> {
        const FilePath url = analysis.resolveURL(path);
        if (analysis.fileExists(url)) return std::nullopt;
        return missing(analysis, url, path);
    };
    if (auto failure = firstFailure(line.inputs, check)) return failure;
    analysis.addFileChange(creation(analysis.resolveURL(line.output)), false);
    return std::nullopt;
}

void deleteInputs(BasherAnalysis& analysis, const ZipLine& line) {
    if (line.hasLists)
        throw BasherAnalysisError{BasherAnalysisError::Kind::highRisk,
                                  "zip will move files into an archive and delete the originals, but the way those "
                                  "files are found and specified is too complex to preview"};
    for (const auto& path : line.inputs) analysis.addFileChange(deletion(analysis.resolveURL(path)), std::nullopt);
}

bool isPlainZipFlag(const std::string& flag) {
    const auto isGlued = [&](std::string_view option) { return flag.starts_with(option); };
    return isAmong(flag, zipPlainFlags) || std::any_of(std::begin(zipPlainGlued), std::end(zipPlainGlued), isGlued);
}

// Options count wherever they stand: `zip -r a.zip b -m` deletes b.
bool isPlainBehindOperands(const ModelInput& input, const std::string& word) {
    const Words flags = ArgExtractor(input.name, ArgExtractor::Style::defaultStyle, {word}).extractAllFlagsAtStart();
    return !hasAnyFlag(flags, movingFlags) && std::all_of(flags.begin(), flags.end(), isPlainZipFlag);
}

void noteUnmodelled(BasherAnalysis& analysis, const ModelInput& input, const ZipLine& line) {
    for (const auto& flag : line.flags)
        if (!isPlainZipFlag(flag)) noteUnread(analysis, "zip", spelt(flag));
    for (const auto& word : line.rest)
        if (word.starts_with('-') && !isPlainBehindOperands(input, word)) noteUnread(analysis, "zip", word);
    if (!contains(lastPathComponent(line.output), ".") &&
        analysis.fileExists(analysis.resolveURL(line.output + ".zip")))
        noteUnknownChanges(
            analysis,
            fmt::format("'zip' puts '.zip' behind '{}', and so changes the archive that is there", line.output));
    constexpr std::string_view variables[] = {"ZIPOPT", "ZIP"};
    noteVariables(analysis, "zip", variables);
}

}  // namespace

CommandResult zipFiles(BasherAnalysis& analysis, const ModelInput& input) {
    const auto line = readLine(input);
    if (!line)
        return analysis.addCommandError("Zip command incorrectly written",
                                        "zip: expected an output filename and input files");
    const bool changesInPlace = hasAnyFlag(line->flags, inPlaceFlags);
    if (auto failure = changesInPlace ? changeInPlace(analysis, *line) : pack(analysis, *line)) return *failure;
    if (hasAnyFlag(line->flags, movingFlags)) deleteInputs(analysis, *line);
    noteUnmodelled(analysis, input, *line);
    return CommandResult::success();
}

}  // namespace brindlet
