// What following windows and reading the selection need here, as the check lists of the first-run pages.
//
//     Permissions permissions(settings, {.accessibility = accessibilityItems(processEnvironment()),
//                                        .appleEvents = automationItems(processEnvironment(), helper),
//                                        .launchAtLogin = &autostart});
#pragma once

#include <vector>

#include "desktop/linux/answering_process.h"
#include "desktop/permissions.h"
#include "platform/environment.h"
#include "platform/file_path.h"

namespace brindlet {

// There programs don't see the windows of others.
bool isWaylandSession(const Environment& environment);

std::vector<PermissionItem> accessibilityItems(const Environment& environment);
// `helper` answers by selectionAnswer(), and outlives the items.
std::vector<PermissionItem> automationItems(const Environment& environment, AnsweringProcess& helper);

// An entry of the desktop's autostart folder (autostart of freedesktop.org).
class AutostartEntry final : public LaunchAtLogin {
  public:
    AutostartEntry(FilePath autostartFolder, FilePath program);
    // XDG_CONFIG_HOME/autostart.
    static FilePath folderOf(const Environment& environment);

    bool isEnabled() const override;
    std::optional<Failure> setEnabled(bool enabled) override;

  private:
    FilePath file_;
    FilePath program_;
};

}  // namespace brindlet
