#include "ui/bar/settings_model.h"

#include <QDesktopServices>
#include <QStringList>
#include <QUrl>
#include <utility>

#include "platform/log.h"
#include "ui/application_shell.h"
#include "ui/bar/marked_text.h"
#include "ui/bar/qt_text.h"

namespace brindlet {

namespace {

constexpr const char* versionWhereUnknown = "1.0";

AIModelsPaneParts modelsParts(const SettingsParts& parts) {
    return {.settings = parts.settings,
            .models = parts.models,
            .customModels = parts.customModels,
            .keys = parts.keys,
            .loop = parts.loop,
            .workers = parts.workers,
            .isUsable = parts.isModelUsable,
            .changed = parts.changed};
}

}  // namespace

SettingsModel::SettingsModel(SettingsParts parts)
    : parts_(std::move(parts)),
      shortcut_(parts_.shortcut),
      aiModels_(modelsParts(parts_)),
      tools_({.packages = parts_.packages, .loop = parts_.loop, .workers = parts_.workers}),
      errands_(parts_.loop, parts_.workers) {}

QVariantList SettingsModel::tabs() const {
    QVariantList list;
    for (const SettingsTab& each : settingsTabs())
        list.append(QVariantMap{{"label", qt(each.label)}, {"symbol", qt(each.symbolName)}});
    return list;
}

void SettingsModel::setTab(int tab) {
    if (tab < 0 || tab >= static_cast<int>(settingsTabs().size())) return;
    if (std::exchange(tab_, tab) != tab) emit tabChanged();
}

void SettingsModel::openTab(const QString& label) {
    if (const auto index = settingsTabNamed(label.toStdString())) setTab(static_cast<int>(*index));
}

void SettingsModel::setShown(bool isShown) {
    tools_.setShown(isShown);
    if (!isShown) return shortcut_.endRecording();
    report(std::nullopt);
    allowed_ = AnalysisConfirmationToggleList(parts_.settings).toggles();
    shortcut_.refresh();
    emit generalChanged();
    emit switchesChanged();
    aiModels_.refresh();
    tools_.refresh();
}

void SettingsModel::report(const std::optional<Failure>& failure) {
    if (failure) logError(failure->description);
    const QString problem = failure ? shown(failure->description) : QString();
    if (std::exchange(problem_, problem) != problem) emit problemChanged();
}

bool SettingsModel::launchAtLogin() const {
    return parts_.permissions.launchAtLoginIsEnabled();
}

void SettingsModel::setLaunchAtLogin(bool isOn) {
    parts_.permissions.setLaunchAtLogin(isOn);
    const bool isTaken = launchAtLogin() == isOn;
    report(isTaken ? std::nullopt : std::optional(Failure{"This can't be changed: the log says why."}));
    emit generalChanged();
}

bool SettingsModel::isTranslucent() const {
    return parts_.settings.boolean(ApplicationShell::translucentKey).value_or(true);
}

void SettingsModel::setTranslucent(bool isOn) {
    report(parts_.settings.setBoolean(ApplicationShell::translucentKey, isOn));
    emit generalChanged();
    if (parts_.changed) parts_.changed();
}

QVariantList SettingsModel::switches() const {
    QVariantList list;
    for (const AutoRunSwitch& each : autoRunSwitches(allowed_)) {
        QStringList help;
        for (const std::string_view line : helpLines(each.effect)) help.append(qt(line));
        list.append(QVariantMap{{"title", qt(each.title)},
                                {"isOn", each.isOn},
                                {"isEnabled", each.isEnabled},
                                {"isRed", each.isRed},
                                {"help", help}});
    }
    return list;
}

int SettingsModel::itemsPerColumnCount() {
    return static_cast<int>(itemsPerColumn);
}

QVariantMap SettingsModel::notice() const {
    const auto shownNotice = autoRunNotice(allowed_);
    if (!shownNotice) return {};
    return {{"symbol", qt(shownNotice->symbolName)},
            {"color", qt(shownNotice->color)},
            {"text", markedText(shownNotice->text)}};
}

// The stored set is read anew for each change, since the command line may have changed another of its switches.
void SettingsModel::setSwitch(int index, bool isOn) {
    if (index < 0 || index >= commandEffectCount) return;
    const auto effect = static_cast<CommandEffect>(index);
    AnalysisConfirmationToggleList(parts_.settings).set(effect, isOn);
    allowed_ = AnalysisConfirmationToggleList(parts_.settings).toggles();
    const bool isTaken = allowed_.contains(effect) == isOn;
    report(isTaken ? std::nullopt : std::optional(Failure{"The settings could not be saved."}));
    emit switchesChanged();
}

QString SettingsModel::versionText() const {
    return QStringLiteral("Version ") + (parts_.version.isEmpty() ? qt(versionWhereUnknown) : parts_.version);
}

QVariantList SettingsModel::links() const {
    QVariantList list;
    for (const Link& link : brindlet::aboutLinks())
        list.append(QVariantMap{{"label", qt(link.label)}, {"url", qt(link.url)}});
    return list;
}

void SettingsModel::reRunPermissions() {
    parts_.reRunPermissions();
}

void SettingsModel::showErrorLogs() {
    errands_.queue([reveal = parts_.reveal, file = parts_.log.latestLogFile()]() -> Errands::Outcome {
        reveal(file);
        return {};
    });
}

void SettingsModel::openLink(const QString& name) {
    openUrl(qt(linkNamed(name.toStdString()).url));
}

void SettingsModel::openUrl(const QString& url) {
    if (parts_.openUrl)
        parts_.openUrl(url);
    else
        QDesktopServices::openUrl(QUrl(url));
}

}  // namespace brindlet
