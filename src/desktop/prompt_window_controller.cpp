#include "desktop/prompt_window_controller.h"

#include <fmt/format.h>

#include <utility>

#include "desktop/file_managers.h"
#include "platform/log.h"
#include "text/enum_rows.h"
#include "text/strings.h"

namespace brindlet {

namespace {

using namespace std::chrono_literals;
using ControllerTime = std::chrono::steady_clock::time_point;

constexpr auto followInterval = 17ms;  // the sixtieth of a second
constexpr auto firstFollowing = 500ms;
constexpr auto levelPollInterval = 2000ms;
constexpr auto closingTime = 300ms;

struct WorkspaceEventRow {
    WorkspaceEvent key;
    std::string_view reason;
    bool isAppSwitch;
};
constexpr WorkspaceEventRow workspaceEventRows[] = {
    {WorkspaceEvent::didActivateApplication, "didActivateApplication", true},
    {WorkspaceEvent::didDeactivateApplication, "didDeactivateApplication", true},
    {WorkspaceEvent::activeSpaceDidChange, "activeSpaceDidChange", true},
    {WorkspaceEvent::willSleep, "willSleep", false},
    {WorkspaceEvent::didWake, "didWake", false},
    {WorkspaceEvent::screensDidWake, "screensDidWake", false},
    {WorkspaceEvent::screensDidSleep, "screensDidSleep", false},
};
static_assert(rowsCover(workspaceEventRows, WorkspaceEvent::screensDidSleep));

std::string levelName(int level) {
    if (level == floatingWindowLevel) return "floating";
    return level == normalWindowLevel ? "normal" : fmt::format("other({})", level);
}

std::string identifierOf(const Application& application) {
    return application.bundleIdentifier.value_or("nil");
}

}  // namespace

FloatDecision floatDecision(const std::optional<Application>& frontmost, const std::vector<Application>& active) {
    std::vector<std::string> identifiers;
    for (const Application& application : active)
        if (application.bundleIdentifier) identifiers.push_back(*application.bundleIdentifier);
    const std::string activeApps = joined(identifiers, ",");
    if (frontmost)
        return {frontmost->bundleIdentifier && isFinderOrBrindlet(*frontmost->bundleIdentifier),
                fmt::format("frontmost={} activeApps={}", identifierOf(*frontmost), activeApps)};
    if (active.empty()) return {false, "noFrontmostOrActive"};
    return {namesFinderOrBrindlet(activeApps), "activeApps=" + activeApps};
}

struct PromptWindowController::State : std::enable_shared_from_this<PromptWindowController::State> {
    State(PromptWindowSurroundings around, std::unique_ptr<PromptWindow> shown, PromptWindowWishes given)
        : surroundings(std::move(around)), window(std::move(shown)), wishes(std::move(given)) {}

    PromptWindowSurroundings surroundings;
    std::unique_ptr<PromptWindow> window;
    PromptWindowWishes wishes;
    PromptWindowContext context{};
    std::optional<ControllerTime> moveAnimStartTime{};
    std::optional<std::chrono::milliseconds> updateTimer{};  // the duration that its first call gave
    std::size_t levelCheckTimer = 0;                         // the number of the poll that runs; 0: none
    std::size_t levelPollsStarted = 0;
    WorkspaceNotifications::Token appSwitchObservers{};
    WorkspaceNotifications::Token sleepWakeObservers{};
    WindowId finderWindow = 0;
    bool isFolding = false;
    bool isClosed = false;

    // `work` after the time, unless the window has closed by then.
    void after(std::chrono::milliseconds delay, std::function<void(State&)> work) {
        surroundings.loop.postAfter(delay, [weak = weak_from_this(), work = std::move(work)] {
            if (const auto self = weak.lock(); self && !self->isClosed) work(*self);
        });
    }

    void begin() {
        context.onDidAnimateClosed = [this] {
            close();
            if (wishes.onClose) wishes.onClose();
        };
        context.onPressedCloseButton = wishes.onPressedCloseButton;
        if (wishes.initiallyMakeKey) {
            window->makeKeyAndOrderFront();
        } else {
            window->orderFrontRegardless();
        }
        if (const auto bounds = surroundings.tracker.currentBounds()) attachWindow(*bounds, false);
        startFollowing(firstFollowing);
        observeAppSwitches();
        observeSleepAndWake();
        restartLevelPoll();
        surroundings.finderContext.start();
    }

    WorkspaceNotifications::Token observe(bool appSwitches) {
        return surroundings.workspace.observe([weak = weak_from_this(), appSwitches](WorkspaceEvent event) {
            const auto self = weak.lock();
            if (self && !self->isClosed && rowOf(workspaceEventRows, event).isAppSwitch == appSwitches)
                self->handle(event);
        });
    }
    void observeAppSwitches() { appSwitchObservers = observe(true); }
    void observeSleepAndWake() { sleepWakeObservers = observe(false); }

    void handle(WorkspaceEvent event) {
        if (event != WorkspaceEvent::didWake) return updateWindowLevel(rowOf(workspaceEventRows, event).reason);
        logInfo("PromptWindowController: didWake");
        observeAppSwitches();
        restartLevelPoll();
        updateWindowLevel("didWake-immediate");
        after(500ms, [](State& self) { self.updateWindowLevel("didWake-delayed-0.5s"); });
        after(2000ms, [](State& self) { self.updateWindowLevel("didWake-delayed-2s"); });
    }

    void attachWindow(const Rectangle& finderBounds, bool orderFrontOnly) {
        if (isClosed) return;
        if (orderFrontOnly) {
            const bool wasVisible = window->isVisible();
            window->orderFront();
            if (!wasVisible) cameBack();
        } else {
            showWindowIfNeeded("attachWindow");
        }
        standAboveFinder();
        if (const auto frame = promptWindowFrameFromTop(finderBounds, window->screens())) {
            window->setFrame(*frame);
            if (std::exchange(context.windowWidth, frame->width) != frame->width) changed();
        }
        updateWindowLevel("attachWindow");
    }

    void standAboveFinder() {
        const auto front = surroundings.tracker.frontFinderWindowElement();
        if (front && std::exchange(finderWindow, front->id) != front->id) window->standAbove(front->id);
    }

    void startFollowing(std::chrono::milliseconds duration) {
        if (isClosed) return;
        moveAnimStartTime = surroundings.now();
        if (std::exchange(updateTimer, updateTimer.value_or(duration))) return;
        after(followInterval, &State::follow);
    }

    void follow() {
        if (const auto bounds = surroundings.tracker.currentBounds()) {
            attachWindow(*bounds, false);
        } else {
            hideWindowIfNeeded("noFinderWindow");
        }
        const bool isOver = !moveAnimStartTime || surroundings.now() - *moveAnimStartTime >= *updateTimer;
        if (!isOver) return after(followInterval, &State::follow);
        updateTimer.reset();
        moveAnimStartTime.reset();
    }

    void showWindowIfNeeded(std::string_view reason) {
        if (isClosed || window->isVisible()) return;
        logInfo(
            fmt::format("PromptWindowController: showWindowIfNeeded({}) ordering front. {}", reason, description()));
        window->orderFrontRegardless();
        cameBack();
    }

    void cameBack() {
        finderWindow = 0;  // a window may lose such ties while it is hidden
        restartLevelPoll();
    }

    void hideWindowIfNeeded(std::string_view reason) {
        if (isClosed || !window->isVisible()) return;
        logInfo(fmt::format("PromptWindowController: hideWindowIfNeeded({}) ordering out. {}", reason, description()));
        window->orderOut();
        levelCheckTimer = 0;
    }

    FloatDecision decision() const {
        const auto frontmost = surroundings.tracker.frontmostApplication();
        return floatDecision(frontmost, frontmost ? std::vector{*frontmost} : std::vector<Application>{});
    }

    void updateWindowLevel(std::string_view reason) {
        if (isClosed) return;
        const FloatDecision decided = decision();
        const int target = decided.floats ? floatingWindowLevel : normalWindowLevel;
        const int level = window->level();
        if (level == target) return;
        window->setLevel(target);
        if (reason != "poll") return;
        logInfo(fmt::format("PromptWindowController: poll detected mismatch {} -> {}. decision={}. {}",
                            levelName(level), levelName(target), decided.text, description()));
        observeAppSwitches();  // word of the change was missed
    }

    void restartLevelPoll() {
        levelCheckTimer = window->isVisible() ? ++levelPollsStarted : 0;
        if (levelCheckTimer != 0) pollLevelLater(levelCheckTimer);
    }

    void pollLevelLater(std::size_t timer) {
        after(levelPollInterval, [timer](State& self) {
            if (timer != self.levelCheckTimer) return;
            self.updateWindowLevel("poll");
            self.pollLevelLater(timer);
        });
    }

    std::string description() const {
        const auto frontmost = surroundings.tracker.frontmostApplication();
        const std::string identifier = frontmost ? identifierOf(*frontmost) : "nil";
        const bool isBrindletActive = identifier == brindletIdentifier;
        return fmt::format(
            "window key={} main={} visible={}, app active={}, frontmost name={} identifier={}, Finder active={} "
            "Brindlet active={}",
            window->isKey(), window->isMain(), window->isVisible(), isBrindletActive,
            frontmost ? frontmost->name : "nil", identifier, fileManagerOfIdentifier(identifier) != nullptr,
            isBrindletActive);
    }

    void viewDidAppear() {
        if (isFolding || std::exchange(context.flippedOpen, true)) return;
        changed();
    }

    void animateClosed() {
        context.shouldAnimateClosed = true;
        if (isClosed || std::exchange(isFolding, true)) return;
        context.flippedOpen = false;
        changed();
        after(closingTime, [](State& self) { self.context.onDidAnimateClosed(); });
    }

    void close() {
        if (std::exchange(isClosed, true)) return;
        logInfo("PromptWindowController: windowWillClose - tearing down observers/timers");
        appSwitchObservers.reset();
        sleepWakeObservers.reset();
        levelCheckTimer = 0;
        surroundings.finderContext.stop();
        window->close();
    }

    void changed() {
        if (context.onChange) context.onChange();
    }
};

PromptWindowController::PromptWindowController(PromptWindowSurroundings surroundings,
                                               std::unique_ptr<PromptWindow> window, PromptWindowWishes wishes)
    : state_(std::make_shared<State>(std::move(surroundings), std::move(window), std::move(wishes))) {
    state_->begin();
}

PromptWindowController::~PromptWindowController() {
    state_->close();
}

void PromptWindowController::attachWindow(const Rectangle& finderBounds, bool orderFrontOnly) {
    state_->attachWindow(finderBounds, orderFrontOnly);
}

void PromptWindowController::startFollowing(std::chrono::milliseconds duration) {
    state_->startFollowing(duration);
}

void PromptWindowController::updateWindowLevel(std::string_view reason) {
    state_->updateWindowLevel(reason);
}

void PromptWindowController::showWindowIfNeeded(std::string_view reason) {
    state_->showWindowIfNeeded(reason);
}

void PromptWindowController::hideWindowIfNeeded(std::string_view reason) {
    state_->hideWindowIfNeeded(reason);
}

void PromptWindowController::viewDidAppear() {
    state_->viewDidAppear();
}

void PromptWindowController::pressCloseButton() {
    const auto state = state_;  // the callback may end this
    if (state->isClosed || state->isFolding) return;
    if (state->context.onPressedCloseButton) state->context.onPressedCloseButton();
    state->animateClosed();
}

void PromptWindowController::animateClosed() {
    state_->animateClosed();
}

bool PromptWindowController::windowShouldClose() {
    if (state_->wishes.onWantsCloseFinderWindow) state_->wishes.onWantsCloseFinderWindow();
    return false;
}

void PromptWindowController::close() {
    state_->close();
}

PromptWindowContext& PromptWindowController::promptWindowContext() {
    return state_->context;
}

PromptWindow& PromptWindowController::window() {
    return *state_->window;
}

}  // namespace brindlet
