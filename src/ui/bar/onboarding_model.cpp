#include "ui/bar/onboarding_model.h"

#include <QDesktopServices>
#include <QUrl>
#include <optional>
#include <string_view>
#include <utility>

#include "platform/log.h"
#include "text/enum_rows.h"
#include "ui/bar/marked_text.h"
#include "ui/bar/qt_text.h"
#include "ui/settings_panes.h"

namespace brindlet {

namespace {

constexpr std::string_view privacyLink = "privacy";

struct PageRow {
    OnboardingPage key;
    std::string_view name;
    std::optional<Permission> permission;
    std::string_view title;
    std::string_view text;  // "**" around what is strong
    std::string_view link;
};
constexpr PageRow pageRows[] = {
    {OnboardingPage::welcome, "welcome", std::nullopt, "Welcome to", "Command line power, natural language ease.", ""},
    {OnboardingPage::privacy, "privacy", std::nullopt, "",
     "To make smart suggestions, Brindlet sends **your request** and the **names of selected files** to an AI provider "
     "such as OpenAI, Anthropic, Google or Mistral. We never access file contents directly, though we do use AI to "
     "summarise Terminal output—so we don’t recommend using it with sensitive files. AI providers all have similar "
     "policies, and claim to only retain data for up to 30 days for abuse monitoring. **You can also choose to run "
     "everything locally using your own models via Ollama or LM Studio.**",
     privacyLink},
    {OnboardingPage::accessibilityPermission, "accessibilityPermission", Permission::accessibility, "", "", ""},
    {OnboardingPage::appleEventsPermission, "appleEventsPermission", Permission::appleEvents, "", "", ""},
};
static_assert(rowsCover(pageRows, OnboardingPage::appleEventsPermission));

constexpr std::string_view stateNames[] = {"initial", "requested", "requestedMaybeNeedsHelp", "granted"};

}  // namespace

OnboardingModel::OnboardingModel(OnboardingParts parts)
    : parts_(std::move(parts)),
      areActionsInstalled_(parts_.actions.size(), false),
      errands_(parts_.loop, parts_.workers) {}

OnboardingModel::~OnboardingModel() = default;

void OnboardingModel::open(OnboardingPage page) {
    page_ = page;
    isComplete_ = false;
    problem_.clear();
    askForQuit(false);
    permission_.reset();
    if (const auto permission = rowOf(pageRows, page).permission) {
        permission_ = std::make_unique<PermissionPage>(parts_.loop, parts_.workers, parts_.permissions, *permission);
        permission_->onChange([this] { emit changed(); });
    }
    lookAtActions();
    emit pageChanged();
    emit changed();
}

QString OnboardingModel::page() const {
    return qt(rowOf(pageRows, page_).name);
}

QVariantMap OnboardingModel::texts() const {
    const PageRow& row = rowOf(pageRows, page_);
    if (!row.permission)
        return {{"title", qt(row.title)},
                {"text", markedText(row.text)},
                {"link", row.link.empty() ? QString() : qt(linkNamed(row.link).label)}};
    const PermissionPageTexts& texts = textsOf(*row.permission);
    return {{"title", qt(texts.title)}, {"step", qt(texts.step)},     {"name", qt(texts.name)},
            {"text", qt(texts.text)},   {"button", qt(texts.button)}, {"help", qt(texts.help)}};
}

QString OnboardingModel::state() const {
    return permission_ ? qt(stateNames[static_cast<std::size_t>(permission_->state())]) : QString();
}

bool OnboardingModel::canContinue() const {
    return !permission_ || permission_->state() == PermissionPageState::granted;
}

QVariantList OnboardingModel::items() const {
    QVariantList list;
    if (!permission_) return list;
    for (const PermissionPageItem& item : permission_->items())
        list.append(QVariantMap{{"title", qt(item.title)},
                                {"remedy", qt(item.remedy)},
                                {"holds", item.holds},
                                {"canMend", item.canMend},
                                {"isRequired", item.isRequired}});
    return list;
}

QVariantList OnboardingModel::actions() const {
    QVariantList list;
    if (page_ != OnboardingPage::appleEventsPermission) return list;
    for (std::size_t at = 0; at < parts_.actions.size(); ++at)
        list.append(QVariantMap{{"title", qt(parts_.actions[at].title)}, {"isInstalled", areActionsInstalled_[at]}});
    return list;
}

void OnboardingModel::goOn() {
    if (!canContinue() || isComplete_) return;
    if (page_ != OnboardingPage::appleEventsPermission)
        return open(static_cast<OnboardingPage>(static_cast<int>(page_) + 1));
    isComplete_ = true;
    parts_.finished();
}

void OnboardingModel::enableAccess() {
    if (permission_) permission_->enableAccess();
}

void OnboardingModel::mend(int item) {
    if (permission_ && item >= 0 && static_cast<std::size_t>(item) < permission_->items().size())
        permission_->mend(static_cast<std::size_t>(item));
}

void OnboardingModel::installAction(int action) {
    if (action < 0 || static_cast<std::size_t>(action) >= parts_.actions.size()) return;
    errands_.queue([this, install = parts_.actions[static_cast<std::size_t>(action)].install] {
        const auto failure = install();
        return [this, failure] {
            if (failure) logError(failure->description);
            problem_ = failure ? shown(failure->description) : QString();
            emit changed();
        };
    });
    lookAtActions();
}

void OnboardingModel::lookAtActions() {
    if (page_ != OnboardingPage::appleEventsPermission || parts_.actions.empty()) return;
    errands_.queue([this, actions = parts_.actions] {
        std::vector<bool> answers;
        for (const ContextMenuAction& action : actions) answers.push_back(action.isInstalled());
        return [this, answers] {
            areActionsInstalled_ = answers;
            emit changed();
        };
    });
}

void OnboardingModel::openLink() {
    const std::string_view link = rowOf(pageRows, page_).link;
    if (link.empty()) return;
    const QString url = qt(linkNamed(link).url);
    if (parts_.openUrl)
        parts_.openUrl(url);
    else
        QDesktopServices::openUrl(QUrl(url));
}

bool OnboardingModel::mayClose() {
    if (!isComplete_) askForQuit(true);
    return isComplete_;
}

void OnboardingModel::hasClosed() {
    permission_.reset();
    parts_.closed();
}

void OnboardingModel::answerQuit(bool isAgreed) {
    askForQuit(false);
    if (isAgreed) parts_.quit();
}

void OnboardingModel::askForQuit(bool isAsked) {
    if (std::exchange(isQuitAsked_, isAsked) != isAsked) emit quitAskedChanged();
}

}  // namespace brindlet
