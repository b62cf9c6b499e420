// Reads folder and selection of a file manager's window through the accessibility bus, and by D-Bus where it offers
// more.
//
//     AnsweringProcess helper(selectionAnswer());   // before there are other threads
//     FileManagerSource source(files, {.front = ..., .read = [&](const auto& window, bool isFresh) {
//         return readSelection(helper, window, isFresh);
//     }});
#pragma once

#include "desktop/file_manager_source.h"
#include "desktop/linux/answering_process.h"

namespace brindlet {

AnsweringProcess::Answer selectionAnswer();

// None where the window can't be found on the bus, or it isn't certain which folder it shows. Mostly takes some
// milliseconds, 20 to 200 where the window is new to it, and 1.5 s at most.
std::optional<FolderContent> readSelection(AnsweringProcess& helper, const FolderWindowDetails& window, bool isFresh);

// For a window that shows a folder: what is written about it, besides what is in the folder. Public for its tests.
// The folders that a title may name by its whole path ("/a/b - Thunar", "b - /a/b").
std::vector<std::string> pathsInTitle(const std::string& title);
// The one that the reply of dbus-send(1) on OpenWindowsWithLocations has for the window: of several tabs that by whose
// name the title goes. Empty where that isn't certain.
std::string folderInLocations(const std::string& reply, const std::string& objectPath, const std::string& title);

}  // namespace brindlet
