#include "analysis/models/document_support.h"

#include <algorithm>

#include <fmt/format.h>

#include "analysis/doubts.h"

namespace brindlet {

std::string notFound(std::string_view tool, std::string_view path) {
    return fmt::format("{}: {}: No such file or directory", tool, path);
}

bool documentExists(BasherAnalysis& analysis, std::string_view path) {
    return analysis.fileExists(analysis.resolveURL(path));
}

std::optional<std::string> firstMissingDocument(BasherAnalysis& analysis, const Words& paths) {
    const auto isMissing = [&](const std::string& path) {
        return !isStandardStream(path) && !documentExists(analysis, path);
    };
    const auto found = std::find_if(paths.begin(), paths.end(), isMissing);
    if (found == paths.end()) return std::nullopt;
    return *found;
}

void createDocument(BasherAnalysis& analysis, std::string_view path) {
    analysis.addFileChange(creation(analysis.resolveURL(path)), false);
}

void noteUnshownWrite(BasherAnalysis& analysis, std::string_view tool, std::string_view path) {
    analysis.addSideEffect({PlainSideEffect::unknownFileChanges,
                            fmt::format("{} may write {}, which isn't shown here", tool, quotedForSentence(path))});
}

void noteUnshownOverwrite(BasherAnalysis& analysis, std::string_view tool, std::string_view path) {
    if (documentExists(analysis, path)) noteUnshownWrite(analysis, tool, path);
}

}  // namespace brindlet
