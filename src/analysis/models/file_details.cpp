#include <algorithm>

#include <fmt/format.h>

#include "analysis/models/filter_support.h"
#include "analysis/models/text_filters.h"

namespace brindlet {

namespace {

// --- date ---

// coreutils 9.1, whole: what it doesn't know it refuses before it does anything.
constexpr ToolOption dateOptions[] = {{'s', "set", Takes::value},
                                      {'d', "date", Takes::value},
                                      {'f', "file", Takes::value},
                                      {'r', "reference", Takes::value},
                                      {'I', "iso-8601", Takes::gluedValue},
                                      {0, "rfc-3339", Takes::value},
                                      {'R', "rfc-email"},
                                      {'R', "rfc-822"},
                                      {'R', "rfc-2822"},
                                      {'u', "utc"},
                                      {'u', "universal"},
                                      {'u', "uct"},
                                      {0, "debug"},
                                      {0, "resolution"},
                                      {0, "help"},
                                      {0, "version"}};

bool setsClock(const ToolReading& reading) {
    if (reading.has('s')) return true;
    const auto isTime = [](const std::string& word) { return !word.starts_with('+'); };
    return reading.knowsAll() && std::any_of(reading.operands.begin(), reading.operands.end(), isTime);
}

void noteFilesOfDate(BasherAnalysis& analysis, const ToolReading& reading) {
    for (const char letter : {'f', 'r'})
        if (const auto file = reading.value(letter)) noteFilesSeenOtherwise(analysis, "date", {*file});
}

// --- file ---

constexpr std::string_view unfollowedFileOptions[] = {"f", "m", "M"};

// file 5.44.
constexpr ToolOption fileOptions[] = {{'C', "compile"},
                                      {'e', "exclude", Takes::value},
                                      {0, "exclude-quiet", Takes::value},
                                      {'f', "files-from", Takes::value},
                                      {'F', "separator", Takes::value},
                                      {'m', "magic-file", Takes::value},
                                      {'P', "parameter", Takes::value}};

void noteFileSpellings(BasherAnalysis& analysis, const ModelInput& input, const Words& operands) {
    const ToolReading reading = readAsTool(input.args, fileOptions);
    if (reading.has('C')) noteUnlistedWrites(analysis, "file", {reading.value('m').value_or("magic") + ".mgc"});
    if (reading.operands != operands) noteMisreading(analysis, "file");
    for (const auto& option : reading.options)
        if (option.value) noteFilesSeenOtherwise(analysis, "file", {*option.value});
}

// --- stat, readlink ---

// What is taken out before the flags are looked at, with its number of values.
ArgExtractor::OptionArities detailOptions(bool isStat) {
    if (isStat) return {{"-n", 0}, {"-f", 1}, {"-t", 1}, {"-L", 0}, {"-x", 0}, {"-r", 0}, {"-q", 0}};
    return {{"-n", 0}, {"-f", 0}};
}

}  // namespace

CommandResult printDate(BasherAnalysis& analysis, const ModelInput& input) {
    const ToolReading reading = readAsTool(input.args, dateOptions);
    if (setsClock(reading))
        analysis.addSideEffect({PlainSideEffect::modifiesSystemSetting, "Sets the system's date and time"});
    ArgExtractor args = wordsOf(input);
    const auto reference = args.extractOptionsAnywhere({{"-r", 1}});
    if (!reference) {
        noteFilesOfDate(analysis, reading);
        return saidIfStopped(analysis, input, filterInput(analysis, input));
    }
    const Words& file = reference->front().args;
    if (file.empty() || !isThere(analysis, "date", file.front())) return failureInWords("date: usage information");
    if (!areUnchanged(analysis, file)) return unknownText();
    return saidIfStopped(analysis, input, analysis.runRealCommand("date", SimString::known(""), input.args));
}

CommandResult guessFileType(BasherAnalysis& analysis, const ModelInput& input) {
    ArgExtractor args = wordsOf(input);
    const auto taken = args.extractFlagsAndOptions({{"f", 1}, {"F", 1}, {"m", 1}, {"M", 1}});
    const Words& operands = args.remainingArgs();
    noteFileSpellings(analysis, input, operands);
    const auto isGiven = [&](const auto name) { return taken.options.contains(name); };
    const bool isUnfollowed = std::any_of(std::begin(unfollowedFileOptions), std::end(unfollowedFileOptions), isGiven);
    if (isUnfollowed || operands.empty()) return unknownText();
    if (const auto missing = firstMissing(analysis, "file", realFilesAmong(operands))) {
        analysis.doubtResult("'file' succeeds without its file");
        return failureInWords(fmt::format("file: {}: cannot open: No such file or directory", *missing));
    }
    return saidIfStopped(analysis, input, filterFiles(analysis, input, operands));
}

CommandResult showFileDetails(BasherAnalysis& analysis, const ModelInput& input) {
    const bool isStat = input.name == "stat";
    ArgExtractor args = wordsOf(input);
    args.extractOptionsAnywhere(detailOptions(isStat));
    if (const Words flags = args.extractAllFlagsAtStart(); !flags.empty())
        return analysis.addCommandError("File info command incorrectly written",
                                        fmt::format("{}: unsupported flag '{}'", input.name, flags.front()));
    args.removeArgIfFirst("--");
    Words paths = args.remainingArgs();
    if (paths.empty()) {
        if (!isStat) return silentResult(true);
        paths.push_back(analysis.currentDirectoryURL().text());
    }
    if (const auto missing = firstMissing(analysis, input.name, paths)) {
        const auto name = std::string(analysis.resolveURL(*missing).name());
        return analysis.addCommandError(fmt::format("File info: {} doesn't exist", name),
                                        fmt::format("{}: {}: No such file or directory", input.name, name));
    }
    if (!areUnchanged(analysis, paths)) return unknownText();
    return analysis.runRealCommand(input.name, SimString::known(""), input.args);
}

}  // namespace brindlet
