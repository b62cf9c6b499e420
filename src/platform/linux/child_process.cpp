#include "platform/child_process.h"

#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <climits>
#include <csignal>
#include <mutex>
#include <utility>

#include "platform/linux/file_descriptor.h"

namespace brindlet {

namespace {

// What posix_spawn(3) is to do, as one value that cleans up after itself.
class SpawnPlan {
  public:
    SpawnPlan() {
        ::posix_spawn_file_actions_init(&actions_);
        ::posix_spawnattr_init(&attributes_);
    }
    ~SpawnPlan() {
        ::posix_spawn_file_actions_destroy(&actions_);
        ::posix_spawnattr_destroy(&attributes_);
    }
    SpawnPlan(const SpawnPlan&) = delete;
    SpawnPlan& operator=(const SpawnPlan&) = delete;

    void prepare(const ChildLaunch& launch, const FileDescriptor& output) {
        ::posix_spawn_file_actions_addopen(&actions_, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
        ::posix_spawn_file_actions_adddup2(&actions_, output.number(), STDOUT_FILENO);
        if (launch.joinsStandardError) ::posix_spawn_file_actions_adddup2(&actions_, output.number(), STDERR_FILENO);
        ::posix_spawn_file_actions_addchdir_np(&actions_, launch.folder.text().c_str());
        ::posix_spawn_file_actions_addclosefrom_np(&actions_, STDERR_FILENO + 1);

        // Nothing that this process ignores or holds back for itself is passed on.
        sigset_t none;
        sigset_t all;
        sigemptyset(&none);
        sigfillset(&all);
        ::posix_spawnattr_setsigmask(&attributes_, &none);
        ::posix_spawnattr_setsigdefault(&attributes_, &all);
        ::posix_spawnattr_setflags(&attributes_,
                                   POSIX_SPAWN_SETSID | POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF);
    }

    // 0 or an error number; the child has its own program and group by then.
    int launch(pid_t& process, char* const* arguments, char* const* environment) const {
        return ::posix_spawn(&process, arguments[0], &actions_, &attributes_, arguments, environment);
    }

  private:
    posix_spawn_file_actions_t actions_{};
    posix_spawnattr_t attributes_{};
};

std::vector<char*> pointersTo(std::vector<std::string>& texts) {
    std::vector<char*> pointers;
    pointers.reserve(texts.size() + 1);
    for (std::string& text : texts) pointers.push_back(text.data());
    pointers.push_back(nullptr);
    return pointers;
}

bool hasNul(std::string_view text) {
    return text.find('\0') != std::string_view::npos;
}

int statusOf(const siginfo_t& end) {
    return end.si_code == CLD_EXITED ? end.si_status : end.si_status + 128;
}

class LinuxChildProcess final : public ChildProcess {
  public:
    LinuxChildProcess(pid_t process, FileDescriptor output) : process_(process), output_(std::move(output)) {}

    // A child that still runs is ended with its whole group; what one that ended left running goes on.
    ~LinuxChildProcess() override {
        if (!exitStatus()) terminateGroup(false);
        waitForExit();
    }

    ReadState read(std::string& buffer, std::chrono::milliseconds patience) override {
        if (!output_) return ReadState::ended;
        pollfd file{.fd = output_.number(), .events = POLLIN, .revents = 0};
        const auto timeout = std::clamp<std::chrono::milliseconds::rep>(patience.count(), 0, INT_MAX);
        if (::poll(&file, 1, static_cast<int>(timeout)) <= 0) return ReadState::timedOut;
        std::array<char, 64 * 1024> chunk;
        const ssize_t count = readSome(output_, chunk.data(), chunk.size());
        if (count < 0 && errno == EAGAIN) return ReadState::timedOut;
        if (count <= 0) {
            output_.close();
            return ReadState::ended;
        }
        buffer.append(chunk.data(), static_cast<std::size_t>(count));
        return ReadState::bytes;
    }

    // The child is left unreaped, so that its group can still be ended safely.
    std::optional<int> exitStatus() override {
        const std::lock_guard lock(mutex_);
        if (isReaped_) return status_;
        siginfo_t end{};
        const int result = ::waitid(P_PID, static_cast<id_t>(process_), &end, WEXITED | WNOHANG | WNOWAIT);
        if (result != 0 || end.si_pid != process_) return std::nullopt;
        return statusOf(end);
    }

    int waitForExit() override {
        siginfo_t end{};
        // Without the lock and without reaping: meanwhile another thread may end the group.
        while (!isReaped() && ::waitid(P_PID, static_cast<id_t>(process_), &end, WEXITED | WNOWAIT) != 0) {
            if (errno != EINTR) break;
        }
        const std::lock_guard lock(mutex_);
        if (isReaped_) return status_;
        isReaped_ = true;
        if (end.si_pid == process_) status_ = statusOf(end);
        ::waitpid(process_, nullptr, WNOHANG);
        return status_;
    }

    void terminateGroup(bool gently) override {
        const std::lock_guard lock(mutex_);
        // Once it is reaped, another process may have its number.
        if (!isReaped_) ::kill(-process_, gently ? SIGTERM : SIGKILL);
    }

  private:
    bool isReaped() {
        const std::lock_guard lock(mutex_);
        return isReaped_;
    }

    const pid_t process_;
    FileDescriptor output_;
    std::mutex mutex_;
    bool isReaped_ = false;
    int status_ = 127;  // where the system can't say, as when this process ignores SIGCHLD
};

}  // namespace

Result<std::unique_ptr<ChildProcess>> ChildProcess::start(const ChildLaunch& launch) {
    std::vector<std::string> arguments = launch.arguments;
    if (arguments.empty() || hasNul(launch.folder.text()) || std::ranges::any_of(arguments, hasNul))
        return Failure{systemWords(EINVAL)};
    std::vector<std::string> environment;
    for (const auto& [name, value] : launch.environment) environment.push_back(name + "=" + value);
    const std::vector<char*> argumentPointers = pointersTo(arguments);
    const std::vector<char*> environmentPointers = pointersTo(environment);

    Pipe output = openPipe();
    if (!output.readEnd) return Failure{systemWords(errno)};
    SpawnPlan plan;
    plan.prepare(launch, output.writeEnd);
    pid_t process = -1;
    if (const int error = plan.launch(process, argumentPointers.data(), environmentPointers.data()))
        return Failure{systemWords(error)};
    return std::unique_ptr<ChildProcess>(std::make_unique<LinuxChildProcess>(process, std::move(output.readEnd)));
}

}  // namespace brindlet
