#include <algorithm>

#include <fmt/format.h>

#include "analysis/models/archives.h"
#include "analysis/models/archives_support.h"
#include "text/strings.h"

namespace brindlet {

namespace {

using FlagsAndOptions = ArgExtractor::FlagsAndOptions;
using ErrorKind = BasherAnalysisError::Kind;

enum class Mode { create, extract, list, append };

struct ModeRow {
    Mode mode;
    std::string_view letter, name;
};
constexpr ModeRow modeRows[] = {
    {Mode::create, "c", "create"},
    {Mode::extract, "x", "extract"},
    {Mode::list, "t", "list"},
    {Mode::append, "r", "append"},
};

// clang-format off
const ArgExtractor::OptionArities tarOptions = {
    {"f", 1}, {"file", 1}, {"C", 1}, {"cd", 1}, {"directory", 1}, {"b", 1}, {"block-size", 1}, {"exclude", 1},
    {"include", 1}, {"format", 1}, {"gid", 1}, {"gname", 1}, {"older", 1}, {"owner", 1}, {"older-mtime", 1},
    {"older-than", 1}, {"older-mtime-than", 1}, {"options", 1}, {"passphrase", 1}, {"sparse", 1},
    {"strip-components", 1}, {"T", 1}, {"files-from", 1}, {"uname", 1}, {"use-compress-program", 1}, {"X", 1},
    {"exclude-from", 1},
};

// tar 1.34: what neither writes elsewhere, nor removes, nor runs anything. The modes are among them.
constexpr std::string_view tarPlainFlags[] = {
    "c", "create", "x", "extract", "t", "list", "r", "append",
    "z", "gzip", "gunzip", "j", "bzip2", "J", "xz", "Z", "compress", "lzip", "lzma", "lzop", "zstd", "a",
    "auto-compress", "no-auto-compress", "v", "verbose", "p", "preserve-permissions", "same-permissions",
    "no-same-permissions", "o", "no-same-owner", "same-owner", "numeric-owner", "m", "touch", "k", "keep-old-files",
    "skip-old-files", "keep-newer-files", "h", "dereference", "hard-dereference", "S", "n", "seek", "w", "interactive",
    "confirmation", "i", "ignore-zeros", "B", "read-full-records", "W", "verify", "one-file-system", "totals", "utc",
    "full-time", "overwrite", "wildcards", "no-wildcards", "anchored", "no-anchored", "ignore-case", "no-recursion", "recursion",
    "exclude-vcs", "exclude-backups", "exclude-caches", "no-xattrs", "xattrs", "acls", "no-acls", "selinux",
    "no-selinux", "show-transformed-names", "no-mac-metadata", "no-fflags", "R", "block-number",
};
// Of the options with values, those of which the tool makes more than the model.
constexpr std::string_view reachingOptions[] = {"T", "files-from", "use-compress-program", "file"};
// Those that name the folder to unpack in, which the model takes from -C alone.
constexpr std::string_view folderOptions[] = {"directory", "cd"};
// clang-format on

// Whether an option only narrows or describes, or glues such an option to its value: --exclude=*.o, --format=pax.
constexpr std::string_view tarPlainGlued[] = {
    "exclude=", "format=", "warning=", "owner=", "group=", "mode=", "mtime=", "directory=", "cd="};

// What a listing may print besides entries although all is well.
constexpr std::string_view ownLines[] = {
    "tar: Removing leading `",
    "tar: Substituting `.' for empty member name",
    "tar: A lone zero block at ",
    "tar: Ignoring unknown extended header keyword ",
};

constexpr std::string_view stripName = "strip-components";

struct TarLine {
    FlagsAndOptions read;
    Mode mode = Mode::create;
    std::string archive{};
    Words members{};
};

CommandResult tarIncorrectlyWritten(BasherAnalysis& analysis, std::string technical) {
    return analysis.addCommandError("Tar command incorrectly written", std::move(technical));
}

std::optional<Mode> onlyMode(const FlagsAndOptions& read) {
    std::optional<Mode> found;
    for (const auto& row : modeRows) {
        if (!read.hasFlag(row.letter) && !read.hasFlag(row.name)) continue;
        if (found) return std::nullopt;
        found = row.mode;
    }
    return found;
}

// A colon before any slash stands behind the name of a machine.
bool isOnOtherMachine(std::string_view archive) {
    return contains(archive.substr(0, archive.find('/')), ":");
}

// --- what the prediction doesn't show ---

// The value of a long option, in the next word or glued on.
std::optional<std::string> longValue(const FlagsAndOptions& read, std::string_view name) {
    std::optional<std::string> value = read.value(name);
    for (const auto& flag : read.flags)
        if (flag.starts_with(name) && flag.size() > name.size() && flag[name.size()] == '=')
            value = flag.substr(name.size() + 1);
    return value;
}

std::string_view withoutComponents(std::string_view entry, std::int64_t count) {
    for (; count > 0 && !entry.empty(); --count) {
        const std::size_t slash = entry.find('/');
        entry.remove_prefix(slash == std::string_view::npos ? entry.size() : slash + 1);
    }
    return entry;
}

// The entries are shown as listed, in the folder of -C; it is said where one that really goes elsewhere, with fewer
// folders in its name or into another folder, hits a file that is there.
void noteHitElsewhere(BasherAnalysis& analysis, const FlagsAndOptions& read, FilePath folder, const Words& entries) {
    std::string_view option;
    std::int64_t count = 0;
    if (const auto value = longValue(read, stripName)) {
        option = stripName;
        count = parsedInteger(*value).value_or(0);
    }
    for (const std::string_view name : folderOptions) {
        const auto value = longValue(read, name);
        if (!value) continue;
        const FilePath named =
            value->starts_with('~') ? analysis.resolveURL(*value) : FilePath::resolve(*value, folder);
        if (named != folder) option = name;
        folder = named;
    }
    if (option.empty()) return;
    const auto hitsFile = [&](const std::string& entry) {
        const std::string_view name = withoutComponents(entry, count);
        if (name.empty()) return false;
        const FilePath target(folder.text() + "/" + std::string(name));
        return analysis.fileExists(target) && !analysis.isDirectory(target);
    };
    if (std::any_of(entries.begin(), entries.end(), hitsFile)) noteUnread(analysis, "tar", spelt(option));
}

bool isPlainTarFlag(const std::string& flag) {
    const auto isGlued = [&](std::string_view option) { return flag.starts_with(option); };
    return isAmong(flag, tarPlainFlags) || std::any_of(std::begin(tarPlainGlued), std::end(tarPlainGlued), isGlued) ||
           flag.starts_with(stripName);
}

void noteUnmodelled(BasherAnalysis& analysis, const ModelInput& input, const TarLine& line) {
    // `tar xzf a.tgz -t`: letters without a hyphen count for the tool.
    if (!input.args.front().starts_with('-')) noteUnread(analysis, "tar", input.args.front());
    for (const auto& flag : line.read.flags)
        if (!isPlainTarFlag(flag)) noteUnread(analysis, "tar", spelt(flag));
    for (const auto& [option, values] : line.read.options)
        if (isAmong(option, reachingOptions)) noteUnread(analysis, "tar", spelt(option));
    if (std::count(input.args.begin(), input.args.end(), "-C") > 1) noteUnread(analysis, "tar", "-C");
    const bool isSentNothing = input.standardInput == SimString::known("") && !analysis.variable("TAPE");
    if (line.mode == Mode::extract && !line.read.value("f") && !isSentNothing)
        analysis.addSideEffect(
            {PlainSideEffect::partialSupport, "'tar' without -f unpacks what it is sent, which isn't shown here"});
    if (isOnOtherMachine(line.archive))
        analysis.addSideEffect({PlainSideEffect::partialSupport,
                                "'tar' takes an archive with ':' in its name for one on another machine"});
    constexpr std::string_view variables[] = {"TAR_OPTIONS"};
    noteVariables(analysis, "tar", variables);
}

// --- the modes ---

std::optional<CommandResult> archiveMissing(BasherAnalysis& analysis, const TarLine& line) {
    if (analysis.fileExists(analysis.resolveURL(line.archive))) return std::nullopt;
    return analysis.addCommandError("Tar archive doesn't exist",
                                    fmt::format("tar: {}: Cannot open: No such file or directory", line.archive));
}

std::optional<CommandResult> memberMissing(BasherAnalysis& analysis, const TarLine& line) {
    return firstFailure(line.members, [&](const std::string& member) -> std::optional<CommandResult> {
        const FilePath url = analysis.resolveURL(member);
        if (analysis.fileExists(url)) return std::nullopt;
        return analysis.addCommandError(fmt::format("Tar: {} doesn't exist", url.name()),
                                        fmt::format("tar: {}: Cannot stat: No such file or directory", member));
    });
}

CommandResult realListing(BasherAnalysis& analysis, const TarLine& line) {
    Words words;
    if (line.read.hasFlag("z")) words.push_back("-z");
    if (line.read.hasFlag("j")) words.push_back("-j");
    words.insert(words.end(), {"-t", "-f", line.archive});
    return analysis.runRealCommand("tar", SimString::known(""), words);
}

bool canBeListed(BasherAnalysis& analysis, const TarLine& line) {
    return !isOnOtherMachine(line.archive) && canBeListed(analysis, analysis.resolveURL(line.archive));
}

// The name behind tar's own quoting: a line end is "\n", a backslash "\\", any other byte that can't be shown "\303".
std::string unquoted(std::string_view line) {
    constexpr std::string_view letters = "abfnrtv?", meanings = "\a\b\f\n\r\t\v\x7f";
    const auto isOctal = [&](std::size_t at) { return at < line.size() && line[at] >= '0' && line[at] <= '7'; };
    std::string name;
    for (std::size_t at = 0; at < line.size(); ++at) {
        if (line[at] != '\\' || at + 1 == line.size()) {
            name += line[at];
            continue;
        }
        if (isOctal(at + 1) && isOctal(at + 2) && isOctal(at + 3)) {
            name += static_cast<char>((line[at + 1] - '0') * 64 + (line[at + 2] - '0') * 8 + (line[at + 3] - '0'));
            at += 3;
            continue;
        }
        const std::size_t letter = letters.find(line[++at]);
        name += letter == std::string_view::npos ? line[at] : meanings[letter];
    }
    return name;
}

Words entriesOf(const std::string& listing) {
    Words entries;
    for (const auto& line : splitNonEmpty(listing, "\n")) {
        const auto isOwn = [&](std::string_view begin) { return line.starts_with(begin); };
        if (std::none_of(std::begin(ownLines), std::end(ownLines), isOwn)) entries.push_back(unquoted(line));
    }
    return entries;
}

// Whether a listing that failed may still have come to entries, which the real run would unpack.
bool mayHoldEntries(const CommandResult& listing) {
    if (!listing.exitCode || !listing.output.isKnown() || listing.output.text().empty()) return true;
    const auto lines = splitNonEmpty(listing.output.text(), "\n");
    return std::any_of(lines.begin(), lines.end(), [](const std::string& line) {
        const bool isComplaint = line.starts_with("tar: ") || line.starts_with("tar (child): ") ||
                                 line.starts_with("gzip: ") || line.starts_with("bzip2: ") || line.starts_with("env: ");
        return !isComplaint;
    });
}

CommandResult create(BasherAnalysis& analysis, const TarLine& line) {
    if (auto failure = memberMissing(analysis, line)) return *failure;
    analysis.addFileChange(creation(analysis.resolveURL(line.archive)), false);
    return CommandResult::success();
}

CommandResult append(BasherAnalysis& analysis, const TarLine& line) {
    if (auto failure = archiveMissing(analysis, line)) return *failure;
    if (auto failure = memberMissing(analysis, line)) return *failure;
    analysis.addFileChange(modification(analysis.resolveURL(line.archive)), std::nullopt);
    return CommandResult::success();
}

CommandResult list(BasherAnalysis& analysis, const TarLine& line) {
    if (auto failure = archiveMissing(analysis, line)) return *failure;
    if (canBeListed(analysis, line)) return realListing(analysis, line);
    analysis.doubtResult("'tar' lists an archive that isn't there yet");
    return {0, SimString::unknown()};
}

CommandResult extract(BasherAnalysis& analysis, const TarLine& line) {
    constexpr const char* unknownFiles = "Will untar unknown files";
    if (auto failure = archiveMissing(analysis, line)) return *failure;
    if (!canBeListed(analysis, line)) {
        noteUnknownChanges(analysis, unknownFiles);
        return {0, SimString::unknown()};
    }
    const auto chosen = line.read.value("C");
    const FilePath folder = chosen ? analysis.resolveURL(*chosen) : analysis.currentDirectoryURL();
    CommandResult listing = realListing(analysis, line);
    if (listing.exitCode != 0) {
        if (mayHoldEntries(listing)) noteUnknownChanges(analysis, unknownFiles);
        return listing;
    }
    if (!listing.output.isKnown())
        throw BasherAnalysisError{ErrorKind::simulationError, "tar: unable to list archive contents for preview"};
    const Words entries = entriesOf(listing.output.text());
    if (entries.empty()) noteUnknownChanges(analysis, unknownFiles);  // or names that are no text
    noteHitElsewhere(analysis, line.read, folder, entries);
    extractEntries(analysis, folder, entries);
    return CommandResult::success();
}

CommandResult run(BasherAnalysis& analysis, const TarLine& line) {
    switch (line.mode) {
        case Mode::create:
            return create(analysis, line);
        case Mode::extract:
            return extract(analysis, line);
        case Mode::list:
            return list(analysis, line);
        case Mode::append:
            return append(analysis, line);
    }
    return CommandResult::unpredictable();
}

}  // namespace

CommandResult archiveWithTar(BasherAnalysis& analysis, const ModelInput& input) {
    ArgExtractor args = wordsOf(input);
    TarLine line{.read = args.extractFlagsAndOptions(tarOptions)};
    const auto mode = onlyMode(line.read);
    if (!mode) return tarIncorrectlyWritten(analysis, "tar: must specify exactly one of -c, -x or -t");
    line.mode = *mode;
    auto archive = line.read.value("f");
    if (!archive && line.mode == Mode::append) return tarIncorrectlyWritten(analysis, "tar: -r requires -f");
    if (!archive) archive = args.extractFirst();
    if (!archive) return tarIncorrectlyWritten(analysis, "tar: missing archive filename");
    line.archive = std::move(*archive);
    line.members = args.remainingArgs();

    const std::size_t errorsBefore = analysis.state().commandErrors.size();
    CommandResult result = run(analysis, line);
    // What is predicted to fail is asked about in any case.
    if (analysis.state().commandErrors.size() == errorsBefore) noteUnmodelled(analysis, input, line);
    return result;
}

}  // namespace brindlet
