#include <algorithm>

#include <fmt/format.h>

#include "analysis/doubts.h"
#include "analysis/models/image_support.h"
#include "analysis/models/image_tools.h"
#include "analysis/models/magick_hazards.h"
#include "analysis/models/magick_options.h"
#include "text/characters.h"

namespace brindlet {

namespace {

constexpr std::string_view program = "magick";
constexpr std::string_view package = "ImageMagick";
constexpr std::string_view toolNames[] = {"convert", "mogrify", "identify", "compare", "montage", "composite"};
constexpr std::string_view magickHelpWords[] = {"-h", "--help", "-version", "--version"};
constexpr std::string_view listWord = "-list";

// An output that ends in one of these is taken to be that one file.
constexpr std::string_view singleFileExtensions[] = {
    ".jpg",  ".jpeg", ".png", ".gif", ".tiff", ".tif", ".bmp", ".ico", ".webp",
    ".heic", ".heif", ".jp2", ".jpx", ".j2k",  ".psd", ".eps", ".svg", ".pdf",
};
// Inputs that are no files.
constexpr std::string_view pseudoImagePrefixes[] = {
    "xc:",
    "canvas:",
    "gradient:",
    "radial-gradient:",
    "linear-gradient:",
    "label:",
    "caption:",
    "pattern:",
    "plasma:",
    "tile:",
    "rose:",
    "logo:",
    "granite:",
    "checkerboard:",
    "inline:",
    "mpr:",
    "color:",
    "pango:",
    "text:",
};
constexpr std::string_view noImage = "null:";

bool isPseudoImage(std::string_view input) {
    const auto isPrefix = [&](auto prefix) { return input.starts_with(prefix); };
    return input == noImage || std::any_of(std::begin(pseudoImagePrefixes), std::end(pseudoImagePrefixes), isPrefix);
}

// "out-%d.png", "out-%03d.png", "%[name].png".
bool isPattern(std::string_view output) {
    for (std::size_t at = output.find('%'); at != std::string_view::npos; at = output.find('%', at + 1)) {
        const std::size_t sign = output.find_first_not_of("0123456789", at + 1);
        if (sign != std::string_view::npos && std::string_view("dox[").find(output[sign]) != std::string_view::npos)
            return true;
    }
    return false;
}

bool isMissing(BasherAnalysis& analysis, const std::string& path) {
    return !analysis.fileExists(analysis.resolveURL(path));
}

CommandResult missingImage(BasherAnalysis& analysis, std::string_view who, const std::string& path) {
    return analysis.addCommandError(fmt::format("ImageMagick: {} doesn't exist", analysis.resolveURL(path).name()),
                                    fmt::format("{}: {}: No such file or directory", who, path));
}

// --- the tools ---

CommandResult identify(BasherAnalysis& analysis, const Words& operands, const Words& allWords) {
    const auto missing = [&](const std::string& path) -> std::optional<CommandResult> {
        if (!isMissing(analysis, path)) return std::nullopt;
        return missingImage(analysis, "magick identify", path);
    };
    if (auto failure = firstFailure(operands, missing)) return *failure;
    const auto isUnchanged = [&](const std::string& path) {
        return analysis.fileHistory(analysis.resolveURL(path)).isUnchangedOriginal();
    };
    if (!std::all_of(operands.begin(), operands.end(), isUnchanged)) return printedSomething();
    analysis.noteSeesOnlyRealFiles(program);
    CommandResult result = analysis.runRealCommand(program, SimString::known(""), allWords);
    if (!result.exitCode) noteMore(analysis, "magick identify may do more than read here");
    return result;
}

// Several images, or the frames of one, go into files with numbers.
std::string firstNumbered(const std::string& path) {
    const std::size_t point = path.rfind('.');
    return path.substr(0, point) + "-0" + path.substr(point);
}

// The words behind an option, which may be spelt in any case.
Words valuesOf(const Words& words, std::string_view option) {
    Words values;
    for (std::size_t at = 0; at + 1 < words.size(); ++at)
        if (lowercased(words[at]) == option) values.push_back(words[at + 1]);
    return values;
}

// mogrify leaves its files as they are where these send the results elsewhere. That matters where it would hit a file
// that is there, or where it can't be told what the results are called.
void noteRedirected(BasherAnalysis& analysis, const Words& words, const Words& operands) {
    const Words formats = valuesOf(words, "-format"), paths = valuesOf(words, "-path");
    if (formats.empty() && paths.empty()) return;
    const auto isHit = [&](const std::string& path) {
        const FilePath url = analysis.resolveURL(path);
        const FilePath folder = paths.empty() ? url.parent() : analysis.resolveURL(paths.front());
        const std::string extension = formats.empty() ? std::string(pathExtension(url.text())) : formats.front();
        const FilePath target = folder.child(std::string(pathBaseName(url.text())) + "." + extension);
        return target != url && (analysis.fileExists(target) || !isMissing(analysis, firstNumbered(target.text())));
    };
    const bool isClear = formats.size() < 2 && paths.size() < 2 &&
                         (formats.empty() || formats.front().find_first_of("%:/") == std::string::npos);
    if (!isClear || std::any_of(operands.begin(), operands.end(), isHit))
        noteUnknownChanges(analysis, fmt::format("magick: '{}' may write files that aren't shown here",
                                                 formats.empty() ? "-path" : "-format"));
}

CommandResult mogrify(BasherAnalysis& analysis, const Words& operands, const Words& words) {
    if (operands.empty()) return CommandResult::unpredictable();
    noteRedirected(analysis, words, operands);
    const auto change = [&](const std::string& path) -> std::optional<CommandResult> {
        if (isMissing(analysis, path)) return missingImage(analysis, "magick mogrify", path);
        analysis.addFileChange(modification(analysis.resolveURL(path)), std::nullopt);
        return std::nullopt;
    };
    if (auto failure = firstFailure(operands, change)) return *failure;
    noteMayFail(analysis, program);
    return printedSomething();
}

// That matters where it would hit one that is there.
void noteNumberedFiles(BasherAnalysis& analysis, const std::string& output) {
    const std::string numbered = firstNumbered(output);
    if (!isMissing(analysis, numbered))
        noteUnknownChanges(analysis, fmt::format("magick may also write {}", quotedForSentence(numbered)));
}

CommandResult makeImage(BasherAnalysis& analysis, const Words& operands) {
    if (operands.size() < 2) return CommandResult::unpredictable();
    for (auto input = operands.begin(); input != operands.end() - 1; ++input)
        if (!isPseudoImage(*input) && isMissing(analysis, *input)) return missingImage(analysis, program, *input);
    const std::string& output = operands.back();
    if (endsInAny(lowercased(output), singleFileExtensions) && !isPattern(output)) {
        analysis.addFileChange(creation(analysis.resolveURL(output)), false);
        noteNumberedFiles(analysis, output);
        if (beginsWithFormat(output))
            noteMore(analysis, fmt::format("magick may take the begin of {} for a format", quotedForSentence(output)));
    } else {
        noteUnknownChanges(analysis, fmt::format("magick may create {}", output));
    }
    noteMayFail(analysis, program);
    return printedSomething();
}

// --- help ---

bool asksForHelp(const Words& args) {
    return args.empty() || args.front() == listWord || hasAnyFlag(args, magickHelpWords);
}

// "-list format", "convert -version".
bool asksForHelpAlone(const Words& args) {
    if (args.empty()) return true;
    Words words = args;
    if (isAmong(words.front(), toolNames)) words.erase(words.begin());
    if (words.size() == 2 && words.front() == listWord) words.pop_back();
    return holdsOnlyOptions(words);
}

// --- the line that really runs ---

// The words that say that a command follows as words of its own.
constexpr std::string_view commandCarriers[] = {"find", "xargs"};
constexpr std::string_view findActions[] = {"-exec", "-execdir", "-ok", "-okdir"};

Words withMagickInFront(Words words) {
    if (!words.empty() && words.front() != program) words.insert(words.begin(), std::string(program));
    return words;
}

// The line's words, as printed, with each tool behind its program.
Words underMagick(Words words) {
    if (words.empty() || !isAmong(lastPathComponent(words.front()), commandCarriers))
        return withMagickInFront(std::move(words));
    const bool isFind = lastPathComponent(words.front()) == "find";
    Words rewritten;
    bool isDone = false;
    for (std::string& word : words) {
        const bool mayBeTool = !rewritten.empty() && rewritten.back() != program &&
                               (isFind ? isAmong(rewritten.back(), findActions) : !isDone);
        if (mayBeTool && isAmong(word, toolNames)) {
            rewritten.emplace_back(program);
            isDone = true;
        }
        rewritten.push_back(std::move(word));
    }
    return rewritten;
}

}  // namespace

CommandResult magick(BasherAnalysis& analysis, const ModelInput& input) {
    analysis.requirePackage(std::string(package));
    if (asksForHelp(input.args)) return runForHelp(analysis, program, input.args, asksForHelpAlone(input.args));

    std::string tool = "convert";
    Words words = input.args;
    if (isAmong(words.front(), toolNames)) {
        tool = words.front();
        words.erase(words.begin());
    }
    ArgExtractor args(program, ArgExtractor::Style::singleHyphenLongOptions, words);
    args.extractFlagsAndOptions(magickOptions());
    Words operands = args.remainingArgs();
    std::erase_if(operands, [](const std::string& word) { return word.starts_with('+'); });
    for (SideEffect& hazard : magickHazards(words, operands)) analysis.addSideEffect(std::move(hazard));

    if (tool == "identify") return identify(analysis, operands, input.args);
    if (tool == "mogrify") return mogrify(analysis, operands, words);
    return makeImage(analysis, operands);
}

CommandResult runUnderMagick(BasherAnalysis& analysis, const ModelInput& input) {
    input.command.rewriteRule = underMagick;
    Words args = {std::string(input.name)};
    args.insert(args.end(), input.args.begin(), input.args.end());
    return magick(analysis, {program, std::move(args), input.standardInput, input.command});
}

}  // namespace brindlet
