#include "analysis/models/bash_command.h"

#include <algorithm>
#include <string>

#include <fmt/format.h>

#include "analysis/models/model_support.h"
#include "analysis/own_process.h"
#include "shell/basher.h"
#include "shell/printing.h"
#include "shell/reading_guard.h"
#include "text/strings.h"

namespace brindlet {

namespace {

using ErrorKind = BasherAnalysisError::Kind;

constexpr std::string_view acceptedFlags[] = {"", "i", "l", "s"};
constexpr std::string_view startUpFlags[] = {"i", "l"};
constexpr std::string_view spacing = " \t\n;";

// bash 5.2, "Reserved Words", those that are reserved wherever a command may begin. A script of nothing else can run no
// command.
constexpr std::string_view reservedWords[] = {"!",    "case", "do",    "done",     "elif", "else",
                                              "esac", "fi",   "for",   "function", "if",   "select",
                                              "then", "time", "until", "while",    "{",    "}"};

struct Script {
    std::string text;
    Words positional;                     // "0" first
    bool takesOptionsAsOperands = false;  // a real shell does, behind the script
};

void sayPartial(BasherAnalysis& analysis, std::string sentence) {
    analysis.addSideEffect({PlainSideEffect::partialSupport, std::move(sentence)});
}

void sayUnknownScript(BasherAnalysis& analysis, std::optional<std::string> description) {
    analysis.addSideEffect({PlainSideEffect::runningUnknownScript, std::move(description)});
}

CommandResult unknownScript(BasherAnalysis& analysis, std::optional<std::string> description) {
    sayUnknownScript(analysis, std::move(description));
    return CommandResult::unpredictable();
}

// A real shell takes the first word that is no option for the script: behind "-c" the text, else a file. The model
// looks for "-c" and its value wherever they stand.
void noteOtherScripts(BasherAnalysis& analysis, const Words& words, bool hasValue, const Words& operands) {
    const auto option = std::find(words.begin(), words.end(), "-c");
    const auto endsOptions = [](const std::string& word) { return word == "--" || !isFlagCluster(word); };
    if (const auto file = std::find_if(words.begin(), option, endsOptions); file != option)
        sayUnknownScript(analysis, joined(Words(file, words.end()), " "));
    if (option != words.end() && !hasValue && !operands.empty())
        sayUnknownScript(analysis, operands.front() == "--" ? joined(operands, " ") : operands.front());
}

void noteStartUpFiles(BasherAnalysis& analysis, const Words& flags) {
    for (const auto flag : startUpFlags)
        if (hasFlag(flags, flag))
            sayPartial(analysis, fmt::format("'bash -{}' runs the start-up files first, which isn't shown here", flag));
}

// The shell reads the text, not the tree printed back; where the two differ in more than spacing, it may read it
// otherwise than the tree says.
std::string withoutSpacing(std::string text) {
    std::erase_if(text, [](char c) { return spacing.find(c) != std::string_view::npos; });
    return text;
}

void setPositional(BasherAnalysis& analysis, const Script& script) {
    const Words& names = script.positional;
    for (std::size_t at = 0; at < names.size(); ++at) analysis.setVariable(std::to_string(at), names[at]);
    const Words operands(names.begin() + 1, names.end());
    analysis.setVariable("#", std::to_string(operands.size()));
    auto& doubts = analysis.state().doubts;
    if (analysis.variable("?") != "0") doubts.taint("?", {"'$?' is 0 in a new shell, which isn't shown here"});
    if (!operands.empty()) {
        analysis.setVariable("*", joined(operands, " "));
        analysis.setVariable("@", joined(operands, " "));
    }
    if (operands.size() > 1) doubts.taint("@", {"'$@' stands for several words, which are taken for one here"});
    if (!script.takesOptionsAsOperands) return;
    for (const std::string_view name : {"0", "1", "2", "3", "4", "5", "6", "7", "8", "9", "@", "*", "#"})
        doubts.taint(name, {"A shell takes the options behind its script for '$0' and '$1', which isn't shown here"});
}

CommandResult syntaxError(BasherAnalysis& analysis, const std::string& script) {
    const Words words = splitNonEmpty(script, " ");
    if (!std::all_of(words.begin(), words.end(), [](const auto& word) { return isAmong(word, reservedWords); }))
        sayPartial(analysis,
                   "The shell may be able to run " + quotedForSentence(script) + ", which this prediction can't read");
    if (words.empty() || !isAmong(words.front(), reservedWords))
        analysis.doubtResult("A shell may make something of " + quotedForSentence(script));
    return {2, SimString::known(fmt::format("bash: syntax error in command: `{}`", script))};
}

CommandResult runStatements(BasherAnalysis& analysis, const BashStatementList& list) {
    try {
        return analysis.runStatementList(list, SimString::known(""));
    } catch (const BasherAnalysisExpansionError& error) {
        return {1, SimString::known(error.message)};
    }
}

// A line end that closes the text would be a part of its last word.
std::string withoutLastLineEnds(std::string text) {
    while (text.ends_with('\n') && !text.ends_with("\\\n")) text.pop_back();
    return text;
}

void noteReadingDifferences(BasherAnalysis& analysis, const Basher& basher, const std::string& printed) {
    const std::string rest(trimmed(basher.unparsedRemainder()));
    if (!rest.empty()) sayPartial(analysis, quotedForSentence(rest) + " may run too, which isn't shown here");
    if (rest.empty() && withoutSpacing(printed) != withoutSpacing(basher.bashCommand()))
        sayPartial(analysis, "The shell may read " + quotedForSentence(basher.bashCommand()) +
                                 " otherwise than this prediction does");
}

CommandResult runScript(BasherAnalysis& analysis, const Script& script) {
    Basher basher(withoutLastLineEnds(script.text));
    BashStatementList list;
    try {
        list = basher.parse();
    } catch (const BasherError&) {
        return syntaxError(analysis, script.text);
    }
    const std::string printed = print(list);
    noteReadingDifferences(analysis, basher, printed);
    const BasherAnalysis::OwnShell shell(analysis);
    setPositional(analysis, script);
    CommandResult result = runStatements(analysis, list);
    // Behind the simulation, so that a refusal of what could be seen goes first.
    if (auto hazard = readingHazard(list)) throw BasherAnalysisError{ErrorKind::highRisk, *hazard};
    if (print(list) != printed)
        sayPartial(analysis, quotedForSentence(printed) +
                                 " runs inside 'bash' as it is written, without what would make it work in Brindlet");
    return result;
}

}  // namespace

CommandResult runShell(BasherAnalysis& analysis, const ModelInput& input) {
    ArgExtractor args = wordsOf(input);
    const auto option = args.extractOptionsAnywhere({{"-c", 1}});
    const Words values = option ? option->front().args : Words();
    const std::size_t wordsLeft = args.remainingArgs().size();
    const Words flags = args.extractAllFlagsAtStart();
    if (const Words unsupported = allUnsupported(flags, acceptedFlags); !unsupported.empty())
        throw BasherAnalysisError{ErrorKind::simulationError, "bash: unsupported flags: " + joined(unsupported, ", ")};
    const Words& operands = args.remainingArgs();
    if (!option && !hasFlag(flags, "s")) return unknownScript(analysis, joined(operands, " "));
    noteStartUpFiles(analysis, flags);
    if (option) noteOtherScripts(analysis, input.args, !values.empty(), operands);
    if (values.empty() && !input.standardInput.isKnown()) return unknownScript(analysis, std::nullopt);

    Script script{.text = values.empty() ? input.standardInput.text() : values.front(), .positional = operands};
    if (!option || operands.empty()) script.positional.insert(script.positional.begin(), "bash");
    const auto flagWords = static_cast<std::ptrdiff_t>(wordsLeft - operands.size());
    script.takesOptionsAsOperands =
        !values.empty() && flagWords > std::find(input.args.begin(), input.args.end(), "-c") - input.args.begin();
    return runScript(analysis, script);
}

}  // namespace brindlet
