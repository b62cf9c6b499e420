#include "ui/bar/bar_model.h"

#include <QVariantMap>
#include <chrono>
#include <string_view>
#include <utility>

#include "exec/file_variables.h"
#include "ui/prediction_rows.h"
#include "ui/terminal/shown_text.h"

namespace brindlet {

namespace {

constexpr std::chrono::milliseconds readingTime{300};

QString qt(std::string_view text) {
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

// From strangers: shown, never read as markup.
QString shown(std::string_view text) {
    return qt(shownText(text));
}

}  // namespace

BarModel::BarModel(FlowHost& host) : host_(host) {
    host_.flow().observe([this] {
        const PromptState state = view().promptState;
        if (state != std::exchange(followed_, state) && state == PromptState::awaitingConfirmation)
            answersFrom_ = std::chrono::steady_clock::now() + readingTime;
        emit changed();
    });
}

QString BarModel::promptState() const {
    return qt(caseName(view().promptState));
}

QString BarModel::prompt() const {
    return qt(view().prompt);
}

QString BarModel::status() const {
    return shown(statusText(view()));
}

QString BarModel::selection() const {
    return qt(selectionLabel(host_.finder()));
}

QString BarModel::request() const {
    return view().command ? shown(view().command->prompt) : QString();
}

QString BarModel::runsText() const {
    constexpr std::string_view texts[] = {
        "Runs <b>once</b>:", "Runs <b>once per file</b> selected:", "Runs <b>once</b> on <b>all selected files</b>:"};
    return view().command ? qt(texts[static_cast<std::size_t>(runMode(view().command->bashCommand))]) : QString();
}

QString BarModel::command() const {
    return qt(view().editedBashCommand);
}

QVariantList BarModel::rows() const {
    QVariantList list;
    const auto report = host_.currentPrediction();
    if (!report) return list;
    for (const ChangesViewIconAndText& row :
         predictionRows(report->result, report->folder, report->home, report->predictionNeedsInstall))
        list.append(QVariantMap{{"icon", row.icon ? qt(row.icon->symbolName) : QString()},
                                {"color", row.icon ? qt(row.icon->color) : QString()},
                                {"text", shown(row.text)},
                                {"subtitle", row.subtitle ? shown(*row.subtitle) : QString()}});
    return list;
}

QString BarModel::risk() const {
    return qt(caseName(view().riskSummary));
}

QString BarModel::confirmText() const {
    return qt(confirmTitle(view(), host_.packages()));
}

bool BarModel::canConfirm() const {
    return !view().needsHomebrew;
}

double BarModel::progress() const {
    return view().progressNorm.value_or(-1);
}

QString BarModel::fullOutput() const {
    return qt(view().fullCommandOutput);
}

bool BarModel::isPredictionShown() const {
    return view().commandSummaryShowing;
}

QVariantList BarModel::history() const {
    QVariantList list;
    const auto& entries = view().commandHistory;
    for (auto entry = entries.rbegin(); entry != entries.rend(); ++entry)
        list.append(QVariantMap{{"prompt", shown(entry->prompt)}, {"command", shown(entry->bashCommand)}});
    return list;
}

void BarModel::setPrompt(const QString& text) {
    if (text != prompt()) host_.flow().setPrompt(text.toStdString());
}

void BarModel::submit() {
    host_.flow().submit();
}

void BarModel::confirm() {
    host_.flow().confirm();
}

// A key that was on its way before the prediction could be read is no answer to it.
void BarModel::confirmOrDismiss() {
    if (std::chrono::steady_clock::now() >= answersFrom_) host_.flow().confirmOrDismiss();
}

void BarModel::refine() {
    host_.flow().refine();
}

void BarModel::escape() {
    host_.flow().escape();
}

void BarModel::close() {
    host_.flow().close();
}

void BarModel::historyStep(int direction) {
    host_.flow().historyStep(direction);
}

void BarModel::chooseFromHistory(int row) {
    const auto& entries = view().commandHistory;
    const auto count = static_cast<int>(entries.size());
    if (row >= 0 && row < count) host_.flow().chooseFromHistory(entries[static_cast<std::size_t>(count - 1 - row)]);
}

void BarModel::editCommand(const QString& text) {
    host_.flow().editCommand(text.toStdString());
}

void BarModel::showPrediction(bool isShown) {
    host_.flow().setCommandSummaryShowing(isShown);
}

}  // namespace brindlet
