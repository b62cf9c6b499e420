// The flow as the bar's pages see it: what they show as properties, what people do as operations. It adds nothing of
// its own but the words for it, and says no more than what has changed: a letter typed rebuilds no list.
//
//     BarModel model({host.flow(), host.finder(), host.packages(), host.models(), [&] { return host.prediction(); }});
//     engine.setInitialProperties({{"model", QVariant::fromValue(&model)}, {"frame", QVariant::fromValue(&frame)}});
#pragma once

#include <QObject>
#include <QString>
#include <QVariantList>
#include <QVariantMap>
#include <chrono>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "ui/predict_report.h"
#include "ui/prompt_flow.h"

class QWindow;

namespace brindlet {

// All of it outlives the model.
struct BarParts {
    PromptFlow& flow;
    FinderContext& finder;
    FlowPackages& packages;
    AIModelList& modelList;
    // Of the line that was simulated last.
    std::function<std::optional<PredictReport>()> prediction;
    // Where the program's own tools are put, shown in the file manager.
    std::function<void()> showPackagesFolder{};
};

class BarModel final : public QObject {
    Q_OBJECT
    Q_PROPERTY(QString promptState READ promptState NOTIFY stateChanged)
    Q_PROPERTY(QString statusText READ statusText NOTIFY stateChanged)
    Q_PROPERTY(QString prompt READ prompt NOTIFY promptChanged)
    Q_PROPERTY(QString selection READ selection NOTIFY selectionChanged)
    Q_PROPERTY(QString selectedNames READ selectedNames NOTIFY selectionChanged)
    Q_PROPERTY(bool hasCommand READ hasCommand NOTIFY predictionChanged)
    Q_PROPERTY(QString request READ request NOTIFY predictionChanged)
    Q_PROPERTY(QString runsText READ runsText NOTIFY predictionChanged)
    Q_PROPERTY(QVariantList rows READ rows NOTIFY predictionChanged)
    Q_PROPERTY(QVariantMap requirement READ requirement NOTIFY predictionChanged)
    Q_PROPERTY(QString risk READ risk NOTIFY predictionChanged)
    Q_PROPERTY(QString confirmTitle READ confirmText NOTIFY predictionChanged)
    Q_PROPERTY(bool canConfirm READ canConfirm NOTIFY predictionChanged)
    Q_PROPERTY(QString command READ command NOTIFY commandChanged)
    Q_PROPERTY(double progress READ progress NOTIFY progressChanged)  // below 0: none
    Q_PROPERTY(int progressDuration READ progressDuration NOTIFY progressChanged)
    Q_PROPERTY(QString fullOutput READ fullOutput NOTIFY outputChanged)
    Q_PROPERTY(bool isPredictionShown READ isPredictionShown NOTIFY popoversChanged)
    Q_PROPERTY(bool isHistoryShown READ isHistoryShown NOTIFY popoversChanged)
    Q_PROPERTY(QVariantList history READ history NOTIFY historyChanged)
    Q_PROPERTY(QVariantList modelSections READ modelSections NOTIFY modelsChanged)
    Q_PROPERTY(QString selectedModel READ selectedModel NOTIFY modelsChanged)
    Q_PROPERTY(QString selectedModelTitle READ selectedModelTitle NOTIFY modelsChanged)

  public:
    explicit BarModel(BarParts parts);

    QString promptState() const;
    // The line of the result view; the request while it is out; the question while one is asked.
    QString statusText() const;
    QString prompt() const;
    QString selection() const;
    QString selectedNames() const;  // of the first of them, one a line
    bool hasCommand() const { return view().command.has_value(); }
    QString request() const;
    QString runsText() const;
    // {icon, color, text, subtitle}; a row of a single change also has {verb, isStruck, target} and, where something
    // moves, {source}: paths as {from: "folder", "trash" or "home", rest}.
    QVariantList rows() const { return rows_; }
    // {name, description, licenseName, licenseURL, sourceURL, isFromHomebrew, needsHomebrew}; empty: nothing is
    // missing.
    QVariantMap requirement() const;
    QString risk() const;
    QString confirmText() const;
    bool canConfirm() const { return !view().needsHomebrew && !view().isPredicting; }
    QString command() const;
    double progress() const { return view().progressNorm.value_or(-1); }
    int progressDuration() const { return progressDuration_; }  // milliseconds
    QString fullOutput() const;
    bool isPredictionShown() const { return view().commandSummaryShowing; }
    bool isHistoryShown() const { return view().showHistoryPopover; }
    QVariantList history() const;        // the oldest first: {prompt, command}
    QVariantList modelSections() const;  // {title, models: [{name, title}]}
    QString selectedModel() const;
    QString selectedModelTitle() const;

    Q_INVOKABLE void setPrompt(const QString& text);
    Q_INVOKABLE void submit();
    Q_INVOKABLE void confirm();
    Q_INVOKABLE void confirmOrDismiss();
    Q_INVOKABLE void refine();
    Q_INVOKABLE void escape();
    Q_INVOKABLE void close();
    Q_INVOKABLE void historyStep(int direction);
    Q_INVOKABLE void chooseFromHistory(int row);
    Q_INVOKABLE void removeFromHistory(int row);
    Q_INVOKABLE void clearHistory();
    Q_INVOKABLE void editCommand(const QString& text);
    Q_INVOKABLE void showPrediction(bool isShown);
    Q_INVOKABLE void showHistory(bool isShown);
    // What the settings have made of the models since is read again.
    Q_INVOKABLE void refreshModels() { emit modelsChanged(); }
    Q_INVOKABLE void selectModel(const QString& name);
    Q_INVOKABLE void showPackagesFolder();
    // Before it is shown: the keyboard stays where it is until somebody clicks into that window.
    Q_INVOKABLE void keepKeyboardFrom(QWindow* window);

  signals:
    void stateChanged();
    void promptChanged();
    void selectionChanged();
    void predictionChanged();
    void commandChanged();
    void progressChanged();
    void outputChanged();
    void popoversChanged();
    void historyChanged();
    void modelsChanged();
    // A step through the history has been made: -1 or +1.
    void historyMoved(int direction);

  private:
    // What the pages were told last.
    struct Told {
        PromptState state = PromptState::enteringPrompt;
        QString statusText;
        std::string prompt;
        QString selection;
        std::vector<std::string> items;
        std::string commandId;
        std::optional<std::string> folder;
        std::optional<std::string> missingPackage;
        bool needsHomebrew = false;
        bool isPredicting = false;
        std::string command;
        std::optional<double> progress;
        std::size_t runs = 0;
        std::size_t outputSize = 0;
        bool isPredictionShown = false, isHistoryShown = false;
        std::vector<std::string> historyIds;
        std::string modelName;
    };

    const PromptFlowView& view() const { return parts_.flow.view(); }
    void follow();
    void followState();
    void followPrediction();
    QVariantList predictedRows() const;
    void followProgress();
    void followHistory();

    BarParts parts_;
    Told told_;
    std::optional<PredictReport> prediction_;
    QVariantList rows_;  // of it: a page reads the whole list again for each row
    int progressDuration_ = 0;
    std::chrono::steady_clock::time_point answersFrom_{};
};

}  // namespace brindlet
