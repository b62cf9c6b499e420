#include <algorithm>

#include <fmt/format.h>

#include "analysis/models/document_support.h"
#include "analysis/models/documents.h"

namespace brindlet {

namespace {

const ArgExtractor::OptionArities lpOptions = {
    {"U", 1}, {"d", 1}, {"h", 1}, {"n", 1}, {"o", 1}, {"q", 1}, {"t", 1}, {"H", 1}, {"P", 1}, {"i", 1},
};

std::string whatIsPrinted(const Words& files) {
    if (files.empty()) return "Prints from standard input";
    return files.size() == 1 ? "Prints " + files.front() : fmt::format("Prints {} files", files.size());
}

}  // namespace

CommandResult printDocuments(BasherAnalysis& analysis, const ModelInput& input) {
    ArgExtractor args = wordsOf(input);
    if (args.extractFlagsAndOptions(lpOptions).options.contains("H"))
        notePartialSupport(analysis, "Brindlet can't predict the -H option of lp");
    Words files = args.remainingArgs();
    if (const auto missing = firstMissingDocument(analysis, files))
        return analysis.addCommandError("Can't print: file doesn't exist", notFound("lp", *missing));
    std::erase_if(files, isStandardStream);
    analysis.addSideEffect({PlainSideEffect::printsDocument, whatIsPrinted(files)});
    return CommandResult::success();
}

}  // namespace brindlet
