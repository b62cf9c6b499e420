#include "ui/terminal/interruption.h"

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <system_error>

namespace brindlet {

namespace {

constexpr std::array caughtSignals = {SIGINT, SIGTERM, SIGHUP};

// A handler may do next to nothing: it writes a byte. One pipe carries the signals, the other the watcher's farewell.
std::array<int, 2> signalPipe = {-1, -1};
std::array<int, 2> farewellPipe = {-1, -1};
std::array<struct sigaction, caughtSignals.size()> earlierActions;

void noteSignal(int) {
    const int savedError = errno;
    [[maybe_unused]] const ssize_t written = ::write(signalPipe[1], "!", 1);
    errno = savedError;
}

void openPipe(std::array<int, 2>& ends) {
    if (::pipe2(ends.data(), O_CLOEXEC | O_NONBLOCK) != 0)
        throw std::system_error(errno, std::generic_category(), "pipe");
}

void closePipe(std::array<int, 2>& ends) {
    for (int& end : ends) {
        ::close(end);
        end = -1;
    }
}

// The byte stays in the pipe, so that everybody who polls sees it.
void awaitSignal(std::stop_source& source) {
    std::array<pollfd, 2> watched = {pollfd{signalPipe[0], POLLIN, 0}, pollfd{farewellPipe[0], POLLIN, 0}};
    while (::poll(watched.data(), watched.size(), -1) < 0 && errno == EINTR) {
    }
    if ((watched[0].revents & POLLIN) != 0) source.request_stop();
}

}  // namespace

Interruption::Interruption() {
    openPipe(signalPipe);
    openPipe(farewellPipe);
    watcher_ = std::thread([this] { awaitSignal(source_); });
    struct sigaction action {};
    action.sa_handler = noteSignal;
    action.sa_flags = SA_RESTART;
    for (std::size_t at = 0; at < caughtSignals.size(); ++at) {
        ::sigaction(caughtSignals[at], &action, &earlierActions[at]);
        // What the caller had ignored, as nohup does, stays ignored.
        if (earlierActions[at].sa_handler == SIG_IGN) ::sigaction(caughtSignals[at], &earlierActions[at], nullptr);
    }
}

Interruption::~Interruption() {
    for (std::size_t at = 0; at < caughtSignals.size(); ++at)
        ::sigaction(caughtSignals[at], &earlierActions[at], nullptr);
    [[maybe_unused]] const ssize_t written = ::write(farewellPipe[1], "!", 1);
    watcher_.join();
    closePipe(farewellPipe);
    closePipe(signalPipe);
}

int Interruption::descriptor() const {
    return signalPipe[0];
}

}  // namespace brindlet
