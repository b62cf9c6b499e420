#include "analysis/models/ffmpeg.h"

#include <fmt/format.h>

#include "analysis/models/ffmpeg_arguments.h"
#include "analysis/models/ffmpeg_hazards.h"
#include "analysis/models/model_support.h"

namespace brindlet {

namespace {

constexpr std::string_view ffmpegPackage = "FFmpeg";
constexpr std::string_view gifsiclePackage = "Gifsicle";
// Where a report of all its doings is asked for without any option.
constexpr std::string_view reportVariable = "FFREPORT";

const ArgExtractor::OptionArities gifOptions = {{"lossy", 1}, {"fps", 1}, {"width", 1}};
constexpr std::string_view gifFlags[] = {"h", "help"};
constexpr std::string_view gifHelpWords[] = {"-h", "--help"};

void addAll(BasherAnalysis& analysis, std::vector<SideEffect> sideEffects) {
    for (SideEffect& sideEffect : sideEffects) analysis.addSideEffect(std::move(sideEffect));
}

void noteReport(BasherAnalysis& analysis, std::string_view tool) {
    if (analysis.variable(reportVariable))
        analysis.addSideEffect({PlainSideEffect::unknownFileChanges,
                                fmt::format("{} writes a report where '{}' says", tool, reportVariable)});
}

CommandResult finishedAfterLong(BasherAnalysis& analysis) {
    analysis.addSideEffect({PlainSideEffect::longRunning, std::nullopt});
    return {0, SimString::unknown()};
}

CommandResult convertedAfterLong(BasherAnalysis& analysis, std::string_view tool) {
    analysis.doubtResult(fmt::format("'{}' may fail, since no film is looked into", tool));
    return finishedAfterLong(analysis);
}

std::optional<CommandResult> missingInput(BasherAnalysis& analysis, std::string_view tool, const std::string& path) {
    if (analysis.fileExists(analysis.resolveURL(path))) return std::nullopt;
    return failureInWords(fmt::format("{}: {}: No such file or directory", tool, path));
}

}  // namespace

CommandResult convertMedia(BasherAnalysis& analysis, const ModelInput& input) {
    analysis.requirePackage(std::string(ffmpegPackage));
    FFmpegParsedArguments parsed;
    try {
        parsed = FFmpegArgumentParser::parse(input.args);
    } catch (const FFmpegParseError& error) {
        return analysis.addCommandError("FFmpeg command error", "ffmpeg: " + error.errorDescription());
    }
    noteReport(analysis, "ffmpeg");
    addAll(analysis, ffmpegHazards(input.args, parsed));
    for (const std::string& path : parsed.inputPaths) {
        if (auto failure = missingInput(analysis, "ffmpeg", path)) {
            addAll(analysis, missingInputHazards(input.args, path));
            return *failure;
        }
    }
    for (const std::string& path : parsed.outputPaths)
        analysis.addFileChange(creation(analysis.resolveURL(path)), false);
    return convertedAfterLong(analysis, "ffmpeg");
}

CommandResult probeMedia(BasherAnalysis& analysis, const ModelInput& input) {
    analysis.requirePackage(std::string(ffmpegPackage));
    noteReport(analysis, "ffprobe");
    addAll(analysis, ffprobeHazards(input.args));
    Words others = input.args;
    Words inputs = FFmpegArgumentParser::takeInputs(others);
    for (std::string& word : others)
        if (!word.starts_with('-')) inputs.push_back(std::move(word));
    if (inputs.empty())
        return analysis.addCommandError("ffprobe command incorrectly written", "ffprobe: missing input file");
    const auto missing = [&](const std::string& path) { return missingInput(analysis, "ffprobe", path); };
    if (auto failure = firstFailure(inputs, missing)) {
        // What is missing may be an option's value, such as the "error" of "-v error".
        analysis.doubtResult("'ffprobe' may find an input after all");
        return *failure;
    }
    return finishedAfterLong(analysis);
}

CommandResult makeAnimatedGif(BasherAnalysis& analysis, const ModelInput& input) {
    analysis.requirePackage(std::string(ffmpegPackage));
    analysis.requirePackage(std::string(gifsiclePackage));
    if (input.args.empty() || hasAnyFlag(input.args, gifHelpWords))
        return analysis.runRealCommand(input.name, SimString::known(""), input.args);
    ArgExtractor args = wordsOf(input);
    const Words flags = args.extractFlagsAndOptions(gifOptions).flags;
    if (const auto flag = firstUnsupported(flags, gifFlags))
        return analysis.addCommandError("Unsupported option in GIF command",
                                        fmt::format("{}: unknown option -- {}", input.name, *flag));
    const Words& operands = args.remainingArgs();
    if (operands.size() < 2)
        return analysis.addCommandError("Animated GIF command missing files",
                                        fmt::format("{}: requires input video and output path", input.name));
    const std::string& source = operands[operands.size() - 2];
    if (!analysis.fileExists(analysis.resolveURL(source)))
        return analysis.addCommandError("GIF source doesn’t exist",
                                        fmt::format("{}: {}: No such file or directory", input.name, source));
    analysis.addFileChange(creation(analysis.resolveURL(operands.back())), false);
    return convertedAfterLong(analysis, input.name);
}

}  // namespace brindlet
