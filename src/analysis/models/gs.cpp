#include <fmt/format.h>

#include "analysis/doubts.h"
#include "analysis/models/document_support.h"
#include "analysis/models/documents.h"
#include "text/characters.h"
#include "text/strings.h"

namespace brindlet {

namespace {

// The words, read as far as the prediction goes.
struct GsWords {
    Words inputs;
    Words outputs;
    bool lacksOutputName = false;  // "-o" stands last
};

constexpr std::string_view outputFileOption = "-soutputfile=";

GsWords readGsWords(const Words& args) {
    GsWords words;
    for (std::size_t at = 0; at < args.size(); ++at) {
        const std::string& word = args[at];
        if (word == "-o") {
            words.lacksOutputName = at + 1 == args.size();
            if (words.lacksOutputName) break;
            words.outputs.push_back(args[++at]);
        } else if (lowercased(word.substr(0, outputFileOption.size())) == outputFileOption) {
            if (word.size() > outputFileOption.size()) words.outputs.push_back(word.substr(outputFileOption.size()));
        } else if (!word.starts_with('-')) {
            words.inputs.push_back(word);
        }
    }
    return words;
}

// --- what Ghostscript makes of words that the reading above passes over (all tried with Ghostscript 10.0) ---

struct GsHazard {
    std::string_view prefix;
    std::string_view sentence;  // with a place for the word
    bool isWholeWord = false;
};

constexpr GsHazard gsHazards[] = {
    {"@", "Ghostscript reads more options from the file in {}, which aren't shown here"},
    {"-c", "Ghostscript runs the PostScript code behind {}, whose effects aren't shown here"},
    {"--permit-", "Ghostscript lets documents change other files with {}"},
    {"%pipe%", "Ghostscript runs the program in {}"},
    // Where Ghostscript looks for the code that it starts with.
    {"-I", "Ghostscript may run PostScript code found through {}"},
    {"-P", "Ghostscript may run PostScript code found through {}", true},
    {"-sGenericResourceDir", "Ghostscript may run PostScript code found through {}"},
    {"-sIjsServer", "Ghostscript runs the program in {}"},
    {"-sDriver", "Ghostscript runs the driver in {}"},
};

// Documents are programs. That they can do no harm rests on a mode that is on unless a word turns it off.
constexpr std::string_view safeModeMark = "SAFER";
constexpr std::string_view safeModeWords[] = {"-dSAFER", "-dSAFER=true", "-dPARANOIDSAFER"};

void noteHazards(BasherAnalysis& analysis, const std::string& word) {
    for (const auto& [prefix, sentence, isWholeWord] : gsHazards)
        if (isWholeWord ? word == prefix : word.starts_with(prefix))
            notePartialSupport(analysis, fmt::format(fmt::runtime(sentence), quotedForSentence(word)));
    if (word.starts_with('-') && contains(word, safeModeMark) && !isAmong(word, safeModeWords))
        notePartialSupport(analysis, fmt::format("Ghostscript lets documents change files and run programs with {}",
                                                 quotedForSentence(word)));
}

// The value of a definition such as -sNAME=value: -S, -d and -D define as well, and "#" serves as "=".
std::optional<std::string> definedValue(const std::string& word, std::string_view name) {
    constexpr std::string_view kinds = "sSdD";
    const std::size_t sign = name.size() + 2;
    if (word.size() <= sign + 1 || word[0] != '-' || !contains(kinds, word.substr(1, 1))) return std::nullopt;
    if (word.compare(2, name.size(), name) != 0 || (word[sign] != '=' && word[sign] != '#')) return std::nullopt;
    std::string value = word.substr(sign + 1);
    const bool isPostScriptText = value.size() > 2 && value.front() == '(' && value.back() == ')';
    return isPostScriptText ? value.substr(1, value.size() - 2) : value;
}

// A file that the word makes Ghostscript write, other than by the two ways that the prediction reads.
std::optional<std::string> unshownOutput(const std::string& word) {
    if (word.starts_with("-o") && word.size() > 2) return word.substr(2);
    if (lowercased(word.substr(0, outputFileOption.size())) != outputFileOption)
        if (auto value = definedValue(word, "OutputFile")) return value;
    const auto messages = definedValue(word, "stdout");
    if (messages && !messages->starts_with("%std")) return messages;
    return std::nullopt;
}

void noteUnshown(BasherAnalysis& analysis, const Words& args) {
    for (std::size_t at = 0; at < args.size(); ++at) {
        if (args[at] == "-o") {
            ++at;
            continue;
        }
        noteHazards(analysis, args[at]);
        if (const auto output = unshownOutput(args[at])) noteUnshownWrite(analysis, "Ghostscript", *output);
    }
}

// --- outputs ---

// A document goes into a program where the name begins with a bar.
void noteReceivingProgram(BasherAnalysis& analysis, const std::string& output) {
    if (output.starts_with('|'))
        notePartialSupport(analysis, fmt::format("Ghostscript runs the program in {}", quotedForSentence(output)));
}

void noteSeveralFiles(BasherAnalysis& analysis, const std::string& output) {
    notePartialSupport(analysis, "Ghostscript may create multiple files matching " + output);
}

// The inputs are looked for one after the other, when the output is open and holds the pages of those before.
void noteOutputsOfFailure(BasherAnalysis& analysis, const GsWords& words, const std::string& missing) {
    for (const auto& output : words.outputs) {
        noteReceivingProgram(analysis, output);
        if (contains(output, "%")) {
            if (words.inputs.front() != missing) noteSeveralFiles(analysis, output);
        } else if (!isStandardStream(output)) {
            noteUnshownOverwrite(analysis, "Ghostscript", output);
        }
    }
}

// Whether one file is known that will be there.
bool recordOutputs(BasherAnalysis& analysis, const Words& outputs) {
    bool isConcrete = false;
    for (const auto& output : outputs) {
        noteReceivingProgram(analysis, output);
        if (contains(output, "%")) {
            noteSeveralFiles(analysis, output);
        } else if (!isStandardStream(output)) {
            createDocument(analysis, output);
            isConcrete = true;
        }
    }
    return isConcrete;
}

}  // namespace

CommandResult renderWithGhostscript(BasherAnalysis& analysis, const ModelInput& input) {
    analysis.requirePackage("Ghostscript");
    const GsWords words = readGsWords(input.args);
    if (words.lacksOutputName)
        return analysis.addCommandError("Ghostscript missing output file", "gs: -o expects a filename argument");
    noteUnshown(analysis, input.args);
    if (const auto missing = firstMissingDocument(analysis, words.inputs)) {
        noteOutputsOfFailure(analysis, words, *missing);
        return failureInWords(notFound("gs", *missing));
    }
    if (!recordOutputs(analysis, words.outputs))
        notePartialSupport(analysis, "Ghostscript conversion: exact output file(s) not predictable");
    return {0, SimString::unknown()};
}

}  // namespace brindlet
