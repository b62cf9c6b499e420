#include "desktop/permissions.h"

#include <fmt/format.h>

#include <algorithm>
#include <iterator>
#include <utility>

#include "desktop/file_managers.h"
#include "platform/log.h"
#include "text/enum_rows.h"

namespace brindlet {

namespace {

constexpr std::string_view appleEventsStateKey = "AppleEventsPermissionState";
constexpr std::string_view launchAtLoginTriedKey = "HasAttemptedToAutomaticallyEnableLaunchAtLogin";

struct PermissionStateRow {
    PermissionState key;
    std::string_view name;
};
constexpr PermissionStateRow permissionStateRows[] = {
    {PermissionState::unknown, "unknown"},
    {PermissionState::disabled, "disabled"},
    {PermissionState::enabled, "enabled"},
};
static_assert(rowsCover(permissionStateRows, PermissionState::enabled));

PermissionState stateOf(bool isGranted) {
    return isGranted ? PermissionState::enabled : PermissionState::disabled;
}

PermissionState storedState(const SettingsStore& settings) {
    const auto stored = settings.text(appleEventsStateKey);
    if (!stored) return PermissionState::unknown;
    const auto row = std::find_if(std::begin(permissionStateRows), std::end(permissionStateRows),
                                  [&](const PermissionStateRow& candidate) { return candidate.name == *stored; });
    return row == std::end(permissionStateRows) ? PermissionState::enabled : row->key;
}

std::string_view serviceOf(Permission permission) {
    return permission == Permission::accessibility ? "Accessibility" : "AppleEvents";
}

}  // namespace

std::string_view nameOf(PermissionState state) {
    return rowOf(permissionStateRows, state).name;
}

Permissions::Permissions(SettingsStore& settings, PermissionChecks checks)
    : settings_(settings), checks_(std::move(checks)), appleEventsState_(storedState(settings)) {}

void Permissions::refreshPermissionStates() {
    checkAccessibility();
    appleEventsState_ = storedState(settings_);
}

bool Permissions::checkAccessibility() {
    const bool isGranted = holds(Permission::accessibility);
    note(Permission::accessibility, isGranted);
    return isGranted;
}

bool Permissions::promptForAccessibility() {
    mend(Permission::accessibility);
    const bool isGranted = checkAccessibility();
    if (!isGranted) logError("Accessibility permission denied or not yet granted.");
    return isGranted;
}

bool Permissions::checkAppleEvents() {
    const bool isGranted = holds(Permission::appleEvents);
    note(Permission::appleEvents, isGranted);
    return isGranted;
}

void Permissions::resetPermission(Permission permission) {
    const std::string_view service = serviceOf(permission);
    logInfo(fmt::format("Resetting {} permission for {}", service, brindletIdentifier));
    if (!checks_.reset) return;
    if (const auto failure = checks_.reset(permission))
        logError(fmt::format("Error resetting {} permissions: {}", service, failure->description));
}

bool Permissions::launchAtLoginIsEnabled() const {
    return checks_.launchAtLogin != nullptr && checks_.launchAtLogin->isEnabled();
}

void Permissions::setLaunchAtLogin(bool enabled) {
    if (checks_.launchAtLogin == nullptr) return;
    if (const auto failure = checks_.launchAtLogin->setEnabled(enabled))
        logError(fmt::format("Failed to {} launch at login: {}", enabled ? "enable" : "disable", failure->description));
}

void Permissions::enableLaunchAtLoginOnce() {
    if (settings_.boolean(launchAtLoginTriedKey).value_or(false)) return;
    setLaunchAtLogin(true);
    settings_.setBoolean(launchAtLoginTriedKey, true);
}

const std::vector<PermissionItem>& Permissions::items(Permission permission) const {
    return permission == Permission::accessibility ? checks_.accessibility : checks_.appleEvents;
}

bool Permissions::holds(Permission permission) const {
    const auto& list = items(permission);
    return std::all_of(list.begin(), list.end(), [](const PermissionItem& item) { return !item.isRequired || item.check(); });
}

void Permissions::note(Permission permission, bool isGranted) {
    (permission == Permission::accessibility ? accessibilityState_ : appleEventsState_) = stateOf(isGranted);
}

void Permissions::mend(Permission permission) const {
    for (const PermissionItem& item : items(permission)) {
        if (!item.mend || item.check()) continue;
        if (const auto failure = item.mend()) logError(failure->description);
    }
}

}  // namespace brindlet
