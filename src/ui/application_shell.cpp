#include "ui/application_shell.h"

#include <algorithm>
#include <iterator>

#include "platform/log.h"
#include "text/enum_rows.h"

namespace brindlet {

namespace {

struct TutorialStateRow {
    MenuBarTutorialState key;
    std::string_view rawValue;
};
constexpr TutorialStateRow tutorialStateRows[] = {
    {MenuBarTutorialState::unknown, "unknown"},
    {MenuBarTutorialState::notShown, "notShown"},
    {MenuBarTutorialState::shown, "shown"},
};
static_assert(rowsCover(tutorialStateRows, MenuBarTutorialState::shown));

void logUnstored(const std::optional<Failure>& failure) {
    if (failure) logError(failure->description);
}

void store(SettingsStore& settings, MenuBarTutorialState state) {
    logUnstored(settings.setText(ApplicationShell::tutorialStateKey, rawValue(state)));
}

// The first that is allowed says what to think of it.
struct NoticeRow {
    CommandEffect effect;
    std::string_view text;
};
constexpr NoticeRow noticeRows[] = {
    {CommandEffect::runUnknownScriptsOrCommands,
     "Running unknown scripts or commands without confirmation isn't recommended."},
    {CommandEffect::deleteOrOverwriteFiles,
     "Allowing Brindlet to delete or overwrite files without confirmation isn't recommended."},
    {CommandEffect::haveSignificantSideEffects,
     "Significant side effects include modifying system settings, this isn't recommended."},
    {CommandEffect::moveToTrash,
     "Allowing Brindlet to move files to the trash without confirmation isn't recommended."},
    {CommandEffect::commandHasError,
     "Command errors may include prediction errors, so the final results may be unpredictable."},
};
constexpr std::string_view doubtSymbol = "exclamationmark.shield";

}  // namespace

std::string_view rawValue(MenuBarTutorialState state) {
    return rowOf(tutorialStateRows, state).rawValue;
}

void ApplicationShell::onLaunch() {
    if (runInitialSetup_) return;
    runInitialSetup_ = true;
    if (tutorialState() == MenuBarTutorialState::unknown)
        store(settings_, shownOnboarding() ? MenuBarTutorialState::shown : MenuBarTutorialState::notShown);
    if (shownOnboarding())
        begin(false);
    else
        actions_.openOnboarding(OnboardingPage::welcome);
    actions_.buildIndexAndRefreshPackages();
}

void ApplicationShell::begin(bool afterOnboarding) {
    if (begun_) return;
    if (!afterOnboarding) {
        const bool hasAccessibility = permissions_.checkAccessibility();
        if (!hasAccessibility || !permissions_.checkAppleEvents())
            return actions_.openOnboarding(hasAccessibility ? OnboardingPage::appleEventsPermission
                                                            : OnboardingPage::accessibilityPermission);
    }
    begun_ = true;
    if (wantsToBeActive()) showBarIfWanted();
    actions_.startFollowingWindows();
    actions_.registerHotKey();
}

bool ApplicationShell::shownOnboarding() const {
    return settings_.boolean(shownOnboardingKey).value_or(false);
}

bool ApplicationShell::wantsToBeActive() const {
    return settings_.boolean(wantsToBeActiveKey).value_or(true);
}

MenuBarTutorialState ApplicationShell::tutorialState() const {
    const auto text = settings_.text(tutorialStateKey);
    const auto row = std::ranges::find(tutorialStateRows, text.value_or(""), &TutorialStateRow::rawValue);
    return row == std::end(tutorialStateRows) ? MenuBarTutorialState::unknown : row->key;
}

void ApplicationShell::setWantsToBeActive(bool wants) {
    const bool isChanged = wants != wantsToBeActive();
    logUnstored(settings_.setBoolean(wantsToBeActiveKey, wants));
    if (!isChanged || !shownOnboarding()) return;
    if (wants) return showBarIfWanted();
    if (actions_.hasBar()) actions_.animateBarClosed();
    if (actions_.hasFileManagerBounds()) actions_.activateFileManager();
}

void ApplicationShell::showBarIfWanted() {
    if (!wantsToBeActive()) return;
    actions_.activateFileManager();
    if (!actions_.hasFileManagerBounds()) actions_.openHomeFolder();
    if (!actions_.hasBar()) actions_.showPromptWindow(true, true);
    actions_.activateProgram();
}

// With the bar open behind another program the key brings it forward and doesn't close it.
void ApplicationShell::toggleBar() {
    if (actions_.isProgramActive()) return setWantsToBeActive(!wantsToBeActive());
    setWantsToBeActive(true);
    showBarIfWanted();
}

void ApplicationShell::pressedCloseButton() {
    if (tutorialState() == MenuBarTutorialState::shown) return;
    actions_.openMenuBarTutorial();
    store(settings_, MenuBarTutorialState::shown);
}

void ApplicationShell::onboardingFinished() {
    logUnstored(settings_.setBoolean(shownOnboardingKey, true));
    logUnstored(settings_.setBoolean(wantsToBeActiveKey, true));
    actions_.closeOnboarding();
}

void ApplicationShell::onboardingClosed() {
    if (shownOnboarding()) begin(true);
}

void ApplicationShell::updateDockIcon(WindowsThatWantDockIconVisible window, bool isVisible) {
    if (isVisible)
        windowsThatWantDockIconVisible_.insert(window);
    else
        windowsThatWantDockIconVisible_.erase(window);
    actions_.setDockIconVisible(!windowsThatWantDockIconVisible_.empty());
}

ApplicationShell::MenuItem ApplicationShell::barMenuItem() {
    return {.title = wantsToBeActive() ? "Hide Brindlet bar" : "Show Brindlet bar",
            .isEnabled = shownOnboarding(),
            .choose = [this] { setWantsToBeActive(!wantsToBeActive()); }};
}

std::optional<AutoRunNotice> autoRunNotice(const std::set<CommandEffect>& allowed) {
    if (!allowed.contains(CommandEffect::harmless))
        return AutoRunNotice{"checkmark.shield", "",
                             "Brindlet will **always** ask for confirmation before running commands."};
    if (allowed.size() == commandEffectCount) return AutoRunNotice{doubtSymbol, "red", "You feelin' lucky, punk?"};
    for (const NoticeRow& row : noticeRows)
        if (allowed.contains(row.effect)) return AutoRunNotice{doubtSymbol, "", row.text};
    return std::nullopt;
}

}  // namespace brindlet
