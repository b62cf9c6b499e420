#include <algorithm>

#include <fmt/format.h>

#include "analysis/models/file_commands.h"
#include "analysis/models/model_support.h"

namespace brindlet {

namespace {

// --- ln ---

constexpr std::string_view lnFlags[] = {"L", "P", "s", "F", "f", "i", "w", "h", "n", "v"};

struct LinkOptions {
    bool isSymbolic = false;
    bool mayOverwrite = false;
};

CommandResult lnIncorrectlyWritten(BasherAnalysis& analysis, std::string technical) {
    return analysis.addCommandError("`ln` command incorrectly written", std::move(technical));
}

// `linkName` is how the line calls the path where the link is made.
std::optional<CommandResult> makeLink(BasherAnalysis& analysis, const std::string& source, const FilePath& link,
                                      const std::string& linkName, const LinkOptions& options) {
    if (!options.isSymbolic) {
        const FilePath url = analysis.resolveURL(source);
        if (!analysis.fileExists(url))
            return analysis.addCommandError("Link command: source doesn't exist",
                                            fmt::format("ln: {}: No such file or directory", source));
        if (analysis.isDirectory(url))
            return analysis.addCommandError("Link command: source can't be a folder",
                                            fmt::format("ln: {}: Is a directory", source));
    }
    if (!options.mayOverwrite && analysis.fileExists(link))
        return analysis.addCommandError("Link command: can't overwrite",
                                        fmt::format("ln: {} already exists", linkName));
    analysis.addFileChange(creation(link), false);
    return std::nullopt;
}

CommandResult linkIntoFolder(BasherAnalysis& analysis, const Words& sources, const std::string& destination,
                             const LinkOptions& options) {
    const FilePath folder = analysis.resolveURL(destination);
    if (!analysis.isExistingDirectory(folder))
        return analysis.addCommandError("Can't link to directory",
                                        fmt::format("ln: target '{}' is not a directory", destination));
    const std::string prefix = destination.ends_with('/') ? destination : destination + '/';
    const auto link = [&](const std::string& source) {
        const FilePath place = placeIn(folder, analysis.resolveURL(source));
        return makeLink(analysis, source, place, prefix + std::string(place.name()), options);
    };
    return firstFailure(sources, link).value_or(CommandResult::success());
}

// --- touch ---

const ArgExtractor::OptionArities touchOptions = {{"r", 1}, {"d", 1}, {"t", 1}};
constexpr std::string_view keepsMissingFlags[] = {"c", "h"};

// How many words at the start are clusters of flags, with the value behind each that ends in a value option: -ct 2020.
std::size_t leadingOptionWords(const Words& words) {
    const auto takesValue = [](std::string_view cluster) {
        const auto isLast = [&](const auto& option) { return cluster.ends_with(option.first); };
        return std::any_of(touchOptions.begin(), touchOptions.end(), isLast);
    };
    std::size_t count = 0;
    while (count < words.size() && isFlagCluster(words[count])) {
        const bool hasValue =
            takesValue(words[count]) && count + 1 < words.size() && !words[count + 1].starts_with('-');
        count += hasValue ? 2 : 1;
    }
    return count;
}

}  // namespace

CommandResult linkFiles(BasherAnalysis& analysis, const ModelInput& input) {
    ArgExtractor args = wordsOf(input);
    const Words flags = args.extractFlagsAndOptions().flags;
    const Words& operands = args.remainingArgs();
    if (operands.empty()) return lnIncorrectlyWritten(analysis, "ln: missing file operand");
    if (operands.size() == 1)
        return lnIncorrectlyWritten(analysis,
                                    fmt::format("ln: missing destination file operand after '{}'", operands.front()));
    if (auto flag = firstUnsupported(flags, lnFlags))
        return lnIncorrectlyWritten(analysis, fmt::format("ln: unsupported flag '-{}'", *flag));

    const LinkOptions options{.isSymbolic = hasFlag(flags, "s"), .mayOverwrite = hasFlag(flags, "f")};
    const std::string& last = operands.back();
    if (operands.size() == 2)
        return makeLink(analysis, operands.front(), analysis.resolveURL(last), last, options)
            .value_or(CommandResult::success());
    return linkIntoFolder(analysis, Words(operands.begin(), operands.end() - 1), last, options);
}

CommandResult touchFiles(BasherAnalysis& analysis, const ModelInput& input) {
    const auto behindOptions = input.args.begin() + static_cast<std::ptrdiff_t>(leadingOptionWords(input.args));
    ArgExtractor options(input.name, ArgExtractor::Style::defaultStyle, Words(input.args.begin(), behindOptions));
    const bool keepsMissing = hasAnyFlag(options.extractFlagsAndOptions(touchOptions).flags, keepsMissingFlags);

    ArgExtractor operands(input.name, ArgExtractor::Style::defaultStyle, Words(behindOptions, input.args.end()));
    operands.extractOptionsAtStart(touchOptions);
    if (operands.remainingArgs().empty()) return {1, SimString::unknown()};
    noteEndOfOptions(analysis, input.name, operands.remainingArgs());
    for (const auto& path : operands.remainingArgs()) {
        const FilePath url = analysis.resolveURL(path);
        // A new time stamp on what is there is no change worth showing.
        if (!keepsMissing && !analysis.fileExists(url)) analysis.addFileChange(creation(url), false);
    }
    return CommandResult::success();
}

}  // namespace brindlet
