#include <gtest/gtest.h>

#include "bar/page_window.h"
#include "fakes/hand_cranked.h"
#include "platform/log.h"
#include "support/scratch_folder.h"
#include "text/strings.h"
#include "ui/bar/onboarding_model.h"
#include "ui/bar/permissions_test_model.h"

namespace brindlet::onboarding_page_tests {

using namespace std::chrono_literals;

class OnboardingPageTest : public testing::Test {
  protected:
    PermissionItem item(const char* title, bool& holds, bool canMend) {
        PermissionItem made{.title = title, .remedy = "Do it by hand.", .check = [&holds] { return holds; }};
        if (canMend)
            made.mend = [&holds]() -> std::optional<Failure> {
                holds = true;
                return std::nullopt;
            };
        return made;
    }
    ContextMenuAction action() {
        return {.fileManager = "Thunar",
                .title = "Ask Brindlet in the context menu of Thunar",
                .isInstalled = [this] { return isInstalled; },
                .install = [this]() -> std::optional<Failure> {
                    if (isInstallRefused) return Failure{"Can't write 'uca.xml': no room"};
                    isInstalled = true;
                    return std::nullopt;
                },
                .remove = {}};
    }
    // One round of checks.
    void settle() {
        loop.pass(200ms);
        while (workers.hasWork()) {
            workers.crank();
            loop.crank();
        }
        QCoreApplication::processEvents();
    }
    bool canContinue() { return page.item("continue").isEnabled(); }
    void open(OnboardingPage which) {
        model.open(which);
        page.show();
    }

    bool follows = false;
    bool hasBus = false;
    bool tellsSelection = false;
    bool isInstalled = false;
    bool isInstallRefused = false;
    int quits = 0;
    int closes = 0;
    ScratchFolder scratch;
    SettingsStore settings{scratch.path("settings.json")};
    HandCrankedLoop loop;
    HandCrankedWorkers workers;
    Permissions permissions{settings,
                            {.accessibility = {item("The windows of other programs can be followed", follows, false)},
                             .appleEvents = {item("The desktop's accessibility bus answers", hasBus, false),
                                             item("The file manager tells what is selected", tellsSelection, true)}}};
    OnboardingModel model{{.permissions = permissions,
                           .loop = loop,
                           .workers = workers,
                           .actions = {action()},
                           .finished = [this] { page.window().close(); },
                           .closed = [this] { ++closes; },
                           .quit = [this] { ++quits; }}};
    PageWindow page{"Onboarding.qml", &model};
};

TEST_F(OnboardingPageTest, GoesThroughAllPagesAndClosesItself) {
    open(OnboardingPage::welcome);
    page.shoot("welcome");
    page.key(Qt::Key_Return);
    EXPECT_EQ(model.page(), "privacy");
    EXPECT_TRUE(contains(page.text("privacyText"), "sends <b>your request</b> and"));
    page.shoot("privacy");
    page.click("continue");

    EXPECT_EQ(model.page(), "accessibilityPermission");
    settle();
    EXPECT_FALSE(canContinue());
    page.click("continue");
    EXPECT_EQ(model.page(), "accessibilityPermission");
    follows = true;
    settle();
    EXPECT_TRUE(page.has("grantedSign"));
    page.shoot("accessibility");
    page.click("continue");

    EXPECT_EQ(model.page(), "appleEventsPermission");
    EXPECT_FALSE(page.has("grantedSign"));
    hasBus = true;
    settle();
    EXPECT_FALSE(canContinue());  // the other item doesn't hold yet
    page.click(page.item("item1", "act"));
    settle();
    settle();
    EXPECT_TRUE(tellsSelection);
    EXPECT_TRUE(canContinue());
    EXPECT_EQ(closes, 0);
    page.click("continue");
    EXPECT_FALSE(page.window().isVisible());
    EXPECT_EQ(closes, 1);
    loop.pass(1s);
    EXPECT_FALSE(workers.hasWork());  // nothing is checked for a page that is gone
}

TEST_F(OnboardingPageTest, HelpFadesInWhereAskingWasNotEnough) {
    open(OnboardingPage::appleEventsPermission);
    settle();
    EXPECT_FALSE(page.has("help"));
    page.click("enableAccess");
    EXPECT_FALSE(page.item("enableAccess").isEnabled());
    settle();
    EXPECT_TRUE(tellsSelection);  // mended; the bus can't be
    EXPECT_EQ(model.state(), "requestedMaybeNeedsHelp");
    EXPECT_TRUE(QTest::qWaitFor([&] { return page.has("help") && page.item("help").opacity() > 0.1; }));
    EXPECT_LT(page.item("help").opacity(), 0.9);
    EXPECT_TRUE(QTest::qWaitFor([&] { return page.item("help").opacity() == 1; }));
    page.shoot("automation");
}

TEST_F(OnboardingPageTest, TheContextMenuActionIsInstalledHere) {
    open(OnboardingPage::appleEventsPermission);
    settle();
    isInstallRefused = true;
    page.click(page.item("action0", "act"));
    settle();
    EXPECT_EQ(page.text("problem"), "Can't write 'uca.xml': no room");
    isInstallRefused = false;
    page.click(page.item("action0", "act"));
    settle();
    EXPECT_FALSE(page.has("problem"));
    EXPECT_TRUE(page.item("action0").property("isDone").toBool());
}

TEST_F(OnboardingPageTest, WhatIsNotRequiredIsShownButNotWaitedFor) {
    PermissionItem optional = item("The file manager tells what is selected", tellsSelection, false);
    optional.isRequired = false;
    Permissions lenient(settings, {.appleEvents = {optional}});
    OnboardingModel pages({.permissions = lenient, .loop = loop, .workers = workers});
    PageWindow shown("Onboarding.qml", &pages);
    pages.open(OnboardingPage::appleEventsPermission);
    shown.show();
    settle();
    EXPECT_EQ(shown.text("detail"), "Do it by hand.");
    EXPECT_TRUE(shown.item("continue").isEnabled());
    shown.shoot("optional");
    pages.open(OnboardingPage::accessibilityPermission);  // nothing to grant
    settle();
    EXPECT_TRUE(pages.canContinue());
}

TEST_F(OnboardingPageTest, ClosingBeforeTheEndIsAskedAbout) {
    open(OnboardingPage::privacy);
    page.window().close();
    EXPECT_TRUE(page.window().isVisible());
    EXPECT_TRUE(page.has("yes"));
    page.shoot("quit");
    page.click("no");
    EXPECT_FALSE(page.has("yes"));
    page.window().close();
    page.key(Qt::Key_Escape);
    EXPECT_FALSE(model.isQuitAsked());
    EXPECT_EQ(quits, 0);
    page.window().close();
    page.click("yes");
    EXPECT_EQ(quits, 1);
    EXPECT_EQ(closes, 0);
}

TEST_F(OnboardingPageTest, ThePermissionsTestAsksAndShows) {
    std::string logged;
    installLogSink([&](LogLevel, std::string_view line) { logged += std::string(line) + "\n"; });
    PermissionsTestModel test(permissions, loop, workers);
    PageWindow shown("PermissionsTest.qml", &test);
    shown.show();
    settle();
    EXPECT_EQ(shown.text("accessibility"), "Accessibility: disabled");
    shown.click("promptForAccessibility");
    shown.click("resetAppleEvents");
    settle();
    EXPECT_EQ(logged,
              "Accessibility permission denied or not yet granted.\n"
              "Resetting AppleEvents permission for com.fenwold.brindlet\n");
    follows = hasBus = tellsSelection = true;
    shown.click("promptForAccessibility");
    shown.click("promptForAppleEvents");
    settle();
    EXPECT_EQ(shown.text("accessibility"), "Accessibility: enabled");
    EXPECT_EQ(shown.text("appleEvents"), "AppleEvents: enabled");
    shown.shoot("permissions_test");
    installLogSink({});
}

}  // namespace brindlet::onboarding_page_tests
