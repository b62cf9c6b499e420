// What a window has done on workers, so that it never waits itself, and what it makes of it on the loop's thread.
//
//     Errands errands(loop, workers);
//     errands.queue([&store, key] {
//         auto failure = store.write(account, key);           // on a worker
//         return [this, failure] { show(failure); };          // on the loop's thread, if this is still there
//     });
#pragma once

#include <functional>
#include <memory>

#include "platform/main_loop.h"

namespace brindlet {

// On the loop's thread. What the work uses outlives the workers; what its outcome uses outlives this object.
class Errands {
  public:
    using Outcome = std::function<void()>;  // may be empty
    using Work = std::function<Outcome()>;

    Errands(MainLoop& loop, Workers& workers);
    // What was asked for is still done, but nobody hears of it.
    ~Errands();
    Errands(const Errands&) = delete;
    Errands& operator=(const Errands&) = delete;

    // At once, beside all others.
    void run(Work work);
    // After what was queued before it, so that the later of two writings is the one that stays.
    void queue(Work work);

  private:
    struct State;
    std::shared_ptr<State> state_;
};

}  // namespace brindlet
