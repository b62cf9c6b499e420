// Landlock, the lower layer of the read-only sandbox: a set of rights that a process gives up for good.
//
//     LandlockRuleset rules = openReadOnlyRuleset();
//     if (rules.version > 0) ...  // in the child: landlock_restrict_self(rules.file.number(), 0)
#pragma once

#include "platform/linux/file_descriptor.h"

namespace brindlet {

struct LandlockRuleset {
    FileDescriptor file{};
    int version = 0;  // what the kernel reports; 0 where it has no Landlock
};

// Rules that refuse all writing, making, removing, renaming and truncating of files but /dev/null, TCP, and sockets and
// signals that reach outside, each from the version on that knows it.
LandlockRuleset openReadOnlyRuleset();

// Gives up the rights for the calling thread and what it starts. Allocates nothing. False with `errno` set.
bool restrictTo(const LandlockRuleset& rules);

}  // namespace brindlet
