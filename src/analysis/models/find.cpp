#include <algorithm>
#include <iterator>

#include <fmt/format.h>

#include "analysis/doubts.h"
#include "analysis/models/carried_runs.h"
#include "analysis/models/command_carriers.h"
#include "analysis/models/model_support.h"
#include "text/strings.h"

namespace brindlet {

namespace {

using ErrorKind = BasherAnalysisError::Kind;

constexpr std::string_view execActions[] = {"-exec", "-execdir", "-ok", "-okdir"};
constexpr std::string_view wordActions[] = {"-delete", "-ls"};
// They write what is found to a file, and are not handed to the real tool.
constexpr std::string_view filePrinters[] = {"-fprint", "-fprint0", "-fprintf", "-fls"};
// findutils 4.9: words with which the real listing differs from what the line would walk, or says more than paths.
constexpr std::string_view blurringWords[] = {"-files0-from", "-D", "-warn"};
constexpr std::string_view placeholder = "{}";

// An action's words, by position; of an exec action the last is the terminator.
struct Action {
    std::size_t first = 0, last = 0;
};

struct Expression {
    std::vector<Action> actions;
    bool prints = false;
};

bool isTerminator(std::string_view word) {
    return word == ";" || word == "+";
}

// None where an exec action has no end.
std::optional<Expression> readExpression(const Words& words) {
    Expression expression;
    for (std::size_t at = 0; at < words.size(); ++at) {
        const std::string& word = words[at];
        if (isAmong(word, execActions)) {
            const auto behind = words.begin() + static_cast<std::ptrdiff_t>(at) + 1;
            const auto end = std::find_if(behind, words.end(), isTerminator);
            if (end == words.end()) return std::nullopt;
            const auto last = static_cast<std::size_t>(end - words.begin());
            expression.actions.push_back({at, last});
            at = last;
        } else if (isAmong(word, wordActions)) {
            expression.actions.push_back({at, at});
        } else if (word.starts_with("-print")) {
            expression.prints = true;
        }
    }
    return expression;
}

Words withActionReplaced(const Words& words, const Action& action, const Words& replacement) {
    Words replaced(words.begin(), words.begin() + static_cast<std::ptrdiff_t>(action.first));
    replaced.insert(replaced.end(), replacement.begin(), replacement.end());
    replaced.insert(replaced.end(), words.begin() + static_cast<std::ptrdiff_t>(action.last) + 1, words.end());
    return replaced;
}

CommandResult realFind(BasherAnalysis& analysis, const Words& words) {
    return analysis.runRealCommand("find", SimString::known(""), words);
}

CommandResult findIncorrectlyWritten(BasherAnalysis& analysis, std::string technical) {
    return analysis.addCommandError("`find` command incorrectly written", std::move(technical));
}

// --- what the prediction doesn't show ---

// One action of a line, while it is simulated.
struct ActionLine {
    const Words& words;
    Action action;

    const std::string& name() const { return words[action.first]; }
    const std::string& terminator() const { return words[action.last]; }
    bool hasCommand() const { return action.last > action.first + 1; }
    const std::string& command() const { return words[action.first + 1]; }
    Words args() const {
        return Words(words.begin() + static_cast<std::ptrdiff_t>(action.first) + 2,
                     words.begin() + static_cast<std::ptrdiff_t>(action.last));
    }
    bool isExec() const { return isAmong(name(), execActions); }
};

bool mayChangeSomething(const BasherAnalysis& analysis, const ActionLine& line) {
    if (!line.isExec()) return line.name() == "-delete";
    return line.hasCommand() && !commandOnlyReads(analysis, line.command());
}

// A shell would put a home folder in its place, where the real tool gets it as it stands.
bool isHomeWord(std::string_view word) {
    return word == "~" || word.starts_with("~/");
}

// A walk that failed went on all the same, and its action with it: a folder that can't be entered is enough. Without a
// NUL there was no path, only complaints.
bool mayHavePaths(const CommandResult& listing, const Words& words) {
    if (!listing.exitCode || !listing.output.isKnown() || listing.output.text().empty()) return true;
    const auto hasTilde = [](const std::string& word) { return word.starts_with('~'); };
    return contains(listing.output.text(), std::string_view("\0", 1)) ||
           std::any_of(words.begin(), words.end(), hasTilde);
}

// Names that are no text come out as no output at all, like no match.
bool hasUnreadableNames(BasherAnalysis& analysis, const ActionLine& line) {
    const CommandResult probe =
        realFind(analysis, withActionReplaced(line.words, line.action, {"-printf", ".", "-quit"}));
    return probe != CommandResult::success();
}

// A "+" ends the command for the real tool only behind "{}"; else it is one of its words, and the next ";" ends it.
void noteLaterEnd(BasherAnalysis& analysis, const ActionLine& line) {
    if (line.terminator() != "+" || line.words[line.action.last - 1] == placeholder) return;
    const auto behind = line.words.begin() + static_cast<std::ptrdiff_t>(line.action.last) + 1;
    if (std::find(behind, line.words.end(), ";") != line.words.end())
        notePartialSupport(analysis, fmt::format("'find' takes the '+' of {} for a word of its command", line.name()));
}

// -execdir and -okdir run in the folder of each file. That makes no difference to a command that gets paths alone.
bool dependsOnFolder(const ActionLine& line, const Words& paths) {
    if (!line.name().ends_with("dir")) return false;
    const auto isElsewhere = [](std::string_view path) {
        return contains(path.starts_with("./") ? path.substr(2) : path, "/");
    };
    const auto isOtherWord = [](std::string_view arg) {
        const bool isFlag = arg.starts_with('-') && !arg.starts_with("-t") && arg.find_first_of("=/") == arg.npos;
        return !isFlag && !arg.starts_with(placeholder);
    };
    const Words args = line.args();
    return (args.empty() || std::any_of(args.begin(), args.end(), isOtherWord)) &&
           std::any_of(paths.begin(), paths.end(), isElsewhere);
}

void noteUnmodelled(BasherAnalysis& analysis, const ActionLine& line, const Words& paths) {
    for (const std::string_view word : blurringWords)
        if (hasFlag(line.words, word))
            notePartialSupport(analysis, fmt::format("'find' may find other files by {}", word));
    const auto actionBegin = line.words.begin() + static_cast<std::ptrdiff_t>(line.action.first);
    if (std::any_of(line.words.begin(), actionBegin, isHomeWord))
        notePartialSupport(analysis, "'find' may find other files, as '~' stands for itself here");
    noteLaterEnd(analysis, line);
    if (dependsOnFolder(line, paths))
        notePartialSupport(analysis, fmt::format("'find' runs {} in the folder of each file, which isn't shown here",
                                                 quotedForSentence(line.command())));
    if (paths.empty() && hasUnreadableNames(analysis, line))
        noteUnknownChanges(analysis, "'find' may find files whose names can't be read here");
}

// --- the actions ---

// In the order of the listing, which has a folder before what is in it: one that isn't empty yet stays, with an error.
CommandResult deleteEach(BasherAnalysis& analysis, const ModelInput& input, const Words& paths) {
    CarriedRuns runs(analysis, input.command, input.standardInput);
    CommandResult total = CommandResult::success();
    for (const auto& path : paths) {
        const bool isFolder = analysis.isExistingDirectory(analysis.resolveURL(path));
        const CommandResult result = runs.run("rm", isFolder ? Words{"-f", "-d", path} : Words{"-f", path});
        if (result.exitCode != 0) total.exitCode = result.exitCode;
    }
    return total;
}

CommandResult describeEach(BasherAnalysis& analysis, Words paths) {
    analysis.noteSeesOnlyRealFiles("ls");
    paths.insert(paths.begin(), "-dgils");
    return analysis.runRealCommand("ls", SimString::known(""), paths);
}

CommandResult runOnAll(CarriedRuns& runs, BasherAnalysis& analysis, const ActionLine& line, const Words& paths) {
    Words args;
    for (auto& arg : line.args()) {
        checkWordCount(analysis, args.size() + paths.size());
        if (arg == placeholder)
            args.insert(args.end(), paths.begin(), paths.end());
        else
            args.push_back(std::move(arg));
    }
    return runs.run(line.command(), std::move(args));
}

CommandResult execute(BasherAnalysis& analysis, const ModelInput& input, const ActionLine& line, const Words& paths) {
    if (!line.hasCommand()) return findIncorrectlyWritten(analysis, "find: missing command for exec");
    if (paths.empty())
        analysis.addCommandError("Found zero files", "`find` query matched zero files, per-file command may also fail");
    CarriedRuns runs(analysis, input.command, input.standardInput);
    if (line.terminator() == "+") return runOnAll(runs, analysis, line, paths);
    const Words args = line.args();
    for (const auto& path : paths) runs.run(line.command(), filledIn(analysis, args, placeholder, path));
    // POSIX: how the command ends is the value of the action, and not that of the tool.
    if (runs.result().exitCode != 0) analysis.doubtResult("'find' succeeds although its command fails");
    return runs.result();
}

CommandResult act(BasherAnalysis& analysis, const ModelInput& input, const ActionLine& line, const Words& paths) {
    if (line.isExec()) return execute(analysis, input, line, paths);
    return line.name() == "-ls" ? describeEach(analysis, paths) : deleteEach(analysis, input, paths);
}

// Of a listing that failed the result is that of the line, and the action isn't simulated.
void noteWithoutAction(BasherAnalysis& analysis, const ActionLine& line, const CommandResult& listing) {
    if (!mayChangeSomething(analysis, line)) return;
    if (mayHavePaths(listing, line.words))
        noteUnknownChanges(analysis, fmt::format("It can't be told on which files 'find' runs its {}", line.name()));
    noteLaterEnd(analysis, line);
}

}  // namespace

// Wherever in the words these stand: an escape may make one word of two.
bool onlyFinds(const Words& args) {
    constexpr std::string_view actions[] = {"-delete", "-exec", "-ok", "-fprint", "-fls"};
    return std::none_of(args.begin(), args.end(), [&](const std::string& word) {
        return std::any_of(std::begin(actions), std::end(actions), [&](auto action) { return contains(word, action); });
    });
}

CommandResult findFiles(BasherAnalysis& analysis, const ModelInput& input) {
    analysis.noteSeesOnlyRealFiles("find");
    const auto expression = readExpression(input.args);
    if (!expression) return findIncorrectlyWritten(analysis, "find: missing terminator for exec");
    const auto& actions = expression->actions;
    if (actions.size() > 1)
        throw BasherAnalysisError{ErrorKind::simulationError, "find: we don't support multiple actions"};
    if (!actions.empty() && expression->prints)
        throw BasherAnalysisError{ErrorKind::simulationError,
                                  "find: we don't support -print with an additional action"};
    if (hasAnyFlag(input.args, filePrinters)) {
        noteUnknownChanges(analysis, "'find' writes what it finds to a file");
        return CommandResult::unpredictable();
    }
    if (actions.empty()) return realFind(analysis, input.args);

    const ActionLine line{input.args, actions.front()};
    CommandResult listing = realFind(analysis, withActionReplaced(input.args, line.action, {"-print0"}));
    if (listing.exitCode != 0) {
        noteWithoutAction(analysis, line, listing);
        return listing;
    }
    const Words paths = splitNonEmpty(listing.output.text(), std::string_view("\0", 1));
    if (mayChangeSomething(analysis, line)) noteUnmodelled(analysis, line, paths);
    return act(analysis, input, line, paths);
}

}  // namespace brindlet
