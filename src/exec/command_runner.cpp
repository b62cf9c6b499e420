#include "exec/command_runner.h"

#include <utility>

#include "exec/child_follower.h"
#include "exec/file_presenting.h"
#include "exec/output_lines.h"
#include "platform/child_process.h"
#include "platform/log.h"
#include "text/regex.h"
#include "text/strings.h"
#include "text/utf8.h"

namespace brindlet {

namespace {

// Linux takes no single argument and no single variable of more than this (MAX_ARG_STRLEN, its null byte counted).
constexpr std::size_t longestArgument = std::size_t{128} * 1024 - 1;

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

void CommandRunner::divertOverwrittenLines(std::function<void(std::string_view line)> onOverwrittenLine) {
    onOverwrittenLine_ = std::move(onOverwrittenLine);
}

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
    const auto takeLine = [&](std::string_view bytes, const std::function<void(std::string_view)>& receiver) {
        output.addLine(bytes);
        if (!receiver && !tracker) return;
        const std::string line = toValidUtf8(bytes);
        if (tracker) tracker->handleOutputLine(line, report);
        if (receiver) receiver(line);
    };
    std::function<void(double)> tick;
    if (tracker) tick = [&](double seconds) { tracker->handleElapsed(seconds, report); };

    ChildFollower follower(
        **child, [&](std::string_view bytes) { takeLine(bytes, onLine); }, tick);
    if (onOverwrittenLine_)
        follower.divertOverwritten([&](std::string_view bytes) { takeLine(bytes, onOverwrittenLine_); });
    const std::optional<int> status = follower.follow(stop);
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
