#include "platform/linux/sandbox_filter.h"

#include <fcntl.h>
#include <linux/audit.h>
#include <linux/fiemap.h>
#include <linux/fs.h>
#include <linux/seccomp.h>
#include <sched.h>
#include <seccomp.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "text/strings.h"

// The program is put together here rather than by libseccomp, which serves as the book of call numbers: its filters
// can't say "no ioctl but these" beside "every call but those", nor refuse numbers that came after it.

namespace brindlet {

namespace {

// A piece of the filter. Each ends in a return on every way through it, so that pieces can be put side by side.
using Code = std::vector<sock_filter>;

// How a call is answered. A reported one says that the tool tried to change something; a refused one is no sign of
// that, since healthy tools ask for it and do without; an absent one looks as if the kernel had it not.
enum class CallAnswer { report, refuse, absent };

struct CallGroup {
    CallAnswer answer;
    std::string_view calls;  // with a blank between
};

constexpr CallGroup callGroups[] = {
    // Names and contents.
    {CallAnswer::report,
     "rename renameat renameat2 link linkat symlink symlinkat unlink unlinkat mkdir mkdirat rmdir mknod mknodat creat "
     "truncate open_by_handle_at"},
    // Modes, owners, times, attributes.
    {CallAnswer::report,
     "chmod fchmod fchmodat fchmodat2 chown fchown lchown fchownat utime utimes utimensat futimesat setxattr lsetxattr "
     "fsetxattr setxattrat removexattr lremovexattr fremovexattr removexattrat file_setattr"},
    // Mounts and namespaces.
    {CallAnswer::report,
     "mount umount2 pivot_root chroot move_mount open_tree open_tree_attr fsopen fsconfig fsmount fspick mount_setattr "
     "unshare setns swapon swapoff quotactl quotactl_fd acct"},
    // The machine.
    {CallAnswer::report,
     "reboot kexec_load kexec_file_load sethostname setdomainname settimeofday clock_settime clock_adjtime adjtimex "
     "init_module finit_module delete_module vhangup"},
    // Signals, and what several programs share.
    {CallAnswer::report,
     "tkill tgkill rt_sigqueueinfo rt_tgsigqueueinfo pidfd_send_signal shmget shmat shmctl semget semop semctl "
     "semtimedop msgget msgsnd msgrcv msgctl mq_open mq_unlink mq_timedsend mq_notify"},
    // Sockets that a tool could only have by a fault of ours; the first step, socket(2), is looked at more closely.
    {CallAnswer::refuse, "socketpair bind connect listen accept accept4 sendto sendmmsg setsockopt shutdown"},
    // Leaving the group that is killed in the end; other processes; keys.
    {CallAnswer::refuse,
     "setpgid setsid ptrace process_vm_readv process_vm_writev kcmp pidfd_getfd process_madvise process_mrelease "
     "migrate_pages move_pages lsm_set_self_attr add_key request_key keyctl"},
    // Ways round the filter, and into the kernel.
    {CallAnswer::refuse,
     "io_uring_setup io_uring_enter io_uring_register io_setup io_submit io_destroy io_cancel io_getevents "
     "io_pgetevents bpf perf_event_open userfaultfd fanotify_init fanotify_mark iopl ioperm"},
    // Only anonymous memory can be meant, since no file is open for writing.
    {CallAnswer::refuse, "ftruncate fallocate"},
    // The C library falls back on calls whose arguments a filter can see.
    {CallAnswer::absent, "clone3 openat2"},
};

// The numbers of calls that are newer than some libraries. They are the same on all known processors.
constexpr std::pair<std::string_view, int> newerCalls[] = {
    {"mount_setattr", 442},  {"quotactl_fd", 443},  {"process_mrelease", 448},
    {"fchmodat2", 452},      {"setxattrat", 463},   {"removexattrat", 466},
    {"open_tree_attr", 467}, {"file_setattr", 469}, {"lsm_set_self_attr", 460}};

// Calls from here on are newer than this file (462 is mseal, Linux 6.10) and absent as well, but for those named above.
constexpr std::uint32_t firstUnknownCall = 463;

// The processors whose calls have the numbers assumed here, and whose words have the low half first.
constexpr std::uint32_t knownProcessors[] = {AUDIT_ARCH_X86_64, AUDIT_ARCH_AARCH64, AUDIT_ARCH_RISCV64};

// O_CREAT makes a file and O_TRUNC empties one even when opened for reading. O_TMPFILE's own bit is part of the mask.
constexpr std::uint32_t writingFlags = O_ACCMODE | O_CREAT | O_TRUNC | (O_TMPFILE & ~O_DIRECTORY);

// bash 5.2 opens /dev/tty like this whenever it starts, and nothing else writes files so: refused, but not reported.
constexpr std::uint32_t terminalFlags[] = {O_RDWR | O_NONBLOCK};

// New namespaces, and CLONE_PARENT, by which a tool's child would become ours.
constexpr std::uint32_t separatingFlags = CLONE_NEWNS | CLONE_NEWCGROUP | CLONE_NEWUTS | CLONE_NEWIPC | CLONE_NEWUSER |
                                          CLONE_NEWPID | CLONE_NEWNET | CLONE_PARENT;

// What only reads the state of a terminal or file, or concerns the caller's own descriptor.
constexpr std::uint32_t readingControls[] = {TCGETS,
                                             0x802c542a /* TCGETS2 */,
                                             TIOCGWINSZ,
                                             TIOCGPGRP,
                                             TIOCGSID,
                                             TIOCOUTQ,
                                             FIONREAD,
                                             TIOCGPTN,
                                             FIOCLEX,
                                             FIONCLEX,
                                             FIONBIO,
                                             FIGETBSZ,
                                             FS_IOC_GETFLAGS,
                                             FS_IOC_GETVERSION,
                                             FS_IOC_FIEMAP,
                                             FS_IOC_FSGETXATTR,
                                             FS_IOC_GETFSLABEL,
                                             BLKGETSIZE,
                                             BLKGETSIZE64,
                                             BLKSSZGET,
                                             BLKBSZGET,
                                             BLKPBSZGET,
                                             BLKROGET};

// Signals to others by way of a descriptor, and leases on other programs' files.
constexpr std::uint32_t reachingDescriptorControls[] = {F_SETOWN, F_SETSIG, F_SETOWN_EX, F_SETLEASE, F_NOTIFY};

// The C library's name cache and its list of addresses are asked for in passing; any other socket is meant.
constexpr std::uint32_t incidentalSockets[] = {AF_UNIX, AF_NETLINK};

constexpr std::uint32_t zero[] = {0};
constexpr std::uint32_t ownListenerSocket[] = {listenerSocket};
constexpr std::uint32_t kernelLogReads[] = {3, 9, 10};  // read all, size of what is unread, size of the buffer

sock_filter statement(int code, std::uint32_t operand) {
    return {.code = static_cast<std::uint16_t>(code), .jt = 0, .jf = 0, .k = operand};
}

sock_filter jump(int test, std::uint32_t operand, std::size_t ifTrue, std::size_t ifFalse) {
    return {.code = static_cast<std::uint16_t>(BPF_JMP | test | BPF_K),
            .jt = static_cast<std::uint8_t>(ifTrue),
            .jf = static_cast<std::uint8_t>(ifFalse),
            .k = operand};
}

Code answer(std::uint32_t action) {
    return {statement(BPF_RET | BPF_K, action)};
}

Code load(std::size_t offset) {
    return {statement(BPF_LD | BPF_W | BPF_ABS, static_cast<std::uint32_t>(offset))};
}

// The low half of an argument: of flags, numbers and descriptors the kernel looks at no more.
Code loadArgument(std::size_t index) {
    return load(offsetof(seccomp_data, args) + index * sizeof(std::uint64_t));
}

Code operator+(Code first, const Code& second) {
    first.insert(first.end(), second.begin(), second.end());
    return first;
}

Code ifAnyBit(std::size_t argument, std::uint32_t bits, const Code& then, const Code& otherwise) {
    return loadArgument(argument) + Code{jump(BPF_JSET, bits, 0, then.size())} + then + otherwise;
}

template <std::size_t count>
Code ifOneOf(std::size_t argument, const std::uint32_t (&values)[count], const Code& then, const Code& otherwise) {
    Code code = loadArgument(argument);
    for (std::size_t index = 0; index < count; ++index) {
        const std::size_t testsLeft = count - index - 1;
        code.push_back(jump(BPF_JEQ, values[index], testsLeft + otherwise.size(), 0));
    }
    return code + otherwise + then;
}

struct Answers {
    Code allow = answer(SECCOMP_RET_ALLOW);
    Code refuse = answer(SECCOMP_RET_ERRNO | EROFS);
    Code absent = answer(SECCOMP_RET_ERRNO | ENOSYS);
    Code report{};

    const Code& operator[](CallAnswer kind) const {
        if (kind == CallAnswer::report) return report;
        return kind == CallAnswer::refuse ? refuse : absent;
    }
};

std::optional<std::uint32_t> numberOf(const std::string& call) {
    const int number = seccomp_syscall_resolve_name(call.c_str());
    if (number >= 0) return static_cast<std::uint32_t>(number);
    // Below this the library knows the name, but this processor has no such call.
    if (number != __NR_SCMP_ERROR) return std::nullopt;
    for (const auto& [name, newerNumber] : newerCalls)
        if (name == call) return static_cast<std::uint32_t>(newerNumber);
    return std::nullopt;
}

// What each call leads to. Calls that aren't here are allowed.
std::map<std::uint32_t, Code> rules(const Answers& answers) {
    std::map<std::uint32_t, Code> codeOf;
    const auto put = [&](const std::string& call, const Code& code) {
        if (const auto number = numberOf(call)) codeOf[*number] = code;
    };
    for (const CallGroup& group : callGroups)
        for (const std::string& call : splitNonEmpty(group.calls, " ")) put(call, answers[group.answer]);

    const auto& [allow, refuse, absent, report] = answers;
    put("open", ifAnyBit(1, writingFlags, ifOneOf(1, terminalFlags, refuse, report), allow));
    put("openat", ifAnyBit(2, writingFlags, ifOneOf(2, terminalFlags, refuse, report), allow));
    put("clone", ifAnyBit(0, separatingFlags, report, allow));
    put("ioctl", ifOneOf(1, readingControls, allow, report));
    put("fcntl", ifOneOf(1, reachingDescriptorControls, refuse, allow));
    put("socket", ifOneOf(0, incidentalSockets, refuse, report));
    put("sendmsg", ifOneOf(0, ownListenerSocket, allow, refuse));
    put("kill", ifOneOf(1, zero, allow, report));  // signal 0 only asks whether a process is there
    put("syslog", ifOneOf(0, kernelLogReads, allow, report));
    // Of itself alone: the limits, priority and processors of another process are not the tool's affair. A limit that
    // is only asked for has no new value: both halves of its pointer are 0.
    const Code asksOnly = ifOneOf(
        2, zero, load(offsetof(seccomp_data, args[2]) + 4) + Code{jump(BPF_JEQ, 0, 1, 0)} + refuse + allow, refuse);
    put("prlimit64", ifOneOf(0, zero, allow, asksOnly));
    put("setpriority", ifOneOf(1, zero, allow, refuse));
    put("ioprio_set", ifOneOf(1, zero, allow, refuse));
    for (const char* call : {"sched_setscheduler", "sched_setparam", "sched_setattr", "sched_setaffinity"})
        put(call, ifOneOf(0, zero, allow, refuse));
    return codeOf;
}

// From this number on, up to the next range.
struct CallRange {
    std::uint32_t first;
    Code code;
};

bool isSame(const Code& first, const Code& second) {
    return std::ranges::equal(first, second, [](const sock_filter& a, const sock_filter& b) {
        return a.code == b.code && a.jt == b.jt && a.jf == b.jf && a.k == b.k;
    });
}

std::vector<CallRange> ranges(const Answers& answers) {
    std::vector<CallRange> found{{0, answers.allow}};
    const auto put = [&](std::uint32_t first, const Code& code) {
        if (found.back().first == first) found.pop_back();
        if (found.empty() || !isSame(found.back().code, code)) found.push_back({first, code});
    };
    const auto defaultCode = [&](std::uint32_t number) -> const Code& {
        return number < firstUnknownCall ? answers.allow : answers.absent;
    };
    std::map<std::uint32_t, Code> codeOf = rules(answers);
    codeOf.try_emplace(firstUnknownCall, answers.absent);
    for (const auto& [number, code] : codeOf) {
        put(number, code);
        put(number + 1, defaultCode(number + 1));
    }
    return found;
}

// A tree of comparisons: the kernel tries the filter on every call number when it is installed, and then on every call.
Code search(std::vector<CallRange>::const_iterator begin, std::vector<CallRange>::const_iterator end) {
    if (end - begin == 1) return begin->code;
    const auto middle = begin + (end - begin) / 2;
    const Code lower = search(begin, middle);
    const Code upper = search(middle, end);
    // A condition jumps at most 255 instructions far.
    if (lower.size() <= 255) return Code{jump(BPF_JGE, middle->first, lower.size(), 0)} + lower + upper;
    const auto distance = static_cast<std::uint32_t>(lower.size());
    return Code{jump(BPF_JGE, middle->first, 0, 1), statement(BPF_JMP | BPF_JA, distance)} + lower + upper;
}

// A call of another processor's kind has other numbers, so nothing is known of it.
Code program(std::uint32_t processor, std::uint32_t reportAction) {
    const Answers answers{.report = answer(reportAction)};
    const std::vector<CallRange> all = ranges(answers);
    return load(offsetof(seccomp_data, arch)) + Code{jump(BPF_JEQ, processor, 1, 0)} + answers.report +
           load(offsetof(seccomp_data, nr)) + search(all.begin(), all.end());
}

bool kernelHasFilters() {
    const std::uint32_t action = SECCOMP_RET_ERRNO;
    return ::syscall(SYS_seccomp, SECCOMP_GET_ACTION_AVAIL, 0, &action) == 0;
}

sock_fprog inMemory(Code& code) {
    return {.len = static_cast<unsigned short>(code.size()), .filter = code.data()};
}

struct BuiltFilter {
    Code reportingCode;
    Code refusingCode;
    SandboxFilter filter;
};

BuiltFilter* build() {
    const std::uint32_t processor = seccomp_arch_native();
    const auto* const end = std::end(knownProcessors);
    if (std::find(std::begin(knownProcessors), end, processor) == end || !kernelHasFilters()) return nullptr;
    // Never destroyed: the filter lives as long as the process, and other threads may still launch at its end.
    auto* built = new BuiltFilter{.reportingCode = program(processor, SECCOMP_RET_USER_NOTIF),
                                  .refusingCode = program(processor, SECCOMP_RET_ERRNO | EROFS),
                                  .filter = {}};
    built->filter = {.reporting = inMemory(built->reportingCode), .refusing = inMemory(built->refusingCode)};
    return built;
}

}  // namespace

const SandboxFilter* sandboxFilter() {
    static BuiltFilter* const built = build();
    return built ? &built->filter : nullptr;
}

}  // namespace brindlet
