// A loop and workers that do nothing until a test turns the crank: no thread, no clock.
//
//     HandCrankedLoop loop;
//     HandCrankedWorkers workers;
//     flow.submit();
//     workers.crank();   // the model has answered
//     loop.crank();      // and the flow has heard of it
#pragma once

#include <chrono>
#include <deque>
#include <functional>
#include <map>
#include <utility>

#include "platform/main_loop.h"

namespace brindlet {

class HandCrankedLoop final : public MainLoop {
  public:
    void post(std::function<void()> work) override { ready_.push_back(std::move(work)); }
    void postAfter(std::chrono::milliseconds delay, std::function<void()> work) override {
        later_.emplace(now_ + delay, std::move(work));
    }
    // All that is ready, and what comes of it.
    void crank() {
        while (!ready_.empty()) {
            const auto work = std::move(ready_.front());
            ready_.pop_front();
            work();
        }
    }
    void pass(std::chrono::milliseconds time) {
        now_ += time;
        while (!later_.empty() && later_.begin()->first <= now_) {
            post(std::move(later_.begin()->second));
            later_.erase(later_.begin());
        }
        crank();
    }

  private:
    std::deque<std::function<void()>> ready_;
    std::multimap<std::chrono::milliseconds, std::function<void()>> later_;
    std::chrono::milliseconds now_{0};
};

class HandCrankedWorkers final : public Workers {
  public:
    void start(std::function<void()> work) override { waiting_.push_back(std::move(work)); }
    bool hasWork() const { return !waiting_.empty(); }
    // The oldest piece of work, whole.
    void crank() {
        const auto work = std::move(waiting_.front());
        waiting_.pop_front();
        work();
    }

  private:
    std::deque<std::function<void()>> waiting_;
};

}  // namespace brindlet
