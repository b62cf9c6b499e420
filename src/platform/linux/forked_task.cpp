#include "platform/linux/forked_task.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <exception>
#include <string_view>

#include "platform/linux/file_descriptor.h"

namespace brindlet {

namespace {

// Behind the whole answer, which a killed process doesn't get to.
constexpr char answerEnd = '\0';

[[noreturn]] void workInChild(const FileDescriptor& answer, const std::function<std::string()>& work) {
    ::prctl(PR_SET_PDEATHSIG, SIGKILL);
    const FileDescriptor nowhere(::open("/dev/null", O_RDWR | O_CLOEXEC));
    for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) ::dup2(nowhere.number(), stream);
    try {
        const std::string whole = work() + answerEnd;
        std::string_view left = whole;
        while (!left.empty()) {
            const ssize_t written = writeSome(answer, left);
            if (written <= 0) break;
            left.remove_prefix(static_cast<std::size_t>(written));
        }
    } catch (const std::exception&) {
    }
    ::_exit(0);  // what waits to be printed is the parent's
}

std::optional<std::string> awaitedAnswer(const FileDescriptor& answer, std::chrono::milliseconds longest) {
    using Clock = std::chrono::steady_clock;
    const auto limit = Clock::now() + longest;
    std::string text;
    while (Clock::now() < limit) {
        pollfd watched{.fd = answer.number(), .events = POLLIN, .revents = 0};
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(limit - Clock::now()).count();
        if (::poll(&watched, 1, static_cast<int>(std::max<std::chrono::milliseconds::rep>(0, left))) <= 0) continue;
        std::array<char, 4096> bytes;
        const ssize_t count = readSome(answer, bytes.data(), bytes.size());
        if (count <= 0) return std::nullopt;
        text.append(bytes.data(), static_cast<std::size_t>(count));
        if (text.back() == answerEnd) return text.substr(0, text.size() - 1);
    }
    return std::nullopt;
}

}  // namespace

std::optional<std::string> runForked(std::chrono::milliseconds longest, const std::function<std::string()>& work) {
    Pipe answer = openPipe();
    if (!answer.readEnd) return std::nullopt;
    const pid_t child = ::fork();
    if (child < 0) return std::nullopt;
    if (child == 0) workInChild(answer.writeEnd, work);
    answer.writeEnd.close();
    auto result = awaitedAnswer(answer.readEnd, longest);
    ::kill(child, SIGKILL);
    while (::waitpid(child, nullptr, 0) < 0 && errno == EINTR) {
    }
    return result;
}

}  // namespace brindlet
