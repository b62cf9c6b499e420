#include "desktop/finder_window_tracker.h"

#include <gtest/gtest.h>

#include "desktop/fake_desktop.h"
#include "desktop/free_standing_windows.h"
#include "fakes/hand_cranked.h"
#include "platform/log.h"

namespace brindlet::finder_window_tracker_tests {

using namespace std::chrono_literals;
using Event = FinderWindowEvent;

SeenWindow with(SeenWindow window, void (*change)(SeenWindow&)) {
    change(window);
    return window;
}

const SeenWindow one = folderWindow(1, {0, 0, 800, 500});
const SeenWindow two = folderWindow(2, {50, 50, 400, 300});
const SeenWindow dialog{.id = 8, .owner = thunar};
const SeenWindow text{.id = 9, .owner = editor};
const SeenWindow oneHidden = with(one, [](SeenWindow& window) { window.isMiniaturized = true; });
const SeenWindow oneElsewhere = with(one, [](SeenWindow& window) { window.isOnScreen = false; });
const SeenWindow oneMoved = with(one, [](SeenWindow& window) { window.frame.x = 7; });
const SeenWindow oneResized = with(oneMoved, [](SeenWindow& window) { window.frame.height = 400; });

WindowsLook on(std::uint32_t desktop, WindowsLook look) {
    look.desktop = desktop;
    return look;
}
WindowsLook cleared(WindowsLook look) {
    look.isShowingDesktop = true;
    return look;
}

TEST(FinderWindowTracker, TellsEventsFromTwoLooks) {
    struct Case {
        const char* what;
        WindowsLook before, after;
        std::vector<Event> events;
    };
    const Case cases[] = {
        {"nothing", lookAt({one, text}, 1), lookAt({one, text}, 1), {}},
        {"a new window", lookAt({text}, 9), lookAt({one, text}, 1), {Event::windowCreated, Event::windowFocusChanged}},
        {"an editor's window", lookAt({one}, 1), lookAt({text, one}, 9), {}},
        {"gone", lookAt({one, two}, 9), lookAt({two}, 9), {Event::windowDestroyed, Event::windowFocusChanged}},
        {"the last is gone", lookAt({one}, 1), lookAt({}), {Event::windowDestroyed}},
        {"moved", lookAt({one}, 1), lookAt({oneMoved}, 1), {Event::windowMoved}},
        {"moved and resized", lookAt({one}, 1), lookAt({oneResized}, 1), {Event::windowResized}},
        {"minimised", lookAt({one}), lookAt({oneHidden}), {Event::windowMiniaturized}},
        {"restored, wherever", lookAt({oneHidden}), lookAt({oneMoved}), {Event::windowDeminiaturized}},
        {"restacked", lookAt({one, two}), lookAt({two, one}), {Event::windowFocusChanged}},
        {"its dialog in front", lookAt({one}, 1), lookAt({dialog, one}, 8), {Event::windowFocusChanged}},
        {"sent to another desktop", lookAt({one}), lookAt({oneElsewhere}), {Event::windowMoved}},
        {"the user went to another", on(0, lookAt({one})), on(1, lookAt({oneElsewhere})), {}},
        {"all put aside", lookAt({one}), cleared(lookAt({oneElsewhere})), {Event::applicationHidden}},
        {"and back", cleared(lookAt({oneElsewhere})), lookAt({one}), {Event::applicationShown}},
    };
    for (const auto& [what, before, after, events] : cases) {
        SCOPED_TRACE(what);
        EXPECT_EQ(finderEventsBetween(before, after), events);
    }
    using Workspace = std::vector<WorkspaceEvent>;
    EXPECT_EQ(workspaceEventsBetween(lookAt({one, text}, 1), on(1, lookAt({one, text}, 9))),
              (Workspace{WorkspaceEvent::activeSpaceDidChange, WorkspaceEvent::didDeactivateApplication,
                         WorkspaceEvent::didActivateApplication}));
    EXPECT_EQ(workspaceEventsBetween(lookAt({one}, 1), lookAt({one})),
              Workspace{WorkspaceEvent::didDeactivateApplication});
}

class FinderWindowTrackerTest : public testing::Test {
  protected:
    FinderWindowTrackerTest() {
        installLogSink([this](LogLevel, std::string_view line) { logged += std::string(line) + "\n"; });
    }
    ~FinderWindowTrackerTest() override { installLogSink({}); }

    HandCrankedLoop loop;
    FakeWindows windows;
    WorkspaceNotifications workspace;
    FinderWindowTracker tracker{loop, windows, workspace};
    std::vector<Event> events;
    std::string logged;
};

TEST_F(FinderWindowTrackerTest, KnowsTheBoundsOfTheFrontWindow) {
    struct Case {
        const char* what;
        WindowsLook look;
        std::optional<Rectangle> bounds;
    };
    const Case cases[] = {
        {"below other programs and dialogs", lookAt({text, dialog, one, two}, 9), one.frame},
        {"not those out of sight", lookAt({oneHidden, oneElsewhere, two}), two.frame},
        {"too small for a bar", lookAt({folderWindow(3, {0, 0, 800, 199}), one}), std::nullopt},
        {"the desktop shows", cleared(lookAt({one})), std::nullopt},
        {"none", lookAt({text}), std::nullopt},
    };
    for (const auto& [what, look, bounds] : cases) {
        windows.now = look;
        EXPECT_EQ(tracker.currentBounds() == bounds, true) << what;
    }
    for (const auto& [active, isOurs] : {std::pair{1, true}, {8, true}, {9, false}, {0, false}}) {
        windows.now = lookAt({one, dialog, text}, static_cast<WindowId>(active));
        EXPECT_EQ(tracker.isFinderOrBrindletFrontmost(), isOurs) << active;
    }
    windows.now = lookAt({one, two});
    tracker.closeFrontFinderWindow();
    windows.now = lookAt({text});
    tracker.closeFrontFinderWindow();
    EXPECT_EQ(windows.log, "close 1 ");
    EXPECT_EQ(logged, "No valid Finder window found\n");
}

TEST_F(FinderWindowTrackerTest, FollowsByEventsAndPollsOnlyWhereNeeded) {
    tracker.start([&](Event event) { events.push_back(event); });
    windows.now = lookAt({one}, 1);
    loop.pass(10s);
    EXPECT_EQ(events, std::vector<Event>{});
    windows.tell();
    windows.tell();
    EXPECT_EQ(events, (std::vector{Event::windowCreated, Event::windowFocusChanged}));
    tracker.start([](Event) {});
    EXPECT_EQ(logged, "Can only currently have one FinderWindowObserver observing at a time. TODO: Fix this\n");

    events.clear();
    windows.isPolled = true;
    tracker.refreshStageManagerPolling();
    tracker.refreshStageManagerPolling();
    const WindowsLook looks[] = {lookAt({one}), lookAt({one}), lookAt({oneMoved}), lookAt({})};
    for (const WindowsLook& look : looks) {
        windows.now = look;
        loop.pass(250ms);
    }
    EXPECT_EQ(events, (std::vector{Event::windowCreated, Event::windowMoved, Event::windowDestroyed}));
    windows.isPolled = false;
    tracker.refreshStageManagerPolling();
    windows.now = lookAt({one});
    loop.pass(2s);
    EXPECT_EQ(events.size(), 3U);
}

TEST_F(FinderWindowTrackerTest, WithoutWindowsTheBarStandsAtTheBottomOfTheScreen) {
    Screen screen{{0, 0, 1280, 900}, {0, 30, 1280, 830}};
    FreeStandingWindows free([&] { return screen; });
    FinderWindowTracker blind(loop, free, workspace);
    EXPECT_TRUE(promptWindowFrameFromTop(*blind.currentBounds(), {screen}) == (Rectangle{210, 775, 860, 85}));
    screen = {{0, 0, 600, 400}, {0, 0, 600, 400}};
    EXPECT_TRUE(promptWindowFrameFromTop(*blind.currentBounds(), {screen}) == (Rectangle{0, 315, 600, 85}));
    EXPECT_TRUE(blind.isFinderOrBrindletFrontmost());
}

}  // namespace brindlet::finder_window_tracker_tests
