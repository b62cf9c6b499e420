#include <fmt/format.h>

#include "analysis/doubts.h"
#include "analysis/models/document_support.h"
#include "analysis/models/documents.h"
#include "text/strings.h"

namespace brindlet {

namespace {

// --- how qpdf itself reads its words (11.3, `qpdf --help=usage`), for what the prediction's simpler reading misses ---

// Each opens a list of words of its own, which ends at "--" and mostly begins with the name of a file to read.
constexpr std::string_view segmentOptions[] = {
    "add-attachment", "copy-attachments-from", "encrypt", "overlay", "pages", "set-page-labels", "underlay",
};
constexpr std::string_view filelessSegments[] = {"encrypt", "set-page-labels"};

struct QpdfHazard {
    std::string_view option;
    std::string_view sentence;  // with a place for the word
};

constexpr QpdfHazard qpdfHazards[] = {
    {"job-json-file", "qpdf reads what to do from the file in {}, which isn't shown here"},
    {"json-stream-data", "qpdf may write more files with {}, which aren't shown here"},
    {"json-stream-prefix", "qpdf may write more files with {}, which aren't shown here"},
    {"linearize-pass1", "qpdf writes one more file with {}, which isn't shown here"},
};

struct QpdfReading {
    Words operands;
    Words segmentFiles;  // other documents to read: the first word of a segment
    Words oddWords;      // words that stand for more words, or name a file to write
    bool hasNoInput = false;
    bool replacesInput = false;
    bool splitsPages = false;

    std::optional<std::string> input() const {
        if (hasNoInput || operands.empty()) return std::nullopt;
        return operands.front();
    }
    std::optional<std::string> output() const {
        if (replacesInput) return input();
        const std::size_t place = hasNoInput ? 0 : 1;
        if (operands.size() <= place) return std::nullopt;
        return operands[place];
    }
};

// One hyphen does as well as two.
std::string_view optionName(std::string_view word) {
    word.remove_prefix(word.starts_with("--") ? 2 : 1);
    return word.substr(0, word.find('='));
}

const QpdfHazard* hazardOf(std::string_view option) {
    for (const auto& hazard : qpdfHazards)
        if (hazard.option == option) return &hazard;
    return nullptr;
}

void readOption(QpdfReading& reading, const std::string& word) {
    const std::string_view option = optionName(word);
    reading.hasNoInput |= option == "empty";
    reading.replacesInput |= option == "replace-input";
    reading.splitsPages |= option == "split-pages";
    if (hazardOf(option)) reading.oddWords.push_back(word);
}

QpdfReading readAsQpdf(const Words& args) {
    QpdfReading reading;
    bool isInSegment = false;
    bool mayBeFile = false;
    for (const auto& word : args) {
        if (word.size() > 1 && word.starts_with('@')) {
            reading.oddWords.push_back(word);
        } else if (word == "--") {
            isInSegment = false;
        } else if (isInSegment) {
            if (mayBeFile) reading.segmentFiles.push_back(word);
            mayBeFile = false;
        } else if (word.starts_with('-') && !isStandardStream(word)) {
            readOption(reading, word);
            isInSegment = isAmong(optionName(word), segmentOptions);
            mayBeFile = !isAmong(optionName(word), filelessSegments);
        } else {
            reading.operands.push_back(word);
        }
    }
    return reading;
}

// Whether qpdf, too, looks for this document, and so fails before it writes.
bool opens(const QpdfReading& reading, const std::string& document) {
    return reading.oddWords.empty() && (reading.input() == document || hasFlag(reading.segmentFiles, document));
}

void noteOddWord(BasherAnalysis& analysis, const std::string& word) {
    const std::string_view sentence = word.starts_with('@')
                                          ? "qpdf reads more options from the file in {}, which aren't shown here"
                                          : hazardOf(optionName(word))->sentence;
    notePartialSupport(analysis, fmt::format(fmt::runtime(sentence), quotedForSentence(word)));
}

bool isSeries(std::string_view output) {
    return contains(output, "%");
}

// `shown` is the output that the prediction has made a change or a side effect of.
void noteUnshown(BasherAnalysis& analysis, const QpdfReading& reading, const std::optional<std::string>& shown) {
    for (const auto& word : reading.oddWords) noteOddWord(analysis, word);
    const auto output = reading.output();
    if (!output || isStandardStream(*output)) return;
    if (output != shown)
        noteUnshownWrite(analysis, "qpdf", *output);
    else if (reading.splitsPages && !isSeries(*output))
        notePartialSupport(
            analysis, fmt::format("qpdf may write one file for each page, named after {}", quotedForSentence(*output)));
}

}  // namespace

CommandResult rewritePdf(BasherAnalysis& analysis, const ModelInput& input) {
    analysis.requirePackage("QPDF");
    ArgExtractor args = wordsOf(input);
    args.extractFlagsAndOptions();
    const Words& operands = args.remainingArgs();
    if (operands.empty())
        return analysis.addCommandError("qpdf missing input file", "qpdf: at least an input PDF must be specified");
    const QpdfReading reading = readAsQpdf(input.args);
    if (const auto missing = firstMissingDocument(analysis, {operands.front()})) {
        if (!opens(reading, *missing)) noteUnshown(analysis, reading, std::nullopt);
        return failureInWords(notFound("qpdf", *missing));
    }
    const std::optional<std::string> output = operands.size() > 1 ? std::optional(operands.back()) : std::nullopt;
    if (output && isSeries(*output))
        notePartialSupport(analysis, "qpdf may create multiple files matching " + *output);
    else if (output && !isStandardStream(*output))
        createDocument(analysis, *output);
    noteUnshown(analysis, reading, output);
    return {0, SimString::unknown()};
}

}  // namespace brindlet
