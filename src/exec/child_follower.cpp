#include "exec/child_follower.h"

#include <algorithm>
#include <thread>
#include <utility>

namespace brindlet {

namespace {

using namespace std::chrono_literals;

// How long a reading or a pause may last, and so how late a request to stop may be noticed.
constexpr std::chrono::milliseconds followerPatience = 40ms;
constexpr ChildFollower::Clock::duration shortestPause = 200us;
constexpr ChildFollower::Clock::duration longestPause = 10ms;
// A child in the background may hold the pipe for as long as it likes.
constexpr ChildFollower::Clock::duration longestDrain = 1s;
constexpr ChildFollower::Clock::duration gentleEndLimit = 2s;
constexpr ChildFollower::Clock::duration lastMoment = 200ms;

}  // namespace

ChildFollower::ChildFollower(ChildProcess& child, LineSplitter::Take onLine, Tick onTick, Clock::duration tickInterval)
    : child_(child),
      lines_(std::move(onLine)),
      onTick_(std::move(onTick)),
      tickInterval_(tickInterval),
      pause_(shortestPause),
      nextTick_(start_ + tickInterval) {}

std::optional<int> ChildFollower::follow(const std::stop_token& stop) {
    std::optional<int> status;
    Clock::time_point drainEnd = Clock::time_point::max();
    while (!stop.stop_requested()) {
        if (pipeIsOpen_) {
            readOnce();
        } else {
            pauseBriefly();
        }
        tickIfDue();
        if (!status && (status = child_.exitStatus())) drainEnd = Clock::now() + longestDrain;
        if (status && (!pipeIsOpen_ || Clock::now() >= drainEnd)) {
            lines_.finish();
            return status;
        }
    }
    endGroup();
    return std::nullopt;
}

void ChildFollower::readOnce() {
    const ReadState state = child_.read(buffer_, std::min(followerPatience, untilNextTick()));
    lines_.feed(buffer_);
    buffer_.clear();
    pipeIsOpen_ = state != ReadState::ended;
}

// The pipe is mostly closed by the exit itself, so that the first pauses are short.
void ChildFollower::pauseBriefly() {
    std::this_thread::sleep_for(pause_);
    pause_ = std::min(pause_ * 2, longestPause);
}

std::chrono::milliseconds ChildFollower::untilNextTick() const {
    if (!onTick_) return followerPatience;
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(nextTick_ - Clock::now());
    return std::max(left, 0ms);
}

void ChildFollower::tickIfDue() {
    if (!onTick_ || Clock::now() < nextTick_) return;
    onTick_(std::chrono::duration<double>(Clock::now() - start_).count());
    nextTick_ = Clock::now() + tickInterval_;
}

// Gently, then for good. Bash itself mostly ends at once, and its pipe with it; a tool whose output goes to a file may
// still be busy making that file whole, and gets a moment for it.
void ChildFollower::endGroup() {
    child_.terminateGroup(true);
    Clock::time_point limit = Clock::now() + gentleEndLimit;
    bool isLastMoment = false;
    while (Clock::now() < limit) {
        if (pipeIsOpen_) {
            pipeIsOpen_ = child_.read(buffer_, followerPatience) != ReadState::ended;
            buffer_.clear();
            continue;
        }
        if (!isLastMoment && child_.exitStatus()) {
            isLastMoment = true;
            limit = std::min(limit, Clock::now() + lastMoment);
        }
        pauseBriefly();
    }
    child_.terminateGroup(false);
    child_.waitForExit();
}

}  // namespace brindlet
