// Starts a tool inside the read-only sandbox. What the launcher does with it afterwards is read_only_launcher.cpp.
//
//     auto child = startSandboxed(launch, rules);
//     if (!child) ...  // the folder is not on the disk, a layer of the sandbox didn't hold, ...
#pragma once

#include <sys/types.h>

#include <optional>

#include "platform/linux/file_descriptor.h"
#include "platform/linux/landlock.h"
#include "platform/read_only_launcher.h"

namespace brindlet {

// A running tool, leader of a session and process group of its own. Whoever has it must reap it.
struct SandboxedChild {
    pid_t process = -1;
    FileDescriptor end;    // becomes readable when the tool has ended; empty where the kernel can't say
    FileDescriptor input;  // this process's ends of the tool's streams, not blocking
    FileDescriptor output;
    FileDescriptor
        attempts;  // becomes readable when the tool tries to change something, which waits until it is killed
};

// None where the tool was not launched; nothing is left behind then.
std::optional<SandboxedChild> startSandboxed(const ToolLaunch& launch, const LandlockRuleset& rules);

}  // namespace brindlet
