#include <fmt/format.h>

#include "analysis/models/document_support.h"
#include "analysis/models/documents.h"

namespace brindlet {

namespace {

using Arities = ArgExtractor::OptionArities;

const Arities pdftotextOptions = {
    {"f", 1},     {"l", 1},          {"r", 1},   {"x", 1},   {"y", 1},   {"W", 1},   {"H", 1},
    {"fixed", 1}, {"colspacing", 1}, {"enc", 1}, {"eol", 1}, {"opw", 1}, {"upw", 1},
};
const Arities pdfinfoOptions = {{"f", 1}, {"l", 1}, {"enc", 1}, {"opw", 1}, {"upw", 1}};
const Arities pdfimagesOptions = {{"f", 1}, {"l", 1}, {"opw", 1}, {"upw", 1}};
const Arities pdftohtmlOptions = {{"f", 1}, {"l", 1}, {"zoom", 1}, {"enc", 1}, {"opw", 1}, {"upw", 1}, {"wbt", 1}};

struct Reading {
    ArgExtractor::FlagsAndOptions options;
    Words operands;
};

Reading read(BasherAnalysis& analysis, const ModelInput& input, const Arities& options) {
    analysis.requirePackage("Poppler");
    ArgExtractor args = wordsOf(input, ArgExtractor::Style::singleHyphenLongOptions);
    Reading reading;
    reading.options = args.extractFlagsAndOptions(options);
    reading.operands = args.remainingArgs();
    return reading;
}

bool isMissing(BasherAnalysis& analysis, const std::string& document) {
    return firstMissingDocument(analysis, {document}).has_value();
}

// --- what the tools write beyond what is predicted (22.12, "-help", and what was seen on disk) ---

struct PopplerTool {
    std::string_view name;
    const Arities& optionsWithValue;  // those of the prediction
    std::string_view moreWithValue;   // one that the prediction takes for a flag; "" for none
    std::vector<std::string_view> flags;
};

const PopplerTool pdftotextTool = {"pdftotext",
                                   pdftotextOptions,
                                   "",
                                   {"-layout", "-raw", "-nodiag", "-htmlmeta", "-tsv", "-listenc", "-nopgbrk", "-bbox",
                                    "-bbox-layout", "-cropbox", "-q", "-v", "-h", "-help", "--help", "-?"}};
const PopplerTool pdftohtmlTool = {
    "pdftohtml",
    pdftohtmlOptions,
    "-fmt",
    {"-q", "-h", "-?", "-help", "--help", "-p", "-c", "-s", "-dataurls", "-i", "-noframes", "-stdout", "-xml",
     "-noroundcoord", "-hidden", "-nomerge", "-v", "-nodrm", "-fontfullname"}};

bool takesValue(const PopplerTool& tool, std::string_view word) {
    if (!word.starts_with('-')) return false;
    if (!tool.moreWithValue.empty() && word == tool.moreWithValue) return true;
    for (const auto& [name, arity] : tool.optionsWithValue)
        if (word.substr(1) == name) return true;
    return false;
}

// The tools take values that begin with a hyphen, and take words that they don't know for operands.
Words operandsAsTold(const PopplerTool& tool, const Words& args) {
    Words operands;
    for (std::size_t at = 0; at < args.size(); ++at) {
        if (args[at] == "--") {
            operands.insert(operands.end(), args.begin() + static_cast<std::ptrdiff_t>(at) + 1, args.end());
            break;
        }
        if (takesValue(tool, args[at]))
            ++at;
        else if (!isAmong(args[at], tool.flags))
            operands.push_back(args[at]);
    }
    return operands;
}

// Whether the tool goes to work on other files than the prediction; with more than two it only prints its usage.
bool isReadOtherwise(const PopplerTool& tool, const Words& args, const Words& operands) {
    const Words told = operandsAsTold(tool, args);
    return told != operands && !told.empty() && told.size() <= 2;
}

void noteOtherReading(BasherAnalysis& analysis, const PopplerTool& tool) {
    analysis.addSideEffect(
        {PlainSideEffect::unknownFileChanges, fmt::format("{} may write other files than are shown here", tool.name)});
}

// "in" of "in.pdf"; other names stay whole.
std::string withoutPdf(const std::string& document) {
    const bool isPdf = document.ends_with(".pdf") || document.ends_with(".PDF");
    return isPdf ? document.substr(0, document.size() - 4) : document;
}

constexpr std::string_view textAsHtmlFlags[] = {"htmlmeta", "bbox", "bbox-layout"};

// pdftotext's own name for its output, where the line gives none.
std::string textNextTo(const std::string& document, const Words& flags) {
    return withoutPdf(document) + (hasAnyFlag(flags, textAsHtmlFlags) ? ".html" : ".txt");
}

// What pdftohtml may put beside (or in place of) the page "NAME.html", behind NAME. Images have numbers, of which only
// the first is looked for.
constexpr std::string_view pageCompanions[] = {
    "s.html",  "_ind.html", "-html.html", "-1.html",  ".xml",     ".html.xml",
    "001.png", "001.jpg",   "-1_1.png",   "-1_1.jpg", "-1_2.png", "-1_2.jpg",
};

void noteCompanions(BasherAnalysis& analysis, const std::string& page) {
    const std::string name = page.substr(0, page.size() - std::string_view(".html").size());
    for (const auto ending : pageCompanions)
        noteUnshownOverwrite(analysis, pdftohtmlTool.name, name + std::string(ending));
}

}  // namespace

CommandResult extractPdfText(BasherAnalysis& analysis, const ModelInput& input) {
    const auto [options, operands] = read(analysis, input, pdftotextOptions);
    constexpr const char* friendly = "PDF-to-text missing input file";
    if (operands.empty()) return analysis.addCommandError(friendly, "pdftotext: no input file specified");
    if (isMissing(analysis, operands[0])) return analysis.addCommandError(friendly, notFound("pdftotext", operands[0]));
    if (operands.size() > 1 && !isStandardStream(operands[1])) createDocument(analysis, operands[1]);
    if (isReadOtherwise(pdftotextTool, input.args, operands))
        noteOtherReading(analysis, pdftotextTool);
    else if (operands.size() == 1 && !isStandardStream(operands[0]))
        noteUnshownOverwrite(analysis, "pdftotext", textNextTo(operands[0], options.flags));
    return {0, SimString::unknown()};
}

CommandResult showPdfInfo(BasherAnalysis& analysis, const ModelInput& input) {
    const Words operands = read(analysis, input, pdfinfoOptions).operands;
    if (operands.empty())
        return analysis.addCommandError("PDF info missing input file", "pdfinfo: no input file specified");
    if (isMissing(analysis, operands[0])) return failureInWords(notFound("pdfinfo", operands[0]));
    const bool isReadable =
        !isStandardStream(operands[0]) && analysis.fileHistory(analysis.resolveURL(operands[0])).isUnchangedOriginal();
    if (!isReadable) return {0, SimString::unknown()};
    return analysis.runRealCommand("pdfinfo", SimString::known(""), input.args);
}

CommandResult extractPdfImages(BasherAnalysis& analysis, const ModelInput& input) {
    const Words operands = read(analysis, input, pdfimagesOptions).operands;
    if (operands.size() < 2)
        return analysis.addCommandError("PDF images command incorrectly written",
                                        "pdfimages: require input PDF and image root");
    if (isMissing(analysis, operands[0])) return failureInWords(notFound("pdfimages", operands[0]));
    analysis.addSideEffect(
        {PlainSideEffect::unknownFileChanges, "pdfimages may create multiple files starting with " + operands[1]});
    return {0, SimString::unknown()};
}

CommandResult convertPdfToHtml(BasherAnalysis& analysis, const ModelInput& input) {
    const Words operands = read(analysis, input, pdftohtmlOptions).operands;
    if (operands.empty())
        return analysis.addCommandError("PDF-to-HTML missing input file", "pdftohtml: no input file specified");
    if (isReadOtherwise(pdftohtmlTool, input.args, operands)) noteOtherReading(analysis, pdftohtmlTool);
    if (isMissing(analysis, operands[0])) return failureInWords(notFound("pdftohtml", operands[0]));
    if (operands.size() == 1) {
        notePartialSupport(analysis, "pdftohtml will create HTML and asset files alongside the PDF");
    } else if (operands[1].ends_with(".html")) {
        createDocument(analysis, operands[1]);
        noteCompanions(analysis, operands[1]);
    } else {
        notePartialSupport(analysis, "pdftohtml may create multiple files based on prefix " + operands[1]);
    }
    return {0, SimString::unknown()};
}

}  // namespace brindlet
