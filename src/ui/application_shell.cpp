#include "ui/application_shell.h"

#include <algorithm>
#include <iterator>

#include "platform/log.h"
#include "text/enum_rows.h"
#include "text/overloaded.h"

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
        store(tutorialStateKey,
              rawValue(shownOnboarding() ? MenuBarTutorialState::shown : MenuBarTutorialState::notShown));
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

// Where nothing can be stored, as in a home that is read only, a choice holds until the program ends.
void ApplicationShell::store(std::string_view key, Stored value) {
    const auto failure = std::visit(Overloaded{[&](bool flag) { return settings_.setBoolean(key, flag); },
                                               [&](std::string_view text) { return settings_.setText(key, text); }},
                                    value);
    if (!failure) {
        unstored_.erase(key);
        return;
    }
    logError(failure->description);
    unstored_.insert_or_assign(key, value);
}

std::optional<ApplicationShell::Stored> ApplicationShell::unstored(std::string_view key) const {
    const auto found = unstored_.find(key);
    return found == unstored_.end() ? std::nullopt : std::optional(found->second);
}

bool ApplicationShell::shownOnboarding() const {
    if (const auto kept = unstored(shownOnboardingKey)) return std::get<bool>(*kept);
    return settings_.boolean(shownOnboardingKey).value_or(false);
}

bool ApplicationShell::wantsToBeActive() const {
    if (const auto kept = unstored(wantsToBeActiveKey)) return std::get<bool>(*kept);
    return settings_.boolean(wantsToBeActiveKey).value_or(true);
}

MenuBarTutorialState ApplicationShell::tutorialState() const {
    const auto kept = unstored(tutorialStateKey);
    const auto text =
        kept ? std::string(std::get<std::string_view>(*kept)) : settings_.text(tutorialStateKey).value_or("");
    const auto row = std::ranges::find(tutorialStateRows, text, &TutorialStateRow::rawValue);
    return row == std::end(tutorialStateRows) ? MenuBarTutorialState::unknown : row->key;
}

void ApplicationShell::setWantsToBeActive(bool wants) {
    const bool isChanged = wants != wantsToBeActive();
    store(wantsToBeActiveKey, wants);
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
    store(tutorialStateKey, rawValue(MenuBarTutorialState::shown));
}

void ApplicationShell::onboardingFinished() {
    const bool wasPutAway = begun_ && !wantsToBeActive();  // the pages were shown again
    store(shownOnboardingKey, true);
    store(wantsToBeActiveKey, true);
    actions_.closeOnboarding();
    if (wasPutAway) showBarIfWanted();
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
