#include <poll.h>
#include <sys/eventfd.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <deque>
#include <system_error>
#include <thread>
#include <utility>

#include "platform/linux/file_descriptor.h"
#include "platform/main_loop.h"

namespace brindlet {

namespace {

using LoopClock = std::chrono::steady_clock;

}  // namespace

struct PollLoop::State {
    FileDescriptor wakeUp{::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)};
    std::mutex guard;
    std::deque<std::function<void()>> ready;
    std::multimap<LoopClock::time_point, std::function<void()>> later;
    std::map<int, std::function<void()>> watched;

    // None: nothing is due now.
    std::function<void()> next() {
        const std::lock_guard lock(guard);
        while (!later.empty() && later.begin()->first <= LoopClock::now()) {
            ready.push_back(std::move(later.begin()->second));
            later.erase(later.begin());
        }
        if (ready.empty()) return nullptr;
        std::function<void()> work = std::move(ready.front());
        ready.pop_front();
        return work;
    }

    int patience() {
        const std::lock_guard lock(guard);
        if (!ready.empty()) return 0;
        if (later.empty()) return -1;
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(later.begin()->first - LoopClock::now());
        return static_cast<int>(std::clamp<std::int64_t>(left.count(), 0, 60'000));
    }

    void wait() {
        std::vector<pollfd> descriptors = {{wakeUp.number(), POLLIN, 0}};
        for (const auto& [descriptor, onReadable] : watched) descriptors.push_back({descriptor, POLLIN, 0});
        if (::poll(descriptors.data(), descriptors.size(), patience()) <= 0) return;
        std::uint64_t count = 0;
        [[maybe_unused]] const ssize_t read = ::read(wakeUp.number(), &count, sizeof count);
        for (std::size_t at = 1; at < descriptors.size(); ++at) {
            const auto watcher = watched.find(descriptors[at].fd);
            if (descriptors[at].revents == 0 || watcher == watched.end()) continue;
            const auto onReadable = watcher->second;  // it may end its own watch
            onReadable();
        }
    }
};

PollLoop::PollLoop() : state_(std::make_unique<State>()) {
    if (!state_->wakeUp) throw std::system_error(errno, std::generic_category(), "eventfd");
}

PollLoop::~PollLoop() = default;

void PollLoop::post(std::function<void()> work) {
    {
        const std::lock_guard lock(state_->guard);
        state_->ready.push_back(std::move(work));
    }
    const std::uint64_t one = 1;
    [[maybe_unused]] const ssize_t written = ::write(state_->wakeUp.number(), &one, sizeof one);
}

void PollLoop::postAfter(std::chrono::milliseconds delay, std::function<void()> work) {
    {
        const std::lock_guard lock(state_->guard);
        state_->later.emplace(LoopClock::now() + delay, std::move(work));
    }
    post([] {});  // the wait has a new end
}

void PollLoop::watch(int descriptor, std::function<void()> onReadable) {
    if (onReadable)
        state_->watched[descriptor] = std::move(onReadable);
    else
        state_->watched.erase(descriptor);
}

void PollLoop::runUntil(const std::function<bool()>& isDone) {
    while (!isDone()) {
        if (auto work = state_->next()) {
            work();
            if (isDone()) return;
        }
        state_->wait();  // not at all while there is work: a flood of it must not keep what is watched waiting
    }
}

ThreadWorkers::~ThreadWorkers() {
    std::unique_lock lock(guard_);
    ended_.wait(lock, [this] { return running_ == 0; });
}

void ThreadWorkers::start(std::function<void()> work) {
    const std::lock_guard lock(guard_);
    std::thread([this, work = std::move(work)]() mutable {
        work();
        work = nullptr;  // what it holds goes before the end is told
        const std::lock_guard ending(guard_);
        --running_;
        ended_.notify_all();
    }).detach();
    ++running_;  // a thread that can't be had throws, and nobody waits for it
}

}  // namespace brindlet
