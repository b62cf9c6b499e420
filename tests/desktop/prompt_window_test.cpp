#include <gtest/gtest.h>

#include "desktop/fake_desktop.h"
#include "desktop/prompt_window_keeper.h"
#include "fakes/fake_disk.h"
#include "fakes/hand_cranked.h"
#include "platform/log.h"
#include "text/strings.h"

namespace brindlet::prompt_window_tests {

using namespace std::chrono_literals;
using Event = FinderWindowEvent;

TEST(PromptWindow, FloatsWithTheFileManagerOrItself) {
    struct Case {
        std::optional<Application> frontmost;
        std::vector<Application> active;
        FloatDecision decision;
    };
    const Application nameless{"x", std::nullopt};
    const Case cases[] = {
        {thunar, {thunar}, {true, "frontmost=org.xfce.Thunar activeApps=org.xfce.Thunar"}},
        {brindletItself, {}, {true, "frontmost=com.fenwold.brindlet activeApps="}},
        {editor, {editor, thunar}, {false, "frontmost=editor activeApps=editor,org.xfce.Thunar"}},
        {nameless, {thunar}, {false, "frontmost=nil activeApps=org.xfce.Thunar"}},
        {std::nullopt, {editor, thunar}, {true, "activeApps=editor,org.xfce.Thunar"}},
        {std::nullopt, {nameless}, {false, "activeApps="}},
        {std::nullopt, {}, {false, "noFrontmostOrActive"}},
    };
    for (const auto& [frontmost, active, decision] : cases)
        EXPECT_EQ(floatDecision(frontmost, active), decision) << decision.text;
}

class PromptWindowTest : public testing::Test {
  protected:
    PromptWindowTest() {
        installLogSink([this](LogLevel, std::string_view line) { logged += std::string(line) + "\n"; });
        windows.now = atWork;
    }
    ~PromptWindowTest() override { installLogSink({}); }

    // What the window, the windows, and the front end were told since the last call.
    std::string told() { return std::exchange(shown, "") + "| " + std::exchange(windows.log, ""); }
    void pass(std::chrono::milliseconds time) {
        for (auto left = time; left > 0ms; left -= 17ms) {
            clock += std::min(left, 17ms);
            loop.pass(std::min(left, 17ms));
        }
    }
    void show(const WindowsLook& look) {
        windows.now = look;
        windows.tell();
    }
    // The bar is there and has come to rest.
    void settle() {
        keeper.showPromptWindow(true, true);
        keeper.begin();
        pass(1s);
        told();
        logged.clear();
    }

    const SeenWindow folder = folderWindow(1, {100, 50, 800, 500});
    const SeenWindow text{.id = 9, .owner = editor};
    const WindowsLook atWork = lookAt({folder, text}, 1);
    std::string shown;
    std::string logged;
    HandCrankedLoop loop;
    HandCrankedWorkers workers;
    FakeDisk disk;
    FakeWindows windows;
    WorkspaceNotifications workspace;
    std::chrono::steady_clock::time_point clock{};
    FinderWindowTracker tracker{loop, windows, workspace};
    FinderContext finder{loop, workers, disk, [] { return std::optional<FinderSelection>(); }};
    bool isWanted = true;
    PromptWindowKeeper keeper{{loop, tracker, workspace, finder, [this] { return clock; }},
                              {.wantsToBeActive = [this] { return isWanted; },
                               .makeWindow = [this] { return std::make_unique<FakePromptWindow>(shown); },
                               .openHomeFolder = [this] { shown += "home "; },
                               .activateBrindlet = [this] { shown += "activate "; },
                               .onPressedCloseButton = [this] { shown += "pressed "; },
                               .onDidClose = [this] { isWanted = false; }}};
};

TEST_F(PromptWindowTest, StandsBelowTheWindowAndFollowsForHalfASecond) {
    keeper.showPromptWindow(true, true);
    keeper.begin();
    EXPECT_EQ(told(), "key above 1 at 70,538 860x85 level 3 activate | ");
    ASSERT_NE(keeper.promptWindowController(), nullptr);
    EXPECT_EQ(keeper.promptWindowController()->promptWindowContext().windowWidth, 860);
    EXPECT_TRUE(workers.hasWork());  // the selection is asked for
    pass(600ms);
    told();
    pass(1s);
    EXPECT_EQ(told(), "| ");  // at rest nothing is done

    auto moved = folder;
    moved.frame.x = 200;
    show(lookAt({moved, text}, 1));
    EXPECT_EQ(told(), "at 170,538 860x85 | ");
    pass(300ms);
    show(atWork);
    told();
    pass(450ms);  // the later event counts
    EXPECT_NE(told(), "| ");
    pass(200ms);
    told();
    pass(100ms);
    EXPECT_EQ(told(), "| ");
}

TEST_F(PromptWindowTest, GoesDownWithTheFileManagerAndThePollHealsWhatWasMissed) {
    settle();
    show(lookAt({text, folder}, 9));
    EXPECT_EQ(told(), "level 0 | ");  // and its frame stays
    windows.now = atWork;             // without word of it
    pass(2s);
    EXPECT_EQ(told(), "level 3 | ");
    EXPECT_TRUE(contains(logged, "poll detected mismatch normal -> floating. decision=frontmost=org.xfce.Thunar "))
        << logged;
    workspace.post(WorkspaceEvent::didWake);
    for (const auto& [after, look, level] : {std::tuple{0ms, lookAt({text}, 9), ""},
                                             {500ms, lookAt({text}, 9), "level 0 "},
                                             {1500ms, atWork, "level 3 "}}) {
        windows.now = look;
        pass(after);
        EXPECT_EQ(told(), level + std::string("| "));
    }
}

TEST_F(PromptWindowTest, EventsBringMoveAndTakeTheBar) {
    auto hidden = folder;
    hidden.isMiniaturized = true;
    auto elsewhere = folder;
    elsewhere.isOnScreen = false;
    struct Case {
        const char* what;
        bool hasBar;
        bool isWanted;
        WindowsLook look;
        Event event;
        std::string told;
        bool hasBarThen;
    };
    const std::string appears = "show above 1 at 70,538 860x85 level 3 | activate 1 ";
    const std::string stays = "at 70,538 860x85 | ";
    const Case cases[] = {
        {"a window comes", false, true, atWork, Event::windowCreated, appears, true},
        {"unwanted", false, false, atWork, Event::windowCreated, "| ", false},
        {"it moves", false, true, atWork, Event::windowMoved, appears, true},
        {"it moves, unwanted", false, false, atWork, Event::windowMoved, "| ", false},
        {"nothing to stand below", false, true, lookAt({text}, 9), Event::applicationShown, "| ", false},
        {"shown again", false, true, atWork, Event::applicationShown, appears, true},
        {"a second window", true, true, atWork, Event::windowCreated, "| ", true},
        {"resized", true, true, atWork, Event::windowResized, stays, true},
        {"to the front", true, true, atWork, Event::windowFocusChanged, "at 70,538 860x85 front at 70,538 860x85 | ",
         true},
        {"a dialog of the editor's closes another", true, true, lookAt({text, folder}, 9), Event::windowFocusChanged,
         "at 70,538 860x85 level 0 | ", true},
        {"one of two goes", true, true, atWork, Event::windowDestroyed, stays, true},
        {"the last one goes", true, true, lookAt({text}, 9), Event::windowDestroyed, "close | ", false},
        {"minimised", true, true, lookAt({hidden}), Event::windowMiniaturized, "close | ", false},
        {"sent elsewhere", true, true, lookAt({elsewhere}, 9), Event::windowMoved, "hide | ", true},
        {"put aside", true, true, atWork, Event::applicationHidden, "close | ", false},
    };
    for (const Case& row : cases) {
        SCOPED_TRACE(row.what);
        isWanted = row.isWanted;
        windows.now = atWork;
        if (!row.hasBar) keeper.handleFinderEvent(Event::applicationHidden);
        if (row.hasBar) keeper.showPromptWindow(false, false);
        pass(1s);
        told();
        windows.now = row.look;
        keeper.handleFinderEvent(row.event);
        if (row.told == "hide | ") pass(17ms);
        loop.crank();
        EXPECT_EQ(told(), row.told);
        EXPECT_EQ(keeper.promptWindowController() != nullptr, row.hasBarThen);
        pass(1s);
        EXPECT_EQ(isWanted, row.isWanted);
    }
}

TEST_F(PromptWindowTest, HidesWithoutAWindowAndComesBack) {
    settle();
    auto elsewhere = folder;
    elsewhere.isOnScreen = false;
    auto other = lookAt({elsewhere, text}, 9);
    other.desktop = 1;
    show(other);
    pass(1s);
    EXPECT_EQ(told(), "level 0 hide | ");
    pass(5s);
    EXPECT_EQ(told(), "| ");  // what is hidden is not polled
    show(atWork);
    EXPECT_TRUE(told().starts_with("level 3 front above 1 at 70,538 860x85 "));
    pass(1s);
    windows.now = lookAt({text, folder}, 9);
    told();
    pass(2s);
    EXPECT_EQ(told(), "level 0 | ");  // and what is back is polled again
}

TEST_F(PromptWindowTest, FoldsAwayForTheUserAndStaysAway) {
    settle();
    PromptWindowContext& context = keeper.promptWindowController()->promptWindowContext();
    int changes = 0;
    context.onChange = [&] { ++changes; };
    keeper.promptWindowController()->viewDidAppear();
    EXPECT_TRUE(context.flippedOpen);
    keeper.promptWindowController()->pressCloseButton();
    keeper.promptWindowController()->pressCloseButton();
    EXPECT_FALSE(context.flippedOpen);
    EXPECT_EQ(changes, 2);
    pass(290ms);
    EXPECT_EQ(told(), "pressed | ");
    pass(10ms);
    EXPECT_EQ(told(), "close | ");
    EXPECT_EQ(keeper.promptWindowController(), nullptr);
    EXPECT_FALSE(isWanted);
    EXPECT_EQ(finder.activeFolderPath(), std::nullopt);
    show(lookAt({}));
    show(atWork);
    loop.crank();
    EXPECT_EQ(told(), "| ");
    isWanted = true;
    keeper.showPromptWindow(true, true);
    ASSERT_NE(keeper.promptWindowController(), nullptr);

    // The desktop's request closes the window above, and the user still wants the bar.
    told();
    EXPECT_FALSE(keeper.promptWindowController()->windowShouldClose());
    EXPECT_EQ(told(), "| close 1 ");
    show(lookAt({text}, 9));
    EXPECT_EQ(told(), "level 0 close | ");
    EXPECT_TRUE(isWanted);
}

}  // namespace brindlet::prompt_window_tests
