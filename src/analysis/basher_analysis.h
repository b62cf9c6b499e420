// Answers one question before a line of bash runs: what will it do? Parses the line, walks the tree with a model for
// each command, and hands back the predicted changes, side effects, errors, exit code and output. Nothing is changed
// on disk.
//
//     auto state = std::make_shared<BasherAnalysisState>(files);
//     BasherAnalysis analysis(Basher("mv a b"), folder, environment, state, services);
//     AnalysisResult result = analysis.analyse();  // throws BasherError for a line that does not parse
//
// One analysis runs from start to end on one thread.
#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

#include "analysis/analysis_result.h"
#include "analysis/command_table.h"
#include "analysis/doubts.h"
#include "analysis/file_history.h"
#include "analysis/overlay.h"
#include "glob/pattern.h"
#include "platform/environment.h"
#include "platform/file_system.h"
#include "platform/read_only_launcher.h"
#include "shell/basher.h"

namespace brindlet {

// A failed expansion that a shell reports and survives: whoever runs the failing piece turns it into exit code 1.
struct BasherAnalysisExpansionError {
    std::string message;
};

// Any other trouble that ends an analysis, such as a file that can't be read as text: leaves `analyse` as it is.
struct BasherAnalysisFailure {
    std::string message;
};

// How much one analysis may do before it ends in a simulationError.
struct AnalysisLimits {
    std::size_t commands = 100'000;            // simulated commands and loop passes, in all
    std::size_t depth = 250;                   // substitutions, groups, shells within shells
    std::size_t textBytes = 16 * 1024 * 1024;  // of one expanded text or output
    std::size_t textBytesInAll = 256 * 1024 * 1024;
    std::size_t words = 1'000'000;  // of one expanded command
    std::chrono::seconds time{30};
    std::size_t launches = 2'000;  // of real tools; past it their results are unknown
};

// What the simulation asks of its surroundings; all of it outlives the analysis.
struct AnalysisServices {
    FileSystem& files;
    ReadOnlyLauncher& launcher;
    const CommandTable& commands;
    // The colon-separated folders in which the real run looks tools up. Asked only when something needs it.
    std::function<std::string()> toolSearchPath;
    FilePath home;
    AnalysisLimits limits = {};
};

// Shared by all analyses of one request, one per selected file when a command fans out: a later one sees what the
// earlier ones did, and the result of the last carries everything.
struct BasherAnalysisState {
    explicit BasherAnalysisState(FileSystem& files) : overlay(files) {}

    Overlay overlay;
    std::vector<SideEffect> sideEffects;
    std::vector<CommandError> commandErrors;
    std::set<std::string> requiredPackages;
    SimString output = SimString::known("");  // of the analyses so far
    Doubts doubts;
    std::size_t commandsRun = 0;  // against AnalysisLimits::commands
    std::size_t toolsLaunched = 0;
    std::size_t bytesExpanded = 0;
    std::chrono::steady_clock::time_point start = std::chrono::steady_clock::now();
};

class BasherAnalysis {
  public:
    static constexpr int maxWhileLoopIterations = 100;

    // `environment` is that of the real run. HOME and PWD are set over it.
    BasherAnalysis(Basher basher, const FilePath& currentDirectory, Environment environment,
                   std::shared_ptr<BasherAnalysisState> state, const AnalysisServices& services);

    AnalysisResult analyse();

    // --- what the core offers the models ---

    // An empty path is the current directory; else a leading tilde is expanded and the path taken against it.
    FilePath resolveURL(std::string_view path);
    FilePath currentDirectoryURL() const;

    FileHistory& fileHistory(const FilePath& url);
    bool fileExists(const FilePath& url) { return fileHistory(url).exists(); }
    bool isDirectory(const FilePath& url) { return fileHistory(url).isDirectory(); }
    bool isExistingDirectory(const FilePath& url);
    // Simulated emptiness; the path must exist and be a directory.
    bool isDirectoryEmpty(const FilePath& url);

    void addFileChange(const FileChange& change, std::optional<bool> isDirectory, bool createParentDirectories = false);
    void addSideEffect(SideEffect sideEffect);  // unless an equal one is there
    CommandResult addCommandError(std::string friendly, std::string technical);
    // For a model whose exit code a real tool may contradict: what the line does on its account is then said to be
    // open.
    void doubtResult(std::string sentence) { carriedDoubts_.push_back(std::move(sentence)); }
    void requirePackage(std::string name) { state_->requiredPackages.insert(std::move(name)); }

    // For a real process or a read of the real disk, which cannot see the overlay.
    void noteSeesOnlyRealFiles(std::string_view commandName);
    // Launches a real tool, read-only, in the simulated current directory. Unknown, with no exit code, where nothing
    // can be said. An unknown standard input writes nothing.
    CommandResult runRealCommand(std::string_view name, const SimString& standardInput,
                                 const std::vector<std::string>& args);

    // Runs a command by name: a path, a row of the table, or a name that is neither. Models that carry other commands
    // come back through here.
    CommandResult runCommand(std::string_view name, std::vector<std::string> args, SimString standardInput,
                             const BashCommand& command);
    // The same for a command that another carries (find -exec, xargs): one level deeper, and in a process of its own.
    CommandResult runCarriedCommand(std::string_view name, std::vector<std::string> args, SimString standardInput,
                                    const BashCommand& command);
    const BashCommand& currentCommand() const { return *currentCommand_; }

    // A shell within the line, as of `bash -c`, for as long as the object lives (own_process.h).
    class OwnShell;

    // Shell variables. Setting one clears what was in doubt about it.
    std::optional<std::string> variable(std::string_view name) const;
    void setVariable(std::string_view name, std::string value);
    void unsetVariable(std::string_view name);

    FileSystem& files() { return services_.files; }
    const AnalysisServices& services() const { return services_; }
    BasherAnalysisState& state() { return *state_; }
    // The search path as folders, each ending in "/".
    const std::vector<std::string>& currentPathPrefixes();
    // Whether a folder of the search path holds an executable file of that name (a look at the real disk).
    bool isOnSearchPath(std::string_view name);

    // --- expansion (word_expansion.cpp) ---

    // The words as plain argument strings; none if a word cannot be known.
    std::optional<std::vector<std::string>> expandWords(const std::vector<BashWord>& words);
    std::optional<std::string> expandWord(const BashWord& word);
    std::optional<std::string> expandElement(const BashWordElement& element);
    std::string expandParameter(const std::string& name, const ParameterOperation& operation);
    std::vector<std::string> expandGlob(const std::string& token);

    // --- statements (statements.cpp) ---

    CommandResult runStatementList(const BashStatementList& list, const SimString& standardInput);
    CommandResult runStatement(const BashStatement& statement, SimString standardInput);
    CommandResult runPipeline(const BashPipeline& pipeline, const SimString& standardInput);

    // --- arithmetic (arithmetic.cpp) ---

    struct ArithmeticResult {
        int exitCode = 0;  // 0 where the value is not 0
        std::string value;
    };
    ArithmeticResult evaluateArithmetic(const std::string& text);

  private:
    // One level of recursion, and what a part that a shell runs in a process of its own must not leave behind.
    class Depth;
    class OwnProcess;

    void learnSearchPath() const;
    void noteRenamesToInvisible(const std::vector<PredictedChange>& changes);
    void countCommand();
    void checkSize(std::size_t bytes) const;
    void noteDoubts(std::vector<std::string> sentences);
    void settleDoubts(std::string_view name, const std::vector<std::string>& args, std::vector<std::string> carried);
    void noteUnseen(const std::string& text);
    void noteUnseenAfter(const BashStatement& statement, std::size_t at, std::optional<int> exitCode);
    // Whether a shell may come to another exit code than the last one here.
    bool isInDoubt(std::optional<int> exitCode) const {
        return !exitCode || (exitCode == 0 && isSuccessGuessed_) || !carriedDoubts_.empty();
    }
    void noteUnseenBody(const BashStatementList& list);
    void noteOwnAssignment(const BashPipeline& pipeline, std::size_t at);
    void noteEmptiedBefore(const std::vector<BashRedirect>& redirects, const BashRedirect& failing);
    void noteStaleNames(const Pattern& pattern, const FilePath& folder, const std::vector<std::string>& matches,
                        const std::unordered_set<std::string_view>& gone);
    bool onlyReads(std::string_view name) const;

    std::vector<BashWord> braceVariants(const BashWord& word) const;
    std::optional<std::string> expandElement(const BashWordElement& element, bool isInDoubleQuotes);
    std::optional<std::string> expandElements(const std::vector<BashWordElement>& elements, bool isInDoubleQuotes);
    std::optional<std::string> expandSubstitution(const BashPipeline& pipeline, bool isInDoubleQuotes);
    std::string expandVariable(const VariableReference& reference, bool isInDoubleQuotes);
    std::optional<std::vector<std::string>> expandedTokens(const std::vector<BashWord>& words,
                                                           std::string_view separator);
    std::vector<std::string> matchingNames(const Pattern& pattern, const FilePath& folder,
                                           const std::vector<std::string>& real);

    CommandResult runPart(const BashStatementPart& part, const SimString& standardInput);
    CommandResult runIfStatement(const BashIfStatement& statement, const SimString& standardInput);
    CommandResult runForLoop(const BashForLoop& loop, const SimString& standardInput);
    CommandResult runWhileLoop(const BashWhileLoop& loop, const SimString& standardInput);
    CommandResult runBody(const BashStatementList& list, const SimString& standardInput);
    CommandResult runComponent(const BashPipelineComponent& component, const SimString& standardInput);
    CommandResult runSimpleCommand(const BashCommand& command, const SimString& standardInput);
    CommandResult assign(const Assignment& assignment);
    void applyOutputRedirects(const std::vector<BashRedirect>& redirects);
    CommandResult readInputRedirect(const BashRedirect& redirect);
    std::optional<int> lastExitCode() const;
    void setLastExitCode(std::optional<int> exitCode);

    std::int64_t evaluateOperand(const std::string& text) const;
    std::optional<std::int64_t> evaluateExpression(const std::string& text, const std::string& whole) const;

    Basher basher_;
    mutable Environment environment_;  // PATH is asked for late
    mutable std::optional<std::vector<std::string>> pathPrefixes_;
    mutable bool isPathLearnt_ = false;
    std::shared_ptr<BasherAnalysisState> state_;
    const AnalysisServices& services_;
    const BashCommand* currentCommand_ = nullptr;
    std::size_t depth_ = 0;
    std::vector<std::string> carriedDoubts_;  // about what the last pipeline printed, of commands that only read
    bool isSuccessGuessed_ = false;           // of the last command that ran: exit 0, and nobody knows what it prints
    bool isEmptyNameUsed_ = false;            // by the command that runs, for the current folder
    std::vector<std::string> assignedNames_;  // in order; what a process of its own has set is read off its end
};

}  // namespace brindlet
