#include "desktop/linux/x_window_source.h"

#include <gtest/gtest.h>
#include <poll.h>

#include <filesystem>

#include "desktop/finder_window_tracker.h"
#include "platform/main_loop.h"
#include "support/desktop_session.h"
#include "support/stand_in_program.h"

namespace brindlet {

namespace x_window_source_tests {

using namespace std::chrono_literals;

TEST(XWindowSource, FollowsAWindowUnderAWindowManager) {
    for (const char* file : DesktopSession::wanted)
        if (!std::filesystem::exists(file)) GTEST_SKIP() << file << " isn't installed";
    const DesktopSession session;
    const std::string display = session.display();
    XWindowSource source(nullptr, display.c_str());
    StandInProgram program(display);
    ASSERT_NE(program.openManaged(source), 0u);

    PollLoop loop;
    WorkspaceNotifications workspace;
    FinderWindowTracker tracker(loop, source, workspace);
    std::vector<FinderWindowEvent> events;
    tracker.start([&](FinderWindowEvent event) { events.push_back(event); });
    loop.watch(source.descriptor(), [&] { source.readEvents(); });
    bool isLate = false;
    const auto hears = [&](FinderWindowEvent event) {
        isLate = false;
        loop.postAfter(5s, [&] { isLate = true; });
        const auto heard = [&] { return std::find(events.begin(), events.end(), event) != events.end(); };
        loop.runUntil([&] { return isLate || heard(); });
        const bool was = heard();
        events.clear();
        return was;
    };
    const auto becomes = [&](const std::optional<Rectangle>& bounds) {
        for (int tries = 0; tries < 100; ++tries, ::poll(nullptr, 0, 20))
            if (tracker.currentBounds() == bounds) return true;
        return false;
    };

    program.open(StandInProgram::thunar, {0, 0, 1280, 900}, "_NET_WM_WINDOW_TYPE_DESKTOP");
    const xcb_window_t folder = program.open(StandInProgram::thunar, {100, 50, 800, 500});
    EXPECT_TRUE(hears(FinderWindowEvent::windowCreated));
    EXPECT_TRUE(becomes(Rectangle{100, 50, 802, 527}));  // with openbox's frame
    const auto details = source.frontFolderWindowDetails();
    ASSERT_TRUE(details);
    EXPECT_EQ(details->title, "w - Thunar");
    EXPECT_EQ(details->identifier, "org.xfce.Thunar");
    program.open(StandInProgram::thunar, {200, 200, 300, 300}, "_NET_WM_WINDOW_TYPE_DIALOG");

    program.place(folder, {300, 200, 800, 500});
    EXPECT_TRUE(hears(FinderWindowEvent::windowMoved));
    program.place(folder, {300, 200, 600, 400});
    EXPECT_TRUE(hears(FinderWindowEvent::windowResized));
    EXPECT_TRUE(becomes(Rectangle{300, 200, 602, 427}));
    program.minimise(folder);
    EXPECT_TRUE(hears(FinderWindowEvent::windowMiniaturized));
    EXPECT_TRUE(becomes(std::nullopt));
    source.activate(folder);
    EXPECT_TRUE(hears(FinderWindowEvent::windowDeminiaturized));
    EXPECT_TRUE(becomes(Rectangle{300, 200, 602, 427}));
    EXPECT_TRUE(tracker.isFinderOrBrindletFrontmost());
    program.close(folder);
    EXPECT_TRUE(hears(FinderWindowEvent::windowDestroyed));
    EXPECT_EQ(tracker.currentBounds(), std::nullopt);
}

TEST(XWindowSource, SaysWhereThereIsNoDisplay) {
    XWindowSource source(nullptr, ":4071");
    EXPECT_FALSE(source.canFollow());
    EXPECT_TRUE(source.look().windows.empty());
    EXPECT_NE(source.watch([] {}), std::nullopt);
    EXPECT_FALSE(source.close(1));
    EXPECT_EQ(source.descriptor(), -1);
}

}  // namespace x_window_source_tests
}  // namespace brindlet
