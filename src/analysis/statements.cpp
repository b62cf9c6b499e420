// Walks the tree as a shell would: lists, chains, pipelines, conditions, loops, assignments and redirects. It knows no
// command; each goes to the dispatcher.
#include <algorithm>

#include "analysis/basher_analysis.h"
#include "analysis/own_process.h"
#include "analysis/unseen.h"
#include "shell/printing.h"
#include "text/overloaded.h"
#include "text/strings.h"
#include "text/utf8.h"

namespace brindlet {

namespace {

using ErrorKind = BasherAnalysisError::Kind;

constexpr std::string_view lastExitVariable = "?";

bool isOutputToFile(const BashRedirect& redirect) {
    return redirect.operatorName != "<" && redirect.targetFilename.has_value();
}

// Sent to a file: what a command prints goes there, unless only another descriptor is sent (`2> log`).
bool takesStandardOutput(const BashRedirect& redirect) {
    return isOutputToFile(redirect) && redirect.sourceFileDescriptor.value_or(1) == 1;
}

const BashRedirect* lastInput(const std::vector<BashRedirect>& redirects) {
    const auto found = std::find_if(redirects.rbegin(), redirects.rend(),
                                    [](const auto& redirect) { return redirect.operatorName == "<"; });
    return found == redirects.rend() ? nullptr : &*found;
}

bool hasPipe(const BashPipeline& pipeline) {
    return std::any_of(pipeline.components.begin(), pipeline.components.end(),
                       [](const auto& component) { return component.followsPipe; });
}

// Its reference in braces becomes the names themselves, as several words, before a shell reads the line.
constexpr std::string_view allFilesVariable = "SPACE_SEPARATED_FILE_NAMES";

bool namesAllFiles(const BashWord& word) {
    return std::any_of(word.elements.begin(), word.elements.end(), [](const auto& element) {
        const auto* reference = std::get_if<VariableReference>(&element);
        return reference != nullptr && reference->hasBraces && reference->name == allFilesVariable;
    });
}

template <class Operator>
std::optional<std::size_t> nextOperator(const BashStatement& statement, std::size_t from) {
    for (std::size_t at = from; at < statement.parts.size(); ++at)
        if (std::holds_alternative<Operator>(statement.parts[at])) return at;
    return std::nullopt;
}

}  // namespace

std::optional<int> BasherAnalysis::lastExitCode() const {
    const auto found = environment_.find(lastExitVariable);
    if (found == environment_.end()) return std::nullopt;
    const auto value = parsedInteger(found->second);
    return value ? std::optional(static_cast<int>(*value)) : std::nullopt;
}

void BasherAnalysis::setLastExitCode(std::optional<int> exitCode) {
    if (exitCode)
        environment_.insert_or_assign(std::string(lastExitVariable), std::to_string(*exitCode));
    else if (auto found = environment_.find(lastExitVariable); found != environment_.end())
        environment_.erase(found);
}

CommandResult BasherAnalysis::runStatementList(const BashStatementList& list, const SimString& standardInput) {
    SimString output = runBody(list, standardInput).output;
    return {lastExitCode(), std::move(output)};
}

// Each statement in turn, whatever the one before gave.
CommandResult BasherAnalysis::runBody(const BashStatementList& list, const SimString& standardInput) {
    SimString output = SimString::known("");
    for (const auto& statement : list.statements) {
        output += runStatement(statement, standardInput).output;
        if (output.isKnown() && output.text().size() > services_.limits.textBytes) output = SimString::unknown();
    }
    return {lastExitCode(), std::move(output)};
}

CommandResult BasherAnalysis::runStatement(const BashStatement& statement, SimString standardInput) {
    const Depth depth(*this);
    if (statement.runInBackground) addSideEffect({PlainSideEffect::runsInBackground, std::nullopt});
    CommandResult result = CommandResult::success();
    for (std::size_t at = 0; at < statement.parts.size(); ++at) {
        const auto& part = statement.parts[at];
        if (std::holds_alternative<And>(part)) {
            noteUnseenAfter(statement, at, result.exitCode);
            if (result.exitCode != 0) return result;
            continue;
        }
        if (std::holds_alternative<Or>(part)) {
            noteUnseenAfter(statement, at, result.exitCode);
            if (result.exitCode == 0) return result;
            continue;
        }
        if (const auto* list = std::get_if<Redirects>(&part)) {
            try {
                applyOutputRedirects(list->redirects);
            } catch (const BasherAnalysisExpansionError& error) {
                return {1, SimString::known(error.message)};
            }
            if (std::any_of(list->redirects.begin(), list->redirects.end(), isOutputToFile))
                result.output = SimString::known("");
            continue;
        }
        if (at + 1 < statement.parts.size())
            if (const auto* list = std::get_if<Redirects>(&statement.parts[at + 1]))
                if (const auto* input = lastInput(list->redirects)) standardInput = readInputRedirect(*input).output;
        CommandResult partResult = runPart(part, standardInput);
        result.exitCode = partResult.exitCode;
        result.output += partResult.output;
    }
    setLastExitCode(result.exitCode);
    return result;
}

// A chain ends here for the simulation where a shell goes on, or may: behind the next operator of the other kind, or at
// once where the exit code can't be relied on.
void BasherAnalysis::noteUnseenAfter(const BashStatement& statement, std::size_t at, std::optional<int> exitCode) {
    const bool isAnd = std::holds_alternative<And>(statement.parts[at]);
    const bool stops = isAnd ? exitCode != 0 : exitCode == 0;
    if (!stops) return;
    if (isInDoubt(exitCode)) {
        if (mayChangeSomething(statement, at + 1, services_.commands)) noteUnseen(printedFrom(statement, at + 1));
        return;
    }
    const auto next = isAnd ? nextOperator<Or>(statement, at) : nextOperator<And>(statement, at);
    if (next) noteUnseen(printedFrom(statement, *next + 1));
}

void BasherAnalysis::noteUnseenBody(const BashStatementList& list) {
    if (mayChangeSomething(list, services_.commands)) noteUnseen(print(list));
}

CommandResult BasherAnalysis::runPart(const BashStatementPart& part, const SimString& standardInput) {
    const BashStatementPart::variant& cases = part;
    return std::visit(Overloaded{
                          [&](const BashPipeline& pipeline) {
                              carriedDoubts_.clear();
                              isSuccessGuessed_ = false;
                              return runPipeline(pipeline, standardInput);
                          },
                          [&](const BashIfStatement& statement) { return runIfStatement(statement, standardInput); },
                          [&](const BashForLoop& loop) { return runForLoop(loop, standardInput); },
                          [&](const BashWhileLoop& loop) { return runWhileLoop(loop, standardInput); },
                          [](const Redirects&) { return CommandResult::success(); },
                          [](const And&) { return CommandResult::success(); },
                          [](const Or&) { return CommandResult::success(); },
                      },
                      cases);
}

CommandResult BasherAnalysis::runIfStatement(const BashIfStatement& statement, const SimString& standardInput) {
    CommandResult result = CommandResult::success();
    bool isDecided = false, isInDoubt = false;
    for (const auto& branch : statement.branches) {
        if (isDecided) {  // passed over, but not for certain
            noteUnseenBody(branch.innerStatementList);
            continue;
        }
        const auto exitCode = runStatement(branch.condition, standardInput).exitCode;
        isInDoubt = this->isInDoubt(exitCode);
        if (exitCode == 0) {
            result = runStatementList(branch.innerStatementList, standardInput);
            isDecided = true;
            if (!isInDoubt) break;
        } else if (isInDoubt) {
            noteUnseenBody(branch.innerStatementList);
        }
    }
    if (statement.elseBranch) {
        if (!isDecided)
            result = runStatementList(*statement.elseBranch, standardInput);
        else if (isInDoubt)
            noteUnseenBody(*statement.elseBranch);
    }
    setLastExitCode(result.exitCode);
    return result;
}

CommandResult BasherAnalysis::runForLoop(const BashForLoop& loop, const SimString& standardInput) {
    const auto before = variable(loop.variableName);
    const auto items = expandWords(loop.iterableList);
    if (!items) throw BasherAnalysisError{ErrorKind::simulationError, "Can not analyse unknown items in for loop"};
    const auto itemDoubts = state_->doubts.take();
    if (items->empty() && !itemDoubts.empty()) noteUnseenBody(loop.innerStatementList);
    CommandResult result = CommandResult::success();
    for (const auto& item : *items) {
        countCommand();
        setVariable(loop.variableName, item);
        state_->doubts.taint(loop.variableName, itemDoubts);
        result.output += runBody(loop.innerStatementList, standardInput).output;
        result.exitCode = lastExitCode();
    }
    if (before)
        setVariable(loop.variableName, *before);
    else
        unsetVariable(loop.variableName);
    if (!items->empty())
        state_->doubts.taint(loop.variableName, {"A shell keeps the last value of '$" + loop.variableName +
                                                 "' behind its loop, which isn't shown here"});
    setLastExitCode(result.exitCode);
    return result;
}

CommandResult BasherAnalysis::runWhileLoop(const BashWhileLoop& loop, const SimString& standardInput) {
    SimString output = SimString::known("");
    std::optional<CommandResult> body;
    for (int count = 1;; ++count) {
        countCommand();
        const CommandResult condition = runStatement(loop.condition, standardInput);
        output += condition.output;
        if (condition.exitCode != 0) {
            if (isInDoubt(condition.exitCode)) noteUnseenBody(loop.innerStatementList);
            const auto exitCode = body ? body->exitCode : condition.exitCode;
            setLastExitCode(exitCode);
            return {exitCode, std::move(output)};
        }
        body = runBody(loop.innerStatementList, standardInput);
        output += body->output;
        if (count == maxWhileLoopIterations)
            throw BasherAnalysisError{ErrorKind::simulationError, "While loop exceeded safe iteration limit"};
    }
}

CommandResult BasherAnalysis::runPipeline(const BashPipeline& pipeline, const SimString& standardInput) {
    const Depth depth(*this);
    const bool isPiped = hasPipe(pipeline);
    SimString current = standardInput;
    for (std::size_t at = 0; at < pipeline.components.size(); ++at) {
        const auto& component = pipeline.components[at];
        std::optional<OwnProcess> process;
        if (isPiped || std::holds_alternative<NestedPipeline>(component)) process.emplace(*this);
        CommandResult result;
        try {
            result = runComponent(component, current);
        } catch (const BasherAnalysisExpansionError& error) {
            result = {1, SimString::known(error.message)};
        }
        current = std::move(result.output);
        setLastExitCode(result.exitCode);
        noteOwnAssignment(pipeline, at);
    }
    return {lastExitCode(), std::move(current)};
}

// `A=1 make`: for a shell the value belongs to that command alone, and its own words don't see it yet.
void BasherAnalysis::noteOwnAssignment(const BashPipeline& pipeline, std::size_t at) {
    const auto* assignment = std::get_if<Assignment>(&pipeline.components[at]);
    if (assignment == nullptr) return;
    const bool isFollowed = at + 1 < pipeline.components.size() && !pipeline.components[at + 1].followsPipe;
    // `IFS= read line` leaves the splitting of the rest as it was.
    if (steersTheShell(assignment->name) && !(isFollowed && assignment->name == "IFS"))
        state_->doubts.raiseForTheRest("Setting '" + assignment->name +
                                       "' changes how the rest of the line works, which isn't shown here");
    if (isFollowed)
        state_->doubts.taint(assignment->name,
                             {"'" + assignment->name + "' is set for one command alone, which isn't shown here"});
}

CommandResult BasherAnalysis::runComponent(const BashPipelineComponent& component, const SimString& standardInput) {
    const BashPipelineComponent::variant& cases = component;
    return std::visit(Overloaded{
                          [&](const BashCommand& command) { return runSimpleCommand(command, standardInput); },
                          [&](const Assignment& assignment) { return assign(assignment); },
                          [&](const ArithmeticExpression& arithmetic) {
                              countCommand();
                              return CommandResult{evaluateArithmetic(arithmetic.text).exitCode, SimString::known("")};
                          },
                          [&](const NestedPipeline& nested) { return runPipeline(nested.pipeline, standardInput); },
                      },
                      cases);
}

// An empty or unknown value leaves the variable as it was, and a value that splits leaves its first word.
CommandResult BasherAnalysis::assign(const Assignment& assignment) {
    countCommand();
    if (namesAllFiles(assignment.value) && contains(variable(allFilesVariable).value_or(""), "\" \""))
        throw BasherAnalysisError{ErrorKind::highRisk,
                                  "The shell would take the second of the selected files for a command to run"};
    auto& doubts = state_->doubts;
    const auto values = expandWords({assignment.value});
    auto sentences = doubts.take();
    const bool hasValue = values && !values->empty() && !values->front().empty();
    const bool wasEmpty = variable(assignment.name).value_or("").empty();
    if (!values || (values->size() > 1) || (!hasValue && !wasEmpty))
        sentences.push_back("'" + assignment.name + "' may have another value than shown here");
    if (hasValue) setVariable(assignment.name, values->front());
    doubts.taint(assignment.name, std::move(sentences));
    return CommandResult::success();
}

CommandResult BasherAnalysis::runSimpleCommand(const BashCommand& command, const SimString& standardInput) {
    auto& doubts = state_->doubts;
    doubts.take();
    auto carried = std::exchange(carriedDoubts_, {});  // from the parts of the pipe before this one
    const auto names = expandWords({command.command});
    if (!names || names->empty() || names->front().empty())
        throw BasherAnalysisError{ErrorKind::simulationError, "Can not analyse command with unknown name"};
    noteDoubts(doubts.take());
    auto args = expandWords(command.arguments);
    if (!args) throw BasherAnalysisError{ErrorKind::simulationError, "Can not analyse command with unknown arguments"};
    SimString input = standardInput;
    if (const auto* redirect = lastInput(command.redirects)) {
        CommandResult read = readInputRedirect(*redirect);
        if (read.exitCode != 0) {
            noteEmptiedBefore(command.redirects, *redirect);
            settleDoubts(names->front(), *args, std::move(carried));
            return read;
        }
        input = std::move(read.output);
    }
    settleDoubts(names->front(), *args, std::move(carried));
    auto own = std::exchange(carriedDoubts_, {});
    isEmptyNameUsed_ = false;
    CommandResult result = runCommand(names->front(), std::move(*args), std::move(input), command);
    isSuccessGuessed_ = result.exitCode == 0 && !result.output.isKnown();
    carriedDoubts_.insert(carriedDoubts_.begin(), own.begin(), own.end());
    if (std::exchange(isEmptyNameUsed_, false) && !onlyReads(names->front()))
        noteDoubts({"An empty name stands for the current folder here, and for nothing in a shell"});
    applyOutputRedirects(command.redirects);
    if (std::any_of(command.redirects.begin(), command.redirects.end(), takesStandardOutput))
        result.output = SimString::known("");
    return result;
}

// What is in doubt about a command's words and input is said where something could happen to them; what only reads
// hands it on with its output and its exit code.
void BasherAnalysis::settleDoubts(std::string_view name, const std::vector<std::string>& args,
                                  std::vector<std::string> carried) {
    const CommandRow* row = services_.commands.find(name);
    const bool onlyReadsNow = row != nullptr && row->onlyReadsWith != nullptr && row->onlyReadsWith(args);
    const bool handsAllOn = onlyReads(name) || (onlyReadsNow && state_->doubts.concernEscapesAlone());
    auto sentences = state_->doubts.take();
    if (handsAllOn || onlyReadsNow) carriedDoubts_ = carried;
    if (handsAllOn) {
        carriedDoubts_.insert(carriedDoubts_.begin(), sentences.begin(), sentences.end());
        return;
    }
    if (!onlyReadsNow) sentences.insert(sentences.end(), carried.begin(), carried.end());
    const auto& lasting = state_->doubts.forTheRest();
    sentences.insert(sentences.end(), lasting.begin(), lasting.end());
    noteDoubts(std::move(sentences));
}

// A shell opens the files of redirects in their order, so one that stands before a missing input is emptied all the
// same.
void BasherAnalysis::noteEmptiedBefore(const std::vector<BashRedirect>& redirects, const BashRedirect& failing) {
    for (const auto& redirect : redirects) {
        if (&redirect == &failing) return;
        if (isOutputToFile(redirect))
            noteDoubts({"'" + print(redirect) + "' may write its file although the command fails, which isn't shown"});
    }
}

void BasherAnalysis::applyOutputRedirects(const std::vector<BashRedirect>& redirects) {
    using ChangeType = FileChange::FileChangeType;
    for (const auto& redirect : redirects) {
        if (!isOutputToFile(redirect)) continue;
        const auto targets = expandedTokens({*redirect.targetFilename}, "");
        noteDoubts(state_->doubts.take());
        noteDoubts(state_->doubts.forTheRest());
        if (!targets || targets->empty() || targets->front().empty()) {
            addSideEffect({PlainSideEffect::unknownFileChanges, "Outputs to an unknown file"});
            continue;
        }
        if (targets->size() > 1) noteDoubts({quotedForSentence(print(redirect)) + " names more than one file"});
        const FilePath url = resolveURL(targets->front());
        if (redirect.operatorName == ">>" && fileExists(url))
            addFileChange({ChangeType::modify, url, std::nullopt}, std::nullopt);
        else
            addFileChange({ChangeType::create, url, std::nullopt}, false);
    }
}

CommandResult BasherAnalysis::readInputRedirect(const BashRedirect& redirect) {
    if (!redirect.targetFilename) return CommandResult::unpredictable();
    std::optional<std::string> name;
    try {
        name = expandWord(*redirect.targetFilename);
    } catch (const BasherAnalysisExpansionError& error) {
        return {1, SimString::known(error.message)};
    }
    if (!name) return CommandResult::unpredictable();
    const FilePath url = resolveURL(*name);
    const FileHistory& history = fileHistory(url);
    if (!history.exists()) return {1, SimString::known("bash: " + *name + ": No such file or directory")};
    if (!history.isUnchangedOriginal()) return CommandResult::unpredictable();
    auto content = files().readFile(url, services_.limits.textBytes);
    if (!content) throw BasherAnalysisFailure{content.failure().description};
    if (!isValidUtf8(*content))
        throw BasherAnalysisFailure{"The file " + quotedForSentence(*name) +
                                    " can't be read, since it is no UTF-8 text"};
    return {0, SimString::known(std::move(*content))};
}

}  // namespace brindlet
