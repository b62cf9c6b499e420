// The windows of the desktop as far as the bar follows them: one look at all of them, and word of their changes.
//
//     const WindowsLook look = source.look();
//     if (const SeenWindow* front = frontFolderWindow(look)) place(front->frame);
#pragma once

#include <sys/types.h>

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "desktop/rectangle.h"
#include "platform/result.h"

namespace brindlet {

using WindowId = std::uint32_t;

struct Application {
    std::string name{};
    std::optional<std::string> bundleIdentifier{};  // one of file_managers.h where it is known there

    bool operator==(const Application&) const = default;
};

struct SeenWindow {
    WindowId id = 0;
    Application owner{};
    // Shows a folder: a file manager's, and none of its dialogs, panels or desktops.
    bool isFolderWindow = false;
    // The rest holds of folder windows only.
    bool isMiniaturized = false;
    bool isOnScreen = false;  // shown on the desktop that the user is on
    Rectangle frame{};        // what is seen of it, with its title bar and without its shadow; origin at the top left

    bool operator==(const SeenWindow&) const = default;
};

struct WindowsLook {
    std::vector<SeenWindow> windows{};       // from the top down
    WindowId activeWindow = 0;               // 0: nothing has the keyboard
    std::optional<Application> frontmost{};  // whose the active window is
    std::optional<std::uint32_t> desktop{};  // which of the user's desktops is shown
    bool isShowingDesktop = false;           // all windows are out of the way for the time being

    bool operator==(const WindowsLook&) const = default;
};

struct WindowSource {
    virtual ~WindowSource() = default;

    // Empty where nothing can be seen.
    virtual WindowsLook look() = 0;
    // From now on `onChange` is called, on the loop's thread, when a look may give something else; also for nothing.
    virtual std::optional<Failure> watch(std::function<void()> onChange) = 0;
    // Whether windows may move without word of it, so that they must be looked at again and again.
    virtual bool needsPolling() { return false; }
    // As the user's own press on its close button. False where it can't be asked to.
    virtual bool close(WindowId window) = 0;
    // Gives the window the keyboard, and raises it.
    virtual void activate(WindowId window) = 0;
};

// What only the folder window in front is asked for.
struct FolderWindowDetails {
    WindowId id = 0;
    std::string identifier{};  // of its file manager, as file_managers.h has it
    pid_t process = 0;
    std::string title{};
    std::string objectPath{};    // under which its program names it on the bus; GTK only
    std::uint32_t userTime = 0;  // when the user last touched it, by the server's clock; 0: it doesn't tell
    bool isActive = false;       // it has the keyboard

    bool operator==(const FolderWindowDetails&) const = default;
};

// The uppermost that is on screen; nullptr where there is none.
const SeenWindow* frontFolderWindow(const WindowsLook& look);

}  // namespace brindlet
