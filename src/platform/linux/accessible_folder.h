// What a file manager's windows show, read and changed through AT-SPI2, the desktop's interface for assistive programs.
//
//     if (!connectAccessibility()) return;
//     for (const Accessible& window : accessibleWindows(processId, limit)) {
//         const FolderWindow shown = readFolderWindow(window, home, limit);
//         if (shown.view && shown.shows(folder)) selectOnly(shown.view, {"a.txt", "b.txt"}, limit);
//     }
//
// What was seen (at-spi2-core 2.46, 2026-11-23): GTK 3 and GTK 4 programs are on the accessibility bus from their
// start, whether or not org.a11y.Status says that assistive programs are in use; that setting is the user's and stays
// as it is. Qt programs come there only with it, PCManFM only with a module. One that was started while there was no
// such bus, or with NO_AT_BRIDGE=1, stays away until it is started again: it has no windows here. Names can be read and
// items be selected in Nemo 5.6, Caja 1.26, Nautilus 43 (what it has scrolled by so far) and in the list of
// Thunar 4.18; its icon view has no items for assistive programs.
//
// Everything here stays on one thread, ends soon after its `limit` and answers "nothing" for what a program doesn't
// say; what AtspiLibrary says of its hanging holds here too.
#pragma once

#include <sys/types.h>

#include <chrono>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/file_path.h"

struct _AtspiAccessible;

namespace brindlet {

using TimeLimit = std::chrono::steady_clock::time_point;

// An object of another program. Two handles of one object are equal for as long as one of them is kept.
using Accessible = std::shared_ptr<_AtspiAccessible>;

// What the object is called on the accessibility bus, in this process and in others; one line.
std::string busNameOf(const Accessible& object);

// The first of all: true once the accessibility bus of the session that the environment variables name can be asked.
bool connectAccessibility();

struct FolderWindow {
    // Where the items are; none where the window has no such thing, or more than one that may be it.
    Accessible view;
    // The folders that location entries and path buttons name; several where it isn't clear which of them is shown.
    std::vector<FilePath> folders;

    bool shows(const FilePath& folder) const { return folders.size() == 1 && folders.front() == folder; }
};

std::vector<Accessible> accessibleWindows(pid_t process, TimeLimit limit);

// The title of a window, and whether it is the one that has the keyboard.
std::string accessibleTitle(const Accessible& window);
bool isActiveWindow(const Accessible& window);

// `home` is the folder for which path buttons that begin with its name, or with "Home", stand.
FolderWindow readFolderWindow(const Accessible& window, const FilePath& home, TimeLimit limit);

// The names as the view displays them, in no order; none where not all could be read in time.
std::optional<std::vector<std::string>> selectedNames(const Accessible& view, TimeLimit limit);

// Leaves exactly the items of these names selected. False: the view doesn't have them all, which changes nothing, or
// something else is selected afterwards.
bool selectOnly(const Accessible& view, const std::vector<std::string>& names, TimeLimit limit);

// Gives the view the keyboard, which raises its window.
void focus(const Accessible& object);

}  // namespace brindlet
