#include <algorithm>

#include <fmt/format.h>

#include "analysis/doubts.h"
#include "analysis/models/carried_runs.h"
#include "analysis/models/command_carriers.h"
#include "analysis/models/xargs_plan.h"
#include "text/strings.h"

namespace brindlet {

namespace {

const ArgExtractor::OptionArities valueOptions = {{"E", 1}, {"I", 1}, {"L", 1}, {"n", 1}};
constexpr std::string_view acceptedFlags[] = {"0"};

// They take each name by itself, so that it makes no difference in which groups they get them.
constexpr std::string_view oneByOneCommands[] = {"gunzip", "gzip", "mkdir", "rm", "rmdir", "touch", "trash", "unlink"};

CommandResult incorrectlyWritten(BasherAnalysis& analysis, std::string technical) {
    return analysis.addCommandError("Command incorrectly written", std::move(technical));
}

// The value of -L or -n; says so where it is no count.
std::optional<CommandResult> readCount(BasherAnalysis& analysis, std::string_view option, const std::string& value,
                                       std::optional<std::size_t>& count) {
    const auto number = parsedInteger(value);
    if (!number || *number < 1)
        return incorrectlyWritten(analysis, fmt::format("xargs: -{} value must be positive: {}", option, value));
    count = static_cast<std::size_t>(*number);
    return std::nullopt;
}

// Reads the line as the simulation has it; of -I, -L and -n the first in this order counts.
std::optional<CommandResult> readOptions(BasherAnalysis& analysis, const ModelInput& input, XargsOptions& options) {
    ArgExtractor args = wordsOf(input);
    const auto read = args.extractFlagsAndOptions(valueOptions);
    if (const Words unsupported = allUnsupported(read.flags, acceptedFlags); !unsupported.empty())
        return incorrectlyWritten(analysis, "xargs: unsupported flags: " + joined(unsupported, ", "));
    options.isNulDelimited = read.hasFlag("0");
    options.endText = read.value("E");
    options.replaceText = read.value("I");
    if (!args.remainingArgs().empty()) options.command = args.remainingArgs();
    if (options.replaceText) return std::nullopt;
    if (const auto value = read.value("L")) return readCount(analysis, "L", *value, options.lineCount);
    if (const auto value = read.value("n")) return readCount(analysis, "n", *value, options.wordCount);
    return std::nullopt;
}

Words allWords(const std::vector<Words>& groups) {
    Words words;
    for (const auto& group : groups) words.insert(words.end(), group.begin(), group.end());
    return words;
}

// Whether the real tool runs what the simulation runs, or nothing at all.
bool isAsSimulated(const XargsPlan& simulated, const XargsPlan& real) {
    if (real.groups.empty()) return true;
    // The real tool replaces nothing in the command's name.
    if (real.replaceText && contains(real.command.front(), *real.replaceText)) return false;
    if (simulated == real) return true;
    return simulated.command == real.command && !simulated.replaceText && !real.replaceText &&
           isAmong(real.command.front(), oneByOneCommands) && allWords(simulated.groups) == allWords(real.groups);
}

void noteOtherReading(BasherAnalysis& analysis, const ModelInput& input, const XargsPlan& simulated) {
    const auto options = realOptions(input.args);
    const std::string& name = options ? options->command.front() : simulated.command.front();
    if (commandOnlyReads(analysis, name)) return;
    const auto real = options ? realPlan(*options, input.standardInput.text()) : std::nullopt;
    if (real && isAsSimulated(simulated, *real)) return;
    analysis.addSideEffect(
        {PlainSideEffect::partialSupport,
         fmt::format("'xargs' reads its input in its own way, so {} may get other words than shown here",
                     quotedForSentence(name))});
}

// What the command gets is unknown, and nothing of it is simulated.
CommandResult runOnUnknownWords(BasherAnalysis& analysis, const ModelInput& input) {
    const auto options = realOptions(input.args);
    const std::string name = options ? options->command.front() : "xargs";
    if (!commandOnlyReads(analysis, name))
        noteUnknownChanges(analysis, fmt::format("{} gets words that can't be foretold", quotedForSentence(name)));
    analysis.doubtResult("'xargs' is taken to succeed");
    return {0, SimString::unknown()};
}

CommandResult runPlan(BasherAnalysis& analysis, const ModelInput& input, const XargsPlan& plan) {
    CarriedRuns runs(analysis, input.command, SimString::known(""));
    for (const auto& group : plan.groups) {
        Words words;
        if (plan.replaceText) {
            words = filledIn(analysis, plan.command, *plan.replaceText, group.front());
        } else {
            checkWordCount(analysis, plan.command.size() + group.size());
            words = plan.command;
            words.insert(words.end(), group.begin(), group.end());
        }
        const std::string name = std::move(words.front());
        words.erase(words.begin());
        runs.run(name, std::move(words));
    }
    return runs.result();
}

}  // namespace

CommandResult runOnInputWords(BasherAnalysis& analysis, const ModelInput& input) {
    if (!input.standardInput.isKnown()) return runOnUnknownWords(analysis, input);
    XargsOptions options;
    if (auto failure = readOptions(analysis, input, options)) return *failure;
    const XargsPlan plan = simulatedPlan(options, input.standardInput.text());
    noteOtherReading(analysis, input, plan);
    return runPlan(analysis, input, plan);
}

}  // namespace brindlet
