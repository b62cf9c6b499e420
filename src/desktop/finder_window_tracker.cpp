#include "desktop/finder_window_tracker.h"

#include <algorithm>
#include <chrono>
#include <utility>

#include "desktop/file_managers.h"
#include "platform/log.h"

namespace brindlet {

namespace {

constexpr std::chrono::milliseconds stageManagerPollInterval{250};
constexpr double leastTrackedSide = 200;

const SeenWindow* windowOf(const WindowsLook& look, WindowId id) {
    const auto found = std::find_if(look.windows.begin(), look.windows.end(),
                                    [&](const SeenWindow& window) { return window.id == id; });
    return found == look.windows.end() ? nullptr : &*found;
}

bool isFolderWindowOf(const WindowsLook& look, WindowId id) {
    const SeenWindow* window = windowOf(look, id);
    return window != nullptr && window->isFolderWindow;
}

bool hasFolderWindows(const WindowsLook& look) {
    return std::any_of(look.windows.begin(), look.windows.end(),
                       [](const SeenWindow& window) { return window.isFolderWindow; });
}

bool isFinderActive(const WindowsLook& look) {
    return look.frontmost && look.frontmost->bundleIdentifier &&
           fileManagerOfIdentifier(*look.frontmost->bundleIdentifier) != nullptr;
}

std::optional<FinderWindowEvent> changeOf(const SeenWindow& before, const SeenWindow& after, bool isSameDesktop) {
    if (before.isMiniaturized != after.isMiniaturized)
        return after.isMiniaturized ? FinderWindowEvent::windowMiniaturized : FinderWindowEvent::windowDeminiaturized;
    if (before.frame.width != after.frame.width || before.frame.height != after.frame.height)
        return FinderWindowEvent::windowResized;
    // A window that went to another desktop has moved there.
    if (before.frame != after.frame || (isSameDesktop && before.isOnScreen != after.isOnScreen))
        return FinderWindowEvent::windowMoved;
    return std::nullopt;
}

bool hasFocusChanged(const WindowsLook& before, const WindowsLook& after) {
    if (before.activeWindow != after.activeWindow && isFinderActive(after)) return true;
    const SeenWindow* frontBefore = frontFolderWindow(before);
    const SeenWindow* frontAfter = frontFolderWindow(after);
    return frontBefore != nullptr && frontAfter != nullptr && frontBefore->id != frontAfter->id;
}

}  // namespace

const SeenWindow* frontFolderWindow(const WindowsLook& look) {
    if (look.isShowingDesktop) return nullptr;
    const auto front = std::find_if(look.windows.begin(), look.windows.end(), [](const SeenWindow& window) {
        return window.isFolderWindow && window.isOnScreen && !window.isMiniaturized;
    });
    return front == look.windows.end() ? nullptr : &*front;
}

std::vector<FinderWindowEvent> finderEventsBetween(const WindowsLook& before, const WindowsLook& after) {
    std::vector<FinderWindowEvent> events;
    const bool isSameDesktop = before.desktop == after.desktop && before.isShowingDesktop == after.isShowingDesktop;
    if (before.isShowingDesktop != after.isShowingDesktop && hasFolderWindows(after))
        events.push_back(after.isShowingDesktop ? FinderWindowEvent::applicationHidden
                                                : FinderWindowEvent::applicationShown);
    for (const SeenWindow& window : before.windows)
        if (window.isFolderWindow && !isFolderWindowOf(after, window.id))
            events.push_back(FinderWindowEvent::windowDestroyed);
    for (const SeenWindow& window : after.windows) {
        if (!window.isFolderWindow) continue;
        if (!isFolderWindowOf(before, window.id)) {
            events.push_back(FinderWindowEvent::windowCreated);
        } else if (const auto change = changeOf(*windowOf(before, window.id), window, isSameDesktop)) {
            events.push_back(*change);
        }
    }
    if (hasFocusChanged(before, after)) events.push_back(FinderWindowEvent::windowFocusChanged);
    return events;
}

std::vector<WorkspaceEvent> workspaceEventsBetween(const WindowsLook& before, const WindowsLook& after) {
    std::vector<WorkspaceEvent> events;
    if (before.desktop != after.desktop) events.push_back(WorkspaceEvent::activeSpaceDidChange);
    if (before.frontmost == after.frontmost) return events;
    if (before.frontmost) events.push_back(WorkspaceEvent::didDeactivateApplication);
    if (after.frontmost) events.push_back(WorkspaceEvent::didActivateApplication);
    return events;
}

struct FinderWindowTracker::State : std::enable_shared_from_this<FinderWindowTracker::State> {
    State(MainLoop& mainLoop, WindowSource& windows, WorkspaceNotifications& notifications)
        : loop(mainLoop), source(windows), workspace(notifications) {}

    MainLoop& loop;
    WindowSource& source;
    WorkspaceNotifications& workspace;
    Handler handler{};
    WindowsLook lastLook{};
    std::optional<Rectangle> cachedWindowBounds{};
    std::size_t pollingTimer = 0;  // the number of the timer that runs; 0: none
    std::size_t timersStarted = 0;
    bool isGone = false;

    void lookAgain() {
        if (isGone) return;
        const WindowsLook before = std::exchange(lastLook, source.look());
        if (before == lastLook) return;
        const WindowsLook after = lastLook;  // a handler may come back here
        for (const WorkspaceEvent event : workspaceEventsBetween(before, after)) workspace.post(event);
        for (const FinderWindowEvent event : finderEventsBetween(before, after)) tell(event);
    }

    void tell(FinderWindowEvent event) {
        if (handler && !isGone) handler(event);
    }

    std::optional<Rectangle> currentBounds() {
        const WindowsLook look = source.look();
        const SeenWindow* front = frontFolderWindow(look);
        if (front == nullptr || std::min(front->frame.width, front->frame.height) < leastTrackedSide)
            return std::nullopt;
        return front->frame;
    }

    void pollTick() {
        const auto current = currentBounds();
        const auto cached = std::exchange(cachedWindowBounds, current);
        if (current == cached) return;
        if (!cached) return tell(FinderWindowEvent::windowCreated);
        tell(current ? FinderWindowEvent::windowMoved : FinderWindowEvent::windowDestroyed);
    }

    void pollLater(std::size_t timer) {
        loop.postAfter(stageManagerPollInterval, [self = shared_from_this(), timer] {
            if (self->isGone || timer != self->pollingTimer) return;
            self->pollTick();
            if (timer == self->pollingTimer) self->pollLater(timer);
        });
    }
};

FinderWindowTracker::FinderWindowTracker(MainLoop& loop, WindowSource& source, WorkspaceNotifications& workspace)
    : state_(std::make_shared<State>(loop, source, workspace)) {}

FinderWindowTracker::~FinderWindowTracker() {
    state_->isGone = true;
}

void FinderWindowTracker::start(Handler handler) {
    if (state_->handler)
        return logError("Can only currently have one FinderWindowObserver observing at a time. TODO: Fix this");
    const auto failure = state_->source.watch([state = std::weak_ptr(state_)] {
        if (const auto self = state.lock()) self->lookAgain();
    });
    if (failure) return logError(failure->description);
    state_->handler = std::move(handler);
    state_->lastLook = state_->source.look();
    refreshStageManagerPolling();
}

void FinderWindowTracker::refreshStageManagerPolling() {
    if (!state_->source.needsPolling()) {
        state_->pollingTimer = 0;
    } else if (state_->pollingTimer == 0) {
        state_->pollingTimer = ++state_->timersStarted;
        state_->pollLater(state_->pollingTimer);
    }
}

std::optional<SeenWindow> FinderWindowTracker::frontFinderWindowElement() {
    const WindowsLook look = state_->source.look();
    const SeenWindow* front = frontFolderWindow(look);
    return front == nullptr ? std::nullopt : std::optional(*front);
}

std::optional<Rectangle> FinderWindowTracker::currentBounds() {
    return state_->currentBounds();
}

std::optional<Application> FinderWindowTracker::frontmostApplication() {
    return state_->source.look().frontmost;
}

bool FinderWindowTracker::isFinderOrBrindletFrontmost() {
    const auto frontmost = frontmostApplication();
    return frontmost && frontmost->bundleIdentifier && isFinderOrBrindlet(*frontmost->bundleIdentifier);
}

bool FinderWindowTracker::isBrindletFrontmost() {
    const auto frontmost = frontmostApplication();
    return frontmost && frontmost->bundleIdentifier == brindletIdentifier;
}

void FinderWindowTracker::closeFrontFinderWindow() {
    const auto front = frontFinderWindowElement();
    if (!front) return logError("No valid Finder window found");
    if (!state_->source.close(front->id)) logError("Failed to get or press close button");
}

void FinderWindowTracker::activateFinder() {
    if (const auto front = frontFinderWindowElement()) state_->source.activate(front->id);
}

void FinderWindowTracker::pollTick() {
    state_->pollTick();
}

}  // namespace brindlet
