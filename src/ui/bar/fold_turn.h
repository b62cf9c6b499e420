// Turns the bar about its upper edge when it unfolds and folds away, a step a frame.
//
//     FoldTurn fold([&](double degrees, double opacity) { ... });
//     fold.turnTo(foldOf(true));
#pragma once

#include <QElapsedTimer>
#include <QTimer>
#include <functional>

#include "desktop/prompt_window_geometry.h"

namespace brindlet {

class FoldTurn final {
  public:
    explicit FoldTurn(std::function<void(double degrees, double opacity)> show);

    // At once, without a way there.
    void jumpTo(const Fold& fold);
    void turnTo(const Fold& fold);

  private:
    void step();

    std::function<void(double, double)> show_;
    QTimer timer_;
    QElapsedTimer clock_;
    Fold target_;
    double degrees_ = 0, opacity_ = 1;          // now
    double fromDegrees_ = 0, fromOpacity_ = 1;  // where the way began
};

}  // namespace brindlet
