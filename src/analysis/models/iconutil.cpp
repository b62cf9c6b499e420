#include <algorithm>

#include <fmt/format.h>

#include "analysis/doubts.h"
#include "analysis/models/image_support.h"
#include "analysis/models/image_tools.h"
#include "text/characters.h"

namespace brindlet {

namespace {

using Options = ArgExtractor::FlagsAndOptions;
using Failure = std::optional<CommandError>;

constexpr std::string_view iconutilHelpWords[] = {"-h", "--help"};
const ArgExtractor::OptionArities iconutilValueOptions = {{"c", 1}, {"convert", 1}, {"o", 1}, {"output", 1}};
constexpr std::string_view conversions[] = {"icns", "iconset"};
constexpr std::string_view unsupportedConversion = "Icon utility: unsupported conversion";

// Each step of the reading fills in its part, or says what is wrong.
struct IconutilTask {
    std::string conversion;  // "icns" or "iconset"
    std::optional<std::string> output;
    std::string input;
    std::optional<std::string> iconName;

    bool makesFolder() const { return conversion == "iconset"; }
};

CommandError incorrectlyWritten(std::string technical) {
    return {"Icon utility command incorrectly written", "iconutil: " + std::move(technical)};
}

CommandError error(std::string_view friendly, std::string technical) {
    return {std::string(friendly), "iconutil: " + std::move(technical)};
}

Failure unsupportedFlag(const Words& flags) {
    if (flags.empty()) return std::nullopt;
    const std::string& flag = flags.front();
    return incorrectlyWritten(fmt::format("unsupported option {}{}", characterCount(flag) == 1 ? "-" : "--", flag));
}

Failure missingValue(const Options& options, std::string_view name) {
    const auto found = options.options.find(name);
    if (found == options.options.end() || !found->second.empty()) return std::nullopt;
    return incorrectlyWritten(fmt::format("option requires an argument -- {}", name));
}

Failure readConversion(const Options& options, IconutilTask& task) {
    for (const auto name : {"c", "convert"})
        if (auto failure = missingValue(options, name)) return failure;
    const auto shortOne = options.value("c"), longOne = options.value("convert");
    if (!shortOne && !longOne) return incorrectlyWritten("missing -c {icns|iconset}");
    const std::string value = shortOne ? *shortOne : *longOne;
    task.conversion = lowercased(value);
    if (shortOne && longOne && lowercased(*longOne) != task.conversion)
        return incorrectlyWritten("conflicting conversion types supplied");
    if (!isAmong(task.conversion, conversions))
        return error(unsupportedConversion, fmt::format("unknown conversion type '{}'", value));
    return std::nullopt;
}

Failure readOutput(BasherAnalysis& analysis, const Options& options, IconutilTask& task) {
    for (const auto name : {"o", "output"})
        if (auto failure = missingValue(options, name)) return failure;
    const auto shortOne = options.value("o"), longOne = options.value("output");
    const auto canonical = [&](const std::string& path) { return lowercased(analysis.resolveURL(path).text()); };
    if (shortOne && longOne && canonical(*shortOne) != canonical(*longOne))
        return incorrectlyWritten("duplicate output specified");
    task.output = shortOne ? shortOne : longOne;
    return std::nullopt;
}

Failure readOperands(const Words& operands, IconutilTask& task) {
    if (operands.empty()) return incorrectlyWritten("missing input file");
    if (operands.size() > 2) return incorrectlyWritten(fmt::format("unexpected extra argument '{}'", operands[2]));
    task.input = operands[0];
    if (operands.size() == 2) task.iconName = operands[1];
    return std::nullopt;
}

// Whether the input is what its extension says and can become what is asked for.
Failure unfitInput(BasherAnalysis& analysis, const FilePath& url, const IconutilTask& task) {
    const std::string extension = lowercased(pathExtension(url.text()));
    const bool isDirectory = analysis.isDirectory(url);
    if (extension == "car") {
        if (task.iconName) return std::nullopt;
        return error("Icon utility: missing icon name", "extracting from .car requires icon-name argument");
    }
    if (!isAmong(extension, conversions))
        return error("Icon utility: unsupported input", fmt::format("unsupported source type '{}'", extension));
    if (extension == "iconset" && !isDirectory)
        return error("Icon utility: input isn't a folder", fmt::format("{} is not a .iconset directory", task.input));
    if (extension == "icns" && isDirectory)
        return error("Icon utility: input isn't a file", fmt::format("{} is a directory", task.input));
    if (extension == task.conversion)
        return error(unsupportedConversion, fmt::format("cannot convert {} to {}", extension, task.conversion));
    if (task.iconName) return incorrectlyWritten(fmt::format("extra argument '{}'", *task.iconName));
    return std::nullopt;
}

FilePath outputURL(BasherAnalysis& analysis, const FilePath& input, const IconutilTask& task) {
    if (task.output) return analysis.resolveURL(*task.output);
    const std::string name = task.iconName ? *task.iconName : std::string(pathBaseName(input.text()));
    return FilePath(fmt::format("{}/{}.{}", input.parent().text(), name, task.conversion));
}

Failure clash(BasherAnalysis& analysis, const FilePath& output, const IconutilTask& task) {
    if (!analysis.fileExists(output) || analysis.isDirectory(output) == task.makesFolder()) return std::nullopt;
    if (task.makesFolder())
        return error("Icon utility: output clash with file",
                     fmt::format("output path '{}' is not a directory", output.name()));
    return error("Icon utility: output clashes with folder",
                 fmt::format("output path '{}' is a directory", output.name()));
}

Failure readTask(BasherAnalysis& analysis, const ModelInput& input, IconutilTask& task) {
    if (input.args.empty()) return incorrectlyWritten("missing arguments");
    ArgExtractor args = wordsOf(input);
    const Options options = args.extractFlagsAndOptions(iconutilValueOptions);
    if (auto failure = unsupportedFlag(options.flags)) return failure;
    if (auto failure = readConversion(options, task)) return failure;
    if (auto failure = readOutput(analysis, options, task)) return failure;
    if (auto failure = readOperands(args.remainingArgs(), task)) return failure;
    const FilePath url = analysis.resolveURL(task.input);
    if (!analysis.fileExists(url))
        return error(fmt::format("Icon utility: {} doesn't exist", url.name()),
                     fmt::format("{}: No such file or directory", task.input));
    return std::nullopt;
}

CommandResult failed(BasherAnalysis& analysis, const CommandError& failure) {
    return analysis.addCommandError(failure.friendly, failure.technical);
}

}  // namespace

CommandResult iconutil(BasherAnalysis& analysis, const ModelInput& input) {
    if (hasAnyFlag(input.args, iconutilHelpWords)) return runForHelp(analysis, "iconutil", input.args);
    IconutilTask task;
    if (const auto failure = readTask(analysis, input, task)) return failed(analysis, *failure);

    const FilePath source = analysis.resolveURL(task.input);
    const FilePath output = outputURL(analysis, source, task);
    if (!analysis.fileHistory(source).isUnchangedOriginal()) {
        if (analysis.fileExists(output))
            noteUnknownChanges(analysis, fmt::format("iconutil may overwrite {}", quotedForSentence(output.name())));
        return CommandResult::unpredictable();
    }
    if (const auto failure = unfitInput(analysis, source, task)) return failed(analysis, *failure);
    if (const auto failure = clash(analysis, output, task)) return failed(analysis, *failure);
    analysis.addFileChange(creation(output), task.makesFolder(), true);
    noteMayFail(analysis, "iconutil");
    return CommandResult::success();
}

}  // namespace brindlet
