// The bar's window, as its controller moves it: a page of Qt Quick in a window without a frame of its own.
//
//     auto window = std::make_unique<BarWindow>(page);
//     PromptWindowController controller(surroundings, std::move(window), wishes);
#pragma once

#include <QPointer>
#include <QQuickWindow>
#include <vector>

#include "desktop/prompt_window.h"

namespace brindlet {

class BarWindow final : public PromptWindow {
  public:
    // The page stays when this goes, hidden, for the next one.
    explicit BarWindow(QQuickWindow& page);
    ~BarWindow() override { close(); }

    bool isVisible() const override;
    bool isKey() const override;
    bool isMain() const override { return isKey(); }
    int level() const override { return level_; }
    std::vector<Screen> screens() const override;

    void makeKeyAndOrderFront() override;
    void orderFrontRegardless() override;
    void orderFront() override;
    void orderOut() override;
    void setFrame(const Rectangle& frame) override;
    void setLevel(int level) override;
    void standAbove(WindowId finderWindow) override;
    void close() override;

  private:
    void applyLevel();

    QPointer<QQuickWindow> page_;
    int level_ = normalWindowLevel;
    bool isAboveFinder_ = false;
    QObject connections_;  // end with it
};

// Whether what is transparent shows what lies behind it, and isn't black.
bool hasCompositor();

// Pixels of the X server's as the points of the screen that they are on.
Rectangle pointsOfPixels(const Rectangle& pixels);

}  // namespace brindlet
