// One row at the bottom of a terminal that shows how far a run is: a bar, and what the tool says.
//
//     [#########.............]  41%  frame= 250 fps=31 time=00:00:10.00
//
//     ProgressLine line(STDOUT_FILENO);
//     line.show(ProgressNorm{0.41});
//     line.hide();      // before anything else is written there
//     line.resume();    // afterwards
#pragma once

#include <chrono>
#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "exec/command_runner.h"

namespace brindlet {

// Drawn only once the run takes long enough for it to be read, and not more often than an eye can follow. The row is
// gone when its owner is, however that comes about. The terminal itself is left in its ordinary state throughout.
class ProgressLine {
  public:
    using Clock = std::function<std::chrono::steady_clock::time_point()>;

    // Whether rows can be drawn over on what `descriptor` is.
    static bool canBeShownOn(int descriptor);

    // Without a clock: the steady one.
    explicit ProgressLine(int descriptor, Clock clock = nullptr);
    ~ProgressLine() { hide(); }
    ProgressLine(const ProgressLine&) = delete;
    ProgressLine& operator=(const ProgressLine&) = delete;

    void show(const CommandProgress& progress);
    // Some time has passed: a bar without a fraction moves.
    void turn();
    void hide();
    void resume();

    // What a row of at most `columns` shows. `turn` moves the bar where there is no fraction.
    static std::string row(std::optional<double> fraction, std::string_view status, std::size_t turn,
                           std::size_t columns);

  private:
    void drawIfDue();

    int descriptor_;
    Clock clock_;
    std::chrono::steady_clock::time_point due_;
    std::optional<double> fraction_;
    std::string status_;
    std::size_t turn_ = 0;
    bool isDrawn_ = false;
};

}  // namespace brindlet
