// Keeps the one bar: makes it when the file manager shows a window and the user wants it, moves it on word of the
// windows, and takes it away.
//
//     PromptWindowKeeper keeper(surroundings, actions);
//     keeper.begin();                       // from now on windows are followed
//     keeper.showPromptWindow(true, true);
#pragma once

#include <functional>
#include <memory>

#include "desktop/prompt_window_controller.h"

namespace brindlet {

// What the front end does for it.
struct PromptWindowActions {
    std::function<bool()> wantsToBeActive;  // the user wants the bar to be there
    std::function<std::unique_ptr<PromptWindow>()> makeWindow;
    std::function<void()> openHomeFolder;    // in the file manager
    std::function<void()> activateBrindlet;  // the keyboard goes to this program
    std::function<void()> onPressedCloseButton{};
    std::function<void()> onDidClose{};  // the user's close button has folded it away
    // The controller that stands is another one, or none: the view in the new window is to be filled.
    std::function<void(PromptWindowController*)> onControllerChange{};
};

// All of it on the loop's thread.
class PromptWindowKeeper {
  public:
    PromptWindowKeeper(PromptWindowSurroundings surroundings, PromptWindowActions actions);
    ~PromptWindowKeeper();
    PromptWindowKeeper(const PromptWindowKeeper&) = delete;
    PromptWindowKeeper& operator=(const PromptWindowKeeper&) = delete;

    // Follows windows and desktops from then on. Once.
    void begin();

    // Below the front window of the file manager; with none, one is opened, and the bar comes with it.
    void showPromptWindow(bool activate, bool makeKey);

    void handleFinderEvent(FinderWindowEvent event);
    void activeSpaceDidChange();

    // Nullptr while there is no bar.
    PromptWindowController* promptWindowController();

  private:
    void showIfWanted(bool activatesFinderLater);
    void followMove(FinderWindowEvent event);
    void followLoss();
    void attachAndFollow();
    void forgetController();
    void onDidClose();
    PromptWindowWishes wishes(bool makeKey);

    PromptWindowSurroundings surroundings_;
    PromptWindowActions actions_;
    std::unique_ptr<PromptWindowController> promptWindowController_;
    WorkspaceNotifications::Token observer_;
    std::shared_ptr<PromptWindowKeeper*> self_;  // for what is posted: empty once this is gone
};

}  // namespace brindlet
