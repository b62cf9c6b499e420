// One window of the Thunar that this module is in: which folder it shows, what is selected in it, and how to select.
// Thunar gives modules no access to its windows, so that they are read by the properties of their widgets (seen with
// Thunar 4.18; where they are missing a window shows nothing).
//
//     if (auto shown = shownIn(window)) tell(shown->folder, shown->files);
#pragma once

#include <gtk/gtk.h>

#include <optional>
#include <set>
#include <string>
#include <vector>

namespace brindlet_thunar {

// Absolute paths, in the view's order.
struct Shown {
    std::string folder;
    std::vector<std::string> files;
};

bool isFolderWindow(GtkWindow* window);

// The part of the window that the user works in, where it has two; nullptr where there is none.
GtkWidget* viewOf(GtkWindow* window);

// The folder that the window shows; none where it isn't on a disk of this machine.
std::optional<std::string> folderOf(GtkWindow* window);
// What isn't on a disk of this machine is left out.
std::vector<std::string> selectedFiles(GtkWidget* view);

// Leaves exactly these selected. False, and nothing is changed: the view doesn't have them all (yet).
bool selectFiles(GtkWidget* view, const std::set<std::string>& files);

// The number that the X server knows the window by; 0 where there is no X server.
guint32 numberOf(GtkWindow* window);

}  // namespace brindlet_thunar
