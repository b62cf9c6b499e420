// The one thread that everything observable belongs to, and the threads beside it for long work.
//
//     PollLoop loop;
//     ThreadWorkers workers;
//     workers.start([&] { auto answer = ask(); loop.post([&, answer] { show(answer); }); });
//     loop.runUntil([&] { return isShown; });
#pragma once

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <vector>

namespace brindlet {

struct MainLoop {
    virtual ~MainLoop() = default;
    // From any thread: `work` is done by the loop, in the order of the calls.
    virtual void post(std::function<void()> work) = 0;
    // The same once the time is over.
    virtual void postAfter(std::chrono::milliseconds delay, std::function<void()> work) = 0;
};

struct Workers {
    virtual ~Workers() = default;
    // `work` is done on a thread of its own. It must not throw.
    virtual void start(std::function<void()> work) = 0;
};

// The loop of a program in a terminal.
class PollLoop final : public MainLoop {
  public:
    PollLoop();
    ~PollLoop() override;
    PollLoop(const PollLoop&) = delete;
    PollLoop& operator=(const PollLoop&) = delete;

    void post(std::function<void()> work) override;
    void postAfter(std::chrono::milliseconds delay, std::function<void()> work) override;

    // `onReadable` is called while the descriptor can be read or has ended; an empty one ends the watch. Only from the
    // loop's own thread.
    void watch(int descriptor, std::function<void()> onReadable);

    // Does what is posted until `isDone` says so, which is asked after each piece of work.
    void runUntil(const std::function<bool()>& isDone);

  private:
    struct State;
    std::unique_ptr<State> state_;
};

// Waits for all of them at its end, so that what they use may go afterwards.
class ThreadWorkers final : public Workers {
  public:
    ThreadWorkers() = default;
    ~ThreadWorkers() override;
    ThreadWorkers(const ThreadWorkers&) = delete;
    ThreadWorkers& operator=(const ThreadWorkers&) = delete;

    void start(std::function<void()> work) override;

  private:
    std::mutex guard_;
    std::condition_variable ended_;
    std::size_t running_ = 0;
};

}  // namespace brindlet
