// What the user has to grant: that windows may be followed, and that the selection may be read. Nobody can be asked for
// the second, so that it is found out by trying.
//
//     Permissions permissions(settings, {.accessibility = {displayItem}, .appleEvents = {busItem}});
//     if (!permissions.checkAccessibility()) show(permissions.items(Permission::accessibility));
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/result.h"
#include "platform/settings_store.h"

namespace brindlet {

enum class PermissionState { unknown, disabled, enabled };
enum class Permission { accessibility, appleEvents };

std::string_view nameOf(PermissionState state);

// One line of the check list behind a permission.
struct PermissionItem {
    std::string title;   // what has to hold, as "The accessibility bus answers"
    std::string remedy;  // what the user does where it doesn't
    // False: certainly not. What can't be found out counts as true. May take a second; from any thread, never from two
    // at once.
    std::function<bool()> check;
    // Sees to it that it holds; empty where only the user can.
    std::function<std::optional<Failure>()> mend{};
    // False: it is shown, and the permission counts as granted without it.
    bool isRequired = true;
};

// Whether the program starts when the user logs in.
struct LaunchAtLogin {
    virtual ~LaunchAtLogin() = default;
    virtual bool isEnabled() const = 0;
    virtual std::optional<Failure> setEnabled(bool enabled) = 0;
};

struct PermissionChecks {
    std::vector<PermissionItem> accessibility{};  // none: nothing needs to be granted here
    std::vector<PermissionItem> appleEvents{};
    // Takes back what was granted; empty where the system has no such thing.
    std::function<std::optional<Failure>(Permission)> reset{};
    LaunchAtLogin* launchAtLogin = nullptr;
};

// The states belong to one thread, that of all calls but `holds`.
class Permissions {
  public:
    Permissions(SettingsStore& settings, PermissionChecks checks);

    PermissionState accessibilityState() const { return accessibilityState_; }
    PermissionState appleEventsState() const { return appleEventsState_; }

    void refreshPermissionStates();
    bool checkAccessibility();
    // Mends what can be, and looks again.
    bool promptForAccessibility();
    bool checkAppleEvents();
    void resetPermission(Permission permission);

    bool launchAtLoginIsEnabled() const;
    void setLaunchAtLogin(bool enabled);
    // A user who has turned it off isn't overruled: only the first call of all does anything.
    void enableLaunchAtLoginOnce();

    const std::vector<PermissionItem>& items(Permission permission) const;
    // From any thread: whether all required items hold, and it changes no state. `note` is what the states' thread does with it.
    bool holds(Permission permission) const;
    void note(Permission permission, bool isGranted);
    // From any thread: mends what doesn't hold and can be mended. Failures go to the log.
    void mend(Permission permission) const;

  private:
    SettingsStore& settings_;
    PermissionChecks checks_;
    PermissionState accessibilityState_ = PermissionState::unknown;
    PermissionState appleEventsState_ = PermissionState::unknown;
};

}  // namespace brindlet
