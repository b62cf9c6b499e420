#include "analysis/models/image_support.h"

#include <algorithm>

#include <fmt/format.h>

namespace brindlet {

bool holdsOnlyOptions(const Words& words) {
    return std::all_of(words.begin(), words.end(), [](const auto& word) { return word.starts_with('-'); });
}

CommandResult runForHelp(BasherAnalysis& analysis, std::string_view tool, const Words& args, bool isAlone) {
    if (!isAlone) noteMore(analysis, fmt::format("{} may do its work before it shows its help", tool));
    return analysis.runRealCommand(tool, SimString::known(""), args);
}

void noteMore(BasherAnalysis& analysis, std::string sentence) {
    analysis.addSideEffect({PlainSideEffect::partialSupport, std::move(sentence)});
}

void noteMayFail(BasherAnalysis& analysis, std::string_view tool) {
    analysis.doubtResult(fmt::format("'{}' may fail, since no image is looked into", tool));
}

CommandResult printedSomething() {
    return {0, SimString::unknown()};
}

}  // namespace brindlet
