#include <algorithm>

#include <fmt/format.h>

#include "analysis/models/archives.h"
#include "analysis/models/archives_support.h"

namespace brindlet {

namespace {

const ArgExtractor::OptionArities suffixOptions = {{"S", 1}, {"suffix", 1}};
constexpr std::string_view printingFlags[] = {"h", "help", "c", "to-stdout"};
constexpr std::string_view decompressingFlags[] = {"d", "decompress", "uncompress"};
constexpr std::string_view keepingFlags[] = {"k", "keep"};
constexpr std::string_view extension = "gz";

// gzip 1.12: what only describes how each operand is packed, besides the flags that are modelled.
constexpr std::string_view gzipPlainFlags[] = {
    "d",    "decompress", "uncompress", "k", "keep",    "f", "force", "n",    "no-name",   "N",
    "name", "q",          "quiet",      "v", "verbose", "a", "ascii", "1",    "2",         "3",
    "4",    "5",          "6",          "7", "8",       "9", "fast",  "best", "rsyncable", "synchronous"};

struct GzipLine {
    bool decompresses = false;
    bool keeps = false;
    std::string addedExtension{extension};
};

// `-S .z` and `-S z` alike give "a.txt.z".
std::string extensionOf(const std::string& suffix) {
    return suffix.starts_with('.') ? suffix.substr(1) : suffix;
}

FilePath withoutExtension(const FilePath& url) {
    return url.parent().child(pathBaseName(url.text()));
}

std::optional<CommandResult> compressOne(BasherAnalysis& analysis, const std::string& path, const GzipLine& line) {
    const FilePath url = analysis.resolveURL(path);
    if (!analysis.fileExists(url))
        return analysis.addCommandError(fmt::format("Gzip: {} doesn't exist", url.name()),
                                        fmt::format("gzip: {}: No such file or directory", path));
    if (!line.decompresses) {
        analysis.addFileChange(creation(FilePath(url.text() + "." + line.addedExtension)), false);
    } else {
        if (pathExtension(url.text()) != extension)
            return analysis.addCommandError("Gunzip: not a .gz file",
                                            fmt::format("gunzip: {}: unknown suffix -- ignored", path));
        analysis.addFileChange(creation(withoutExtension(url)), false);
    }
    if (!line.keeps) analysis.addFileChange(deletion(url), std::nullopt);
    return std::nullopt;
}

// Where the operands stay, the predicted changes alone would not show that more is to come.
void noteUnmodelled(BasherAnalysis& analysis, const ArgExtractor::FlagsAndOptions& read) {
    for (const auto& flag : read.flags)
        if (!isAmong(flag, gzipPlainFlags)) noteUnread(analysis, "gzip", spelt(flag));
    const auto isGlued = [](const auto& option) { return !option.second.empty() && option.second.front()[0] != '.'; };
    if (std::any_of(read.options.begin(), read.options.end(), isGlued)) noteUnread(analysis, "gzip", "--suffix");
    constexpr std::string_view variables[] = {"GZIP"};
    noteVariables(analysis, "gzip", variables);
}

}  // namespace

CommandResult compressFiles(BasherAnalysis& analysis, const ModelInput& input) {
    ArgExtractor args = wordsOf(input);
    const auto read = args.extractFlagsAndOptions(suffixOptions);
    if (hasAnyFlag(read.flags, printingFlags)) {
        analysis.doubtResult("'gzip' is taken to succeed");
        return {0, SimString::unknown()};
    }
    GzipLine line{.decompresses = hasAnyFlag(read.flags, decompressingFlags),
                  .keeps = hasAnyFlag(read.flags, keepingFlags)};
    auto suffix = read.value("S");
    if (!suffix) suffix = read.value("suffix");
    if (suffix) line.addedExtension = extensionOf(*suffix);
    if (args.remainingArgs().empty())
        return analysis.addCommandError("Gzip missing input file", "gzip: invalid usage – expected filename");
    const auto compress = [&](const std::string& path) { return compressOne(analysis, path, line); };
    if (auto failure = firstFailure(args.remainingArgs(), compress)) return *failure;
    if (line.keeps) noteUnmodelled(analysis, read);
    return CommandResult::success();
}

CommandResult decompressFiles(BasherAnalysis& analysis, const ModelInput& input) {
    ModelInput decompressing = input;
    decompressing.args.insert(decompressing.args.begin(), "-d");
    return compressFiles(analysis, decompressing);
}

}  // namespace brindlet
