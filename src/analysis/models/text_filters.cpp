#include "analysis/models/text_filters.h"

#include <algorithm>
#include <iterator>

#include <fmt/format.h>

#include "analysis/models/filter_support.h"
#include "text/strings.h"

namespace brindlet {

namespace {

// The options of coreutils 9.1 that take a value or do more than read.
constexpr ToolOption headOptions[] = {{'c', "bytes", Takes::value}, {'n', "lines", Takes::value}};
constexpr ToolOption tailOptions[] = {{'c', "bytes", Takes::value},
                                      {'n', "lines", Takes::value},
                                      {'s', "sleep-interval", Takes::value},
                                      {'b', "", Takes::value},  // of another tail, refused by this one
                                      {0, "pid", Takes::value},
                                      {0, "max-unchanged-stats", Takes::value}};
constexpr ToolOption cutOptions[] = {{'b', "bytes", Takes::value},
                                     {'c', "characters", Takes::value},
                                     {'f', "fields", Takes::value},
                                     {'d', "delimiter", Takes::value},
                                     {0, "output-delimiter", Takes::value}};
constexpr ToolOption sortOptions[] = {{'o', "output", Takes::value},      {0, "compress-program", Takes::value},
                                      {'k', "key", Takes::value},         {'t', "field-separator", Takes::value},
                                      {'S', "buffer-size", Takes::value}, {'T', "temporary-directory", Takes::value},
                                      {0, "files0-from", Takes::value},   {0, "batch-size", Takes::value},
                                      {0, "parallel", Takes::value},      {0, "random-source", Takes::value},
                                      {0, "sort", Takes::value}};
constexpr ToolOption uniqOptions[] = {
    {'f', "skip-fields", Takes::value}, {'s', "skip-chars", Takes::value}, {'w', "check-chars", Takes::value}};
constexpr ToolOption wcOptions[] = {{0, "files0-from", Takes::value}, {0, "total", Takes::value}};

Words valuesIn(const ToolReading& reading) {
    Words values;
    for (const auto& option : reading.options)
        if (option.value) values.push_back(*option.value);
    return values;
}

// --- cut ---

constexpr std::string_view cutLetters = "bcfd";

bool isGluedCutOption(std::string_view word) {
    return word.size() >= 3 && isFlagCluster(word) && contains(cutLetters, word.substr(1, 1));
}

// "-f2" as "-f", "2".
Words withCutValuesApart(const Words& words) {
    Words apart;
    for (const auto& word : words) {
        if (isGluedCutOption(word)) {
            apart.push_back(word.substr(0, 2));
            apart.push_back(word.substr(2));
        } else {
            apart.push_back(word);
        }
    }
    return apart;
}

// What `cut` is given instead where its options can't work, so that it prints what is wrong.
std::optional<Words> wordsForUsage(const ArgExtractor::FlagsAndOptions& taken) {
    bool hasList = false;
    for (const char letter : cutLetters) {
        const auto option = taken.options.find(std::string(1, letter));
        if (option == taken.options.end()) continue;
        if (option->second.empty()) return Words{std::string("-") + letter};
        if (letter != 'd') hasList = true;
    }
    return hasList ? std::nullopt : std::optional(Words{});
}

bool cutWouldWork(const Words& words) {
    const ToolReading reading = readAsTool(words, cutOptions);
    const auto hasValue = [&](char letter) { return reading.value(letter).has_value(); };
    const auto lacksValue = [&](char letter) { return reading.has(letter) && !hasValue(letter); };
    return std::ranges::any_of(std::string_view("bcf"), hasValue) && std::ranges::none_of(cutLetters, lacksValue);
}

// --- sort, uniq ---

// The file that the model has as changed, against the one that the tool would write.
void noteOtherOutput(BasherAnalysis& analysis, std::string_view command, const std::optional<std::string>& shown,
                     const std::optional<std::string>& written) {
    if (!written || (shown && analysis.resolveURL(*shown) == analysis.resolveURL(*written))) return;
    noteUnlistedWrites(analysis, command, {*written});
}

CommandResult writeOutput(BasherAnalysis& analysis, const std::string& path) {
    const FilePath url = analysis.resolveURL(path);
    analysis.addFileChange(analysis.fileExists(url) ? modification(url) : creation(url), false);
    return CommandResult::success();
}

std::optional<std::string> uniqOutput(const Words& operands) {
    if (operands.size() < 2 || operands[1] == "-") return std::nullopt;
    return operands[1];
}

}  // namespace

CommandResult showEnd(BasherAnalysis& analysis, const ModelInput& input) {
    const bool isHead = input.name == "head";
    ArgExtractor args = wordsOf(input);
    const ArgExtractor::OptionArities headValues{{"n", 1}, {"c", 1}}, tailValues{{"b", 1}, {"c", 1}, {"n", 1}};
    const auto taken = args.extractFlagsAndOptions(isHead ? headValues : tailValues);
    const Words& files = args.remainingArgs();

    noteMisreadOperands(analysis, input, files, isHead ? std::span<const ToolOption>(headOptions) : tailOptions);
    // The older way to count from the start: `tail +5 file`.
    if (!isHead && !files.empty() && files.front().starts_with('+')) noteMisreading(analysis, input.name);
    if (taken.options.contains("b")) analysis.doubtResult("Not every 'tail' has the option '-b'");
    if (const auto missing = firstMissing(analysis, input.name, files)) {
        if (*missing == "-") analysis.doubtResult(fmt::format("'{}' reads its standard input for '-'", input.name));
        return noSuchFile(input.name, *missing);
    }
    doubtFolders(analysis, input.name, files);
    return unknownText();
}

CommandResult cutColumns(BasherAnalysis& analysis, const ModelInput& input) {
    ArgExtractor args(input.name, ArgExtractor::Style::defaultStyle, withCutValuesApart(input.args));
    const auto taken = args.extractFlagsAndOptions({{"b", 1}, {"c", 1}, {"f", 1}, {"d", 1}});
    if (const auto words = wordsForUsage(taken)) {
        if (cutWouldWork(input.args)) noteMisreading(analysis, input.name);
        return analysis.runRealCommand("cut", SimString::known(""), *words);
    }
    noteMisreadOperands(analysis, input, args.remainingArgs(), cutOptions);
    const Words files = realFilesAmong(args.remainingArgs());
    if (files.empty()) return filterInput(analysis, input);
    doubtUnreadInput(analysis, input, args.remainingArgs());
    const auto check = [&](const std::string& path) -> std::optional<CommandResult> {
        if (!isThere(analysis, "cut", path)) return noSuchFile("cut", path);
        if (!isUnchanged(analysis, path)) return CommandResult::unpredictable();
        return std::nullopt;
    };
    if (const auto end = firstFailure(files, check)) return *end;
    return analysis.runRealCommand("cut", SimString::known(""), input.args);
}

CommandResult sortLines(BasherAnalysis& analysis, const ModelInput& input) {
    ArgExtractor args = wordsOf(input);
    const auto taken = args.extractFlagsAndOptions({{"o", 1}});
    const auto output = taken.value("o");
    const ToolReading reading = readAsTool(input.args, sortOptions);
    noteOtherOutput(analysis, "sort", output, reading.value('o'));
    if (reading.hasLong("compress-program")) noteUnlistedCommands(analysis, "sort");

    if (taken.options.contains("o") && !output)
        return analysis.addCommandError("Sort command incorrectly written", "sort: option requires an argument -- o");
    if (const auto missing = firstMissing(analysis, "sort", realFilesAmong(args.remainingArgs())))
        return analysis.addCommandError(
            "Sort source file doesn't exist",
            fmt::format("sort: {}: No such file or directory", analysis.resolveURL(*missing).text()));
    if (output) return writeOutput(analysis, *output);
    noteFilesSeenOtherwise(analysis, "sort", valuesIn(reading));
    return saidIfStopped(analysis, input, filterFiles(analysis, input, args.remainingArgs()));
}

CommandResult uniqueLines(BasherAnalysis& analysis, const ModelInput& input) {
    ArgExtractor args = wordsOf(input);
    args.extractFlagsAndOptions({{"f", 1}, {"s", 1}, {"w", 1}});
    const Words& operands = args.remainingArgs();
    const bool readsFile = !operands.empty() && operands.front() != "-";
    const auto output = readsFile ? uniqOutput(operands) : std::nullopt;
    noteOtherOutput(analysis, "uniq", output, uniqOutput(readAsTool(input.args, uniqOptions).operands));

    if (!readsFile) return saidIfStopped(analysis, input, filterInput(analysis, input));
    noteMisreadOperands(analysis, input, operands, uniqOptions);
    if (!isThere(analysis, "uniq", operands.front())) return noSuchFile("uniq", operands.front());
    if (output) return writeOutput(analysis, *output);
    return saidIfStopped(analysis, input, filterFiles(analysis, input, {operands.front()}));
}

CommandResult countWords(BasherAnalysis& analysis, const ModelInput& input) {
    ArgExtractor args = wordsOf(input);
    args.extractFlagsAndOptions();
    if (const auto missing = firstMissing(analysis, "wc", realFilesAmong(args.remainingArgs())))
        return analysis.addCommandError(
            fmt::format("Word/line counter: {} doesn't exist", analysis.resolveURL(*missing).name()),
            fmt::format("wc: {}: No such file or directory", *missing));
    noteFilesSeenOtherwise(analysis, "wc", valuesIn(readAsTool(input.args, wcOptions)));
    return filterFiles(analysis, input, args.remainingArgs());
}

}  // namespace brindlet
