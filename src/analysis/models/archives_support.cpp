#include "analysis/models/archives_support.h"

#include <algorithm>

#include <fmt/format.h>

#include "analysis/doubts.h"
#include "text/characters.h"

namespace brindlet {

namespace {

// PATH_MAX of the kernel: nothing can be made at a longer path.
constexpr std::size_t longestPath = 4096;

// What a listing may cost to record. An archive is made by anyone: a few thousand entries of two thousand nested
// folders each would fill the memory.
class RecordingBudget {
  public:
    explicit RecordingBudget(std::size_t bytes) : bytesLeft_(bytes) {}

    // The folders that an entry does not share with the one before it are new, as listings go.
    void spendOn(const std::string& path) {
        const auto differs = std::mismatch(path.begin(), path.end(), before_.begin(), before_.end()).first;
        const auto newParts = static_cast<std::size_t>(std::count(differs, path.end(), '/')) + 1;
        const std::size_t cost = newParts * path.size();
        if (cost > bytesLeft_)
            throw BasherAnalysisError{BasherAnalysisError::Kind::simulationError,
                                      "The archive holds too many folders to simulate"};
        bytesLeft_ -= cost;
        before_ = path;
    }

  private:
    std::size_t bytesLeft_;
    std::string before_;
};

bool climbs(std::string_view entry) {
    for (std::size_t at = entry.find(".."); at != std::string_view::npos; at = entry.find("..", at + 1)) {
        const bool begins = at == 0 || entry[at - 1] == '/';
        if (begins && (at + 2 == entry.size() || entry[at + 2] == '/')) return true;
    }
    return false;
}

}  // namespace

bool canBeListed(BasherAnalysis& analysis, const FilePath& archive) {
    return analysis.fileHistory(archive).isUnchangedOriginal();
}

bool takeOutEverywhere(Words& words, AcceptedFlags keys, std::size_t arity) {
    Words kept;
    bool hasFound = false;
    for (std::size_t at = 0; at < words.size();) {
        if (!isAmong(words[at], keys)) {
            kept.push_back(std::move(words[at++]));
            continue;
        }
        hasFound = true;
        const std::size_t end = std::min(words.size(), ++at + arity);
        while (at < end && !words[at].starts_with('-')) ++at;
    }
    words = std::move(kept);
    return hasFound;
}

void extractEntries(BasherAnalysis& analysis, const FilePath& folder, const Words& entries) {
    RecordingBudget budget(analysis.services().limits.textBytesInAll);
    bool hasTooLong = false, hasClimbing = false;
    for (const auto& entry : entries) {
        const FilePath target(folder.text() + "/" + entry);
        hasClimbing = hasClimbing || climbs(entry);
        if (target.text().size() > longestPath) {
            hasTooLong = true;
            continue;
        }
        budget.spendOn(target.text());
        if (entry.ends_with('/'))
            analysis.addFileChange(creation(target), true);
        else if (analysis.fileExists(target))
            analysis.addFileChange(modification(target), std::nullopt);
        else
            analysis.addFileChange(creation(target), false, /*createParentDirectories=*/true);
    }
    // The tools leave the ".." out, each in its own way, and so never leave the folder.
    if (hasClimbing)
        noteUnknownChanges(analysis,
                           "The archive holds names with '..', whose files may land elsewhere than shown here");
    if (hasTooLong) noteUnknownChanges(analysis, "The archive holds names that are too long to show");
}

std::string spelt(std::string_view flag) {
    return fmt::format("{}{}", characterCount(flag) == 1 ? "-" : "--", flag);
}

void noteUnread(BasherAnalysis& analysis, std::string_view tool, std::string_view word) {
    analysis.addSideEffect({PlainSideEffect::partialSupport, fmt::format("'{}' also goes by {}, which isn't shown here",
                                                                         tool, quotedForSentence(word))});
}

void noteVariables(BasherAnalysis& analysis, std::string_view tool, AcceptedFlags variables) {
    for (const std::string_view name : variables)
        if (!analysis.variable(name).value_or("").empty()) noteUnread(analysis, tool, name);
}

}  // namespace brindlet
