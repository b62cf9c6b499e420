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
// Where Homebrew really lies on Linux (docs.brew.sh/Homebrew-on-Linux).
constexpr std::string_view linuxHomebrewFolder = "/home/linuxbrew/.linuxbrew/bin";
// Below a folder of binaries: those whose name the system's own folders may hold for a program that does another job.
constexpr std::string_view overridesName = "overrides";
constexpr std::string_view systemFolders[] = {"/usr/bin", "/bin", "/usr/sbin", "/sbin", "/usr/local/bin"};

// What a start file may take before the answer is done without. A prediction may be waiting.
constexpr Clock::duration longestProbe = 5s;
constexpr Clock::duration probeFarewell = 300ms;
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
    std::string output;
    ReadState state = ReadState::timedOut;
    const auto hasEndedWithin = [&](Clock::duration time) {
        const Clock::time_point limit = Clock::now() + time;
        while (Clock::now() < limit && output.size() < mostProbeBytes) {
            const bool hadExited = shell.exitStatus().has_value();
            if (state == ReadState::ended) {
                std::this_thread::sleep_for(1ms);
            } else {
                state = shell.read(output, probePatience);
            }
            if (hadExited && state != ReadState::bytes) return true;
        }
        return false;
    };
    if (hasEndedWithin(longestProbe)) return output;
    // What a start file waits for gets the time to take its lock files away; the shell itself may then go on.
    shell.terminateGroup(true);
    if (hasEndedWithin(probeFarewell)) return output;
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

ToolSearchPath::ToolSearchPath(FileSystem& files, FilePath packagesFolder, std::vector<FilePath> binariesFolders,
                               Environment environment)
    : files_(files),
      packagesFolder_(std::move(packagesFolder)),
      binariesFolders_(std::move(binariesFolders)),
      environment_(std::move(environment)) {}

void ToolSearchPath::appendIfThere(std::vector<std::string>& folders, const FilePath& folder) {
    if (files_.look(folder) == ItemKind::folder) folders.push_back(folder.text());
}

// What stands before the login shell's own folders.
std::vector<std::string> ToolSearchPath::leadingFolders() {
    std::vector<std::string> folders{std::string(homebrewFolder)};
    appendIfThere(folders, FilePath(linuxHomebrewFolder));
    appendIfThere(folders, packagesFolder_);
    for (const FilePath& folder : binariesFolders_) appendIfThere(folders, folder.child(overridesName));
    return folders;
}

std::vector<std::string> ToolSearchPath::trailingFolders() {
    std::vector<std::string> folders(std::begin(systemFolders), std::end(systemFolders));
    for (const FilePath& folder : binariesFolders_) appendIfThere(folders, folder);
    return folders;
}

std::vector<std::string> ToolSearchPath::folders() {
    std::vector<std::string> folders = leadingFolders();
    {
        const std::lock_guard lock(loginShellGuard_);
        if (!loginShellPath_) loginShellPath_ = loginShellPath(environment_);
        folders.insert(folders.end(), loginShellPath_->begin(), loginShellPath_->end());
    }
    const std::vector<std::string> trailing = trailingFolders();
    folders.insert(folders.end(), trailing.begin(), trailing.end());
    return withoutDuplicates(folders);
}

std::string ToolSearchPath::text() {
    return joined(folders(), ":");
}

bool ToolSearchPath::holds(std::string_view tool) {
    return findIn(leadingFolders(), tool) || findIn(trailingFolders(), tool) || find(tool);
}

std::optional<FilePath> ToolSearchPath::find(std::string_view tool) {
    return findIn(folders(), tool);
}

std::optional<FilePath> ToolSearchPath::findIn(const std::vector<std::string>& folders, std::string_view tool) {
    for (const std::string& folder : folders) {
        if (!folder.starts_with('/')) continue;  // against which folder would it be taken?
        FilePath path = FilePath(folder).child(tool);
        if (files_.isExecutableFile(path)) return path;
    }
    return std::nullopt;
}

}  // namespace brindlet
