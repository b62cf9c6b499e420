#include "analysis/basher_analysis.h"

#include <algorithm>

#include "analysis/spliced_names.h"
#include "platform/log.h"
#include "shell/printing.h"
#include "shell/reading_guard.h"
#include "text/strings.h"
#include "text/utf8.h"

namespace brindlet {

namespace {

using ErrorKind = BasherAnalysisError::Kind;

constexpr std::string_view pathVariable = "PATH";

SimString joinedOutput(const SimString& before, const SimString& stdOut) {
    if (!before.isKnown()) return before;
    if (before.text().empty()) return stdOut;
    return before + SimString::known("\n") + stdOut;
}

}  // namespace

BasherAnalysis::BasherAnalysis(Basher basher, const FilePath& currentDirectory, Environment environment,
                               std::shared_ptr<BasherAnalysisState> state, const AnalysisServices& services)
    : basher_(std::move(basher)), environment_(std::move(environment)), state_(std::move(state)), services_(services) {
    environment_["HOME"] = services_.home.text();
    environment_["PWD"] = currentDirectory.text();
}

AnalysisResult BasherAnalysis::analyse() {
    AnalysisResult result;
    if (trimmed(basher_.bashCommand()).empty()) return result;

    const BashStatementList list = basher_.parse();
    if (const auto rest = basher_.unparsedRemainder(); !rest.empty())
        logInfo("Warning: Unparsed remaining input: " + std::string(rest));
    CommandResult end;
    try {
        end = runStatementList(list, SimString::known(""));
        // Behind the simulation, so that a refusal of what could be seen goes first.
        if (auto hazard = readingHazard(list)) throw BasherAnalysisError{ErrorKind::highRisk, *hazard};
        if (auto hazard = splicedNamesHazard(list, variable("SPACE_SEPARATED_FILE_NAMES").value_or("")))
            throw BasherAnalysisError{ErrorKind::highRisk, *hazard};
    } catch (const BasherAnalysisError& error) {
        result.output = SimString::unknown();
        result.analysisError = error;
        result.requiredPackages = state_->requiredPackages;
        result.rewrittenCommand = basher_.bashCommand();
        return result;
    }
    std::vector<FilePath> unsaid;
    result.changes = state_->overlay.changes(&unsaid);
    noteRenamesToInvisible(result.changes);
    if (!unsaid.empty()) {
        const FilePath& first = *std::min_element(unsaid.begin(), unsaid.end());
        const std::string others = unsaid.size() == 1 ? "" : " and " + std::to_string(unsaid.size() - 1) + " more";
        noteDoubts({quotedForSentence(first.name()) + others + " would go with a folder that is deleted here"});
    }
    for (const auto& twin : state_->overlay.caseTwins()) noteDoubts({twin});
    state_->output = joinedOutput(state_->output, end.output);
    result.exitCode = end.exitCode;
    result.output = state_->output;
    result.sideEffects = state_->sideEffects;
    result.commandErrors = state_->commandErrors;
    result.requiredPackages = state_->requiredPackages;
    result.rewrittenCommand = print(list);
    return result;
}

void BasherAnalysis::noteRenamesToInvisible(const std::vector<PredictedChange>& changes) {
    for (const auto& [change, isDirectory] : changes) {
        if (!change.sourceURL) continue;
        const std::string oldName(change.sourceURL->name()), newName(change.url.name());
        if (oldName.starts_with('.') || !newName.starts_with('.')) continue;
        addSideEffect({PlainSideEffect::renameToInvisible,
                       "Renames " + oldName + " to " + newName + ", with '.' making it invisible"});
    }
}

FilePath BasherAnalysis::resolveURL(std::string_view path) {
    if (path.empty()) {
        isEmptyNameUsed_ = true;
        return currentDirectoryURL();
    }
    return FilePath::resolve(expandedTilde(path, services_.home), currentDirectoryURL());
}

FilePath BasherAnalysis::currentDirectoryURL() const {
    return FilePath(environment_.find("PWD")->second);
}

FileHistory& BasherAnalysis::fileHistory(const FilePath& url) {
    return state_->overlay.history(url);
}

bool BasherAnalysis::isExistingDirectory(const FilePath& url) {
    const FileHistory& history = fileHistory(url);
    return history.exists() && history.isDirectory();
}

bool BasherAnalysis::isDirectoryEmpty(const FilePath& url) {
    return state_->overlay.isDirectoryEmpty(url);
}

void BasherAnalysis::addFileChange(const FileChange& change, std::optional<bool> isDirectory,
                                   bool createParentDirectories) {
    state_->overlay.addFileChange(change, isDirectory, createParentDirectories, currentDirectoryURL());
}

void BasherAnalysis::addSideEffect(SideEffect sideEffect) {
    auto& all = state_->sideEffects;
    if (std::find(all.begin(), all.end(), sideEffect) == all.end()) all.push_back(std::move(sideEffect));
}

CommandResult BasherAnalysis::addCommandError(std::string friendly, std::string technical) {
    SimString output = SimString::known(technical);
    state_->commandErrors.push_back({std::move(friendly), std::move(technical)});
    return {1, std::move(output)};
}

void BasherAnalysis::noteSeesOnlyRealFiles(std::string_view commandName) {
    if (!state_->overlay.hasChangesOtherThanModifications()) return;
    addSideEffect({PlainSideEffect::filesChangedBeforeReadingFiles,
                   "'" + std::string(commandName) + "' sees only real files, not interim simulated changes"});
}

CommandResult BasherAnalysis::runRealCommand(std::string_view name, const SimString& standardInput,
                                             const std::vector<std::string>& args) {
    const auto isHome = [](const std::string& arg) { return arg == "~" || arg.starts_with("~/"); };
    if (std::any_of(args.begin(), args.end(), isHome))
        doubtResult("A shell puts the home folder for '~', which '" + std::string(name) + "' doesn't see here");
    if (++state_->toolsLaunched > services_.limits.launches) return CommandResult::unpredictable();
    learnSearchPath();
    ToolLaunch launch;
    launch.arguments = {std::string(name)};
    launch.arguments.insert(launch.arguments.end(), args.begin(), args.end());
    if (standardInput.isKnown()) launch.standardInput = standardInput.text();
    launch.folder = currentDirectoryURL();
    launch.environment = environment_;
    ToolOutcome outcome = services_.launcher.run(launch);
    if (!outcome.exitCode) return CommandResult::unpredictable();
    if (!isValidUtf8(outcome.output)) outcome.output.clear();
    return {outcome.exitCode, SimString::known(std::move(outcome.output))};
}

// The login shell is slow to ask, and most lines need no PATH.
void BasherAnalysis::learnSearchPath() const {
    if (isPathLearnt_) return;
    isPathLearnt_ = true;
    const std::string searchPath = services_.toolSearchPath ? services_.toolSearchPath() : std::string();
    environment_[std::string(pathVariable)] = searchPath;
    pathPrefixes_.emplace();
    for (const auto& part : splitNonEmpty(searchPath, ":")) {
        std::string folder = expandedTilde(part, services_.home);
        if (folder.back() != '/') folder += '/';
        pathPrefixes_->push_back(std::move(folder));
    }
}

const std::vector<std::string>& BasherAnalysis::currentPathPrefixes() {
    learnSearchPath();
    return *pathPrefixes_;
}

bool BasherAnalysis::isOnSearchPath(std::string_view name) {
    const auto& prefixes = currentPathPrefixes();
    return std::any_of(prefixes.begin(), prefixes.end(), [&](const std::string& folder) {
        return files().isExecutableFile(FilePath::resolve(folder + std::string(name), FilePath()));
    });
}

std::optional<std::string> BasherAnalysis::variable(std::string_view name) const {
    if (name == pathVariable) learnSearchPath();
    const auto found = environment_.find(name);
    if (found == environment_.end()) return std::nullopt;
    return found->second;
}

void BasherAnalysis::setVariable(std::string_view name, std::string value) {
    if (name == pathVariable) learnSearchPath();
    state_->doubts.trust(name);
    assignedNames_.emplace_back(name);
    environment_.insert_or_assign(std::string(name), std::move(value));
}

void BasherAnalysis::unsetVariable(std::string_view name) {
    state_->doubts.trust(name);
    assignedNames_.emplace_back(name);
    if (auto found = environment_.find(name); found != environment_.end()) environment_.erase(found);
}

void BasherAnalysis::countCommand() {
    if (++state_->commandsRun > services_.limits.commands)
        throw BasherAnalysisError{ErrorKind::simulationError, "The line runs more than " +
                                                                  std::to_string(services_.limits.commands) +
                                                                  " commands, which is too many to simulate"};
    if (std::chrono::steady_clock::now() - state_->start > services_.limits.time)
        throw BasherAnalysisError{ErrorKind::simulationError, "The line takes too long to simulate"};
}

void BasherAnalysis::checkSize(std::size_t bytes) const {
    if (bytes > services_.limits.textBytes)
        throw BasherAnalysisError{ErrorKind::simulationError, "The line makes a text that is too long to simulate"};
}

bool BasherAnalysis::onlyReads(std::string_view name) const {
    const CommandRow* row = services_.commands.find(name);
    return row != nullptr && row->reach == Reach::onlyReads;
}

void BasherAnalysis::noteDoubts(std::vector<std::string> sentences) {
    for (auto& sentence : sentences) addSideEffect({PlainSideEffect::unknownFileChanges, std::move(sentence)});
}

void BasherAnalysis::noteUnseen(const std::string& text) {
    addSideEffect({PlainSideEffect::partialSupport, quotedForSentence(text) + " may run too, which isn't shown here"});
}

}  // namespace brindlet
