// "Ask Brindlet" in the context menus of the file managers that are installed here: it hands their folder and what is
// selected over to the bar, which then needs to read neither.
//
//     for (const ContextMenuAction& action : contextMenuActions(processEnvironment()))
//         if (!action.isInstalled()) offer(action.title, action.install);
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "platform/environment.h"
#include "platform/result.h"

namespace brindlet {

// A file manager that runs may know of a change only once it was closed and started again. Each call may touch the
// disk, from any thread, but never two of one action at once.
struct ContextMenuAction {
    std::string fileManager;
    std::string title;  // as "Ask Brindlet in the context menu of Thunar (Ctrl+Shift+B)"
    std::function<bool()> isInstalled;
    // Once is enough. What else is in the files it touches stays, byte for byte.
    std::function<std::optional<Failure>()> install;
    // Gives back what was there before, as far as nobody has changed it since.
    std::function<std::optional<Failure>()> remove;
};

// For the file managers on PATH, and the folders of HOME, XDG_CONFIG_HOME and XDG_DATA_HOME.
std::vector<ContextMenuAction> contextMenuActions(const Environment& environment);

}  // namespace brindlet
