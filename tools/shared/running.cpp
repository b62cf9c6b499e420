#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <utility>

#include <fmt/format.h>

#include "shared/tool.h"
#include "shared/waiting.h"

namespace brindlet::tools {

namespace {

constexpr std::size_t mostOutput = std::size_t{64} << 20;
// What an engine complains of beyond this, nobody reads.
constexpr std::size_t mostErrors = std::size_t{64} << 10;

constexpr int endingSignals[] = {SIGINT, SIGTERM, SIGHUP};

// The signal that asked this process to end, 0 before; a handler can reach nothing else.
volatile std::sig_atomic_t caughtSignal = 0;

sigset_t endingSet() {
    sigset_t signals;
    sigemptyset(&signals);
    for (const int signal : endingSignals) sigaddset(&signals, signal);
    return signals;
}

int holds = 0;
sigset_t maskBeforeHolds;

// While it lives, the ending signals and SIGCHLD come only in `wait`, so that none falls between looking and waiting.
class SignalWatch {
  public:
    SignalWatch() {
        sigset_t blocked = endingSet();
        sigaddset(&blocked, SIGCHLD);
        sigaddset(&blocked, SIGPIPE);
        ::sigprocmask(SIG_BLOCK, &blocked, &before_);
        open_ = holds > 0 ? maskBeforeHolds : before_;
        sigdelset(&open_, SIGCHLD);
        sigaddset(&open_, SIGPIPE);
        struct sigaction action {};
        sigemptyset(&action.sa_mask);
        action.sa_handler = [](int) {};
        ::sigaction(SIGCHLD, &action, &childAction_);
        action.sa_handler = [](int signal) { caughtSignal = signal; };
        for (std::size_t at = 0; at < std::size(endingSignals); ++at) {
            ::sigaction(endingSignals[at], nullptr, &actions_[at]);
            // What whoever started this has it ignore, as nohup does, stays ignored.
            if (actions_[at].sa_handler != SIG_IGN) ::sigaction(endingSignals[at], &action, nullptr);
        }
    }
    ~SignalWatch() {
        for (std::size_t at = 0; at < std::size(endingSignals); ++at)
            ::sigaction(endingSignals[at], &actions_[at], nullptr);
        ::sigaction(SIGCHLD, &childAction_, nullptr);
        // One that a closed pipe has left here belongs to nobody.
        sigset_t pipe;
        sigemptyset(&pipe);
        sigaddset(&pipe, SIGPIPE);
        const timespec atOnce{};
        if (!sigismember(&before_, SIGPIPE)) ::sigtimedwait(&pipe, nullptr, &atOnce);
        ::sigprocmask(SIG_SETMASK, &before_, nullptr);
    }
    SignalWatch(const SignalWatch&) = delete;
    SignalWatch& operator=(const SignalWatch&) = delete;

    // Until one of the files is ready or a signal came.
    void wait(pollfd* files, nfds_t count) const { ::ppoll(files, count, nullptr, &open_); }
    const sigset_t& childMask() const { return holds > 0 ? maskBeforeHolds : before_; }

  private:
    sigset_t before_{};
    sigset_t open_{};
    struct sigaction childAction_ {};
    std::array<struct sigaction, std::size(endingSignals)> actions_{};
};

class Descriptor {
  public:
    explicit Descriptor(int number = -1) : number_(number) {}
    ~Descriptor() { close(); }
    Descriptor(Descriptor&& other) noexcept : number_(std::exchange(other.number_, -1)) {}
    Descriptor& operator=(Descriptor&& other) noexcept {
        std::swap(number_, other.number_);
        return *this;
    }
    int number() const { return number_; }
    bool isOpen() const { return number_ >= 0; }
    void close() {
        if (isOpen()) ::close(std::exchange(number_, -1));
    }

  private:
    int number_;
};

struct PipeEnds {
    Descriptor reading, writing;
};

PipeEnds makePipe() {
    int ends[2];
    if (::pipe2(ends, O_CLOEXEC) != 0) throw ToolFailure{fmt::format("no pipe can be made: {}", std::strerror(errno))};
    return {Descriptor(ends[0]), Descriptor(ends[1])};
}

// A running program; one that is still there is killed and waited for.
class Child {
  public:
    // `streams` are what stands for the child's three standard streams, -1 for this process's own.
    Child(const std::vector<std::string>& words, const std::array<int, 3>& streams, const SignalWatch& watch) {
        std::fflush(stdout);
        posix_spawn_file_actions_t actions;
        posix_spawnattr_t attributes;
        ::posix_spawn_file_actions_init(&actions);
        ::posix_spawnattr_init(&attributes);
        for (int stream = 0; stream < 3; ++stream) {
            const int file = streams[static_cast<std::size_t>(stream)];
            if (file >= 0) ::posix_spawn_file_actions_adddup2(&actions, file, stream);
        }
        ::posix_spawnattr_setsigmask(&attributes, &watch.childMask());
        ::posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGMASK);
        std::vector<char*> pointers;
        for (const std::string& word : words) pointers.push_back(const_cast<char*>(word.c_str()));
        pointers.push_back(nullptr);
        const int error = words.empty()
                              ? EINVAL
                              : ::posix_spawn(&process_, pointers[0], &actions, &attributes, pointers.data(), environ);
        ::posix_spawn_file_actions_destroy(&actions);
        ::posix_spawnattr_destroy(&attributes);
        if (error != 0)
            throw ToolFailure{
                fmt::format("can't start {}: {}", words.empty() ? "" : words.front(), std::strerror(error))};
    }
    ~Child() {
        if (isRunning_) {
            ::kill(process_, SIGKILL);
            while (::waitpid(process_, nullptr, 0) < 0 && errno == EINTR) {
            }
        }
    }
    Child(const Child&) = delete;
    Child& operator=(const Child&) = delete;

    // Whether it runs on. A signal that asked this process to end is passed on to it.
    bool isRunning() {
        if (caughtSignal != 0 && passedOn_ != caughtSignal) {
            passedOn_ = caughtSignal;
            ::kill(process_, passedOn_);
        }
        int state = 0;
        if (isRunning_ && ::waitpid(process_, &state, WNOHANG) == process_) {
            isRunning_ = false;
            status_ = WIFEXITED(state) ? WEXITSTATUS(state) : 128 + WTERMSIG(state);
        }
        return isRunning_;
    }
    int status() const { return status_; }

  private:
    pid_t process_ = -1;
    bool isRunning_ = true;
    int passedOn_ = 0;
    int status_ = 0;
};

void endIfInterrupted() {
    if (caughtSignal != 0) throw Interrupted{caughtSignal};
}

// Appends what is there, up to `most` bytes in all, and drops what is beyond. False where it dropped any.
bool readAvailable(Descriptor& file, std::string& text, std::size_t most) {
    std::array<char, 64 * 1024> chunk;
    while (file.isOpen()) {
        const ssize_t count = ::read(file.number(), chunk.data(), chunk.size());
        if (count < 0 && errno == EINTR) continue;
        if (count < 0) return true;
        if (count == 0) file.close();
        const std::size_t room = most - text.size();
        text.append(chunk.data(), std::min(room, static_cast<std::size_t>(count)));
        if (static_cast<std::size_t>(count) > room) return false;
    }
    return true;
}

void writePossible(Descriptor& file, std::string_view& rest) {
    while (file.isOpen()) {
        const ssize_t count = rest.empty() ? -1 : ::write(file.number(), rest.data(), rest.size());
        if (count < 0 && errno == EINTR && !rest.empty()) continue;
        if (count < 0 && errno == EAGAIN && !rest.empty()) return;
        if (count < 0) {
            file.close();  // all is written, or nobody reads on
        } else {
            rest.remove_prefix(static_cast<std::size_t>(count));
        }
    }
}

void makePatient(const Descriptor& file) {
    ::fcntl(file.number(), F_SETFL, ::fcntl(file.number(), F_GETFL) | O_NONBLOCK);
}

}  // namespace

void holdSignals() {
    if (holds++ > 0) return;
    const sigset_t signals = endingSet();
    ::sigprocmask(SIG_BLOCK, &signals, &maskBeforeHolds);
}

void releaseSignals() {
    if (--holds == 0) ::sigprocmask(SIG_SETMASK, &maskBeforeHolds, nullptr);
}

int run(const std::vector<std::string>& words) {
    const SignalWatch watch;
    Child child(words, {-1, -1, -1}, watch);
    while (child.isRunning()) watch.wait(nullptr, 0);
    endIfInterrupted();
    return child.status();
}

Captured capture(const std::vector<std::string>& words, std::string_view input) {
    const SignalWatch watch;
    PipeEnds in = makePipe();
    PipeEnds out = makePipe();
    PipeEnds errors = makePipe();
    Child child(words, {in.reading.number(), out.writing.number(), errors.writing.number()}, watch);
    in.reading.close();
    out.writing.close();
    errors.writing.close();
    for (const Descriptor* file : {&in.writing, &out.reading, &errors.reading}) makePatient(*file);

    Captured captured;
    const auto exchange = [&] {
        writePossible(in.writing, input);
        while (!readAvailable(errors.reading, captured.errors, mostErrors)) {
        }
        if (!readAvailable(out.reading, captured.output, mostOutput))
            throw ToolFailure{fmt::format("{} prints too much", words.front())};
    };
    for (;;) {
        // Looked at before the pipes are: what it left there at its end is then read, and what keeps them open is not
        // waited for.
        const bool isRunning = child.isRunning();
        exchange();
        if (!isRunning) break;
        pollfd files[] = {{.fd = in.writing.number(), .events = POLLOUT, .revents = 0},
                          {.fd = out.reading.number(), .events = POLLIN, .revents = 0},
                          {.fd = errors.reading.number(), .events = POLLIN, .revents = 0}};
        watch.wait(files, std::size(files));
    }
    endIfInterrupted();
    captured.status = child.status();
    return captured;
}

}  // namespace brindlet::tools
