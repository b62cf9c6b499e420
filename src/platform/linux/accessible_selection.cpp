#include "platform/linux/accessible_selection.h"

#include <algorithm>
#include <cstdlib>
#include <thread>
#include <utility>

#include "platform/linux/forked_task.h"
#include "text/strings.h"

namespace brindlet {

namespace {

using SelectionClock = std::chrono::steady_clock;
using namespace std::chrono_literals;

constexpr auto selectionPause = 20ms;
// A file that was just written appears in a view a moment later.
constexpr auto lateFilePatience = 1000ms;
// A file manager selects the item that it was asked to show once it has read the folder, and drops what else is
// selected at that time.
constexpr auto ownSelectionPatience = 700ms;
// What connecting may take, and the last call before the time limit.
constexpr auto selectionOverhead = 1000ms;

// What the two processes tell each other: this, or a line for each window.
constexpr std::string_view selectedAnswer = "selected";
constexpr std::string_view knownMark = "known ";
constexpr std::string_view triedMark = "tried ";

}  // namespace

AccessibleSelection::AccessibleSelection(const std::vector<FilePath>& items, Environment environment,
                                         std::chrono::milliseconds longest)
    : folder_(items.front().parent()),
      first_(items.front().name()),
      environment_(std::move(environment)),
      longest_(longest) {
    if (const auto home = environment_.find("HOME"); home != environment_.end()) home_ = FilePath(home->second);
    for (const FilePath& item : items) names_.emplace_back(item.name());
    std::sort(names_.begin(), names_.end());
    names_.erase(std::unique(names_.begin(), names_.end()), names_.end());
}

bool AccessibleSelection::selectWhereShown(pid_t process) {
    const auto answer =
        runForked(longest_ + selectionOverhead, [&] { return connect() ? lookWhereShown(process) : ""; });
    if (answer == selectedAnswer) return true;
    for (const std::string& line : splitNonEmpty(answer.value_or(""), "\n"))
        (line.starts_with(triedMark) ? tried_ : known_).insert(line.substr(knownMark.size()));
    return false;
}

bool AccessibleSelection::selectInWindowOfFirst(pid_t process) const {
    return selectedAnswer == runForked(longest_ + selectionOverhead, [&] {
               return std::string(connect() && lookForWindowOfFirst(process) ? selectedAnswer : "");
           });
}

// Only in a process of its own.
bool AccessibleSelection::connect() const {
    ::clearenv();
    for (const auto& [name, value] : environment_) ::setenv(name.c_str(), value.c_str(), 1);
    return connectAccessibility();
}

std::string AccessibleSelection::lookWhereShown(pid_t process) const {
    const TimeLimit limit = SelectionClock::now() + longest_;
    std::string windows;
    for (const Accessible& window : accessibleWindows(process, limit)) {
        windows.append(knownMark).append(busNameOf(window)) += '\n';
        const FolderWindow shown = readFolderWindow(window, home_, limit);
        if (!shown.shows(folder_)) continue;
        windows.append(triedMark).append(busNameOf(window)) += '\n';
        if (!shown.view || !selectUntil(SelectionClock::now() + lateFilePatience, shown.view, limit)) continue;
        focus(shown.view);
        return std::string(selectedAnswer);
    }
    return windows;
}

bool AccessibleSelection::lookForWindowOfFirst(pid_t process) const {
    const TimeLimit limit = SelectionClock::now() + longest_;
    Accessible window;
    while (!(window = findWindow(process, limit))) {
        if (SelectionClock::now() >= limit) return false;
        std::this_thread::sleep_for(selectionPause);
    }
    // A view is put in the place of another one while the window comes up.
    const TimeLimit ownSelectionLimit = SelectionClock::now() + ownSelectionPatience;
    FolderWindow shown = readFolderWindow(window, home_, limit);
    while (!showsFirst(shown, limit) && SelectionClock::now() < ownSelectionLimit) {
        std::this_thread::sleep_for(selectionPause);
        shown = readFolderWindow(window, home_, limit);
    }
    return shown.view && selectUntil(SelectionClock::now() + lateFilePatience, shown.view, limit);
}

bool AccessibleSelection::selectUntil(TimeLimit lastTry, const Accessible& view, TimeLimit limit) const {
    while (!selectOnly(view, names_, limit)) {
        if (SelectionClock::now() >= std::min(lastTry, limit)) return false;
        std::this_thread::sleep_for(selectionPause);
    }
    return true;
}

Accessible AccessibleSelection::findWindow(pid_t process, TimeLimit limit) const {
    for (const Accessible& window : accessibleWindows(process, limit)) {
        const std::string name = busNameOf(window);
        const FolderWindow shown = readFolderWindow(window, home_, limit);
        const bool isNew = !known_.contains(name) && shown.folders.empty();
        if (tried_.contains(name) ? showsFirst(shown, limit) : isNew || shown.shows(folder_)) return window;
    }
    return nullptr;
}

bool AccessibleSelection::showsFirst(const FolderWindow& shown, TimeLimit limit) const {
    return shown.view && selectedNames(shown.view, limit) == std::vector<std::string>{first_};
}

}  // namespace brindlet
