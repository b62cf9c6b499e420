#include "analysis/models/system_commands.h"

namespace brindlet {

CommandResult copyToClipboard(BasherAnalysis& analysis, const ModelInput&) {
    analysis.addSideEffect({PlainSideEffect::copyToClipboard, std::nullopt});
    return CommandResult::success();
}

CommandResult pasteFromClipboard(BasherAnalysis& analysis, const ModelInput&) {
    analysis.addSideEffect({PlainSideEffect::readsFromClipboard, std::nullopt});
    return {0, SimString::unknown()};
}

}  // namespace brindlet
