#include <algorithm>

#include <fmt/format.h>

#include "analysis/models/model_support.h"
#include "analysis/models/system_commands.h"
#include "text/characters.h"
#include "text/utf8.h"

namespace brindlet {

namespace {

bool isProcessNumber(std::string_view word) {
    return !word.empty() && std::all_of(word.begin(), word.end(), [](char c) { return c >= '0' && c <= '9'; });
}

std::string killDescription(const Words& targets) {
    if (targets.size() > 1) return fmt::format("Force quits {} processes", targets.size());
    const std::string& target = targets.front();
    if (isProcessNumber(target)) return "Force quits a process";
    if (lowercased(target) == "finder") return "Relaunches Finder";
    return fmt::format("Force quits {}", target);
}

Words tokensOf(std::string_view text) {
    Words tokens;
    std::string token;
    for (std::size_t at = 0; at < text.size();) {
        const Scalar scalar = decodeScalar(text, at);
        if (!isWhitespaceOrNewline(scalar.value))
            token += text.substr(at, scalar.length);
        else if (!token.empty())
            tokens.push_back(std::exchange(token, {}));
        at += scalar.length;
    }
    if (!token.empty()) tokens.push_back(std::move(token));
    return tokens;
}

CommandResult killTargets(BasherAnalysis& analysis, const ModelInput& input, Words targets) {
    if (targets.empty() && !input.standardInput.isKnown()) {
        analysis.addSideEffect({PlainSideEffect::kill, std::nullopt});
        return CommandResult::success();
    }
    if (targets.empty()) targets = tokensOf(input.standardInput.text());
    if (targets.empty())
        return analysis.addCommandError("Force quit: No app or process specified",
                                        fmt::format("{}: expected PIDs or process names", input.name));
    analysis.addSideEffect({PlainSideEffect::kill, killDescription(targets)});
    return CommandResult::success();
}

void noteOtherTargets(BasherAnalysis& analysis, std::string_view name) {
    analysis.addSideEffect(
        {PlainSideEffect::partialSupport, fmt::format("'{}' may force quit other processes than shown here", name)});
}

// Behind the signal, "-1" is every process and "-123" a group of them.
bool namesGroup(const Words& words) {
    return std::any_of(words.begin() + (words.empty() ? 0 : 1), words.end(), [](const std::string& word) {
        return word.starts_with('-') && isProcessNumber(std::string_view(word).substr(1));
    });
}

}  // namespace

CommandResult killProcesses(BasherAnalysis& analysis, const ModelInput& input) {
    ArgExtractor args = wordsOf(input);
    const auto taken = args.extractFlagsAndOptions({{"s", 1}, {"n", 1}, {"signal", 1}});
    if (taken.hasFlag("l")) {
        // Signals go by small letters too: `kill -kill 1` is no list.
        if (input.args.front() != "-l") noteOtherTargets(analysis, input.name);
        return {0, SimString::unknown()};
    }
    if (namesGroup(input.args)) noteOtherTargets(analysis, input.name);
    return killTargets(analysis, input, args.remainingArgs());
}

CommandResult killMatching(BasherAnalysis& analysis, const ModelInput& input) {
    ArgExtractor args = wordsOf(input);
    args.removeArgIfFirst("-signal");
    args.extractFlagsAndOptions({{"F", 1}, {"G", 1}, {"P", 1}, {"U", 1}, {"d", 1}, {"g", 1}, {"t", 1}, {"u", 1}});
    // Options alone choose processes too, by their owner or terminal.
    if (args.remainingArgs().empty() && !input.args.empty()) noteOtherTargets(analysis, input.name);
    return killTargets(analysis, input, args.remainingArgs());
}

CommandResult findProcesses(BasherAnalysis& analysis, const ModelInput& input) {
    return analysis.runRealCommand("pgrep", SimString::known(""), input.args);
}

}  // namespace brindlet
