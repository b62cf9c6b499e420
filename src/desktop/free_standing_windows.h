// Stands in for the windows where a program may not see those of others, as on Wayland: the bar then stands free at the
// bottom of the screen, and everything else goes on as ever.
//
//     FreeStandingWindows source([&] { return screenOfTheBar(); });
//     FinderWindowTracker tracker(loop, source, workspace);
#pragma once

#include <functional>
#include <utility>

#include "desktop/file_managers.h"
#include "desktop/prompt_window_geometry.h"
#include "desktop/window_source.h"

namespace brindlet {

class FreeStandingWindows final : public WindowSource {
  public:
    // `screen` has its origin at the top left.
    explicit FreeStandingWindows(std::function<Screen()> screen) : screen_(std::move(screen)) {}

    // One window in the middle, down to the lower edge, as the bar's place is below it but never below the screen. It
    // is the program's own that is in front: a bar that is shown floats.
    WindowsLook look() override {
        const Rectangle visible = screen_().visibleFrame;
        const double width = std::min(barWidth, visible.width - 2 * promptWindowOverhang);
        SeenWindow window{.id = 1, .isFolderWindow = true, .isOnScreen = true};
        window.frame = {visible.x + (visible.width - width) / 2, visible.y, width, visible.height};
        return {.windows = {std::move(window)},
                .frontmost = Application{.name = "Brindlet", .bundleIdentifier = std::string(brindletIdentifier)}};
    }
    std::optional<Failure> watch(std::function<void()>) override { return std::nullopt; }
    bool close(WindowId) override { return false; }
    void activate(WindowId) override {}

  private:
    static constexpr double barWidth = 800;
    std::function<Screen()> screen_;
};

}  // namespace brindlet
