#include "desktop/linux/answering_process.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdint>
#include <exception>
#include <utility>

namespace brindlet {

namespace {

using AnswerClock = std::chrono::steady_clock;

// Between the processes: the length, then the bytes. The first byte of an answer says whether there is one.
using Length = std::uint32_t;
constexpr Length longestMessage = Length{64} << 20;
constexpr char hasAnswer = '1';
constexpr char hasNone = '0';
// The keeper answers for a worker that hangs. What the keeper may take beyond the time that it has itself.
constexpr std::chrono::milliseconds keeperPatience{1000};

struct Line {
    FileDescriptor near;
    FileDescriptor far;
};

Line openLine() {
    int ends[2];
    if (::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends) != 0) return {};
    return {FileDescriptor(ends[0]), FileDescriptor(ends[1])};
}

bool sendBytes(const FileDescriptor& line, std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t sent = ::send(line.number(), bytes.data(), bytes.size(), MSG_NOSIGNAL);
        if (sent < 0 && errno == EINTR) continue;
        if (sent <= 0) return false;
        bytes.remove_prefix(static_cast<std::size_t>(sent));
    }
    return true;
}

bool sendMessage(const FileDescriptor& line, std::string_view message) {
    const auto length = static_cast<Length>(message.size());
    return sendBytes(line, {reinterpret_cast<const char*>(&length), sizeof length}) && sendBytes(line, message);
}

bool receiveBytes(const FileDescriptor& line, char* bytes, std::size_t count,
                  std::optional<AnswerClock::time_point> limit) {
    while (count > 0) {
        int patience = -1;
        if (limit) {
            const auto left = std::chrono::ceil<std::chrono::milliseconds>(*limit - AnswerClock::now()).count();
            if (left <= 0) return false;
            patience = static_cast<int>(left);
        }
        pollfd watched{.fd = line.number(), .events = POLLIN, .revents = 0};
        if (::poll(&watched, 1, patience) <= 0) continue;
        const ssize_t got = readSome(line, bytes, count);
        if (got <= 0) return false;
        bytes += got;
        count -= static_cast<std::size_t>(got);
    }
    return true;
}

std::optional<std::string> receiveMessage(const FileDescriptor& line, std::optional<AnswerClock::time_point> limit) {
    Length length = 0;
    if (!receiveBytes(line, reinterpret_cast<char*>(&length), sizeof length, limit) || length > longestMessage)
        return std::nullopt;
    std::string message(length, '\0');
    if (!receiveBytes(line, message.data(), length, limit)) return std::nullopt;
    return message;
}

void reap(pid_t process) {
    while (::waitpid(process, nullptr, 0) < 0 && errno == EINTR) {
    }
}

[[noreturn]] void work(const FileDescriptor& line, const AnsweringProcess::Answer& answer) {
    ::prctl(PR_SET_PDEATHSIG, SIGKILL);
    try {
        while (const auto question = receiveMessage(line, std::nullopt)) {
            const auto answered = answer(*question);
            if (!answered || !sendMessage(line, hasAnswer + *answered)) break;
        }
    } catch (const std::exception&) {
    }
    ::_exit(0);
}

// The process in the middle.
class Keeper {
  public:
    Keeper(FileDescriptor line, const AnsweringProcess::Answer& answer) : line_(std::move(line)), answer_(answer) {}

    void serve() {
        while (const auto patience = receiveMessage(line_, std::nullopt)) {
            const auto question = receiveMessage(line_, std::nullopt);
            if (!question) break;
            const auto answered = answerWithin(std::chrono::milliseconds(std::stol(*patience)), *question);
            if (!sendMessage(line_, answered.value_or(std::string(1, hasNone)))) break;
        }
        endWorker();
    }

  private:
    std::optional<std::string> answerWithin(std::chrono::milliseconds longest, const std::string& question) {
        const auto limit = AnswerClock::now() + longest;
        if (worker_ < 0 && !startWorker()) return std::nullopt;
        std::optional<std::string> answered;
        if (sendMessage(toWorker_, question)) answered = receiveMessage(toWorker_, limit);
        if (!answered) endWorker();
        return answered;
    }

    bool startWorker() {
        Line line = openLine();
        if (!line.near) return false;
        worker_ = ::fork();
        if (worker_ == 0) {
            line.near.close();
            line_.close();
            work(line.far, answer_);
        }
        toWorker_ = std::move(line.near);
        return worker_ > 0;
    }

    void endWorker() {
        toWorker_.close();
        if (worker_ <= 0) return;
        ::kill(worker_, SIGKILL);
        reap(std::exchange(worker_, -1));
    }

    FileDescriptor line_;
    const AnsweringProcess::Answer& answer_;
    FileDescriptor toWorker_;
    pid_t worker_ = -1;
};

[[noreturn]] void keep(FileDescriptor line, const AnsweringProcess::Answer& answer) {
    ::prctl(PR_SET_PDEATHSIG, SIGKILL);
    const FileDescriptor nowhere(::open("/dev/null", O_RDWR | O_CLOEXEC));
    for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) ::dup2(nowhere.number(), stream);
    try {
        Keeper(std::move(line), answer).serve();
    } catch (const std::exception&) {
    }
    ::_exit(0);  // what waits to be printed is the parent's
}

}  // namespace

AnsweringProcess::AnsweringProcess(Answer answer) {
    Line line = openLine();
    if (!line.near) return;
    keeper_ = ::fork();
    if (keeper_ == 0) {
        line.near.close();
        keep(std::move(line.far), answer);
    }
    line_ = std::move(line.near);
}

AnsweringProcess::~AnsweringProcess() {
    line_.close();
    if (keeper_ <= 0) return;
    ::kill(keeper_, SIGKILL);  // and its worker with it
    reap(keeper_);
}

std::optional<std::string> AnsweringProcess::ask(const std::string& question, std::chrono::milliseconds longest) {
    const std::lock_guard lock(guard_);
    if (keeper_ <= 0 || !line_) return std::nullopt;
    std::optional<std::string> answered;
    if (sendMessage(line_, std::to_string(longest.count())) && sendMessage(line_, question))
        answered = receiveMessage(line_, AnswerClock::now() + longest + keeperPatience);
    // Out of step with the questions, it is of no more use.
    if (!answered) line_.close();
    if (!answered || answered->front() != hasAnswer) return std::nullopt;
    return answered->substr(1);
}

}  // namespace brindlet
