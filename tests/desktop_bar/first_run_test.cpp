// The first start of all: the pages that lead through what is needed.
#include <gtest/gtest.h>
#include <unistd.h>

#include "desktop_bar/desk.h"

namespace brindlet {
namespace first_run_tests {

TEST(FirstRun, ShowsItsPagesAndAsksBeforeTheyAreClosed) {
    if (const std::string program = Desk::missing({"/usr/share/dbus-1/services/org.a11y.Bus.service"});
        !program.empty())
        GTEST_SKIP() << program << " isn't installed";
    Desk desk("");
    ASSERT_EQ(desk.problem(), "");
    desk.environment["QT_LINUX_ACCESSIBILITY_ALWAYS_ON"] = "1";
    StandInProgram fileManager(desk.display(), static_cast<std::uint32_t>(::getpid()));
    fileManager.open(StandInProgram::thunar, {200, 100, 600, 400});
    desk.startBar();
    const auto pages = [&] { return desk.windowTitled("Brindlet Onboarding"); };
    ASSERT_TRUE(Desk::becomes([&] { return pages().has_value(); }));
    const pid_t process = desk.processOf(*pages());
    const auto shows = [&](std::string_view name) {
        return Desk::becomes([&] { return desk.shownBy(process, name).has_value(); });
    };
    const auto click = [&](std::string_view name) {
        const auto button = desk.shownBy(process, name);
        ASSERT_TRUE(button) << name;
        desk.click(middleOf(button->place));
    };
    ASSERT_TRUE(shows("Continue"));

    desk.windows().close(*pages());
    ASSERT_TRUE(shows("Quit"));
    click("Cancel");
    EXPECT_TRUE(Desk::becomes([&] { return !desk.shownBy(process, "Quit"); }));
    EXPECT_TRUE(pages());
    EXPECT_FALSE(desk.bar());
    EXPECT_EQ(desk.barExitCode(), std::nullopt);

    desk.windows().close(*pages());
    ASSERT_TRUE(shows("Quit"));
    click("Quit");
    EXPECT_TRUE(Desk::becomes([&] { return desk.barExitCode() == 0; }));
}

}  // namespace first_run_tests
}  // namespace brindlet
