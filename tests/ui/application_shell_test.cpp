#include "ui/application_shell.h"

#include <gtest/gtest.h>

#include "support/scratch_folder.h"
#include "text/strings.h"

namespace brindlet {
namespace application_shell_tests {

// Keeps what the shell asked for.
struct FakeFrontEnd final : ShellActions, ShellPermissions {
    std::vector<std::string> log;
    bool isActive = false, hasBounds = true, barStands = false, hasAccessibility = true, hasAppleEvents = true;

    bool isProgramActive() override { return isActive; }
    bool hasFileManagerBounds() override { return hasBounds; }
    bool hasBar() override { return barStands; }
    void activateFileManager() override { log.emplace_back("file manager"); }
    void openHomeFolder() override { log.emplace_back("home"); }
    void showPromptWindow(bool, bool) override {
        barStands = true;
        log.emplace_back("bar");
    }
    void activateProgram() override { log.emplace_back("activate"); }
    void animateBarClosed() override { log.emplace_back("fold"); }
    void openOnboarding(OnboardingPage page) override {
        log.push_back("page " + std::to_string(static_cast<int>(page)));
    }
    void closeOnboarding() override { log.emplace_back("close pages"); }
    void openMenuBarTutorial() override { log.emplace_back("tutorial"); }
    void setDockIconVisible(bool isVisible) override { log.emplace_back(isVisible ? "dock" : "no dock"); }
    void startFollowingWindows() override { log.emplace_back("follow"); }
    void registerHotKey() override { log.emplace_back("key"); }
    void buildIndexAndRefreshPackages() override { log.emplace_back("index"); }
    bool checkAccessibility() override { return hasAccessibility; }
    bool checkAppleEvents() override { return hasAppleEvents; }
};

class Shell : public testing::Test {
  protected:
    std::string asked() {
        const std::string text = joined(front.log, ", ");
        front.log.clear();
        return text;
    }
    void settled() { settings.setBoolean("shownOnboarding", true); }

    ScratchFolder scratch;
    SettingsStore settings{scratch.path("settings.json")};
    FakeFrontEnd front;
    ApplicationShell shell{settings, front, front};
};

TEST_F(Shell, FirstStartShowsThePagesAndThenBegins) {
    shell.onLaunch();
    EXPECT_EQ(asked(), "page 0, index");
    EXPECT_EQ(settings.text("hasShownMenuBarTutorialState"), "notShown");
    shell.onLaunch();
    EXPECT_EQ(asked(), "");
    EXPECT_FALSE(shell.barMenuItem().isEnabled);
    shell.setWantsToBeActive(false);
    shell.onboardingFinished();
    shell.onboardingClosed();
    EXPECT_EQ(asked(), "close pages, file manager, bar, activate, follow, key");
    EXPECT_TRUE(shell.wantsToBeActive());
    shell.begin(true);
    EXPECT_EQ(asked(), "");
}

TEST_F(Shell, LaterStarts) {
    struct Case {
        bool hasAccessibility, hasAppleEvents, wantsToBeActive, hasBounds;
        const char* asked;
    };
    const Case cases[] = {
        {true, true, true, true, "file manager, bar, activate, follow, key, index"},
        {true, true, true, false, "file manager, home, bar, activate, follow, key, index"},
        {true, true, false, true, "follow, key, index"},
        {false, false, true, true, "page 2, index"},
        {true, false, true, true, "page 3, index"},
    };
    for (const Case& row : cases) {
        FakeFrontEnd front_;
        front_.hasAccessibility = row.hasAccessibility;
        front_.hasAppleEvents = row.hasAppleEvents;
        front_.hasBounds = row.hasBounds;
        settled();
        settings.setBoolean("wantsToBeActive", row.wantsToBeActive);
        ApplicationShell(settings, front_, front_).onLaunch();
        EXPECT_EQ(joined(front_.log, ", "), row.asked);
    }
    EXPECT_EQ(settings.text("hasShownMenuBarTutorialState"), "shown");
}

TEST_F(Shell, HotKeyBringsForwardOrHides) {
    settled();
    front.barStands = true;
    shell.toggleBar();  // it stood behind another program
    EXPECT_EQ(asked(), "file manager, activate");
    EXPECT_TRUE(shell.wantsToBeActive());
    front.isActive = true;
    shell.toggleBar();
    EXPECT_EQ(asked(), "fold, file manager");
    EXPECT_FALSE(shell.wantsToBeActive());
    EXPECT_EQ(shell.barMenuItem().title, "Show Brindlet bar");
    shell.barMenuItem().choose();
    EXPECT_EQ(asked(), "file manager, activate");
}

TEST_F(Shell, PagesThatAreShownAgainBringTheBarBack) {
    settled();
    settings.setBoolean("wantsToBeActive", false);
    shell.onLaunch();
    EXPECT_EQ(asked(), "follow, key, index");
    shell.onboardingFinished();
    shell.onboardingClosed();
    EXPECT_EQ(asked(), "close pages, file manager, bar, activate");
}

TEST_F(Shell, ChoicesHoldWhereNothingCanBeStored) {
    SettingsStore nowhere(FilePath("/proc/brindlet/settings.json"));
    ApplicationShell unstored(nowhere, front, front);
    unstored.onLaunch();
    unstored.onboardingFinished();
    unstored.onboardingClosed();
    EXPECT_EQ(asked(), "page 0, index, close pages, file manager, bar, activate, follow, key");
    unstored.pressedCloseButton();
    unstored.pressedCloseButton();
    unstored.setWantsToBeActive(false);
    EXPECT_EQ(asked(), "tutorial, fold, file manager");
    EXPECT_FALSE(unstored.wantsToBeActive());
}

TEST_F(Shell, TutorialComesOnceAndTheDockIconWithWindows) {
    shell.pressedCloseButton();
    shell.pressedCloseButton();
    EXPECT_EQ(asked(), "tutorial");
    using enum WindowsThatWantDockIconVisible;
    shell.updateDockIcon(WindowsThatWantDockIconVisible::settings, true);
    shell.updateDockIcon(onboarding, true);
    shell.updateDockIcon(onboarding, false);
    shell.updateDockIcon(WindowsThatWantDockIconVisible::settings, false);
    EXPECT_EQ(asked(), "dock, dock, dock, no dock");
}

TEST(AutoRunNotice, IsTheFirstThatHolds) {
    using enum CommandEffect;
    std::set<CommandEffect> all;
    for (int effect = 0; effect < commandEffectCount; ++effect) all.insert(static_cast<CommandEffect>(effect));
    EXPECT_EQ(autoRunNotice({})->symbolName, "checkmark.shield");
    EXPECT_EQ(autoRunNotice(all)->color, "red");
    EXPECT_TRUE(contains(autoRunNotice({harmless, moveToTrash, deleteOrOverwriteFiles})->text, "overwrite"));
    EXPECT_FALSE(autoRunNotice({harmless, renameFiles}));
}

}  // namespace application_shell_tests
}  // namespace brindlet
