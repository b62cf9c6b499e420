#include <algorithm>

#include <fmt/format.h>

#include "analysis/models/model_support.h"
#include "analysis/models/system_commands.h"
#include "text/regex.h"

namespace brindlet {

namespace {

constexpr std::string_view liveFlags[] = {"-l", "-live"};

struct SearchOptions {
    AcceptedFlags flags, valueOptions;
};
constexpr std::string_view findFlags[] = {"-0", "-count"};
constexpr std::string_view findValueOptions[] = {"-name", "-onlyin"};
constexpr std::string_view listFlags[] = {"-raw"};
constexpr std::string_view listValueOptions[] = {"-name", "-nullMarker"};

// Goes through the words and collects the operands; fails at the first word that isn't known.
std::optional<CommandResult> takeOperands(BasherAnalysis& analysis, const ModelInput& input,
                                          const SearchOptions& options, Words& operands) {
    const auto fail = [&](std::string_view what) {
        return analysis.addCommandError("Spotlight search command incorrect", fmt::format("{}: {}", input.name, what));
    };
    for (std::size_t at = 0; at < input.args.size(); ++at) {
        const std::string& word = input.args[at];
        if (input.name == "mdfind" && isAmong(word, liveFlags))
            throw BasherAnalysisError{BasherAnalysisError::Kind::wontWorkInBrindlet,
                                      "mdfind: -l (live) flag won't work in Brindlet"};
        if (isAmong(word, options.valueOptions)) {
            if (++at == input.args.size()) return fail(fmt::format("option '{}' requires an argument", word));
        } else if (!word.starts_with('-')) {
            operands.push_back(word);
        } else if (!isAmong(word, options.flags)) {
            return fail(fmt::format("unsupported option '{}'", word));
        }
    }
    return std::nullopt;
}

// Makes the comparisons of a query ignore case. Only where the last word is one text in single quotes: what stands
// between two such texts is the shell's.
Words ignoringCase(Words words) {
    static const Regex comparison(R"re(==\s+"([^"]+)"(?=[^c]))re");
    std::string& last = words.back();
    const bool isQuoted = last.size() > 1 && last.front() == '\'' && last.find('\'', 1) == last.size() - 1;
    if (isQuoted) last = comparison.replacedAll(last, "$0c");
    return words;
}

}  // namespace

CommandResult searchIndex(BasherAnalysis& analysis, const ModelInput& input) {
    analysis.noteSeesOnlyRealFiles("mdfind");
    Words operands;
    if (auto failure = takeOperands(analysis, input, {findFlags, findValueOptions}, operands)) return *failure;
    const FilePath folder = analysis.currentDirectoryURL();
    if (!analysis.fileHistory(folder).isUnchangedOriginal())
        return analysis.addCommandError("Spotlight search: folder doesn't exist",
                                        fmt::format("mdfind: working directory does not exist: {}", folder.text()));
    input.command.rewriteRule = ignoringCase;
    return analysis.runRealCommand("mdfind", SimString::known(""), input.args);
}

CommandResult showMetadata(BasherAnalysis& analysis, const ModelInput& input) {
    Words paths;
    if (auto failure = takeOperands(analysis, input, {listFlags, listValueOptions}, paths)) return *failure;
    const auto missing = [&](const std::string& path) -> std::optional<CommandResult> {
        const FilePath url = analysis.resolveURL(path);
        if (analysis.fileExists(url)) return std::nullopt;
        return analysis.addCommandError("Spotlight search: file/folder missing",
                                        fmt::format("mdls: {}: No such file or directory", url.name()));
    };
    if (auto failure = firstFailure(paths, missing)) return *failure;
    const bool areUnchanged = std::all_of(paths.begin(), paths.end(), [&](const std::string& path) {
        return analysis.fileHistory(analysis.resolveURL(path)).isUnchangedOriginal();
    });
    if (!areUnchanged) return {0, SimString::unknown()};
    return analysis.runRealCommand("mdls", SimString::known(""), input.args);
}

}  // namespace brindlet
