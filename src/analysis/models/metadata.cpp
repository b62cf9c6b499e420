#include <algorithm>

#include <fmt/format.h>

#include "analysis/models/file_commands.h"
#include "analysis/models/model_support.h"

namespace brindlet {

namespace {

// --- chmod, chflags, chown ---

struct MissingFileText {
    std::string_view command;
    std::string_view text;  // with a place for the path
};

constexpr MissingFileText missingFileTexts[] = {
    {"chmod", "chmod: cannot access '{}': No such file or directory"},
    {"chflags", "chflags: {}: No such file or directory"},
    {"chown", "chown: {}: No such file or directory"},
};

std::string missingFileText(std::string_view command, const std::string& path) {
    const auto isCommand = [&](const MissingFileText& row) { return row.command == command; };
    const auto row = std::find_if(std::begin(missingFileTexts), std::end(missingFileTexts), isCommand);
    return fmt::format(fmt::runtime(row->text), path);
}

void recordModification(BasherAnalysis& analysis, const FilePath& url) {
    analysis.addFileChange(modification(url), analysis.isDirectory(url));
}

// --- xattr ---

constexpr std::string_view xattrHelpFlags[] = {"h", "help"};
constexpr std::string_view xattrNamedFlags[] = {"d", "p"};
constexpr std::string_view xattrChangingFlags[] = {"w", "d", "c"};

// Takes the attribute's name and value, as far as the line must have them.
std::optional<CommandResult> takeAttribute(BasherAnalysis& analysis, ArgExtractor& args, const Words& flags) {
    if (hasFlag(flags, "w")) {
        // The lone backtick is part of the text.
        if (!args.extractFirst() || !args.extractFirst())
            return analysis.addCommandError("`Command incorrectly written", "xattr: Missing attribute name or value");
    } else if (hasAnyFlag(flags, xattrNamedFlags)) {
        if (!args.extractFirst())
            return analysis.addCommandError("Command incorrectly written", "xattr: Missing attribute name");
    }
    return std::nullopt;
}

}  // namespace

CommandResult changeMetadata(BasherAnalysis& analysis, const ModelInput& input) {
    ArgExtractor args = wordsOf(input);
    const Words flags = args.extractAllFlagsAtStart();
    if (hasFlag(flags, "R"))
        throw BasherAnalysisError{
            BasherAnalysisError::Kind::unimplemented,
            fmt::format("{}: -R (recursive) option not supported in Brindlet simulation", input.name)};
    if (args.remainingArgs().size() < 2)
        return analysis.addCommandError(fmt::format("`{}` command incorrectly written", input.name),
                                        fmt::format("{}: missing file operand", input.name));
    args.extractFirst();  // the mode, the flags or the owner
    const bool skipsMissing = hasFlag(flags, "f");
    const auto change = [&](const std::string& path) -> std::optional<CommandResult> {
        const FilePath url = analysis.resolveURL(path);
        if (analysis.fileExists(url))
            recordModification(analysis, url);
        else if (!skipsMissing)
            return analysis.addCommandError("Will have missing file error", missingFileText(input.name, path));
        return std::nullopt;
    };
    return firstFailure(args.remainingArgs(), change).value_or(CommandResult::success());
}

CommandResult extendedAttributes(BasherAnalysis& analysis, const ModelInput& input) {
    ArgExtractor args = wordsOf(input);
    const Words flags = args.extractFlagsAndOptions().flags;
    if (hasAnyFlag(flags, xattrHelpFlags)) return {0, SimString::unknown()};
    args.removeArgIfFirst("--");
    if (auto failure = takeAttribute(analysis, args, flags)) return *failure;

    const Words& files = args.remainingArgs();
    if (files.empty()) return analysis.addCommandError("Command incorrectly written", "xattr: No file specified");
    const auto check = [&](const std::string& path) -> std::optional<CommandResult> {
        if (analysis.fileExists(analysis.resolveURL(path))) return std::nullopt;
        return analysis.addCommandError("Will have missing file error",
                                        fmt::format("xattr: {}: No such file or directory", path));
    };
    if (auto failure = firstFailure(files, check)) return *failure;
    if (!hasAnyFlag(flags, xattrChangingFlags)) return {0, SimString::unknown()};
    for (const auto& path : files) recordModification(analysis, analysis.resolveURL(path));
    return CommandResult::success();
}

}  // namespace brindlet
