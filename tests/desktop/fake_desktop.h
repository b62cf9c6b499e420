// A desktop whose windows a test moves by hand, and a bar's window that writes down what it is told.
//
//     FakeWindows windows;
//     windows.now = lookAt({folderWindow(7, {100, 50, 800, 500})}, 7);
//     windows.tell();
#pragma once

#include <fmt/format.h>

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "desktop/prompt_window.h"
#include "desktop/window_source.h"

namespace brindlet {

inline const Application thunar{"Thunar", "org.xfce.Thunar"};
inline const Application brindletItself{"Brindlet", "com.fenwold.brindlet"};
inline const Application editor{"Editor", "editor"};

inline SeenWindow folderWindow(WindowId id, const Rectangle& frame) {
    return {.id = id, .owner = thunar, .isFolderWindow = true, .isOnScreen = true, .frame = frame};
}

inline WindowsLook lookAt(std::vector<SeenWindow> windows, WindowId active = 0) {
    WindowsLook look{.windows = std::move(windows), .activeWindow = active, .desktop = 0};
    for (const SeenWindow& window : look.windows)
        if (window.id == active) look.frontmost = window.owner;
    return look;
}

class FakeWindows final : public WindowSource {
  public:
    WindowsLook now{};
    bool isPolled = false;
    std::string log{};

    void tell() const {
        if (onChange_) onChange_();
    }
    WindowsLook look() override { return now; }
    std::optional<Failure> watch(std::function<void()> onChange) override {
        onChange_ = std::move(onChange);
        return std::nullopt;
    }
    bool needsPolling() override { return isPolled; }
    bool close(WindowId window) override {
        log += fmt::format("close {} ", window);
        return true;
    }
    void activate(WindowId window) override { log += fmt::format("activate {} ", window); }

  private:
    std::function<void()> onChange_;
};

// Its log outlives it.
class FakePromptWindow final : public PromptWindow {
  public:
    explicit FakePromptWindow(std::string& log) : log_(log) {}

    bool isVisible() const override { return isVisible_; }
    bool isKey() const override { return false; }
    bool isMain() const override { return false; }
    int level() const override { return level_; }
    std::vector<Screen> screens() const override { return {{{0, 0, 1280, 900}, {0, 0, 1280, 870}}}; }

    void makeKeyAndOrderFront() override { show("key "); }
    void orderFrontRegardless() override { show("show "); }
    void orderFront() override { show("front "); }
    void orderOut() override {
        isVisible_ = false;
        log_ += "hide ";
    }
    void setFrame(const Rectangle& frame) override {
        log_ += fmt::format("at {},{} {}x{} ", frame.x, frame.y, frame.width, frame.height);
    }
    void setLevel(int level) override {
        level_ = level;
        log_ += fmt::format("level {} ", level);
    }
    void standAbove(WindowId window) override { log_ += fmt::format("above {} ", window); }
    void close() override {
        isVisible_ = false;
        log_ += "close ";
    }

  private:
    void show(const char* how) {
        isVisible_ = true;
        log_ += how;
    }

    std::string& log_;
    bool isVisible_ = false;
    int level_ = normalWindowLevel;
};

}  // namespace brindlet
