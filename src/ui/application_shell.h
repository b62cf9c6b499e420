// The program behind the bar on a desktop: what happens at its start, when the bar is shown and put away, the first-run
// pages, the menu. It knows of no window system; a front end does what ShellActions ask and tells what people do.
//
//     ApplicationShell shell(settings, permissions, actions);
//     shell.onLaunch();
//     shell.toggleBar();   // the hot key
#pragma once

#include <cstddef>
#include <functional>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "analysis/risk.h"
#include "platform/settings_store.h"

namespace brindlet {

enum class OnboardingPage { welcome, privacy, accessibilityPermission, appleEventsPermission };
enum class MenuBarTutorialState { unknown, notShown, shown };
// "unknown", "notShown", "shown": as they are stored.
std::string_view rawValue(MenuBarTutorialState state);
// Windows beside the bar that make the program one among the others in the desktop's list of windows.
enum class WindowsThatWantDockIconVisible { onboarding, settings, permissionsTest };

// What the shell asks of a front end.
struct ShellActions {
    virtual ~ShellActions() = default;
    virtual bool isProgramActive() = 0;
    virtual bool hasFileManagerBounds() = 0;
    virtual bool hasBar() = 0;
    virtual void activateFileManager() = 0;
    virtual void openHomeFolder() = 0;
    virtual void showPromptWindow(bool activates, bool takesKeys) = 0;
    virtual void activateProgram() = 0;
    virtual void animateBarClosed() = 0;
    virtual void openOnboarding(OnboardingPage page) = 0;
    virtual void closeOnboarding() = 0;
    virtual void openMenuBarTutorial() = 0;
    virtual void setDockIconVisible(bool isVisible) = 0;
    virtual void startFollowingWindows() = 0;
    virtual void registerHotKey() = 0;
    virtual void buildIndexAndRefreshPackages() = 0;
};

struct ShellPermissions {
    virtual ~ShellPermissions() = default;
    virtual bool checkAccessibility() = 0;
    virtual bool checkAppleEvents() = 0;
};

// On the loop's thread.
class ApplicationShell {
  public:
    static constexpr std::string_view shownOnboardingKey = "shownOnboarding";
    static constexpr std::string_view wantsToBeActiveKey = "wantsToBeActive";
    static constexpr std::string_view tutorialStateKey = "hasShownMenuBarTutorialState";
    static constexpr std::string_view translucentKey = "translucentPromptWindow";

    ApplicationShell(SettingsStore& settings, ShellPermissions& permissions, ShellActions& actions)
        : settings_(settings), permissions_(permissions), actions_(actions) {}

    // Once; a second call does nothing.
    void onLaunch();
    void begin(bool afterOnboarding);
    bool hasBegun() const { return begun_; }

    bool shownOnboarding() const;
    bool wantsToBeActive() const;
    void setWantsToBeActive(bool wants);
    MenuBarTutorialState tutorialState() const;

    void showBarIfWanted();
    void toggleBar();
    void pressedCloseButton();
    // The last page is done; the window's closing begins.
    void onboardingFinished();
    void onboardingClosed();
    void updateDockIcon(WindowsThatWantDockIconVisible window, bool isVisible);

    struct MenuItem {
        std::string title;  // empty: a divider
        bool isEnabled = true;
        std::function<void()> choose{};
    };
    // "Show Brindlet bar" or "Hide Brindlet bar" and what stands below it but for the settings and "Quit", which are
    // the front end's.
    MenuItem barMenuItem();

  private:
    using Stored = std::variant<bool, std::string_view>;  // texts and keys are this class's own constants
    void store(std::string_view key, Stored value);
    std::optional<Stored> unstored(std::string_view key) const;

    SettingsStore& settings_;
    std::map<std::string_view, Stored> unstored_;  // what could not be written
    ShellPermissions& permissions_;
    ShellActions& actions_;
    bool runInitialSetup_ = false;
    bool begun_ = false;
    std::set<WindowsThatWantDockIconVisible> windowsThatWantDockIconVisible_;
};

// What stands below the toggles of what may run without asking.
struct AutoRunNotice {
    std::string_view symbolName;
    std::string_view color;  // empty: the ordinary one
    std::string_view text;   // "**" around what is strong
};
std::optional<AutoRunNotice> autoRunNotice(const std::set<CommandEffect>& allowed);

}  // namespace brindlet
