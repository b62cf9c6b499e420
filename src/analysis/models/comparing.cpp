#include "analysis/models/text_filters.h"

#include <algorithm>

#include <fmt/format.h>

#include "analysis/models/filter_support.h"

namespace brindlet {

namespace {

constexpr std::string_view recursiveSearchFlags[] = {"r", "R"};

// --- grep ---

constexpr std::string_view quietFlags[] = {"q", "quiet", "silent"};

// The options of GNU grep 3.8 that take a value or make it recursive.
constexpr ToolOption grepOptions[] = {{0, "recursive"},
                                      {0, "dereference-recursive"},
                                      {'d', "directories", Takes::value},
                                      {'e', "regexp", Takes::value},
                                      {'f', "file", Takes::value},
                                      {'m', "max-count", Takes::value},
                                      {'A', "after-context", Takes::value},
                                      {'B', "before-context", Takes::value},
                                      {'C', "context", Takes::value},
                                      {'D', "devices", Takes::value},
                                      {'X', "", Takes::value},
                                      {0, "include", Takes::value},
                                      {0, "exclude", Takes::value},
                                      {0, "exclude-dir", Takes::value},
                                      {0, "exclude-from", Takes::value},
                                      {0, "binary-files", Takes::value},
                                      {0, "group-separator", Takes::value},
                                      {0, "label", Takes::value}};

const ArgExtractor::OptionArities& grepArities() {
    static const ArgExtractor::OptionArities arities{{"e", 1},           {"f", 1},
                                                     {"m", 1},           {"A", 1},
                                                     {"B", 1},           {"C", 1},
                                                     {"d", 1},           {"D", 1},
                                                     {"exclude", 1},     {"include", 1},
                                                     {"exclude-dir", 1}, {"include-dir", 1},
                                                     {"color", 1},       {"binary-files", 1},
                                                     {"label", 1}};
    return arities;
}

// What the model passes over: files of patterns that the line has changed, and folders searched by another spelling.
void noteGrepSpellings(BasherAnalysis& analysis, const ModelInput& input, const Words& operands) {
    const ToolReading reading = readAsTool(input.args, grepOptions);
    if (reading.operands != operands) noteMisreading(analysis, "grep");
    Words patternFiles;
    for (const auto& option : reading.options)
        if (option.letter == 'f' && option.value) patternFiles.push_back(*option.value);
    noteFilesSeenOtherwise(analysis, "grep", patternFiles);
    if (reading.hasLong("recursive") || reading.hasLong("dereference-recursive") || reading.value('d') == "recurse")
        analysis.noteSeesOnlyRealFiles("grep");
}

// --- diff ---

constexpr ToolOption diffOptions[] = {{0, "from-file", Takes::value},
                                      {0, "to-file", Takes::value},
                                      {'C', "", Takes::value},
                                      {'U', "", Takes::value},
                                      {'L', "label", Takes::value},
                                      {'W', "width", Takes::value},
                                      {'I', "ignore-matching-lines", Takes::value},
                                      {'F', "show-function-line", Takes::value},
                                      {'x', "exclude", Takes::value},
                                      {'X', "exclude-from", Takes::value},
                                      {'S', "starting-file", Takes::value},
                                      {'D', "ifdef", Takes::value},
                                      {0, "tabsize", Takes::value},
                                      {0, "palette", Takes::value},
                                      {0, "horizon-lines", Takes::value},
                                      {0, "line-format", Takes::value},
                                      {0, "old-line-format", Takes::value},
                                      {0, "new-line-format", Takes::value},
                                      {0, "unchanged-line-format", Takes::value},
                                      {0, "old-group-format", Takes::value},
                                      {0, "new-group-format", Takes::value},
                                      {0, "unchanged-group-format", Takes::value},
                                      {0, "changed-group-format", Takes::value}};

void noteDiffSpellings(BasherAnalysis& analysis, const ModelInput& input, const Words& operands) {
    const ToolReading reading = readAsTool(input.args, diffOptions);
    const bool hasOneSideApart = reading.hasLong("from-file") || reading.hasLong("to-file");
    if (hasOneSideApart || reading.operands != operands) noteMisreading(analysis, "diff");
}

CommandResult launchDiff(BasherAnalysis& analysis, const ModelInput& input, const Words& operands) {
    // A folder stands for the files in it.
    const auto isFolder = [&](const auto& path) { return analysis.isExistingDirectory(analysis.resolveURL(path)); };
    const Words files = realFilesAmong(operands);
    if (std::any_of(files.begin(), files.end(), isFolder)) analysis.noteSeesOnlyRealFiles("diff");
    const bool readsInput = files.size() < operands.size();
    return analysis.runRealCommand("diff", readsInput ? input.standardInput : SimString::known(""), input.args);
}

// What keeps an operand from being compared; none for the standard input.
std::optional<CommandResult> diffOperandFailure(BasherAnalysis& analysis, const std::string& path, bool isRecursive) {
    if (path == "-") return std::nullopt;
    if (!isThere(analysis, "diff", path)) return noSuchFile("diff", path);
    if (isRecursive && !analysis.isDirectory(analysis.resolveURL(path)))
        return failureInWords(fmt::format("diff: {}: Not a directory", path));
    return std::nullopt;
}

}  // namespace

CommandResult searchText(BasherAnalysis& analysis, const ModelInput& input) {
    ArgExtractor args = wordsOf(input);
    const auto taken = args.extractFlagsAndOptions(grepArities());
    if (hasAnyFlag(taken.flags, recursiveSearchFlags))
        throw BasherAnalysisError{BasherAnalysisError::Kind::highRisk,
                                  "grep -r/-R (recursive) is not supported in simulation"};
    noteGrepSpellings(analysis, input, args.remainingArgs());
    if (const auto patterns = taken.options.find("f"); patterns != taken.options.end())
        if (const auto missing = firstMissing(analysis, "grep", patterns->second)) return noSuchFile("grep", *missing);

    Words files = args.remainingArgs();
    const bool hasPattern = taken.options.contains("e") || taken.options.contains("f");
    if (!hasPattern && !files.empty()) files.erase(files.begin());
    if (files.empty()) {
        // With nothing printed only the exit code counts, and that is a guess.
        if (!input.standardInput.isKnown() && hasAnyFlag(taken.flags, quietFlags))
            analysis.doubtResult("Whether 'grep' finds something isn't known");
        return filterInput(analysis, input);
    }
    doubtUnreadInput(analysis, input, files);
    const auto check = [&](const std::string& path) -> std::optional<CommandResult> {
        if (!isThere(analysis, "grep", path)) {
            if (hasAnyFlag(taken.flags, quietFlags)) analysis.doubtResult("'grep' may find something in another file");
            return noSuchFile("grep", path);
        }
        if (!isUnchanged(analysis, path)) return CommandResult::unpredictable();
        return std::nullopt;
    };
    if (const auto end = firstFailure(realFilesAmong(files), check)) return *end;
    return analysis.runRealCommand("grep", SimString::known(""), input.args);
}

CommandResult compareFiles(BasherAnalysis& analysis, const ModelInput& input) {
    ArgExtractor args = wordsOf(input);
    const auto taken = args.extractFlagsAndOptions(
        {{"C", 1}, {"U", 1}, {"L", 1}, {"W", 1}, {"I", 1}, {"x", 1}, {"X", 1}, {"S", 1}, {"F", 1}});
    const Words& operands = args.remainingArgs();
    noteDiffSpellings(analysis, input, operands);
    if (operands.size() < 2) return failureInWords("diff: missing operand");
    const Words compared(operands.begin(), operands.begin() + 2);
    const bool isRecursive = hasAnyFlag(taken.flags, recursiveSearchFlags);
    const auto check = [&](const auto& path) { return diffOperandFailure(analysis, path, isRecursive); };
    if (const auto failure = firstFailure(compared, check)) return *failure;
    if (isRecursive) return CommandResult::unpredictable();

    const bool isInputKnown = !hasFlag(compared, "-") || input.standardInput.isKnown();
    if (operands.size() == 2 && isInputKnown && areUnchanged(analysis, realFilesAmong(compared)))
        return launchDiff(analysis, input, operands);
    analysis.doubtResult("Whether 'diff' finds a difference isn't known");
    return unknownText();
}

}  // namespace brindlet
