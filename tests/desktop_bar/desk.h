// A desktop of a test's own with the bar on it, seen and used from outside, as by its user.
//
//     Desk desk(R"({"shownOnboarding": true})");
//     ASSERT_EQ(desk.problem(), "");
//     StandInProgram program(desk.display(), ::getpid());
//     const xcb_window_t folder = program.open(StandInProgram::thunar, {200, 100, 600, 400});
//     desk.startBar();
//     EXPECT_TRUE(desk.becomes([&] { return desk.bar().has_value(); }));
#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "desktop/linux/x_connection.h"
#include "desktop/linux/x_window_source.h"
#include "support/desktop_session.h"
#include "support/stand_in_program.h"

namespace brindlet {

// What a program shows to assistive programs.
struct ShownItem {
    std::string role;
    std::string name;
    Rectangle place;
    bool isSelected = false;
    bool isFocused = false;
};

class Desk {
  public:
    // `settings` is what the settings file holds; empty: there is none, as before the first start.
    explicit Desk(std::string_view settings);

    // The first that isn't installed of what every desk needs and of `programs`; empty: all are.
    static std::string missing(const std::vector<std::string>& programs = {});
    // What didn't come up; empty: all is there.
    const std::string& problem() const { return problem_; }

    std::string display() const { return session_.display(); }
    const ScratchFolder& home() const { return session_.home(); }
    FilePath folder() const { return files.path(); }
    XWindowSource& windows() { return windows_; }
    // The window of another program, which stands in the upper left corner.
    xcb_window_t otherWindow() const { return otherWindow_; }

    std::unique_ptr<ChildProcess> start(std::vector<std::string> words) const;
    // What the program prints, when it has ended well; else what it ended with.
    std::string outputOf(std::vector<std::string> words) const;
    // The exit code of `brindlet bar` with those words; none where it doesn't end.
    std::optional<int> callBar(const std::vector<std::string>& words) const;

    // The one bar that the desk keeps.
    void startBar();
    // None while it runs.
    std::optional<int> barExitCode() const { return barProgram_ ? barProgram_->exitStatus() : std::nullopt; }
    // Nullopt while it isn't shown.
    std::optional<WindowId> bar() { return windowTitled("Brindlet"); }
    bool barStandsAt(const Rectangle& frame);

    std::optional<WindowId> windowTitled(std::string_view title);
    Rectangle frameOf(WindowId window) const;
    pid_t processOf(WindowId window);
    WindowId activeWindow() { return windows_.look().activeWindow; }
    // From the top down.
    std::vector<WindowId> stacking();
    std::vector<ShownItem> shownBy(pid_t process) const;
    std::optional<ShownItem> shownBy(pid_t process, std::string_view name) const;

    // How much of a core the program with its helpers takes, over some seconds.
    double loadOf(pid_t process) const;
    double residentMebibytesOf(pid_t process) const;

    // Whether the keyboard comes to be there, and the bar knows.
    bool hasBarKeyboard();
    bool otherWindowHasKeyboard();
    // Return, again and again until it holds while a prediction is asked about: at first that isn't taken, so that
    // nobody agrees unseen.
    bool becomesByConfirming(const std::function<bool()>& holds);

    void press(const std::string& keys) const;
    void type(const std::string& text) const;
    void click(const Point& point, bool adds = false) const;

    // Looks until the condition holds. False where it doesn't in a time that is long enough for a slow machine under
    // sanitizers.
    static bool becomes(const std::function<bool()>& holds);

    ScratchFolder files{};  // what the file manager shows
    Environment environment;

  private:
    std::optional<int> endOf(ChildProcess& process) const;
    bool showsFocus(WindowId window);
    void xdotool(std::vector<std::string> words) const;

    DesktopSession session_;
    XWindowSource windows_;
    XConnection x_;
    StandInProgram otherProgram_;
    std::string problem_{};
    xcb_window_t otherWindow_ = XCB_NONE;
    std::unique_ptr<ChildProcess> barProgram_{};
};

inline Point middleOf(const Rectangle& rectangle) {
    return {rectangle.x + rectangle.width / 2, rectangle.y + rectangle.height / 2};
}

}  // namespace brindlet
