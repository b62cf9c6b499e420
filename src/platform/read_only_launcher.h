// Launches a real tool where it can only read: the one way in which a prediction starts a process.
//
// The child runs under a seccomp filter and, where the kernel has it, Landlock: it can change no name, mode, owner,
// time or content, open no socket, signal no one. A refused call fails with EROFS.
//
//     ToolOutcome wc = launcher.run({.arguments = {"wc", "-l"}, .standardInput = "a\n", .folder = here, ...});
//     if (!wc.exitCode) ...  // nothing can be said of it
#pragma once

#include <chrono>
#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/environment.h"
#include "platform/file_path.h"

namespace brindlet {

struct ToolLaunch {
    std::vector<std::string> arguments{};  // the tool's name or path, then its words
    std::string standardInput{};           // written to a pipe, which is then closed; never a terminal
    FilePath folder{};                     // the current folder
    Environment environment{};             // PATH in it is where the tool is looked for
};

struct ToolOutcome {
    // None where nothing can be said: it tried to write, ran past a limit, was ended by a signal, or was not launched
    // at all (no sandbox, the folder is not on the disk).
    std::optional<int> exitCode{};
    std::string output{};  // standard output and standard error as they came; only good where exitCode is there
};

struct LaunchLimits {
    std::chrono::milliseconds wallClock{10'000};
    std::size_t outputBytes = 16 * 1024 * 1024;
    int stopDescriptor = -1;  // once it can be read, no tool is waited for any more; -1: none
};

struct ReadOnlyLauncher {
    virtual ~ReadOnlyLauncher() = default;

    // Launches "/usr/bin/env" with the arguments and waits, for no longer than the limits. Never throws.
    virtual ToolOutcome run(const ToolLaunch& launch) = 0;

    // Which layers hold, for --version: such as "seccomp, Landlock 7"; "none" where nothing is launched.
    virtual std::string layers() const = 0;
};

std::unique_ptr<ReadOnlyLauncher> openReadOnlyLauncher(LaunchLimits limits = {});

}  // namespace brindlet
