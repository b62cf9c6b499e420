#include <algorithm>

#include <fmt/format.h>

#include "analysis/models/document_support.h"
#include "analysis/models/documents.h"
#include "text/characters.h"
#include "text/strings.h"

namespace brindlet {

namespace {

constexpr std::string_view helpActions[] = {"-help", "--help", "-h"};
constexpr std::string_view formatActions[] = {"-convert", "-cat"};
constexpr std::string_view textFormats[] = {
    "txt", "html", "rtf", "rtfd", "doc", "docx", "wordml", "odt", "webarchive",
};

CommandResult incorrectlyWritten(BasherAnalysis& analysis, std::string technical) {
    return analysis.addCommandError("Text utility command incorrectly written", std::move(technical));
}

bool beginsWithHyphen(std::string_view word) {
    return word.starts_with('-');
}

CommandResult runTextutil(BasherAnalysis& analysis, const ModelInput& input) {
    return analysis.runRealCommand("textutil", SimString::known(""), input.args);
}

std::optional<CommandResult> failureOfMissing(BasherAnalysis& analysis, const Words& paths) {
    const auto missing = firstMissingDocument(analysis, paths);
    if (!missing) return std::nullopt;
    return analysis.addCommandError(fmt::format("Text utility: {} doesn't exist", analysis.resolveURL(*missing).name()),
                                    notFound("textutil", *missing));
}

// A line that asks for something to be read and for something to be written: which of the two it will be isn't told.
void noteWritingWords(BasherAnalysis& analysis, const Words& args) {
    const auto writes = [](const std::string& word) { return isAmong(word, formatActions); };
    if (std::any_of(args.begin(), args.end(), writes))
        notePartialSupport(analysis, "textutil may write files, which aren't shown here");
}

CommandResult showInfo(BasherAnalysis& analysis, const ModelInput& input) {
    Words files = input.args;
    std::erase_if(files, beginsWithHyphen);
    if (files.empty()) return incorrectlyWritten(analysis, "textutil: file argument missing");
    if (auto failure = failureOfMissing(analysis, files)) return *failure;
    noteWritingWords(analysis, input.args);
    return runTextutil(analysis, input);
}

// --- -convert and -cat ---

struct Conversion {
    std::optional<std::string> format;
    std::optional<std::string> output;
    std::optional<std::string> extension;
    bool goesToStandardOutput = false;
    Words inputs;

    // Of the files that are made.
    std::string newExtension() const {
        const std::string& text = extension ? *extension : *format;
        return text.starts_with('.') ? text.substr(1) : text;
    }
};

struct ConversionOption {
    std::string_view word;
    std::optional<std::string> Conversion::*value;
    std::string_view withoutValue;
};

constexpr ConversionOption conversionOptions[] = {
    {"-convert", &Conversion::format, "textutil: missing format for -convert"},
    {"-cat", &Conversion::format, "textutil: missing format for -cat"},
    {"-output", &Conversion::output, "textutil: -output option requires an argument"},
    {"-extension", &Conversion::extension, "textutil: -extension option requires an argument"},
};

// The technical text of a failure, or none.
std::optional<std::string> readConversion(const Words& args, Conversion& conversion) {
    for (std::size_t at = 0; at < args.size(); ++at) {
        const std::string& word = args[at];
        const auto option = std::find_if(std::begin(conversionOptions), std::end(conversionOptions),
                                         [&](const auto& row) { return row.word == word; });
        if (option != std::end(conversionOptions)) {
            if (at + 1 == args.size()) return std::string(option->withoutValue);
            conversion.*option->value = args[++at];
        } else if (word == "-stdout") {
            conversion.goesToStandardOutput = true;
        } else if (!beginsWithHyphen(word)) {
            conversion.inputs.push_back(word);
        }
    }
    return std::nullopt;
}

// An extension may hold slashes, which lead elsewhere.
FilePath withEnding(const FilePath& place, std::string_view ending) {
    return FilePath::resolve(std::string(pathBaseName(place.name())) + std::string(ending), place.parent());
}

// The files that are made, in order.
std::vector<FilePath> outputsOf(BasherAnalysis& analysis, const Conversion& conversion, bool joins) {
    const std::string ending = "." + conversion.newExtension();
    if (joins) return {analysis.resolveURL(conversion.output.value_or("out" + ending))};
    std::vector<FilePath> outputs;
    if (!conversion.output) {
        for (const auto& path : conversion.inputs) outputs.push_back(withEnding(analysis.resolveURL(path), ending));
        return outputs;
    }
    const FilePath first = analysis.resolveURL(*conversion.output);
    outputs.push_back(first);
    for (std::size_t number = 2; number <= conversion.inputs.size(); ++number)
        outputs.push_back(withEnding(first, fmt::format("_{}{}", number, ending)));
    return outputs;
}

void noteUnshownOverwrites(BasherAnalysis& analysis, const std::vector<FilePath>& outputs) {
    for (const auto& output : outputs) noteUnshownOverwrite(analysis, "textutil", output.text());
}

void makeOutputs(BasherAnalysis& analysis, const Conversion& conversion, const std::vector<FilePath>& outputs) {
    for (const auto& output : outputs) analysis.addFileChange(creation(output), false);
    // The tool gives this format an extension of another name.
    if (conversion.extension || conversion.output || lowercased(*conversion.format) != "wordml") return;
    for (const auto& output : outputs) noteUnshownOverwrite(analysis, "textutil", withEnding(output, ".xml").text());
}

CommandResult convert(BasherAnalysis& analysis, const ModelInput& input, bool joins) {
    Conversion conversion;
    if (auto failure = readConversion(input.args, conversion)) return incorrectlyWritten(analysis, *failure);
    if (!conversion.format)
        return incorrectlyWritten(analysis, fmt::format("textutil: missing -{} option", joins ? "cat" : "convert"));
    if (!isAmong(lowercased(*conversion.format), textFormats))
        return analysis.addCommandError("Unsupported format", "textutil: unsupported format " + *conversion.format);
    if (conversion.inputs.empty()) return incorrectlyWritten(analysis, "textutil: no input files specified");
    if (auto failure = failureOfMissing(analysis, conversion.inputs)) return *failure;
    const auto isUnchanged = [&](const std::string& path) {
        return analysis.fileHistory(analysis.resolveURL(path)).isUnchangedOriginal();
    };
    const bool canBeRead = std::all_of(conversion.inputs.begin(), conversion.inputs.end(), isUnchanged);
    if (conversion.goesToStandardOutput) {
        // Only the first of several outputs goes there.
        if ((!joins && conversion.inputs.size() > 1) || conversion.output) noteWritingWords(analysis, input.args);
        return canBeRead ? runTextutil(analysis, input) : CommandResult::unpredictable();
    }
    const std::vector<FilePath> outputs = outputsOf(analysis, conversion, joins);
    if (!canBeRead) {
        noteUnshownOverwrites(analysis, outputs);
        return CommandResult::unpredictable();
    }
    makeOutputs(analysis, conversion, outputs);
    return CommandResult::success();
}

}  // namespace

CommandResult convertText(BasherAnalysis& analysis, const ModelInput& input) {
    const auto action = std::find_if(input.args.begin(), input.args.end(), beginsWithHyphen);
    if (action == input.args.end())
        return incorrectlyWritten(analysis, "textutil: no action (e.g. -info, -convert) specified");
    if (isAmong(*action, helpActions)) {
        noteWritingWords(analysis, input.args);
        return runTextutil(analysis, input);
    }
    if (*action == "-info") return showInfo(analysis, input);
    if (isAmong(*action, formatActions)) return convert(analysis, input, *action == "-cat");
    return incorrectlyWritten(analysis, fmt::format("textutil: unsupported or unrecognised action '{}'", *action));
}

}  // namespace brindlet
