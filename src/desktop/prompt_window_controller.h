// Owns the bar's window: keeps it below the file manager's front window, above it only while that or this program is in
// front, and takes it away.
//
//     PromptWindowController controller(surroundings, makeWindow(), {.initiallyMakeKey = true, .onClose = forget});
//     controller.attachWindow(bounds, false);
//     controller.startFollowing(500ms);
#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "desktop/finder_context.h"
#include "desktop/finder_window_tracker.h"
#include "desktop/prompt_window.h"

namespace brindlet {

// What outlives every controller.
struct PromptWindowSurroundings {
    MainLoop& loop;
    FinderWindowTracker& tracker;
    WorkspaceNotifications& workspace;
    FinderContext& finderContext;
    std::function<std::chrono::steady_clock::time_point()> now = [] { return std::chrono::steady_clock::now(); };
};

struct PromptWindowWishes {
    bool initiallyMakeKey = false;
    std::function<void()> onWantsCloseFinderWindow{};
    std::function<void()> onClose{};  // it has folded away and is closed
    std::function<void()> onPressedCloseButton{};
};

// All of it on the loop's thread. It may be destroyed from within its own callbacks; the window goes with it.
class PromptWindowController {
  public:
    PromptWindowController(PromptWindowSurroundings surroundings, std::unique_ptr<PromptWindow> window,
                           PromptWindowWishes wishes);
    ~PromptWindowController();
    PromptWindowController(const PromptWindowController&) = delete;
    PromptWindowController& operator=(const PromptWindowController&) = delete;

    void attachWindow(const Rectangle& finderBounds, bool orderFrontOnly);
    // Sixty times a second until the time is over, which begins anew while it runs; its length stays the first call's.
    void startFollowing(std::chrono::milliseconds duration);
    void updateWindowLevel(std::string_view reason);
    void showWindowIfNeeded(std::string_view reason);
    void hideWindowIfNeeded(std::string_view reason);

    // The view is there, and unfolds.
    void viewDidAppear();
    // The view's close button, and the fold without it.
    void pressCloseButton();
    void animateClosed();
    // The desktop asks the window to close. It mustn't: the file manager's window closes in its place.
    bool windowShouldClose();
    // At once, without folding; no callback hears of it. Closing twice is closing once.
    void close();

    PromptWindowContext& promptWindowContext();
    PromptWindow& window();

  private:
    struct State;
    std::shared_ptr<State> state_;
};

// Whether the bar floats above other windows, and the words that say why.
struct FloatDecision {
    bool floats;
    std::string text;
    bool operator==(const FloatDecision&) const = default;
};
FloatDecision floatDecision(const std::optional<Application>& frontmost, const std::vector<Application>& active);

}  // namespace brindlet
