#include "analysis/models/fiotraf.h"

#include <algorithm>
#include <cstdint>
#include <limits>
#include <set>

#include <fmt/format.h>

#include "analysis/models/model_support.h"
#include "text/characters.h"
#include "text/regex.h"
#include "text/strings.h"

namespace brindlet {

namespace {

constexpr std::string_view executeOption = "--execute", copyOption = "--copy";
constexpr std::string_view fiotrafValueOptions[] = {"--min-size",   "--max-size", "--after",    "--before",
                                                    "--startswith", "--endswith", "--contains", "--mime"};
constexpr std::string_view arrow = "→ ";

// --- words ---

// Visits each word with whether the tool takes it for an operand, an option or the value of an option.
enum class WordRole { operand, option, value };
template <class Visit>
void forEachRole(const Words& words, Visit visit) {
    bool takesOptions = true;
    for (std::size_t at = 0; at < words.size(); ++at) {
        const std::string& word = words[at];
        if (!takesOptions || !word.starts_with('-')) {
            visit(word, WordRole::operand);
            continue;
        }
        visit(word, WordRole::option);
        if (word == "--") takesOptions = false;
        if (isAmong(word, fiotrafValueOptions) && at + 1 < words.size()) visit(words[++at], WordRole::value);
    }
}

// "--exec", "--EXECUTE=yes": what the tool might take for the option that makes it act.
bool resemblesExecute(std::string_view word) {
    const std::string name = lowercased(word.substr(0, word.find('=')));
    return name.starts_with("--e") && (executeOption.starts_with(name) || name.starts_with(executeOption));
}

struct TidyRequest {
    Words preview;  // without what makes the tool act
    bool isCopy = false;
    bool executes = false;
    bool isInDoubt = false;  // the tool may read the options otherwise
};

TidyRequest readRequest(const Words& words) {
    TidyRequest request;
    std::copy_if(words.begin(), words.end(), std::back_inserter(request.preview),
                 [](const auto& word) { return word != executeOption; });
    request.executes = request.preview.size() < words.size();
    request.isCopy = std::find(request.preview.begin(), request.preview.end(), copyOption) != request.preview.end();
    forEachRole(words, [&](const std::string& word, WordRole role) {
        const bool isKnown = word == executeOption || word == copyOption;
        if (isKnown ? role != WordRole::option : resemblesExecute(word)) request.isInDoubt = true;
    });
    return request;
}

std::optional<FilePath> targetFolder(BasherAnalysis& analysis, const Words& words) {
    Words operands;
    forEachRole(Words(words.begin() + 1, words.end()), [&](const std::string& word, WordRole role) {
        if (role == WordRole::operand) operands.push_back(word);
    });
    if (operands.empty()) return std::nullopt;
    const FilePath first = analysis.resolveURL(operands[0]);
    if (analysis.fileExists(first) || operands.size() == 1) return first;
    const FilePath second = analysis.resolveURL(operands[1]);
    return analysis.fileExists(second) ? second : first;
}

// --- preview ---

struct Preview {
    struct Entry {
        std::string category, name;
    };
    std::vector<Entry> entries;
    std::int64_t unlisted = 0;     // "… and 5 more"
    bool hasStrayEntries = false;  // in front of the first category
};

std::int64_t sumWithoutOverflow(std::int64_t sum, std::string_view digits) {
    constexpr std::int64_t most = std::numeric_limits<std::int64_t>::max();
    const std::int64_t more = parsedInteger(digits).value_or(most);
    return more > most - sum ? most : sum + more;
}

Preview readPreview(std::string_view output) {
    static const Regex header(R"(^(.*?)\s*\(\d+\s+files?\)$)");
    static const Regex remainder(R"(^(?:\.{3}|…)\s+and\s+(\d+)\s+more$)");
    Preview preview;
    std::optional<std::string> category;
    for (const auto& line : splitNonEmpty(output, "\n")) {
        if (const auto match = header.find(trimmed(line))) {
            category = trimmed(*match->group(1));
            continue;
        }
        const auto at = line.find(arrow);
        if (at == std::string::npos) continue;
        const std::string_view name = std::string_view(line).substr(at + arrow.size());
        if (const auto match = remainder.find(name))
            preview.unlisted = sumWithoutOverflow(preview.unlisted, *match->group(1));
        else if (category && !name.empty())
            preview.entries.push_back({*category, std::string(name)});
        else
            preview.hasStrayEntries |= !name.empty();
    }
    return preview;
}

// What stands below the folder, whatever the name holds.
FilePath below(const FilePath& folder, std::string_view name) {
    return FilePath::resolve("./" + std::string(name), folder);
}

void addChanges(BasherAnalysis& analysis, const FilePath& folder, const Preview& preview, bool isCopy) {
    std::set<FilePath> made;
    for (const auto& [category, name] : preview.entries) {
        const FilePath categoryFolder = below(folder, category);
        if (made.insert(categoryFolder).second) analysis.addFileChange(creation(categoryFolder), true, true);
        const FilePath target = below(categoryFolder, name);
        if (isCopy)
            analysis.addFileChange(creation(target), false, true);
        else
            analysis.addFileChange(moving(below(folder, name), target), false);
    }
    using Kind = ExtraFileChanges::Kind;
    if (preview.unlisted > 0)
        analysis.addSideEffect({ExtraFileChanges{isCopy ? Kind::copies : Kind::moves, preview.unlisted}, std::nullopt});
}

void noteUnknownChanges(BasherAnalysis& analysis) {
    analysis.addSideEffect(
        {PlainSideEffect::unknownFileChanges, "'fiotraf' may move or copy files that aren't shown here"});
}

// Where the tool is not installed, nothing is moved either.
bool mayActUnseen(const TidyRequest& request, const CommandResult& preview) {
    constexpr int notInstalled = 127;
    if (!preview.exitCode) return true;
    return request.executes && preview.exitCode != notInstalled &&
           (preview.exitCode != 0 || !preview.output.isKnown() || preview.output.text().empty());
}

CommandResult organize(BasherAnalysis& analysis, const ModelInput& input) {
    analysis.noteSeesOnlyRealFiles("fiotraf");
    const TidyRequest request = readRequest(input.args);
    if (request.isInDoubt) noteUnknownChanges(analysis);
    if (std::any_of(request.preview.begin(), request.preview.end(), resemblesExecute))
        return CommandResult::unpredictable();

    const auto folder = targetFolder(analysis, request.preview);
    CommandResult result = analysis.runRealCommand("fiotraf", SimString::known(""), request.preview);
    if (mayActUnseen(request, result)) noteUnknownChanges(analysis);
    if (result.exitCode != 0 || !result.output.isKnown()) return result;
    const Preview preview = readPreview(result.output.text());
    if (request.executes && (!folder || preview.hasStrayEntries)) noteUnknownChanges(analysis);
    if (folder) addChanges(analysis, *folder, preview, request.isCopy);
    return result;
}

}  // namespace

CommandResult tidyFolder(BasherAnalysis& analysis, const ModelInput& input) {
    analysis.requirePackage("Fiotraf");
    if (input.args.empty()) return analysis.runRealCommand("fiotraf", SimString::known(""), {});
    if (input.args.front() != "organize") {
        analysis.addSideEffect({PlainSideEffect::partialSupport,
                                fmt::format("fiotraf '{}' isn't supported — effects unknown", input.args.front())});
        return CommandResult::unpredictable();
    }
    return organize(analysis, input);
}

}  // namespace brindlet
