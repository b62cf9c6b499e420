#include "ui/bar/bar_model.h"

#include <QWindow>
#include <algorithm>
#include <chrono>
#include <string_view>
#include <utility>

#include "exec/file_variables.h"
#include "exec/package_table.h"
#include "text/strings.h"
#include "ui/bar/marked_text.h"
#include "ui/bar/qt_text.h"
#include "ui/prediction_rows.h"

namespace brindlet {

namespace {

constexpr std::chrono::milliseconds readingTime{300};
constexpr int runStepDuration = 300, progressStepDuration = 500;  // milliseconds
constexpr std::size_t mostNames = 10;
// Laying out more than that would hold up the bar; the end is what tells how it went.
constexpr std::size_t longestOutput = 200'000;

// From strangers, with its lines and tabs kept.
QString shownLines(std::string_view text) {
    std::string lines;
    for (std::size_t at = 0; at <= text.size();) {
        const std::size_t end = std::min(text.find_first_of("\n\t", at), text.size());
        lines += shownText(text.substr(at, end - at));
        if (end < text.size()) lines += text[end];
        at = end + 1;
    }
    return qt(lines);
}

QString nameOf(PathParts::From from) {
    switch (from) {
        case PathParts::From::folder:
            break;
        case PathParts::From::trash:
            return QStringLiteral("trash");
        case PathParts::From::home:
            return QStringLiteral("home");
    }
    return QStringLiteral("folder");
}

QVariantMap mapOf(const FilePath& path, const PredictReport& report) {
    const PathParts parts = partsOfPath(path, report.folder, report.home);
    return {{"from", nameOf(parts.from)}, {"rest", shown(parts.rest)}};
}

QVariantMap mapOf(const PredictionRow& each, const PredictReport& report) {
    const ChangesViewIconAndText& row = each.row;
    QStringList subtitle;
    if (row.subtitle)
        for (const std::string& line : subtitleLines(*row.subtitle)) subtitle.append(qt(line));
    QVariantMap map{{"icon", row.icon ? qt(row.icon->symbolName) : QString()},
                    {"color", row.icon ? qt(row.icon->color) : QString()},
                    {"text", shown(row.text)},
                    {"subtitle", subtitle.join('\n')}};
    if (!each.change) return map;
    const ChangesViewChangeType type = each.change->type;
    map["verb"] = qt(verbOf(type));
    map["isStruck"] = type == ChangesViewChangeType::delete_ || type == ChangesViewChangeType::overwrite;
    map["target"] = mapOf(each.change->fileChange.url, report);
    if (const auto& source = each.change->fileChange.sourceURL) map["source"] = mapOf(*source, report);
    return map;
}

QVariantMap sectionOf(const char* title, const std::vector<AIModel>& models) {
    QVariantList entries;
    for (const AIModel& model : models)
        entries.append(QVariantMap{{"name", qt(model.name)}, {"title", shown(model.friendlyName)}});
    return {{"title", QString::fromLatin1(title)}, {"models", entries}};
}

std::vector<std::string> idsOf(const std::vector<AICommand>& commands) {
    std::vector<std::string> ids;
    ids.reserve(commands.size());
    for (const AICommand& command : commands) ids.push_back(command.id);
    return ids;
}

}  // namespace

BarModel::BarModel(BarParts parts) : parts_(std::move(parts)) {
    parts_.flow.observe([this] { follow(); });
    follow();
}

// What has changed since the pages were told.

void BarModel::follow() {
    const PromptFlowView& now = view();
    if (std::exchange(told_.prompt, now.prompt) != now.prompt) emit promptChanged();
    followPrediction();
    if (std::exchange(told_.command, now.editedBashCommand) != now.editedBashCommand) emit commandChanged();
    followProgress();
    if (std::exchange(told_.outputSize, now.fullCommandOutput.size()) != now.fullCommandOutput.size())
        emit outputChanged();
    followHistory();
    if (std::exchange(told_.modelName, now.selectedModel.name) != now.selectedModel.name) emit modelsChanged();
    const QString label = selection();
    const bool hasOtherItems = std::exchange(told_.items, parts_.finder.items()) != parts_.finder.items();
    if (std::exchange(told_.selection, label) != label || hasOtherItems) emit selectionChanged();
    followState();
}

// Last, so that what the page of the new state shows is there already.
void BarModel::followState() {
    const PromptFlowView& now = view();
    const bool hasOtherState = std::exchange(told_.state, now.promptState) != now.promptState;
    if (hasOtherState && now.promptState == PromptState::awaitingConfirmation)
        answersFrom_ = std::chrono::steady_clock::now() + readingTime;
    const QString text = statusText();
    if (std::exchange(told_.statusText, text) != text || hasOtherState) emit stateChanged();
    const bool arePopoversOther =
        std::exchange(told_.isPredictionShown, now.commandSummaryShowing) != now.commandSummaryShowing;
    if (std::exchange(told_.isHistoryShown, now.showHistoryPopover) != now.showHistoryPopover || arePopoversOther)
        emit popoversChanged();
}

// A new simulation gives the command a new id, and so does an edit.
void BarModel::followPrediction() {
    const PromptFlowView& now = view();
    const std::string id = now.command ? now.command->id : "";
    const auto& folder = parts_.finder.activeFolderPath();
    const bool isSame = id == told_.commandId && folder == told_.folder &&
                        now.missingPackageName == told_.missingPackage && now.needsHomebrew == told_.needsHomebrew &&
                        now.isPredicting == told_.isPredicting;
    if (isSame) return;
    told_.commandId = id;
    told_.folder = folder;
    told_.missingPackage = now.missingPackageName;
    told_.needsHomebrew = now.needsHomebrew;
    if (std::exchange(told_.isPredicting, now.isPredicting) && !now.isPredicting)
        answersFrom_ = std::chrono::steady_clock::now() + readingTime;
    prediction_ = now.command ? parts_.prediction() : std::nullopt;
    rows_ = predictedRows();
    emit predictionChanged();
}

// The step from one run to the next is the shorter one.
void BarModel::followProgress() {
    const PromptFlowView& now = view();
    const bool isNextRun = std::exchange(told_.runs, now.runs) != now.runs;
    if (std::exchange(told_.progress, now.progressNorm) == now.progressNorm) return;
    progressDuration_ = isNextRun ? runStepDuration : progressStepDuration;
    emit progressChanged();
}

void BarModel::followHistory() {
    std::vector<std::string> ids = idsOf(view().commandHistory);
    if (ids == told_.historyIds) return;
    told_.historyIds = std::move(ids);
    emit historyChanged();
}

// What the pages show.

QString BarModel::promptState() const {
    return qt(caseName(view().promptState));
}

QString BarModel::statusText() const {
    switch (view().promptState) {
        case PromptState::enteringPrompt:
        case PromptState::enteringFollowUpPrompt:
            return {};
        case PromptState::sendingRequest:
            return shown(view().prompt);
        case PromptState::question:
            return shownLines(trimmed(view().result));
        default:
            return shownLines(trimmed(brindlet::statusText(view())));
    }
}

QString BarModel::prompt() const {
    return qt(view().prompt);
}

QString BarModel::selection() const {
    return qt(selectionLabel(parts_.finder));
}

QString BarModel::selectedNames() const {
    const std::vector<std::string>& items = parts_.finder.items();
    QStringList names;
    for (std::size_t at = 0; at < std::min(items.size(), mostNames); ++at)
        names.append(shown(FilePath(items[at]).name()));
    if (items.size() > mostNames) names.append(QStringLiteral("and %1 more").arg(items.size() - mostNames));
    return names.join('\n');
}

QString BarModel::request() const {
    return view().command ? shown(view().command->prompt) : QString();
}

QString BarModel::runsText() const {
    constexpr std::string_view texts[] = {
        "Runs **once**:", "Runs **once per file** selected:", "Runs **once** on **all selected files**:"};
    return view().command ? markedText(texts[static_cast<std::size_t>(runMode(view().command->bashCommand))])
                          : QString();
}

QVariantList BarModel::predictedRows() const {
    QVariantList list;
    if (!prediction_) return list;
    if (view().isPredicting)
        return {mapOf({{{{"yellow", "clock"}}, "Still finding out what this does…", std::nullopt}, std::nullopt},
                      *prediction_)};
    for (const PredictionRow& row : predictionRowsWithChanges(prediction_->result, prediction_->folder,
                                                              prediction_->home, prediction_->predictionNeedsInstall))
        list.append(mapOf(row, *prediction_));
    return list;
}

QVariantMap BarModel::requirement() const {
    const auto packages = availablePackages();
    const auto package = std::ranges::find(packages, view().missingPackageName.value_or(""), &PackageInfo::name);
    if (package == packages.end()) return {};
    return {{"name", qt(package->name)},
            {"description", qt(package->description)},
            {"licenseName", qt(package->licenseName)},
            {"licenseURL", qt(package->licenseURL)},
            {"sourceURL", qt(package->sourceURL)},
            {"isFromHomebrew", package->source == PackageSource::homebrew},
            {"needsHomebrew", view().needsHomebrew}};
}

QString BarModel::risk() const {
    return qt(caseName(view().riskSummary));
}

QString BarModel::confirmText() const {
    return qt(brindlet::confirmTitle(view(), parts_.packages));
}

QString BarModel::command() const {
    return qt(view().editedBashCommand);
}

QString BarModel::fullOutput() const {
    std::string_view text = view().fullCommandOutput;
    if (text.size() <= longestOutput) return shownLines(text);
    text.remove_prefix(text.size() - longestOutput);
    text.remove_prefix(std::min(text.find('\n') + 1, text.size()));
    return QStringLiteral("…\n") + shownLines(text);
}

QVariantList BarModel::history() const {
    QVariantList list;
    for (const AICommand& entry : view().commandHistory)
        list.append(QVariantMap{{"prompt", shown(entry.prompt)}, {"command", shown(entry.bashCommand)}});
    return list;
}

QVariantList BarModel::modelSections() const {
    const AIModelList& models = parts_.modelList;
    QVariantList sections;
    for (const QVariantMap& section : {sectionOf("Custom models", models.enabledCustomModels()),
                                       sectionOf("Small models", models.enabledModels(AIModelList::allSmallModels())),
                                       sectionOf("Large models", models.enabledModels(AIModelList::allLargeModels()))})
        if (!section["models"].toList().isEmpty()) sections.append(section);
    return sections;
}

QString BarModel::selectedModel() const {
    return qt(view().selectedModel.name);
}

QString BarModel::selectedModelTitle() const {
    return shown(view().selectedModel.friendlyName);
}

// What people do.

void BarModel::setPrompt(const QString& text) {
    if (text != prompt()) parts_.flow.setPrompt(text.toStdString());
}

void BarModel::submit() {
    parts_.flow.submit();
}

void BarModel::confirm() {
    parts_.flow.confirm();
}

// A key that was on its way before the prediction could be read is no answer to it.
void BarModel::confirmOrDismiss() {
    if (std::chrono::steady_clock::now() >= answersFrom_) parts_.flow.confirmOrDismiss();
}

void BarModel::refine() {
    parts_.flow.refine();
}

void BarModel::escape() {
    parts_.flow.escape();
}

void BarModel::close() {
    parts_.flow.close();
}

void BarModel::historyStep(int direction) {
    const auto before = std::pair(view().currentHistoryIndex, view().promptState);
    parts_.flow.historyStep(direction);
    if (before != std::pair(view().currentHistoryIndex, view().promptState)) emit historyMoved(direction);
}

void BarModel::chooseFromHistory(int row) {
    const auto& entries = view().commandHistory;
    if (row >= 0 && row < static_cast<int>(entries.size()))
        parts_.flow.chooseFromHistory(entries[static_cast<std::size_t>(row)]);
}

void BarModel::removeFromHistory(int row) {
    const auto& entries = view().commandHistory;
    if (row < 0 || row >= static_cast<int>(entries.size())) return;
    const AICommand entry = entries[static_cast<std::size_t>(row)];
    parts_.flow.removeFromHistory(entry);
}

void BarModel::clearHistory() {
    while (!view().commandHistory.empty()) {
        const std::size_t before = view().commandHistory.size();
        removeFromHistory(0);
        if (view().commandHistory.size() == before) return;
    }
}

void BarModel::editCommand(const QString& text) {
    parts_.flow.editCommand(text.toStdString());
}

void BarModel::showPrediction(bool isShown) {
    parts_.flow.setCommandSummaryShowing(isShown);
}

void BarModel::showHistory(bool isShown) {
    parts_.flow.setHistoryShowing(isShown);
}

// Custom models come first where two have one name.
void BarModel::selectModel(const QString& name) {
    if (const auto model = parts_.modelList.named(name.toStdString())) parts_.flow.selectModel(*model);
}

void BarModel::showPackagesFolder() {
    if (parts_.showPackagesFolder) parts_.showPackagesFolder();
}

void BarModel::keepKeyboardFrom(QWindow* window) {
    if (window != nullptr) window->setProperty("_q_showWithoutActivating", true);
}

}  // namespace brindlet
