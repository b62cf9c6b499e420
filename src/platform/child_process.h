// A child process with its standard output (and whatever else the command sends there) on a pipe, in a process group
// of its own, so that it can be ended with all its children.
//
//     auto child = ChildProcess::start({.arguments = {"/bin/bash", "-c", script}, .folder = here});
//     if (!child) return child.failure();
//     while (auto bytes = (*child)->read(100ms)) ...
//     int status = (*child)->waitForExit();
#pragma once

#include <chrono>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/environment.h"
#include "platform/file_path.h"
#include "platform/result.h"

namespace brindlet {

struct ChildLaunch {
    std::vector<std::string> arguments{};  // the executable's path first
    FilePath folder{};
    Environment environment{};
    bool joinsStandardError = false;  // true: standard error goes to the same pipe; false: it is this process's own
};

enum class ReadState { bytes, timedOut, ended };

class ChildProcess {
  public:
    virtual ~ChildProcess() = default;

    // Standard input is /dev/null. The failure's sentence says what the system said.
    static Result<std::unique_ptr<ChildProcess>> start(const ChildLaunch& launch);

    // Appends what the pipe holds to `buffer`, waiting up to `patience` for the first byte.
    virtual ReadState read(std::string& buffer, std::chrono::milliseconds patience) = 0;

    // The exit status once the child has ended, a signal's number plus 128 as shells have it; none while it runs.
    virtual std::optional<int> exitStatus() = 0;
    virtual int waitForExit() = 0;

    // Sends SIGTERM (gentle) or SIGKILL to the whole group. No-op once the child has been reaped.
    virtual void terminateGroup(bool gently) = 0;
};

}  // namespace brindlet
