#include "exec/tool_search_path.h"

#include <algorithm>
#include <chrono>
#include <thread>
#include <utility>

#include "platform/child_process.h"
#include "text/strings.h"

namespace brindlet {

namespace {

using Clock = std::chrono::steady_clock;
using namespace std::chrono_literals;

constexpr std::string_view mark = "___BrindletPath___";
constexpr std::string_view defaultShell = "/bin/zsh";
constexpr std::string_view homebrewFolder = "/opt/homebrew/bin";
constexpr std::string_view systemFolders[] = {"/usr/bin", "/bin", "/usr/sbin", "/sbin", "/usr/local/bin"};

// What a start file may take before the answer is done without. A prediction may be waiting.
constexpr Clock::duration longestProbe = 5s;
constexpr std::size_t mostProbeBytes = std::size_t{4} << 20;
constexpr std::chrono::milliseconds probePatience = 20ms;

std::string valueOf(const Environment& environment, std::string_view name) {
    const auto found = environment.find(name);
    return found == environment.end() ? "" : found->second;
}

std::optional<std::string> loginShell(const Environment& environment) {
    const auto files = openFileSystem();
    const std::string preferred = valueOf(environment, "SHELL");
    for (const std::string_view shell : {std::string_view(preferred), defaultShell})
        if (shell.starts_with('/') && files->isExecutableFile(FilePath(shell))) return std::string(shell);
    return std::nullopt;
}

// All that the shell prints until it ends. One that has not ended when it has had its time or its share is ended with
// its whole group; what a start file left in the background lives on, and may even keep the pipe open: with the shell
// gone, a pipe with nothing in it has said all.
std::string outputWithinLimits(ChildProcess& shell) {
    const Clock::time_point limit = Clock::now() + longestProbe;
    std::string output;
    ReadState state = ReadState::timedOut;
    while (Clock::now() < limit && output.size() < mostProbeBytes) {
        const bool hadExited = shell.exitStatus().has_value();
        if (state == ReadState::ended) {
            std::this_thread::sleep_for(1ms);
        } else {
            state = shell.read(output, probePatience);
        }
        if (hadExited && state != ReadState::bytes) return output;
    }
    shell.terminateGroup(false);
    shell.waitForExit();
    return output;
}

std::string askedShell(const std::string& shell, const Environment& environment) {
    // An interactive shell without a terminal complains on standard error, where nobody wants to read it.
    const auto child =
        ChildProcess::start({.arguments = {"/bin/sh", "-c", "exec \"$@\" 2>/dev/null", "sh", shell, "-l", "-i", "-c",
                                           "printf '%s\\n' \"___BrindletPath___\" \"$PATH\" \"___BrindletPath___\""},
                             .folder = FilePath(),
                             .environment = environment,
                             .joinsStandardError = false});
    return child ? outputWithinLimits(**child) : "";
}

// The folders between the two marks; none where a mark is missing.
std::vector<std::string> markedFolders(std::string_view output) {
    const std::vector<std::string> lines = split(output, "\n");
    const auto first = std::find(lines.begin(), lines.end(), mark);
    if (first == lines.end() || std::find(first + 1, lines.end(), mark) == lines.end()) return {};
    return *(first + 1) == mark ? std::vector<std::string>{} : splitNonEmpty(*(first + 1), ":");
}

std::vector<std::string> withoutDuplicates(const std::vector<std::string>& folders) {
    std::vector<std::string> unique;
    for (const std::string& folder : folders)
        if (std::find(unique.begin(), unique.end(), folder) == unique.end()) unique.push_back(folder);
    return unique;
}

}  // namespace

std::vector<std::string> loginShellPath(const Environment& environment) {
    std::vector<std::string> folders;
    if (const auto shell = loginShell(environment)) folders = markedFolders(askedShell(*shell, environment));
    return folders.empty() ? splitNonEmpty(valueOf(environment, "PATH"), ":") : folders;
}

ToolSearchPath::ToolSearchPath(FileSystem& files, FilePath packagesFolder, FilePath binariesFolder,
                               Environment environment)
    : files_(files),
      packagesFolder_(std::move(packagesFolder)),
      binariesFolder_(std::move(binariesFolder)),
      environment_(std::move(environment)) {}

std::string ToolSearchPath::text() {
    std::vector<std::string> folders{std::string(homebrewFolder)};
    const auto appendIfThere = [&](const FilePath& folder) {
        if (files_.look(folder) == ItemKind::folder) folders.push_back(folder.text());
    };
    appendIfThere(packagesFolder_);
    {
        const std::lock_guard lock(loginShellGuard_);
        if (!loginShellPath_) loginShellPath_ = loginShellPath(environment_);
        folders.insert(folders.end(), loginShellPath_->begin(), loginShellPath_->end());
    }
    folders.insert(folders.end(), std::begin(systemFolders), std::end(systemFolders));
    appendIfThere(binariesFolder_);
    return joined(withoutDuplicates(folders), ":");
}

}  // namespace brindlet
