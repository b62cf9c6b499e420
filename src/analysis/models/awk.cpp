#include <algorithm>

#include <fmt/format.h>

#include "analysis/models/awk_program.h"
#include "analysis/models/filter_support.h"
#include "analysis/models/text_filters.h"
#include "text/regex.h"

namespace brindlet {

namespace {

// The options of gawk 5.2 that only bear on how a program is read, or set its variables. mawk has fewer.
constexpr ToolOption plainOptions[] = {{'F', "field-separator", Takes::value},
                                       {'v', "assign", Takes::value},
                                       {'b', "characters-as-bytes"},
                                       {'c', "traditional"},
                                       {'h', "help"},
                                       {'k', "csv"},
                                       {'M', "bignum"},
                                       {'n', "non-decimal-data"},
                                       {'N', "use-lc-numeric"},
                                       {'O', "optimize"},
                                       {'P', "posix"},
                                       {'r', "re-interval"},
                                       {'s', "no-optimize"},
                                       {'S', "sandbox"},
                                       {'V', "version"}};

struct RefusedFeature {
    Regex pattern;
    std::string_view name;
};
const RefusedFeature refusedFeatures[] = {
    {Regex(R"(>>)"), "append redirection (>>)"},
    {Regex(R"(>\s*"[^"]*")"), "output redirection to quoted filename"},
    {Regex(R"(>\s*'[^']*')"), "output redirection to single-quoted filename"},
    {Regex(R"(>\s*[a-zA-Z_\/][a-zA-Z0-9_\/.]*)"), "output redirection to filename"},
    {Regex(R"(system\s*\()"), "system() function call"},
    {Regex(R"(getline[^\n]*<)"), "getline with file input"},
    {Regex(R"(close\s*\()"), "close() function call"},
    {Regex(R"(fflush\s*\()"), "fflush() function call"},
};

void refuseFeatures(const std::string& program) {
    for (const auto& [pattern, name] : refusedFeatures)
        if (pattern.matches(program))
            throw BasherAnalysisError{BasherAnalysisError::Kind::highRisk,
                                      fmt::format("awk inline program contains dangerous feature: {}", name)};
}

// The program and the options as the real tool takes them, which stops at the first operand.
void noteHazards(BasherAnalysis& analysis, const Words& words) {
    const ToolReading reading = readAsTool(words, plainOptions, OptionsStand::beforeOperands);
    const auto note = [&](std::string_view what) {
        analysis.addSideEffect(
            {PlainSideEffect::unknownFileChanges, fmt::format("'awk' may do more with {} than is shown here", what)});
    };
    const auto unknown = std::ranges::find(reading.options, false, &ToolReading::Option::isKnown);
    if (unknown != reading.options.end())
        note(unknown->letter != 0 ? fmt::format("'-{}'", unknown->letter) : fmt::format("'--{}'", unknown->name));
    if (reading.operands.empty()) return;
    if (const auto hazard = awkHazard(reading.operands.front())) note(*hazard);
}

}  // namespace

bool onlyPrintsFields(const Words& args) {
    const ToolReading reading = readAsTool(args, plainOptions, OptionsStand::beforeOperands);
    return reading.knowsAll() && !reading.operands.empty() && !awkHazard(reading.operands.front());
}

CommandResult processFields(BasherAnalysis& analysis, const ModelInput& input) {
    ArgExtractor args = wordsOf(input);
    const auto taken = args.extractFlagsAndOptions({{"F", 1}, {"f", 1}, {"v", 1}, {"W", 1}, {"m", 1}});
    if (const auto script = taken.value("f")) {
        analysis.addSideEffect({PlainSideEffect::runningUnknownScript, *script});
        return CommandResult::unpredictable();
    }
    const auto program = args.extractFirst();
    if (!program)
        return analysis.addCommandError("Text processing command incorrectly written", "awk: missing program");
    refuseFeatures(*program);
    noteHazards(analysis, input.args);

    const Words& operands = args.remainingArgs();
    if (operands.empty()) return saidIfStopped(analysis, input, filterInput(analysis, input));
    doubtUnreadInput(analysis, input, operands);
    const auto check = [&](const std::string& path) -> std::optional<CommandResult> {
        if (!isThere(analysis, "awk", path))
            return analysis.addCommandError("Text processing source doesn't exist",
                                            fmt::format("awk: {}: No such file or directory", path));
        if (!isUnchanged(analysis, path)) return CommandResult::unpredictable();
        return std::nullopt;
    };
    if (const auto end = firstFailure(realFilesAmong(operands), check)) return *end;
    return saidIfStopped(analysis, input, analysis.runRealCommand("awk", SimString::known(""), input.args));
}

}  // namespace brindlet
