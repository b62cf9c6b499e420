// Follows one child process from its start to its end, in the calling thread: passes its lines on, ticks, and ends it
// with all its children when that is asked for.
//
//     auto status = ChildFollower(**child, [](std::string_view line) { ... }).follow(stop);
//     if (!status) ...  // stopped
#pragma once

#include <chrono>
#include <functional>
#include <optional>
#include <stop_token>
#include <string>
#include <utility>

#include "exec/output_lines.h"
#include "platform/child_process.h"

namespace brindlet {

class ChildFollower {
  public:
    using Clock = std::chrono::steady_clock;
    using Tick = std::function<void(double secondsSinceStart)>;

    // Without `onTick` nothing ticks.
    ChildFollower(ChildProcess& child, LineSplitter::Take onLine, Tick onTick = nullptr,
                  Clock::duration tickInterval = std::chrono::milliseconds{250});

    // As LineSplitter has it.
    void divertOverwritten(LineSplitter::Take take) { lines_.divertOverwritten(std::move(take)); }

    // The exit status; none if `stop` was requested before the end, and then the whole group has been ended: gently,
    // and for good after two seconds. Output of what the child left running is not waited for.
    std::optional<int> follow(const std::stop_token& stop);

  private:
    void readOnce();
    void pauseBriefly();
    std::chrono::milliseconds untilNextTick() const;
    void tickIfDue();
    void endGroup();

    ChildProcess& child_;
    LineSplitter lines_;
    Tick onTick_;
    Clock::duration tickInterval_;
    std::string buffer_;
    bool pipeIsOpen_ = true;
    Clock::duration pause_;
    Clock::time_point start_ = Clock::now();
    Clock::time_point nextTick_;
};

}  // namespace brindlet
