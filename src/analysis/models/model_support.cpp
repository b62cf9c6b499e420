#include "analysis/models/model_support.h"

#include <algorithm>
#include <cstddef>
#include <unordered_set>

#include <fmt/format.h>

#include "shell/printing.h"

namespace brindlet {

using ChangeType = FileChange::FileChangeType;

namespace {

Words printedWords(const BashCommand& command) {
    Words words{print(command.command)};
    for (const auto& argument : command.arguments) words.push_back(print(argument));
    return words;
}

// Where the command's name stands among the printed words: in front, also as `$tool`, or once behind another command.
std::optional<std::size_t> placeOfName(const Words& words, std::string_view name) {
    const auto isName = [&](const std::string& word) { return lastPathComponent(word) == name; };
    if (isName(words.front())) return 0;
    const auto found = std::find_if(words.begin(), words.end(), isName);
    if (found == words.end()) {
        const bool isExpanded = words.front().find_first_of("\"'\\$`{*?[") != std::string::npos;
        return isExpanded ? std::optional<std::size_t>(0) : std::nullopt;
    }
    if (std::find_if(found + 1, words.end(), isName) != words.end()) return std::nullopt;
    return static_cast<std::size_t>(found - words.begin());
}

}  // namespace

bool isAmong(std::string_view word, AcceptedFlags words) {
    return std::find(words.begin(), words.end(), word) != words.end();
}

ArgExtractor wordsOf(const ModelInput& input, ArgExtractor::Style style) {
    return ArgExtractor(input.name, style, input.args);
}

bool endsInAny(std::string_view text, AcceptedFlags endings) {
    return std::any_of(endings.begin(), endings.end(), [&](auto ending) { return text.ends_with(ending); });
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
    std::unordered_set<std::string_view> seen;
    for (const auto& flag : flags)
        if (!isAmong(flag, accepted) && seen.insert(flag).second) unsupported.push_back(flag);
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

bool commandOnlyReads(const BasherAnalysis& analysis, std::string_view name) {
    const CommandRow* row = analysis.services().commands.find(name);
    return row != nullptr && row->reach == Reach::onlyReads;
}

void noteEndOfOptions(BasherAnalysis& analysis, std::string_view command, const Words& operands) {
    if (std::find(operands.begin(), operands.end(), "--") == operands.end()) return;
    analysis.addSideEffect(
        {PlainSideEffect::partialSupport,
         fmt::format("'{}' takes what stands behind '--' for names, which isn't shown here", command)});
}

bool insertOnPrinting(const ModelInput& input, Words words) {
    const auto place = placeOfName(printedWords(input.command), input.name);
    if (!place) return false;
    input.command.rewriteRule = [at = static_cast<std::ptrdiff_t>(*place) + 1,
                                 words = std::move(words)](Words printed) {
        if (std::find(printed.begin() + at, printed.end(), words.front()) == printed.end())
            printed.insert(printed.begin() + at, words.begin(), words.end());
        return printed;
    };
    return true;
}

void noteUnknownChanges(BasherAnalysis& analysis, std::string sentence) {
    analysis.addSideEffect({PlainSideEffect::unknownFileChanges, std::move(sentence)});
}

void notePartialSupport(BasherAnalysis& analysis, std::string sentence) {
    analysis.addSideEffect({PlainSideEffect::partialSupport, std::move(sentence)});
}

CommandResult failureInWords(std::string technical) {
    return {1, SimString::known(std::move(technical))};
}

CommandResult silentResult(bool hasFailed) {
    return {hasFailed ? 1 : 0, SimString::known("")};
}

}  // namespace brindlet
