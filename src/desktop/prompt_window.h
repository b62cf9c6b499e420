// The bar's window as its controller sees it: a front end shows it, the controller says when, where and how high.
//
//     window.orderFrontRegardless();
//     window.setFrame({70, 538, 860, 85});
//     window.setLevel(floatingWindowLevel);
#pragma once

#include <functional>
#include <vector>

#include "desktop/prompt_window_geometry.h"
#include "desktop/window_source.h"

namespace brindlet {

inline constexpr int normalWindowLevel = 0;
inline constexpr int floatingWindowLevel = 3;

// A new one is 800 wide and `promptWindowHeight` high, has no frame of its own, and isn't shown yet.
struct PromptWindow {
    virtual ~PromptWindow() = default;

    virtual bool isVisible() const = 0;
    virtual bool isKey() const = 0;
    virtual bool isMain() const = 0;
    virtual int level() const = 0;
    // With their origin at the top left of the screen at (0, 0), as the window's frame.
    virtual std::vector<Screen> screens() const = 0;

    // Shown, raised, and with the keyboard; shown and raised, and the keyboard stays where it is; raised if this
    // program or the file manager is in front.
    virtual void makeKeyAndOrderFront() = 0;
    virtual void orderFrontRegardless() = 0;
    virtual void orderFront() = 0;
    virtual void orderOut() = 0;

    virtual void setFrame(const Rectangle& frame) = 0;
    virtual void setLevel(int level) = 0;
    // From now on it stays right above this one, whatever its level.
    virtual void standAbove(WindowId finderWindow) = 0;
    // For good.
    virtual void close() = 0;
};

// What the controller shares with the view in the window.
struct PromptWindowContext {
    double windowWidth = 800;
    bool flippedOpen = false;  // the view shows it as foldOf() has it
    bool shouldAnimateClosed = false;
    std::function<void()> onDidAnimateClosed{};
    std::function<void()> onPressedCloseButton{};
    // Called when one of the first two has another value.
    std::function<void()> onChange{};
};

}  // namespace brindlet
