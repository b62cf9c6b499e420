#include <algorithm>
#include <iterator>

#include <fmt/format.h>

#include "analysis/models/filter_support.h"
#include "analysis/models/text_filters.h"
#include "text/strings.h"

namespace brindlet {

namespace {

using ErrorKind = BasherAnalysisError::Kind;
using Style = ArgExtractor::Style;

// --- jq ---

constexpr std::string_view wordsBeforeArguments[] = {"--args", "--jsonargs"};
constexpr std::string_view optionsNamingFiles[] = {"slurpfile", "rawfile", "argfile"};

bool isGluedLibrary(std::string_view word) {
    return word.size() > 2 && word.starts_with("-L");
}

// What may name options and files: up to the program's own arguments, with "-Lfolder" as two words.
Words jqWords(const Words& words) {
    Words read;
    for (const auto& word : words) {
        if (isAmong(word, wordsBeforeArguments)) break;
        if (isGluedLibrary(word)) {
            read.emplace_back("-L");
            read.push_back(word.substr(2));
        } else {
            read.push_back(word);
        }
    }
    return read;
}

const ArgExtractor::OptionArities& jqArities() {
    static const ArgExtractor::OptionArities arities{
        {"f", 1},   {"from-file", 1}, {"L", 1},         {"indent", 1},  {"run-tests", 1},
        {"arg", 2}, {"argjson", 2},   {"slurpfile", 2}, {"rawfile", 2}, {"argfile", 2}};
    return arities;
}

Words filesInOptions(const ArgExtractor::FlagsAndOptions& taken) {
    Words files;
    for (const auto name : optionsNamingFiles)
        if (const auto option = taken.options.find(name); option != taken.options.end() && option->second.size() == 2)
            files.push_back(option->second.back());
    return files;
}

// --- bc ---

constexpr std::string_view bcFlags[] = {"l", "q", "s"};
constexpr std::string_view bcLongOptions[] = {"--mathlib",        "--quiet",          "--standard",
                                              "--no-prompt",      "--no-read-prompt", "--digit-clamp",
                                              "--no-digit-clamp", "--help",           "--version"};
constexpr std::string_view fileOption = "--file=";
constexpr std::string_view expressionOption = "--expression=";

struct BcLine {
    Words flags;
    Words files;
    Words kept;
};

BcLine readBc(const Words& words) {
    BcLine line;
    for (auto word = words.begin(); word != words.end(); ++word) {
        if (!isFlagCluster(*word)) {
            line.kept.push_back(*word);
            continue;
        }
        Words letters = ArgExtractor("bc", Style::defaultStyle, {*word}).extractSingleLetterFlagsAtStart();
        if (letters.back() == "f") {
            letters.pop_back();
            const auto next = word + 1;
            if (next != words.end() && !next->starts_with('-')) line.files.push_back(*++word);
        }
        line.flags.insert(line.flags.end(), letters.begin(), letters.end());
    }
    return line;
}

void checkBcFlags(const Words& flags) {
    if (hasFlag(flags, "i"))
        throw BasherAnalysisError{ErrorKind::wontWorkInBrindlet, "bc: -i (interactive) flag won't work in Brindlet"};
    if (const Words unsupported = allUnsupported(flags, bcFlags); !unsupported.empty())
        throw BasherAnalysisError{ErrorKind::simulationError, "bc: unsupported flags: " + joined(unsupported, ", ")};
}

// Moves the files out of the words that are kept.
void takeBcLongOptions(BcLine& line) {
    Words kept;
    for (auto& word : line.kept) {
        if (word.starts_with(fileOption)) {
            line.files.push_back(word.substr(fileOption.size()));
            continue;
        }
        if (word.starts_with("--") && !isAmong(word, bcLongOptions) && !word.starts_with(expressionOption))
            throw BasherAnalysisError{ErrorKind::simulationError, fmt::format("bc: unsupported option '{}'", word)};
        kept.push_back(std::move(word));
    }
    line.kept = std::move(kept);
}

Words wordsForBc(const BcLine& line) {
    Words words;
    if (!line.flags.empty()) words.push_back("-" + joined(line.flags, ""));
    for (const auto& file : line.files) {
        words.emplace_back("-f");
        words.push_back(file);
    }
    words.insert(words.end(), line.kept.begin(), line.kept.end());
    return words;
}

}  // namespace

CommandResult queryJson(BasherAnalysis& analysis, const ModelInput& input) {
    ArgExtractor args("jq", Style::defaultStyle, jqWords(input.args));
    const auto taken = args.extractFlagsAndOptions(jqArities());
    Words filterFiles;
    for (const std::string_view name : {"f", "from-file"})
        if (const auto value = taken.value(name)) filterFiles.push_back(*value);
    if (const auto missing = firstMissing(analysis, "jq", filterFiles))
        return analysis.addCommandError("JSON filter file doesn't exist",
                                        fmt::format("jq: filter file {}: No such file or directory", *missing));
    if (filterFiles.empty() && !args.extractFirst())
        return analysis.addCommandError("Text processing command incorrectly written",
                                        "jq: error: Missing filter expression");

    const Words& operands = args.remainingArgs();
    const Words files = realFilesAmong(operands);
    if (const auto missing = firstMissing(analysis, "jq", files))
        return analysis.addCommandError("Text processing source doesn't exist",
                                        fmt::format("jq: error: opening file {}: No such file or directory", *missing));
    if (!areUnchanged(analysis, files)) return unknownText();
    noteFilesSeenOtherwise(analysis, "jq", filterFiles);
    noteFilesSeenOtherwise(analysis, "jq", filesInOptions(taken));
    if (operands.empty() || hasFlag(operands, "-")) return filterInput(analysis, input);
    return analysis.runRealCommand("jq", SimString::known(""), input.args);
}

CommandResult calculate(BasherAnalysis& analysis, const ModelInput& input) {
    BcLine line = readBc(input.args);
    checkBcFlags(line.flags);
    takeBcLongOptions(line);
    if (const auto missing = firstMissing(analysis, "bc", line.files)) return noSuchFile("bc", *missing);
    if (!areUnchanged(analysis, line.files)) return unknownText();
    noteFilesSeenOtherwise(analysis, "bc", line.kept);
    const Words words = wordsForBc(line);
    if (line.files.empty()) return filterInput(analysis, input, words);
    return analysis.runRealCommand("bc", SimString::known(""), words);
}

}  // namespace brindlet
