#include "ui/errands.h"

#include <deque>
#include <mutex>
#include <optional>
#include <utility>

namespace brindlet {

struct Errands::State : std::enable_shared_from_this<Errands::State> {
    State(MainLoop& mainLoop, Workers& threads) : loop(mainLoop), workers(threads) {}

    MainLoop& loop;
    Workers& workers;
    bool isGone = false;  // of the loop's thread

    std::mutex guard{};  // of the two below
    std::deque<Work> waiting{};
    bool isAtWork = false;

    void perform(const Work& work) {
        Outcome outcome = work();
        if (!outcome) return;
        loop.post([self = shared_from_this(), outcome = std::move(outcome)] {
            if (!self->isGone) outcome();
        });
    }

    std::optional<Work> next() {
        const std::lock_guard lock(guard);
        isAtWork = !waiting.empty();
        if (!isAtWork) return std::nullopt;
        Work work = std::move(waiting.front());
        waiting.pop_front();
        return work;
    }
};

Errands::Errands(MainLoop& loop, Workers& workers) : state_(std::make_shared<State>(loop, workers)) {}

Errands::~Errands() {
    state_->isGone = true;
}

void Errands::run(Work work) {
    state_->workers.start([state = state_, work = std::move(work)] { state->perform(work); });
}

void Errands::queue(Work work) {
    {
        const std::lock_guard lock(state_->guard);
        state_->waiting.push_back(std::move(work));
        if (std::exchange(state_->isAtWork, true)) return;
    }
    state_->workers.start([state = state_] {
        while (const auto piece = state->next()) state->perform(*piece);
    });
}

}  // namespace brindlet
