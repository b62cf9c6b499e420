#include "platform/read_only_launcher.h"

#include <poll.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <exception>
#include <string_view>
#include <utility>

#include "platform/linux/landlock.h"
#include "platform/linux/sandbox_filter.h"
#include "platform/linux/sandboxed_child.h"

namespace brindlet {

namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

// How often a tool's end is looked for where the kernel can't announce it (before Linux 5.3).
constexpr milliseconds endInterval{5};

// How long a killed tool may take to go. Only one that hangs inside the kernel, as on a network disk, takes longer.
constexpr milliseconds killPatience{1'000};

// What a refused call says in a tool's own words; no healthy read ever does.
constexpr std::string_view refusalWords = "Read-only file system";

// Keeps a write to a tool that no longer reads from ending this process, for the present thread.
class PipeSignalGuard {
  public:
    PipeSignalGuard() {
        sigset_t pending;
        ::sigpending(&pending);
        wasPending_ = sigismember(&pending, SIGPIPE) == 1;
        ::pthread_sigmask(SIG_BLOCK, &pipeSignal(), &before_);
    }
    ~PipeSignalGuard() {
        const timespec atOnce{};
        if (!wasPending_) ::sigtimedwait(&pipeSignal(), nullptr, &atOnce);
        ::pthread_sigmask(SIG_SETMASK, &before_, nullptr);
    }
    PipeSignalGuard(const PipeSignalGuard&) = delete;
    PipeSignalGuard& operator=(const PipeSignalGuard&) = delete;

  private:
    static const sigset_t& pipeSignal() {
        static const sigset_t set = [] {
            sigset_t made;
            sigemptyset(&made);
            sigaddset(&made, SIGPIPE);
            return made;
        }();
        return set;
    }

    bool wasPending_ = false;
    sigset_t before_{};
};

milliseconds untilDeadline(Clock::time_point deadline) {
    const auto left = std::chrono::ceil<milliseconds>(deadline - Clock::now());
    return std::clamp(left, milliseconds{0}, milliseconds{60'000});
}

// Without reaping: the process keeps its number, and with it its group, until it is reaped.
std::optional<siginfo_t> endOf(pid_t process) {
    siginfo_t end{};
    const int result = ::waitid(P_PID, static_cast<id_t>(process), &end, WEXITED | WNOHANG | WNOWAIT);
    if (result != 0 || end.si_pid != process) return std::nullopt;
    return end;
}

// One launched tool, from its start until it is gone.
class ToolRun {
  public:
    // A tool that is not gone in time, killed as it is, is added to `unreaped`.
    ToolRun(SandboxedChild child, std::string_view standardInput, const LaunchLimits& limits,
            std::vector<pid_t>& unreaped)
        : child_(std::move(child)),
          unwritten_(standardInput),
          limits_(limits),
          deadline_(Clock::now() + std::min(limits.wallClock, milliseconds{std::chrono::hours{24}})),
          unreaped_(unreaped) {}
    ToolRun(const ToolRun&) = delete;
    ToolRun& operator=(const ToolRun&) = delete;
    ~ToolRun() {
        killGroup();
        if (!reap()) unreaped_.push_back(child_.process);
    }

    ToolOutcome finish() {
        ToolOutcome outcome;
        while (isUndecided()) exchange();
        const std::optional<siginfo_t> end = endOf(child_.process);
        killGroup();
        if (end && !mustBeUnknown_) {
            // What the tool wrote is in the pipe by now; what its background children may add is not waited for.
            readOutput();
            const bool exited = end->si_code == CLD_EXITED;
            if (exited && !mustBeUnknown_ && output_.find(refusalWords) == std::string::npos)
                outcome.exitCode = end->si_status;
        }
        outcome.output = std::move(output_);
        return outcome;
    }

  private:
    // The tool itself is not reaped yet, so that no other group can have its number.
    void killGroup() const { ::kill(-child_.process, SIGKILL); }

    // False if the killed tool is not gone yet and has to be reaped another time.
    bool reap() {
        const Clock::time_point deadline = Clock::now() + killPatience;
        while (true) {
            const pid_t result = ::waitpid(child_.process, nullptr, WNOHANG);
            if (result != 0 && !(result < 0 && errno == EINTR)) return true;
            if (untilDeadline(deadline) == milliseconds{0}) return false;
            pollfd end{.fd = child_.end.number(), .events = POLLIN, .revents = 0};
            ::poll(&end, 1, static_cast<int>((child_.end ? untilDeadline(deadline) : endInterval).count()));
        }
    }

    bool isUndecided() {
        if (mustBeUnknown_) return false;
        if (untilDeadline(deadline_) == milliseconds{0}) {
            mustBeUnknown_ = true;
            return false;
        }
        return !hasEnded_;
    }

    // Waits for something to happen and deals with it. Writing and reading go side by side: a tool that does both would
    // else wait for us while we wait for it.
    void exchange() {
        if (unwritten_.empty()) child_.input.close();
        std::array<pollfd, 5> files{{{child_.attempts.number(), POLLIN, 0},
                                     {child_.output.number(), POLLIN, 0},
                                     {child_.input.number(), POLLOUT, 0},
                                     {child_.end.number(), POLLIN, 0},
                                     {limits_.stopDescriptor, POLLIN, 0}}};
        const milliseconds left = untilDeadline(deadline_);
        const milliseconds patience = child_.end ? left : std::min(left, endInterval);
        if (::poll(files.data(), files.size(), static_cast<int>(patience.count())) < 0) return;
        if ((files[0].revents & POLLIN) || files[4].revents) {
            mustBeUnknown_ = true;
            return;
        }
        if (files[0].revents) child_.attempts.close();
        if (files[1].revents) readOutput();
        if (files[2].revents) writeInput();
        if (files[3].revents || !child_.end) hasEnded_ = endOf(child_.process).has_value();
    }

    void writeInput() {
        const ssize_t count = writeSome(child_.input, unwritten_);
        if (count >= 0) {
            unwritten_.remove_prefix(static_cast<std::size_t>(count));
        } else if (errno != EAGAIN) {
            unwritten_ = {};  // the tool wants no more of it
        }
    }

    // All that is there.
    void readOutput() {
        std::array<char, 64 * 1024> chunk;
        while (child_.output && !mustBeUnknown_) {
            const ssize_t count = readSome(child_.output, chunk.data(), chunk.size());
            if (count < 0 && errno == EAGAIN) return;
            if (count <= 0) return child_.output.close();
            output_.append(chunk.data(), static_cast<std::size_t>(count));
            mustBeUnknown_ = output_.size() > limits_.outputBytes || untilDeadline(deadline_) == milliseconds{0};
        }
    }

    SandboxedChild child_;
    std::string_view unwritten_;
    const LaunchLimits& limits_;
    Clock::time_point deadline_;
    std::vector<pid_t>& unreaped_;
    std::string output_;
    bool hasEnded_ = false;
    bool mustBeUnknown_ = false;  // a limit was passed, or a change was tried
};

class LinuxReadOnlyLauncher final : public ReadOnlyLauncher {
  public:
    explicit LinuxReadOnlyLauncher(LaunchLimits limits) : limits_(limits) {}

    ToolOutcome run(const ToolLaunch& launch) override {
        try {
            std::erase_if(unreaped_, [](pid_t process) { return ::waitpid(process, nullptr, WNOHANG) != 0; });
            std::optional<SandboxedChild> child = startSandboxed(launch, rules());
            if (!child) return {};
            const PipeSignalGuard guard;
            return ToolRun(*std::move(child), launch.standardInput, limits_, unreaped_).finish();
        } catch (const std::exception&) {
            return {};
        }
    }

    // Landlock alone would not do: it knows nothing of modes, owners, times and attributes.
    std::string layers() const override {
        if (!sandboxFilter()) return "none";
        return rules().version > 0 ? "seccomp, Landlock " + std::to_string(rules().version) : "seccomp";
    }

  private:
    // Opened when first needed: most predictions launch nothing.
    const LandlockRuleset& rules() const {
        if (!rules_) rules_ = openReadOnlyRuleset();
        return *rules_;
    }

    LaunchLimits limits_;
    mutable std::optional<LandlockRuleset> rules_;
    std::vector<pid_t> unreaped_;
};

}  // namespace

std::unique_ptr<ReadOnlyLauncher> openReadOnlyLauncher(LaunchLimits limits) {
    return std::make_unique<LinuxReadOnlyLauncher>(limits);
}

}  // namespace brindlet
