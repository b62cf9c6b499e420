// What the models of many commands have in common: reading flags, going through operands, naming changes.
//
//     constexpr std::string_view rmdirFlags[] = {"p", "v"};
//     if (auto flag = firstUnsupported(flags, rmdirFlags)) return analysis.addCommandError(...);
//     if (auto failure = firstFailure(operands, removeFolder)) return *failure;
#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "analysis/analysis_result.h"
#include "analysis/arg_extractor.h"
#include "analysis/basher_analysis.h"
#include "analysis/command_table.h"

namespace brindlet {

using Words = std::vector<std::string>;
using AcceptedFlags = std::span<const std::string_view>;

// The command's words, taken apart in the usual style.
ArgExtractor wordsOf(const ModelInput& input, ArgExtractor::Style style = ArgExtractor::Style::defaultStyle);

bool isAmong(std::string_view word, AcceptedFlags words);
bool endsInAny(std::string_view text, AcceptedFlags endings);
bool hasFlag(const Words& flags, std::string_view name);
bool hasAnyFlag(const Words& flags, AcceptedFlags names);

// The flags that a command does not take: the first, or each of them once, in the order written.
std::optional<std::string> firstUnsupported(const Words& flags, AcceptedFlags accepted);
Words allUnsupported(const Words& flags, AcceptedFlags accepted);

// What a file change is called where a model makes one.
FileChange creation(const FilePath& url);
FileChange modification(const FilePath& url);
FileChange deletion(const FilePath& url);
FileChange moving(const FilePath& source, const FilePath& target);

// Where an item lands that is put into a folder: the folder plus the item's own name.
FilePath placeIn(const FilePath& folder, const FilePath& item);
// A destination operand: inside it if it is a folder that exists, else the path itself.
FilePath placeAt(BasherAnalysis& analysis, const FilePath& destination, const FilePath& item);

// Whether a command, by its row, can do no more than read and print. A name without a row may do anything.
bool commandOnlyReads(const BasherAnalysis& analysis, std::string_view name);

// Says that a "--" among the operands, which is taken for a name like any other, ends the options for the real tool.
void noteEndOfOptions(BasherAnalysis& analysis, std::string_view command, const Words& operands);

// Puts words in behind the command's name where the line is printed, unless the first of them stands there already.
// False, with nothing set, where it can't be told which of the printed words is the name: another command may carry this
// one, as `xargs` does.
bool insertOnPrinting(const ModelInput& input, Words words);

// How many sentences of a kind are said of one command at most: beyond them a user learns nothing more.
inline constexpr std::size_t mostSentences = 20;

// Says that files may change that the prediction doesn't show.
void noteUnknownChanges(BasherAnalysis& analysis, std::string sentence);
// Says that more may happen than the prediction shows.
void notePartialSupport(BasherAnalysis& analysis, std::string sentence);

// A failure that only the tool's own words show.
CommandResult failureInWords(std::string technical);

// A command that fails for some of its operands and says nothing on standard output.
CommandResult silentResult(bool hasFailed);

// Goes through the operands in order, up to the first for which `action` returns a failure, and returns that.
template <class Action>
std::optional<CommandResult> firstFailure(const Words& operands, Action action) {
    for (const auto& operand : operands)
        if (std::optional<CommandResult> failure = action(operand)) return failure;
    return std::nullopt;
}

}  // namespace brindlet
