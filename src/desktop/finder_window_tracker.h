// Tells when the front window of the file manager appears, moves, changes or goes away, and where it is.
//
//     FinderWindowTracker tracker(loop, source, workspace);
//     tracker.start([&](FinderWindowEvent event) { keeper.handleFinderEvent(event); });
//     if (auto bounds = tracker.currentBounds()) ...
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <vector>

#include "desktop/window_source.h"
#include "desktop/workspace_notifications.h"
#include "platform/main_loop.h"

namespace brindlet {

enum class FinderWindowEvent {
    windowCreated,
    windowMoved,
    windowResized,
    windowDestroyed,
    windowFocusChanged,
    windowMiniaturized,
    windowDeminiaturized,
    applicationHidden,
    applicationShown,
};

// What happened to the file managers' windows, and to the desktop, between two looks. Windows that come and go with the
// desktop that they are on have not changed: that is told of the desktop.
std::vector<FinderWindowEvent> finderEventsBetween(const WindowsLook& before, const WindowsLook& after);
std::vector<WorkspaceEvent> workspaceEventsBetween(const WindowsLook& before, const WindowsLook& after);

// All of it on the loop's thread. Every question is a new look, so that its answer is never old.
class FinderWindowTracker {
  public:
    using Handler = std::function<void(FinderWindowEvent)>;

    FinderWindowTracker(MainLoop& loop, WindowSource& source, WorkspaceNotifications& workspace);
    ~FinderWindowTracker();
    FinderWindowTracker(const FinderWindowTracker&) = delete;
    FinderWindowTracker& operator=(const FinderWindowTracker&) = delete;

    // Once. Where windows can't be watched that goes to the log, and no event ever comes.
    void start(Handler handler);
    // Looks four times a second from now on, or no longer, as the source needs it.
    void refreshStageManagerPolling();

    std::optional<SeenWindow> frontFinderWindowElement();
    // None also where the front window is too small for a bar below it.
    std::optional<Rectangle> currentBounds();
    std::optional<Application> frontmostApplication();
    bool isFinderOrBrindletFrontmost();
    bool isBrindletFrontmost();
    void closeFrontFinderWindow();
    // The keyboard goes to the front window of the file manager.
    void activateFinder();

    // One round of the polling: an event where the bounds are others than at the round before.
    void pollTick();

  private:
    struct State;
    std::shared_ptr<State> state_;
};

}  // namespace brindlet
