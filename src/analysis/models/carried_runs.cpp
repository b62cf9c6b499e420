#include "analysis/models/carried_runs.h"

#include "text/strings.h"

namespace brindlet {

namespace {

std::size_t occurrences(std::string_view text, std::string_view part) {
    std::size_t count = 0;
    for (std::size_t at = text.find(part); at != std::string_view::npos; at = text.find(part, at + part.size()))
        ++count;
    return count;
}

[[noreturn]] void endTooLong() {
    throw BasherAnalysisError{BasherAnalysisError::Kind::simulationError,
                              "The line makes a command that is too long to simulate"};
}

}  // namespace

CommandResult CarriedRuns::run(std::string_view name, Words args) {
    CommandResult result = analysis_.runCarriedCommand(name, std::move(args), standardInput_, command_);
    total_.output += result.output;
    if (total_.output.isKnown() && total_.output.text().size() > analysis_.services().limits.textBytes)
        total_.output = SimString::unknown();
    if (total_.exitCode == 0) total_.exitCode = result.exitCode;
    return result;
}

Words filledIn(const BasherAnalysis& analysis, const Words& words, std::string_view mark, std::string_view value) {
    if (mark.empty()) return words;
    Words filled;
    std::size_t bytes = 0;
    for (const auto& word : words) {
        // Counted before it is made: a short line can ask for gigabytes.
        bytes += word.size() + occurrences(word, mark) * value.size();
        if (bytes > analysis.services().limits.textBytes) endTooLong();
        filled.push_back(replacedAll(word, mark, value));
    }
    return filled;
}

void checkWordCount(const BasherAnalysis& analysis, std::size_t count) {
    if (count > analysis.services().limits.words) endTooLong();
}

}  // namespace brindlet
