// The bar on the desktop that it runs on: the windows that it follows, the selection that it reads, the page that it
// shows. Where windows can't be followed it stands free at the bottom of the screen.
//
//     BarDesktop desktop(loop, files, selectionReader);
//     FlowHost host(context, loop, {}, {.finderSource = desktop.finderSource()});
//     desktop.begin({.page = page, .frame = frame, .finder = host.finder(), ...});
#pragma once

#include <QPointer>
#include <QQuickWindow>
#include <QSocketNotifier>
#include <QTimer>
#include <functional>
#include <memory>
#include <optional>

#include "desktop/file_manager_source.h"
#include "desktop/linux/answering_process.h"
#include "desktop/linux/x_window_source.h"
#include "desktop/prompt_window_keeper.h"
#include "ui/bar/bar_frame.h"
#include "ui/bar/bar_window.h"
#include "ui/bar/fold_turn.h"

namespace brindlet {

// What outlives it once it has begun.
struct BarDesktopParts {
    BarFrame& frame;
    FinderContext& finder;
    // Made when the bar is first shown.
    std::function<QQuickWindow*()> makePage;
    std::function<bool()> wantsToBeActive;
    std::function<bool()> isTranslucent;
    std::function<void(const FilePath& folder)> openFolder;  // in the file manager
    std::function<void()> onAppear;                          // the bar is there, perhaps again
    std::function<void()> onPressedCloseButton;
    std::function<void()> onDidClose;
};

// All of it on Qt's main thread.
class BarDesktop final {
  public:
    // `reader` answers by selectionAnswer().
    BarDesktop(MainLoop& loop, FileSystem& files, AnsweringProcess& reader);
    ~BarDesktop();
    BarDesktop(const BarDesktop&) = delete;
    BarDesktop& operator=(const BarDesktop&) = delete;

    bool isDocking() const { return xWindows_ != nullptr; }
    FinderSource finderSource();
    // False where the front window doesn't tell what is selected in it.
    bool knowsSelection() const { return source_->knowsSelection(); }
    void handOver(FinderSelection selection);
    // 0: the front window, where that is Nautilus's, whose companion may not know. None: it doesn't know any longer.
    void takeFromCompanion(WindowId window, std::optional<FinderSelection> selection);

    // Before everything below.
    void prepare(BarDesktopParts parts);
    void startFollowing() { keeper_->begin(); }
    // Before the finder goes.
    void end() { keeper_.reset(); }

    FinderWindowTracker& tracker() { return *tracker_; }
    // Nullptr while there is no bar.
    PromptWindowController* bar() { return keeper_ ? keeper_->promptWindowController() : nullptr; }
    void showPromptWindow(bool activate, bool makeKey) { keeper_->showPromptWindow(activate, makeKey); }
    void openHomeFolder();
    void activateProgram();
    void refreshLook();

  private:
    void chooseWindows();
    std::unique_ptr<PromptWindow> makeWindow();
    void followController(PromptWindowController* controller);
    void turnFold();
    void cutToShape();

    FileSystem& files_;
    AnsweringProcess& reader_;
    MainLoop& loop_;
    WorkspaceNotifications workspace_;
    XWindowSource* xWindows_ = nullptr;
    std::unique_ptr<WindowSource> windows_;
    std::unique_ptr<QSocketNotifier> notifier_;
    std::unique_ptr<FinderWindowTracker> tracker_;
    std::shared_ptr<FileManagerSource> source_;
    std::optional<BarDesktopParts> parts_;
    QPointer<QQuickWindow> page_;
    FoldTurn fold_;
    QTimer lookTimer_;
    std::chrono::steady_clock::time_point homeOpenedAt_{};
    std::unique_ptr<PromptWindowKeeper> keeper_;
    std::unique_ptr<QObject> sleepListener_;
    std::shared_ptr<BarDesktop*> self_ = std::make_shared<BarDesktop*>(this);  // for those who may outlive it
};

}  // namespace brindlet
