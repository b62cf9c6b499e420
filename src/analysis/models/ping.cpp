#include <algorithm>

#include "analysis/models/model_support.h"
#include "analysis/models/network_commands.h"

namespace brindlet {

namespace {

constexpr std::string_view limits[] = {"-c", "-t", "-o"};

bool isLimit(const std::string& word) {
    return std::any_of(std::begin(limits), std::end(limits),
                       [&](std::string_view limit) { return word.starts_with(limit); });
}

}  // namespace

CommandResult pingHost(BasherAnalysis& analysis, const ModelInput& input) {
    const bool isLimited = std::any_of(input.args.begin(), input.args.end(), isLimit);
    if (!isLimited && !insertOnPrinting(input, {"-c", "5"})) {
        analysis.addSideEffect({PlainSideEffect::indefinite, "Won't work in Brindlet: it never finishes"});
        return {0, SimString::unknown()};
    }
    analysis.addSideEffect({PlainSideEffect::networkAccess, std::nullopt});
    analysis.addSideEffect({PlainSideEffect::longRunning, std::nullopt});
    return {0, SimString::unknown()};
}

}  // namespace brindlet
