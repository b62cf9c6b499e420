#include "exec/command_runner.h"

#include <algorithm>
#include <chrono>
#include <thread>
#include <utility>

#include "exec/file_presenting.h"
#include "exec/output_lines.h"
#include "platform/child_process.h"
#include "platform/log.h"
#include "text/regex.h"
#include "text/strings.h"
#include "text/utf8.h"

namespace brindlet {

namespace {

using Clock = std::chrono::steady_clock;
using namespace std::chrono_literals;

constexpr Clock::duration tickInterval = 250ms;
// How long a reading or a pause may last, and so how late a request to stop may be noticed.
constexpr std::chrono::milliseconds patience = 40ms;
constexpr Clock::duration shortestPause = 200us;
constexpr Clock::duration longestPause = 10ms;
// A child in the background may hold the pipe for as long as it likes.
constexpr Clock::duration longestDrain = 1s;
constexpr Clock::duration gentleEndLimit = 2s;
constexpr Clock::duration lastMoment = 200ms;

// Linux takes no single argument and no single variable of more than this (MAX_ARG_STRLEN, its null byte counted).
constexpr std::size_t longestArgument = std::size_t{128} * 1024 - 1;

// Follows one child from its start to its end, in the calling thread: passes its lines on, ticks, watches for a stop.
class Follower {
  public:
    Follower(ChildProcess& child, LineSplitter::Take onLine, std::function<void(double seconds)> onTick)
        : child_(child), lines_(std::move(onLine)), onTick_(std::move(onTick)) {}

    // The exit status; none if `stop` was requested before the end, and then the whole group has been ended.
    std::optional<int> follow(const std::stop_token& stop) {
        std::optional<int> status;
        Clock::time_point drainEnd = Clock::time_point::max();
        while (!stop.stop_requested()) {
            if (pipeIsOpen_) {
                readOnce();
            } else {
                pauseBriefly();
            }
            tickIfDue();
            if (!status && (status = child_.exitStatus())) drainEnd = Clock::now() + longestDrain;
            if (status && (!pipeIsOpen_ || Clock::now() >= drainEnd)) {
                lines_.finish();
                return status;
            }
        }
        endGroup();
        return std::nullopt;
    }

  private:
    void readOnce() {
        const ReadState state = child_.read(buffer_, std::min(patience, untilNextTick()));
        lines_.feed(buffer_);
        buffer_.clear();
        pipeIsOpen_ = state != ReadState::ended;
    }

    // The pipe is mostly closed by the exit itself, so that the first pauses are short.
    void pauseBriefly() {
        std::this_thread::sleep_for(pause_);
        pause_ = std::min(pause_ * 2, longestPause);
    }

    std::chrono::milliseconds untilNextTick() const {
        if (!onTick_) return patience;
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(nextTick_ - Clock::now());
        return std::max(left, 0ms);
    }

    void tickIfDue() {
        if (!onTick_ || Clock::now() < nextTick_) return;
        onTick_(std::chrono::duration<double>(Clock::now() - start_).count());
        nextTick_ = Clock::now() + tickInterval;
    }

    // Gently, then for good. Bash itself mostly ends at once, and its pipe with it; a tool whose output goes to a file
    // may still be busy making that file whole, and gets a moment for it.
    void endGroup() {
        child_.terminateGroup(true);
        Clock::time_point limit = Clock::now() + gentleEndLimit;
        bool isLastMoment = false;
        while (Clock::now() < limit) {
            if (pipeIsOpen_) {
                pipeIsOpen_ = child_.read(buffer_, patience) != ReadState::ended;
                buffer_.clear();
                continue;
            }
            if (!isLastMoment && child_.exitStatus()) {
                isLastMoment = true;
                limit = std::min(limit, Clock::now() + lastMoment);
            }
            pauseBriefly();
        }
        child_.terminateGroup(false);
        child_.waitForExit();
    }

    ChildProcess& child_;
    LineSplitter lines_;
    std::function<void(double)> onTick_;
    std::string buffer_;
    bool pipeIsOpen_ = true;
    Clock::duration pause_ = shortestPause;
    Clock::time_point start_ = Clock::now();
    Clock::time_point nextTick_ = start_ + tickInterval;
};

// Without a copy where there is nothing to mend: it may be large.
std::string inUtf8(std::string text) {
    return isValidUtf8(text) ? std::move(text) : toValidUtf8(text);
}

CommandRunResult failure(std::string message, int exitCode, std::string output = "") {
    logError(message);
    return {.output = std::move(output), .failureMessage = std::move(message), .exitCode = exitCode};
}

ChildLaunch bashLaunch(const std::string& command, const std::string& searchPath, Environment environment,
                       const std::vector<FilePath>& files, const FilePath& workingDirectory) {
    std::string script = CommandRunner::script(command, searchPath, environment, files, workingDirectory);
    std::string& names = environment["SPACE_SEPARATED_FILE_NAMES"];
    if (script.size() > longestArgument && !contains(command, "SPACE_SEPARATED_FILE_NAMES")) {
        // Thousands of selected files must not keep an "ls" from running that never asks for them.
        names.clear();
        script = CommandRunner::script(command, searchPath, environment, files, workingDirectory);
    }
    // The script sets an array in its place, so that nobody ever sees it.
    if (std::string_view("SPACE_SEPARATED_FILE_NAMES=").size() + names.size() > longestArgument) names.clear();
    // Without it bash asks the system, and so the folder is the one with its links resolved.
    environment.erase("PWD");
    // A variable that was not there at the start would not be passed on to the tools.
    environment.try_emplace("PATH", searchPath);
    return {.arguments = {"/bin/bash", "-c", std::move(script)},
            .folder = workingDirectory,
            .environment = std::move(environment),
            .joinsStandardError = false};
}

void logFileVariables(const Environment& environment) {
    logInfo("Set up environment with:\nFILE_NAME: " + environment.at("FILE_NAME") + "\nFILE_EXTENSION: " +
            environment.at("FILE_EXTENSION") + "\nFILE_BASENAME: " + environment.at("FILE_BASENAME"));
}

}  // namespace

CommandRunner::CommandRunner(ToolSearchPath& searchPath, FilePresenter* presenter, TrackerChooser chooser)
    : searchPath_(searchPath), presenter_(presenter), chooser_(std::move(chooser)) {}

std::optional<CommandRunResult> CommandRunner::run(const std::string& command, const std::vector<FilePath>& files,
                                                   const FilePath& workingDirectory, const Environment& base,
                                                   const std::function<void(std::string_view line)>& onLine,
                                                   const std::function<void(const CommandProgress&)>& onProgress,
                                                   std::stop_token stop) {
    if (stop.stop_requested()) return std::nullopt;
    Environment environment = environmentWithFiles(base, files, workingDirectory);
    if (!files.empty()) logFileVariables(environment);
    const ChildLaunch launch = bashLaunch(command, searchPath_.text(), std::move(environment), files, workingDirectory);
    const std::unique_ptr<ProgressTracker> tracker = chooser_ ? chooser_(command) : nullptr;
    const ProgressTracker::Report report = [&onProgress](const CommandProgress& progress) {
        if (onProgress) onProgress(progress);
    };

    if (stop.stop_requested()) return std::nullopt;
    auto child = ChildProcess::start(launch);
    if (!child) return failure("Error executing command: " + child.failure().description, 1);

    BoundedOutput output;
    const auto takeLine = [&](std::string_view bytes) {
        output.addLine(bytes);
        if (!onLine && !tracker) return;
        const std::string line = toValidUtf8(bytes);
        if (onLine) onLine(line);
        if (tracker) tracker->handleOutputLine(line, report);
    };
    std::function<void(double)> tick;
    if (tracker) tick = [&](double seconds) { tracker->handleElapsed(seconds, report); };

    const std::optional<int> status = Follower(**child, takeLine, tick).follow(stop);
    if (!status || stop.stop_requested()) return std::nullopt;
    std::string text = output.take();
    if (*status != 0) {
        return failure("Command exited with status " + std::to_string(*status) + " - possible error?", *status,
                       inUtf8(std::move(text)));
    }
    const PipelineEnd end = pipelineEnd(command);
    if (end != PipelineEnd::none) return presentPaths(end, text, workingDirectory, presenter_);
    return CommandRunResult{.output = inUtf8(std::move(text)), .failureMessage = "", .exitCode = 0};
}

std::optional<std::string> pureEchoText(std::string_view command) {
    static const Regex pureEcho(
        R"re(^\s*echo(?:\s+-n)?\s+(?:"(?<doubleQuoted>[^"$\\`\n\r]+)"|'(?<singleQuoted>[^'$\\`\n\r]+)')\s*$)re");
    const auto match = pureEcho.find(command);
    if (!match) return std::nullopt;
    const auto doubleQuoted = match->group("doubleQuoted");
    return std::string(trimmed(doubleQuoted ? *doubleQuoted : match->group("singleQuoted").value_or("")));
}

}  // namespace brindlet
