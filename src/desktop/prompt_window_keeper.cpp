#include "desktop/prompt_window_keeper.h"

#include <utility>

namespace brindlet {

namespace {

constexpr std::chrono::milliseconds followDuration{500};

}  // namespace

PromptWindowKeeper::PromptWindowKeeper(PromptWindowSurroundings surroundings, PromptWindowActions actions)
    : surroundings_(std::move(surroundings)),
      actions_(std::move(actions)),
      self_(std::make_shared<PromptWindowKeeper*>(this)) {}

PromptWindowKeeper::~PromptWindowKeeper() = default;

void PromptWindowKeeper::begin() {
    if (observer_) return;
    surroundings_.tracker.start([this](FinderWindowEvent event) { handleFinderEvent(event); });
    observer_ = surroundings_.workspace.observe([this](WorkspaceEvent event) {
        if (event == WorkspaceEvent::activeSpaceDidChange) activeSpaceDidChange();
    });
}

void PromptWindowKeeper::showPromptWindow(bool activate, bool makeKey) {
    if (!surroundings_.tracker.currentBounds()) {
        actions_.openHomeFolder();
    } else if (!promptWindowController_) {
        promptWindowController_ =
            std::make_unique<PromptWindowController>(surroundings_, actions_.makeWindow(), wishes(makeKey));
        if (actions_.onControllerChange) actions_.onControllerChange(promptWindowController_.get());
    }
    if (activate) actions_.activateBrindlet();
}

PromptWindowWishes PromptWindowKeeper::wishes(bool makeKey) {
    return {.initiallyMakeKey = makeKey,
            .onWantsCloseFinderWindow = [this] { surroundings_.tracker.closeFrontFinderWindow(); },
            .onClose = [this] { onDidClose(); },
            .onPressedCloseButton = actions_.onPressedCloseButton};
}

void PromptWindowKeeper::onDidClose() {
    forgetController();
    if (actions_.onDidClose) actions_.onDidClose();
}

void PromptWindowKeeper::forgetController() {
    if (!promptWindowController_) return;
    promptWindowController_->close();
    if (actions_.onControllerChange) actions_.onControllerChange(nullptr);
    promptWindowController_.reset();
}

void PromptWindowKeeper::handleFinderEvent(FinderWindowEvent event) {
    surroundings_.tracker.refreshStageManagerPolling();
    switch (event) {
        case FinderWindowEvent::windowCreated:
        case FinderWindowEvent::windowDeminiaturized:
            return showIfWanted(true);
        case FinderWindowEvent::applicationShown:
            return showIfWanted(false);
        case FinderWindowEvent::windowMoved:
        case FinderWindowEvent::windowResized:
        case FinderWindowEvent::windowFocusChanged:
            return followMove(event);
        case FinderWindowEvent::windowDestroyed:
        case FinderWindowEvent::windowMiniaturized:
            return followLoss();
        case FinderWindowEvent::applicationHidden:
            return forgetController();
    }
}

void PromptWindowKeeper::showIfWanted(bool activatesFinderLater) {
    if (!actions_.wantsToBeActive() || promptWindowController_ || !surroundings_.tracker.currentBounds()) return;
    showPromptWindow(false, false);
    if (!activatesFinderLater) return surroundings_.tracker.activateFinder();
    surroundings_.loop.post([weak = std::weak_ptr(self_)] {
        if (const auto self = weak.lock()) (*self)->surroundings_.tracker.activateFinder();
    });
}

void PromptWindowKeeper::attachAndFollow() {
    if (const auto bounds = surroundings_.tracker.currentBounds())
        promptWindowController_->attachWindow(*bounds, false);
    promptWindowController_->startFollowing(followDuration);
}

void PromptWindowKeeper::followMove(FinderWindowEvent event) {
    if (!promptWindowController_) return showIfWanted(false);
    attachAndFollow();
    if (event != FinderWindowEvent::windowFocusChanged || !surroundings_.tracker.isFinderOrBrindletFrontmost()) return;
    const auto bounds = surroundings_.tracker.currentBounds();
    if (!bounds) return;
    promptWindowController_->attachWindow(*bounds, true);
    promptWindowController_->startFollowing(followDuration);
}

void PromptWindowKeeper::followLoss() {
    if (!surroundings_.tracker.currentBounds()) return forgetController();
    if (promptWindowController_) attachAndFollow();
}

void PromptWindowKeeper::activeSpaceDidChange() {
    surroundings_.tracker.refreshStageManagerPolling();
    const auto bounds = surroundings_.tracker.currentBounds();
    if (!promptWindowController_) {
        if (bounds && actions_.wantsToBeActive()) showPromptWindow(true, true);
        return;
    }
    if (bounds) promptWindowController_->attachWindow(*bounds, surroundings_.tracker.isFinderOrBrindletFrontmost());
    promptWindowController_->startFollowing(followDuration);
}

PromptWindowController* PromptWindowKeeper::promptWindowController() {
    return promptWindowController_.get();
}

}  // namespace brindlet
