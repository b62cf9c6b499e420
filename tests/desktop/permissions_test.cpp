#include "desktop/permissions.h"

#include <gtest/gtest.h>

#include "desktop/linux/permission_items.h"
#include "desktop/permission_page.h"
#include "fakes/hand_cranked.h"
#include "platform/log.h"
#include "support/scratch_folder.h"
#include "text/strings.h"

namespace brindlet::permissions_tests {

using namespace std::chrono_literals;

class PermissionsTest : public testing::Test {
  protected:
    struct Autostart final : LaunchAtLogin {
        int calls = 0;
        bool isEnabled() const override { return calls > 0; }
        std::optional<Failure> setEnabled(bool) override {
            ++calls;
            return Failure{"no room"};
        }
    };

    PermissionsTest() {
        installLogSink([this](LogLevel, std::string_view line) { logged += std::string(line) + "\n"; });
    }
    ~PermissionsTest() override { installLogSink({}); }

    PermissionItem item(bool& holds, bool isMended = false) {
        PermissionItem made{.title = "it", .remedy = "do it", .check = [&] { return holds; }};
        if (isMended)
            made.mend = [&]() -> std::optional<Failure> {
                holds = true;
                return std::nullopt;
            };
        return made;
    }

    std::string logged;
    ScratchFolder scratch;
    SettingsStore settings{scratch.path("settings.json")};
    HandCrankedLoop loop;
    HandCrankedWorkers workers;
};

TEST_F(PermissionsTest, StatesComeFromChecksAndFromWhatIsStored) {
    bool follows = false;
    bool reads = false;
    Permissions permissions(settings, {.accessibility = {item(follows)}, .appleEvents = {item(reads)}});
    using enum PermissionState;
    const std::pair<const char*, PermissionState> stored[] = {
        {"disabled", disabled}, {"enabled", enabled}, {"unknown", unknown}, {"whatever", enabled}};
    EXPECT_EQ(permissions.appleEventsState(), unknown);
    for (const auto& [text, state] : stored) {
        settings.setText("AppleEventsPermissionState", text);
        permissions.refreshPermissionStates();
        EXPECT_EQ(permissions.appleEventsState(), state) << text;
        EXPECT_EQ(permissions.accessibilityState(), disabled);
    }
    EXPECT_FALSE(permissions.promptForAccessibility());
    EXPECT_EQ(logged, "Accessibility permission denied or not yet granted.\n");
    follows = true;
    EXPECT_TRUE(permissions.checkAccessibility());
    EXPECT_FALSE(permissions.checkAppleEvents());
    EXPECT_EQ(permissions.appleEventsState(), disabled);
    EXPECT_TRUE(Permissions(settings, {}).checkAppleEvents());  // nothing to grant
}

TEST_F(PermissionsTest, StartsAtLoginOnceUnlessTheUserSaysOtherwise) {
    Autostart autostart;
    Permissions permissions(settings, {.launchAtLogin = &autostart});
    permissions.enableLaunchAtLoginOnce();
    permissions.enableLaunchAtLoginOnce();
    EXPECT_EQ(autostart.calls, 1);
    permissions.setLaunchAtLogin(false);
    EXPECT_EQ(logged, "Failed to enable launch at login: no room\nFailed to disable launch at login: no room\n");

    AutostartEntry entry(scratch.path("config/autostart"), FilePath("/opt/my $x/brindlet"));
    EXPECT_FALSE(entry.isEnabled());
    EXPECT_EQ(entry.setEnabled(true), std::nullopt);
    EXPECT_TRUE(entry.isEnabled());
    EXPECT_TRUE(contains(scratch.read("config/autostart/brindlet.desktop"), "Exec=\"/opt/my \\\\$x/brindlet\" bar --login\n"));
    scratch.write("config/autostart/brindlet.desktop", "[Desktop Entry]\nHidden = true\n");
    EXPECT_FALSE(entry.isEnabled());
    EXPECT_EQ(entry.setEnabled(false), std::nullopt);
    EXPECT_EQ(entry.setEnabled(false), std::nullopt);
    EXPECT_FALSE(scratch.exists("config/autostart/brindlet.desktop"));
}

TEST_F(PermissionsTest, ThePageWaitsHelpsAndIsGranted) {
    using enum PermissionPageState;
    bool first = false;
    bool second = false;
    Permissions permissions(settings, {.accessibility = {item(first, true), item(second)}});
    PermissionPage page(loop, workers, permissions, Permission::accessibility);
    const auto work = [&] {
        workers.crank();
        loop.crank();
    };
    page.enableAccess();
    EXPECT_EQ(page.state(), requested);
    work();
    EXPECT_EQ(page.state(), requestedMaybeNeedsHelp);
    EXPECT_TRUE(page.items()[0].holds);  // mended
    EXPECT_FALSE(page.items()[1].holds);
    loop.pass(200ms);
    loop.pass(200ms);
    work();
    EXPECT_FALSE(workers.hasWork());  // one check at a time
    second = true;
    loop.pass(200ms);
    work();
    EXPECT_EQ(page.state(), granted);
    EXPECT_EQ(permissions.accessibilityState(), PermissionState::enabled);
}

}  // namespace brindlet::permissions_tests
