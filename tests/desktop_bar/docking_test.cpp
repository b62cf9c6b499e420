// The bar beneath a stand-in file manager's window, under a real window manager. openbox's frame is 1 wide at the
// sides, 22 at the top and 5 at the bottom.
#include <gtest/gtest.h>
#include <unistd.h>

#include "desktop_bar/desk.h"

namespace brindlet {
namespace docking_tests {

constexpr std::string_view usedBefore = R"({"shownOnboarding": true})";
constexpr Rectangle folderPlace{200, 100, 600, 400};
constexpr Rectangle barPlace{170, 515, 662, 85};

class DockedBar : public testing::Test {
  protected:
    void SetUp() override {
        if (const std::string program = Desk::missing(); !program.empty())
            GTEST_SKIP() << program << " isn't installed";
        desk.emplace(usedBefore);
        ASSERT_EQ(desk->problem(), "");
        desk->environment["QT_LINUX_ACCESSIBILITY_ALWAYS_ON"] = "1";
        fileManager.emplace(desk->display(), static_cast<std::uint32_t>(::getpid()));
        folder = fileManager->open(StandInProgram::thunar, folderPlace);
        desk->startBar();
        ASSERT_TRUE(desk->barStandsAt(barPlace));
        ASSERT_TRUE(desk->hasBarKeyboard());
    }
    bool goes() {
        return Desk::becomes([&] { return !desk->bar(); });
    }
    bool areStacked(const std::vector<WindowId>& windows) {
        return Desk::becomes([&] { return desk->stacking() == windows; });
    }

    std::optional<Desk> desk;
    std::optional<StandInProgram> fileManager;
    xcb_window_t folder = XCB_NONE;
};

TEST_F(DockedBar, FollowsTheWindowAndGoesWithIt) {
    fileManager->place(folder, {300, 150, 600, 400});
    EXPECT_TRUE(desk->barStandsAt({270, 565, 662, 85}));
    fileManager->place(folder, {300, 150, 500, 300});
    EXPECT_TRUE(desk->barStandsAt({270, 465, 562, 85}));
    fileManager->minimise(folder);
    EXPECT_TRUE(goes());
    desk->windows().activate(folder);
    EXPECT_TRUE(desk->barStandsAt({270, 465, 562, 85}));
    fileManager->close(folder);
    EXPECT_TRUE(goes());
    fileManager->open(StandInProgram::thunar, folderPlace);
    EXPECT_TRUE(desk->barStandsAt(barPlace));
}

TEST_F(DockedBar, IsRaisedAndLoweredWithTheWindow) {
    const WindowId bar = *desk->bar();
    StandInProgram editor(desk->display());
    const xcb_window_t covers = editor.open(StandInProgram::editor, {100, 50, 900, 700});
    desk->windows().activate(covers);
    EXPECT_TRUE(areStacked({covers, bar, folder, desk->otherWindow()}));
    desk->windows().activate(folder);
    EXPECT_TRUE(areStacked({bar, folder, covers, desk->otherWindow()}));
}

TEST_F(DockedBar, ComesAndGoesByKeyAndByCommand) {
    const std::function<void()> toggles[] = {[&] { desk->press("ctrl+space"); },
                                             [&] { EXPECT_EQ(desk->callBar({"--toggle"}), 0); }};
    for (const auto& toggle : toggles) {
        EXPECT_TRUE(desk->hasBarKeyboard());
        toggle();
        EXPECT_TRUE(goes());
        EXPECT_TRUE(Desk::becomes([&] { return desk->activeWindow() == folder; }));
        toggle();
        EXPECT_TRUE(desk->barStandsAt(barPlace));
        EXPECT_TRUE(desk->hasBarKeyboard());
        // Behind another program's window it is brought forward, not taken away.
        desk->windows().activate(desk->otherWindow());
        EXPECT_TRUE(desk->otherWindowHasKeyboard());
        toggle();
    }
    EXPECT_TRUE(desk->hasBarKeyboard());
    EXPECT_EQ(desk->callBar({"--quit"}), 0);
    EXPECT_TRUE(Desk::becomes([&] { return desk->barExitCode() == 0; }));
    EXPECT_EQ(desk->callBar({"--quit"}), 0);  // none runs
}

TEST_F(DockedBar, TakesTheFilesOfASecondStart) {
    const std::string names[] = {"plain name.txt", "na\xEFve.txt", "left alone.txt"};
    for (const std::string& name : names) desk->files.write(name, name);
    const pid_t process = desk->processOf(*desk->bar());
    EXPECT_EQ(desk->callBar({"--folder", desk->folder().text(), names[0], names[1]}), 0);
    EXPECT_EQ(desk->processOf(*desk->bar()), process);
    ASSERT_TRUE(Desk::becomes([&] { return desk->shownBy(process, "2 items").has_value(); }));
    ASSERT_TRUE(desk->hasBarKeyboard());
    desk->type("gzip");
    desk->press("Return");
    ASSERT_TRUE(Desk::becomes([&] { return desk->windowTitled("Brindlet prediction").has_value(); }));
    EXPECT_TRUE(desk->files.exists(names[0]));
    EXPECT_TRUE(
        desk->becomesByConfirming([&] { return !desk->files.exists(names[0]) && !desk->files.exists(names[1]); }));
    for (const std::string& name : {names[0] + ".gz", names[1] + ".gz", names[2]})
        EXPECT_TRUE(desk->files.exists(name)) << name;
}

}  // namespace docking_tests
}  // namespace brindlet
