// Selects several items of one folder in a file manager's window, through the accessibility bus.
//
//     AccessibleSelection selection(items, environment, 3s);
//     if (!selection.selectWhereShown(process)) {
//         showFirstItem();
//         selection.selectInWindowOfFirst(process);
//     }
#pragma once

#include <chrono>
#include <set>
#include <string>
#include <vector>

#include "platform/environment.h"
#include "platform/linux/accessible_folder.h"

namespace brindlet {

// Each call works in a process of its own: libatspi takes the session from the environment variables and may hang for
// good, and a GTK 4 program shows its newer windows only to those who come after them (Nautilus 43).
class AccessibleSelection {
  public:
    // `items` lie in one folder; `environment` names the session. Neither call takes much longer than `longest`.
    AccessibleSelection(const std::vector<FilePath>& items, Environment environment, std::chrono::milliseconds longest);

    // In a window that shows the folder already, which is raised. Remembers which windows there are. `process` is the
    // file manager's. False where no window shows it for certain, or not all items appear there within a second.
    bool selectWhereShown(pid_t process);

    // In the window in which the file manager, just asked to, is about to show the first item: a new one, or one that
    // shows the folder for certain. False where that doesn't come, or its items can't be selected from here.
    bool selectInWindowOfFirst(pid_t process) const;

  private:
    bool connect() const;
    std::string lookWhereShown(pid_t process) const;
    bool lookForWindowOfFirst(pid_t process) const;
    Accessible findWindow(pid_t process, TimeLimit limit) const;
    bool selectUntil(TimeLimit lastTry, const Accessible& view, TimeLimit limit) const;
    bool showsFirst(const FolderWindow& shown, TimeLimit limit) const;

    FilePath folder_;
    FilePath home_;
    std::string first_;
    std::vector<std::string> names_;  // sorted
    Environment environment_;
    std::chrono::milliseconds longest_;
    // The windows from before by their names on the bus, and those of them that showed the folder.
    std::set<std::string> known_;
    std::set<std::string> tried_;
};

}  // namespace brindlet
