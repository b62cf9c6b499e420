#include <algorithm>

#include <fmt/format.h>

#include "analysis/models/archives.h"
#include "analysis/models/archives_support.h"
#include "text/strings.h"

namespace brindlet {

namespace {

using ErrorKind = BasherAnalysisError::Kind;

constexpr std::string_view unzipFlags[] = {"q", "v", "o", "n", "j", "t", "Z", "l"};
constexpr std::string_view listingFlags[] = {"Z", "l", "t"};
constexpr std::string_view zipInfoFlags[] = {"1", "2", "s", "m", "l", "v", "C", "h", "M", "t", "T", "z"};
constexpr std::string_view unzipVariables[] = {"UNZIP", "UNZIPOPT", "ZIPINFO", "ZIPINFOOPT"};

const ArgExtractor::OptionArities folderOption = {{"-d", 1}};
constexpr std::string_view excludeOption[] = {"-x"};
constexpr std::size_t longestUnzipList = 1000;

constexpr const char* unknownFiles = "Will unzip unknown files";

// unzip 6.00, man unzip: 9 is no archive at all, of which nothing is unpacked; 127 is env without the tool.
constexpr int statusesWithoutEntries[] = {9, 127};

// Behind the archive, too, these show or unpack no more than is predicted.
bool isPlainBehindArchive(std::string_view word) {
    return isFlagCluster(word) && word.find_first_not_of("qvontlZ", 1) == std::string_view::npos;
}

struct UnzipLine {
    bool junksPaths = false;
    std::string archive{};
    std::optional<std::string> folder{};
};

[[noreturn]] void refuse(std::string text) {
    throw BasherAnalysisError{ErrorKind::highRisk, std::move(text)};
}

// unzip takes the archive's name for a pattern, and goes on to the name with ".zip" behind it.
void noteOtherArchives(BasherAnalysis& analysis, const std::string& archive) {
    const bool hasOther = archive.find_first_of("*?[") != std::string::npos ||
                          analysis.fileExists(analysis.resolveURL(archive + ".zip")) ||
                          analysis.fileExists(analysis.resolveURL(archive + ".ZIP"));
    if (hasOther) noteUnknownChanges(analysis, unknownFiles);
    analysis.doubtResult("'unzip' may find another archive");
}

// Names that the tool shows otherwise than it makes them: a control character as "^A", or a "\" that may become a "/".
bool isShownOtherwise(std::string_view entry) {
    if (contains(entry, "\\")) return true;
    for (std::size_t at = entry.find('^'); at != std::string_view::npos; at = entry.find('^', at + 1))
        if (at + 1 < entry.size() && entry[at + 1] >= '?' && entry[at + 1] <= '_') return true;
    return false;
}

Words withoutFolders(const Words& entries) {
    Words names;
    for (const auto& entry : entries)
        if (!entry.ends_with('/')) names.emplace_back(lastPathComponent(entry));
    return names;
}

CommandResult list(BasherAnalysis& analysis, const ModelInput& input, const std::string& archive) {
    if (canBeListed(analysis, analysis.resolveURL(archive)))
        return analysis.runRealCommand(input.name, SimString::known(""), input.args);
    analysis.doubtResult(fmt::format("'{}' lists an archive that isn't there yet", input.name));
    return {0, SimString::unknown()};
}

CommandResult extract(BasherAnalysis& analysis, const UnzipLine& line) {
    const FilePath archive = analysis.resolveURL(line.archive);
    if (!analysis.fileExists(archive)) {
        noteOtherArchives(analysis, line.archive);
        return failureInWords("unzip: file not found: " + archive.text());
    }
    if (!canBeListed(analysis, archive)) {
        noteUnknownChanges(analysis, unknownFiles);
        return {0, SimString::unknown()};
    }
    const FilePath folder = line.folder ? analysis.resolveURL(*line.folder) : analysis.currentDirectoryURL();
    CommandResult listing = analysis.runRealCommand("unzip", SimString::known(""), {"-Z", "-1", line.archive});
    if (listing.exitCode != 0) {
        const auto& harmless = statusesWithoutEntries;
        if (!listing.exitCode || std::ranges::find(harmless, *listing.exitCode) == std::end(harmless))
            noteUnknownChanges(analysis, unknownFiles);
        return listing;
    }
    if (!listing.output.isKnown())
        throw BasherAnalysisError{ErrorKind::simulationError, "unzip: unable to read archive contents for preview"};
    const Words entries = splitNonEmpty(listing.output.text(), "\n");
    if (entries.empty() || std::ranges::any_of(entries, isShownOtherwise))
        noteUnknownChanges(analysis, "The archive holds names that can't be read");
    extractEntries(analysis, folder, line.junksPaths ? withoutFolders(entries) : entries);
    return CommandResult::success();
}

}  // namespace

CommandResult unzipFiles(BasherAnalysis& analysis, const ModelInput& input) {
    ArgExtractor args = wordsOf(input);
    const Words flags = args.extractAllFlagsAtStart({"d"});
    UnzipLine line{.junksPaths = hasFlag(flags, "j")};
    if (const auto taken = args.extractOptionsAnywhere(folderOption))
        if (!taken->front().args.empty()) line.folder = taken->front().args.front();
    if (const Words unsupported = allUnsupported(flags, unzipFlags); !unsupported.empty())
        throw BasherAnalysisError{ErrorKind::simulationError,
                                  "unzip: unsupported option(s): -" + joined(unsupported, "")};
    const Words operands = args.extractLeadingOperands();
    if (operands.empty())
        return analysis.addCommandError("Unzip command incorrectly written", "unzip: missing archive filename");
    if (operands.size() > 1) refuse("unzip with specific file list is too complex to preview");
    if (hasFlag(args.remainingArgs(), "-x")) refuse("unzip with -x exclude list is too complex to preview");
    line.archive = operands.front();

    for (const auto& word : args.remainingArgs())
        if (!isPlainBehindArchive(word)) noteUnread(analysis, "unzip", word);
    noteVariables(analysis, "unzip", unzipVariables);
    if (hasAnyFlag(flags, listingFlags)) return list(analysis, input, line.archive);
    return extract(analysis, line);
}

CommandResult describeZip(BasherAnalysis& analysis, const ModelInput& input) {
    Words words = input.args;
    takeOutEverywhere(words, excludeOption, longestUnzipList);
    ArgExtractor args(input.name, ArgExtractor::Style::defaultStyle, std::move(words));
    if (auto flag = firstUnsupported(args.extractAllFlagsAtStart(), zipInfoFlags))
        return analysis.addCommandError("Zip info command incorrectly written",
                                        fmt::format("zipinfo: unsupported option -- {}", *flag));
    const Words operands = args.extractLeadingOperands();
    if (operands.empty())
        return analysis.addCommandError("Zip info missing archive filename", "zipinfo: missing archive filename");
    if (operands.size() > 1) refuse("zipinfo with specific file list is too complex to preview");
    const std::string& archive = operands.front();
    if (!analysis.fileExists(analysis.resolveURL(archive)))
        return failureInWords(fmt::format("zipinfo:  cannot find or open {0}, {0}.zip or {0}.ZIP.", archive));
    return list(analysis, input, archive);
}

}  // namespace brindlet
