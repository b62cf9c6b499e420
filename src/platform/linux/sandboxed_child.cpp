#include "platform/linux/sandboxed_child.h"

#include <fcntl.h>
#include <linux/close_range.h>
#include <linux/seccomp.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <csignal>
#include <cstring>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/linux/sandbox_filter.h"

namespace brindlet {

namespace {

constexpr const char* launcherPath = "/usr/bin/env";

struct Limit {
    __rlimit_resource resource;
    rlimit value;
};

// The limits of a tool. File size 0 stops what the layers might have missed; SIGXFSZ is ignored, so that the write
// fails instead of ending the tool.
constexpr std::pair<__rlimit_resource, rlim_t> toolLimits[] = {
    {RLIMIT_CPU, 10}, {RLIMIT_FSIZE, 0}, {RLIMIT_CORE, 0}, {RLIMIT_NOFILE, 512}, {RLIMIT_AS, rlim_t{4} << 30},
};

// All that the child needs between vfork and execve. Both share one memory until then, so the child allocates nothing
// and only writes `isStarted`.
struct ChildPlan {
    std::vector<char*> arguments;
    std::vector<char*> environment;
    // The same with untranslated messages: where attempts aren't reported, the tool's own words have to tell.
    std::vector<char*> untranslatedEnvironment;
    const char* folder = nullptr;
    int input = -1;
    int output = -1;
    int attemptsSocket = -1;
    const LandlockRuleset* rules = nullptr;
    const SandboxFilter* filter = nullptr;
    std::array<Limit, std::size(toolLimits)> limits{};
    volatile bool isStarted = true;
};

bool isPassable(std::string_view text) {
    return text.find('\0') == std::string_view::npos;
}

bool isPassable(const ToolLaunch& launch) {
    return !launch.arguments.empty() && isPassable(launch.folder.text()) &&
           std::ranges::all_of(launch.arguments, [](const std::string& word) { return isPassable(word); });
}

std::vector<std::string> environmentEntries(const Environment& environment) {
    std::vector<std::string> entries;
    entries.reserve(environment.size());
    for (const auto& [name, value] : environment) {
        if (name.empty() || name.find('=') != std::string::npos || !isPassable(name) || !isPassable(value)) continue;
        entries.push_back(name + "=" + value);
    }
    return entries;
}

// Never raised: a limit that this process has itself can be lower already.
std::array<Limit, std::size(toolLimits)> ownLimits() {
    std::array<Limit, std::size(toolLimits)> limits{};
    for (std::size_t index = 0; index < limits.size(); ++index) {
        const auto& [resource, value] = toolLimits[index];
        rlimit present{};
        ::getrlimit(resource, &present);
        const rlim_t limit = std::min(value, present.rlim_max);
        limits[index] = {resource, {.rlim_cur = limit, .rlim_max = limit}};
    }
    return limits;
}

// ---- In the child. Everything from here to becomeTool runs in the parent's memory. ----

void resetSignals() {
    struct sigaction action {};
    action.sa_handler = SIG_DFL;
    for (int number = 1; number < NSIG; ++number) ::sigaction(number, &action, nullptr);
    action.sa_handler = SIG_IGN;
    ::sigaction(SIGXFSZ, &action, nullptr);
    sigset_t none;
    sigemptyset(&none);
    ::sigprocmask(SIG_SETMASK, &none, nullptr);
}

// From `first` on.
bool closeOthersOnExec(unsigned first) {
    if (::syscall(SYS_close_range, first, ~0U, CLOSE_RANGE_CLOEXEC) == 0) return true;
    rlimit open{};  // before Linux 5.11
    if (::getrlimit(RLIMIT_NOFILE, &open) != 0) return false;
    for (rlim_t number = first; number < open.rlim_cur; ++number)
        ::fcntl(static_cast<int>(number), F_SETFD, FD_CLOEXEC);
    return true;
}

bool placeStreams(const ChildPlan& plan) {
    return ::dup2(plan.input, STDIN_FILENO) >= 0 && ::dup2(plan.output, STDOUT_FILENO) >= 0 &&
           ::dup2(plan.output, STDERR_FILENO) >= 0 && closeOthersOnExec(STDERR_FILENO + 1);
}

bool setLimits(const ChildPlan& plan) {
    for (const Limit& limit : plan.limits)
        if (::setrlimit(limit.resource, &limit.value) != 0) return false;
    return true;
}

bool placeAttemptsSocket(const ChildPlan& plan) {
    return plan.attemptsSocket == listenerSocket || ::dup3(plan.attemptsSocket, listenerSocket, O_CLOEXEC) >= 0;
}

// What carries one descriptor over a socket. The byte is there because a message can't be empty.
struct DescriptorMessage {
    char byte = 0;
    iovec content{.iov_base = &byte, .iov_len = 1};
    alignas(cmsghdr) std::array<char, CMSG_SPACE(sizeof(int))> control{};
    msghdr header{};

    DescriptorMessage() {
        header.msg_iov = &content;
        header.msg_iovlen = 1;
        header.msg_control = control.data();
        header.msg_controllen = control.size();
    }
};

bool sendDescriptor(int socket, int descriptor) {
    DescriptorMessage message;
    cmsghdr* const control = CMSG_FIRSTHDR(&message.header);
    control->cmsg_level = SOL_SOCKET;
    control->cmsg_type = SCM_RIGHTS;
    control->cmsg_len = CMSG_LEN(sizeof(int));
    std::memcpy(CMSG_DATA(control), &descriptor, sizeof(int));
    return ::sendmsg(socket, &message.header, MSG_NOSIGNAL) == 1;
}

enum class FilterForm { none, refusing, reporting };

FilterForm installFilter(const SandboxFilter& filter) {
    const long listener =
        ::syscall(SYS_seccomp, SECCOMP_SET_MODE_FILTER, SECCOMP_FILTER_FLAG_NEW_LISTENER, &filter.reporting);
    if (listener >= 0)
        return sendDescriptor(listenerSocket, static_cast<int>(listener)) ? FilterForm::reporting : FilterForm::none;
    const long installed = ::syscall(SYS_seccomp, SECCOMP_SET_MODE_FILTER, 0, &filter.refusing);
    return installed == 0 ? FilterForm::refusing : FilterForm::none;
}

void enterSandbox(ChildPlan& plan) {
    if (::setsid() < 0 || ::chdir(plan.folder) != 0 || !placeStreams(plan)) return;
    resetSignals();
    if (::prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) != 0 || !setLimits(plan)) return;
    if (plan.rules->version > 0 && !restrictTo(*plan.rules)) return;
    if (!placeAttemptsSocket(plan)) return;
    const FilterForm form = installFilter(*plan.filter);
    if (form == FilterForm::none) return;
    const auto& environment = form == FilterForm::reporting ? plan.environment : plan.untranslatedEnvironment;
    ::execve(launcherPath, plan.arguments.data(), environment.data());
}

[[noreturn]] void becomeTool(ChildPlan& plan) {
    enterSandbox(plan);
    plan.isStarted = false;
    ::_exit(127);
}

// ---- In the parent again. ----

// A frame of its own, since the child returns from vfork on the same stack.
[[gnu::noinline]] pid_t launchChild(ChildPlan& plan) {
    // No handler of this process may run in the child, where it would work on shared memory.
    sigset_t all;
    sigset_t before;
    sigfillset(&all);
    ::pthread_sigmask(SIG_SETMASK, &all, &before);
    const pid_t process = ::vfork();
    if (process == 0) becomeTool(plan);
    ::pthread_sigmask(SIG_SETMASK, &before, nullptr);
    return process;
}

FileDescriptor receiveDescriptor(const FileDescriptor& socket) {
    DescriptorMessage message;
    if (::recvmsg(socket.number(), &message.header, MSG_DONTWAIT | MSG_CMSG_CLOEXEC) != 1) return {};
    const cmsghdr* const control = CMSG_FIRSTHDR(&message.header);
    if (!control || control->cmsg_type != SCM_RIGHTS) return {};
    int descriptor = -1;
    std::memcpy(&descriptor, CMSG_DATA(control), sizeof(int));
    return FileDescriptor(descriptor);
}

std::vector<char*> wordPointers(std::vector<std::string>& texts) {
    std::vector<char*> pointers;
    pointers.reserve(texts.size() + 2);
    for (std::string& text : texts) pointers.push_back(text.data());
    return pointers;
}

struct SocketPair {
    FileDescriptor ours;
    FileDescriptor theirs;
};

SocketPair openSocketPair() {
    std::array<int, 2> ends{};
    if (::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends.data()) != 0) return {};
    SocketPair pair{FileDescriptor(ends[0]), FileDescriptor(ends[1])};
    // Below the standard streams' numbers it would be overwritten when those are put in place.
    if (pair.theirs.number() <= STDERR_FILENO)
        pair.theirs = FileDescriptor(::fcntl(pair.theirs.number(), F_DUPFD_CLOEXEC, listenerSocket));
    return pair;
}

}  // namespace

std::optional<SandboxedChild> startSandboxed(const ToolLaunch& launch, const LandlockRuleset& rules) {
    const SandboxFilter* const filter = sandboxFilter();
    if (!filter || !isPassable(launch)) return std::nullopt;
    Pipe input = openPipe();
    Pipe output = openPipe();
    const SocketPair attempts = openSocketPair();
    if (!input.readEnd || !output.readEnd || !attempts.theirs) return std::nullopt;

    std::vector<std::string> words{launcherPath};
    words.insert(words.end(), launch.arguments.begin(), launch.arguments.end());
    std::vector<std::string> variables = environmentEntries(launch.environment);
    char untranslated[] = "LANGUAGE=C";

    ChildPlan plan;
    plan.arguments = wordPointers(words);
    plan.environment = wordPointers(variables);
    plan.untranslatedEnvironment = plan.environment;
    std::erase_if(plan.untranslatedEnvironment,
                  [](const char* entry) { return std::string_view(entry).starts_with("LANGUAGE="); });
    plan.untranslatedEnvironment.push_back(untranslated);
    for (auto* list : {&plan.arguments, &plan.environment, &plan.untranslatedEnvironment}) list->push_back(nullptr);
    plan.folder = launch.folder.text().c_str();
    plan.input = input.readEnd.number();
    plan.output = output.writeEnd.number();
    plan.attemptsSocket = attempts.theirs.number();
    plan.rules = &rules;
    plan.filter = filter;
    plan.limits = ownLimits();

    const pid_t process = launchChild(plan);
    if (process < 0) return std::nullopt;
    if (!plan.isStarted) {
        ::waitpid(process, nullptr, 0);
        return std::nullopt;
    }
    makeNonBlocking(input.writeEnd);
    makeNonBlocking(output.readEnd);
    return SandboxedChild{.process = process,
                          .end = FileDescriptor(static_cast<int>(::syscall(SYS_pidfd_open, process, 0))),
                          .input = std::move(input.writeEnd),
                          .output = std::move(output.readEnd),
                          .attempts = receiveDescriptor(attempts.ours)};
}

}  // namespace brindlet
