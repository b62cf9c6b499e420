#include "ui/bar/permissions_test_model.h"

#include "platform/log.h"

namespace brindlet {

namespace {

QString described(const char* name, PermissionState state) {
    return QString::fromUtf8(name) +
           (state == PermissionState::enabled ? QStringLiteral("enabled") : QStringLiteral("disabled"));
}

}  // namespace

PermissionsTestModel::PermissionsTestModel(Permissions& permissions, MainLoop& loop, Workers& workers)
    : permissions_(permissions), errands_(loop, workers) {}

QString PermissionsTestModel::accessibilityText() const {
    return described("Accessibility: ", permissions_.accessibilityState());
}

QString PermissionsTestModel::appleEventsText() const {
    return described("AppleEvents: ", permissions_.appleEventsState());
}

void PermissionsTestModel::refresh() {
    prompt(Permission::accessibility, false);
}

void PermissionsTestModel::resetAccessibility() {
    reset(Permission::accessibility);
}

void PermissionsTestModel::resetAppleEvents() {
    reset(Permission::appleEvents);
}

void PermissionsTestModel::promptForAccessibility() {
    prompt(Permission::accessibility, true);
}

void PermissionsTestModel::promptForAppleEvents() {
    prompt(Permission::appleEvents, false);
}

void PermissionsTestModel::reset(Permission permission) {
    errands_.queue([&permissions = permissions_, permission]() -> Errands::Outcome {
        permissions.resetPermission(permission);  // touches no state
        return {};
    });
    prompt(permission, false);
}

void PermissionsTestModel::prompt(Permission permission, bool isMending) {
    errands_.queue([this, &permissions = permissions_, permission, isMending] {
        if (isMending) permissions.mend(permission);
        const bool isGranted = permissions.holds(permission);
        if (isMending && !isGranted) logError("Accessibility permission denied or not yet granted.");
        return [this, permission, isGranted] {
            permissions_.note(permission, isGranted);
            emit changed();
        };
    });
}

}  // namespace brindlet
