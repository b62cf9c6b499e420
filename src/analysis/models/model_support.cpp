#include "analysis/models/model_support.h"

#include <algorithm>

namespace brindlet {

using ChangeType = FileChange::FileChangeType;

bool isAmong(std::string_view word, AcceptedFlags words) {
    return std::find(words.begin(), words.end(), word) != words.end();
}

ArgExtractor wordsOf(const ModelInput& input, ArgExtractor::Style style) {
    return ArgExtractor(input.name, style, input.args);
}

bool hasFlag(const Words& flags, std::string_view name) {
    return std::find(flags.begin(), flags.end(), name) != flags.end();
}

bool hasAnyFlag(const Words& flags, AcceptedFlags names) {
    return std::any_of(flags.begin(), flags.end(), [&](const auto& flag) { return isAmong(flag, names); });
}

std::optional<std::string> firstUnsupported(const Words& flags, AcceptedFlags accepted) {
    const auto found =
        std::find_if(flags.begin(), flags.end(), [&](const auto& flag) { return !isAmong(flag, accepted); });
    if (found == flags.end()) return std::nullopt;
    return *found;
}

Words allUnsupported(const Words& flags, AcceptedFlags accepted) {
    Words unsupported;
    for (const auto& flag : flags)
        if (!isAmong(flag, accepted) && !hasFlag(unsupported, flag)) unsupported.push_back(flag);
    return unsupported;
}

FileChange creation(const FilePath& url) {
    return {ChangeType::create, url, std::nullopt};
}
FileChange modification(const FilePath& url) {
    return {ChangeType::modify, url, std::nullopt};
}
FileChange deletion(const FilePath& url) {
    return {ChangeType::delete_, url, std::nullopt};
}
FileChange moving(const FilePath& source, const FilePath& target) {
    return {ChangeType::move, target, source};
}

FilePath placeIn(const FilePath& folder, const FilePath& item) {
    return item.isRoot() ? folder : folder.child(item.name());
}

FilePath placeAt(BasherAnalysis& analysis, const FilePath& destination, const FilePath& item) {
    return analysis.isExistingDirectory(destination) ? placeIn(destination, item) : destination;
}

CommandResult failureInWords(std::string technical) {
    return {1, SimString::known(std::move(technical))};
}

CommandResult silentResult(bool hasFailed) {
    return {hasFailed ? 1 : 0, SimString::known("")};
}

}  // namespace brindlet
