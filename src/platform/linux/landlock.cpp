#include "platform/linux/landlock.h"

#include <fcntl.h>
#include <linux/landlock.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cstdint>

namespace brindlet {

namespace {

// The system's header may be older than its kernel, so what came after version 2 is written out here.
struct RulesetAttributes {
    std::uint64_t handledFiles = 0;
    std::uint64_t handledNetwork = 0;  // version 4
    std::uint64_t scoped = 0;          // version 6
};

constexpr std::uint64_t truncateFile = 1ULL << 14;
constexpr std::uint64_t bindAndConnectTcp = (1ULL << 0) | (1ULL << 1);
constexpr std::uint64_t socketsAndSignals = (1ULL << 0) | (1ULL << 1);

constexpr std::uint64_t changesSinceVersion1 = LANDLOCK_ACCESS_FS_WRITE_FILE | LANDLOCK_ACCESS_FS_REMOVE_DIR |
                                               LANDLOCK_ACCESS_FS_REMOVE_FILE | LANDLOCK_ACCESS_FS_MAKE_CHAR |
                                               LANDLOCK_ACCESS_FS_MAKE_DIR | LANDLOCK_ACCESS_FS_MAKE_REG |
                                               LANDLOCK_ACCESS_FS_MAKE_SOCK | LANDLOCK_ACCESS_FS_MAKE_FIFO |
                                               LANDLOCK_ACCESS_FS_MAKE_BLOCK | LANDLOCK_ACCESS_FS_MAKE_SYM;

RulesetAttributes attributesFor(int version) {
    RulesetAttributes attributes{.handledFiles = changesSinceVersion1};
    if (version >= 2) attributes.handledFiles |= LANDLOCK_ACCESS_FS_REFER;
    if (version >= 3) attributes.handledFiles |= truncateFile;
    if (version >= 4) attributes.handledNetwork = bindAndConnectTcp;
    if (version >= 6) attributes.scoped = socketsAndSignals;
    return attributes;
}

std::size_t attributesSize(int version) {
    if (version >= 6) return sizeof(RulesetAttributes);
    return version >= 4 ? offsetof(RulesetAttributes, scoped) : offsetof(RulesetAttributes, handledNetwork);
}

bool allowWriting(const FileDescriptor& ruleset, const char* path, std::uint64_t rights) {
    const FileDescriptor target(::open(path, O_PATH | O_CLOEXEC));
    const landlock_path_beneath_attr rule{.allowed_access = rights, .parent_fd = target.number()};
    return target && ::syscall(SYS_landlock_add_rule, ruleset.number(), LANDLOCK_RULE_PATH_BENEATH, &rule, 0) == 0;
}

}  // namespace

LandlockRuleset openReadOnlyRuleset() {
    const long version = ::syscall(SYS_landlock_create_ruleset, nullptr, 0, LANDLOCK_CREATE_RULESET_VERSION);
    if (version < 1) return {};
    LandlockRuleset rules{.version = static_cast<int>(version)};
    const RulesetAttributes attributes = attributesFor(rules.version);
    const long file = ::syscall(SYS_landlock_create_ruleset, &attributes, attributesSize(rules.version), 0);
    if (file < 0) return {};
    rules.file = FileDescriptor(static_cast<int>(file));
    // Without this rule /dev/null is refused like all else, which is less convenient but no less safe.
    allowWriting(rules.file, "/dev/null", attributes.handledFiles & (LANDLOCK_ACCESS_FS_WRITE_FILE | truncateFile));
    return rules;
}

bool restrictTo(const LandlockRuleset& rules) {
    return ::syscall(SYS_landlock_restrict_self, rules.file.number(), 0) == 0;
}

}  // namespace brindlet
