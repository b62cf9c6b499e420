#include "ui/bar/fold_turn.h"

#include <algorithm>
#include <chrono>
#include <utility>

#include "text/overloaded.h"

namespace brindlet {

namespace {

using namespace std::chrono_literals;

constexpr auto frameInterval = 16ms;

// When the way is over, to the eye.
double lengthOf(const brindlet::FoldAnimation& animation) {
    return std::visit(Overloaded{[](const Spring& spring) { return 4 * spring.response; },
                                 [](const EaseIn& ease) { return ease.seconds; }},
                      animation);
}

}  // namespace

FoldTurn::FoldTurn(std::function<void(double, double)> show) : show_(std::move(show)), target_(foldOf(true)) {
    timer_.setTimerType(Qt::PreciseTimer);
    QObject::connect(&timer_, &QTimer::timeout, [this] { step(); });
}

void FoldTurn::jumpTo(const Fold& fold) {
    timer_.stop();
    target_ = fold;
    degrees_ = fold.degrees;
    opacity_ = fold.opacity;
    show_(degrees_, opacity_);
}

void FoldTurn::turnTo(const Fold& fold) {
    target_ = fold;
    fromDegrees_ = degrees_;
    fromOpacity_ = opacity_;
    clock_.start();
    timer_.start(frameInterval);
}

void FoldTurn::step() {
    const double seconds = static_cast<double>(clock_.elapsed()) / 1000;
    if (seconds >= lengthOf(target_.animation)) return jumpTo(target_);
    const double done = progressOf(target_.animation, seconds);
    degrees_ = fromDegrees_ + (target_.degrees - fromDegrees_) * done;
    opacity_ = std::clamp(fromOpacity_ + (target_.opacity - fromOpacity_) * done, 0.0, 1.0);
    show_(degrees_, opacity_);
}

}  // namespace brindlet
