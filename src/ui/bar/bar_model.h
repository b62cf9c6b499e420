// The flow as the bar's pages see it: what they show as properties, what people do as operations. It adds nothing of
// its own.
//
//     BarModel model(host);
//     engine.setInitialProperties({{"model", QVariant::fromValue(&model)}});
#pragma once

#include <QObject>
#include <QString>
#include <QVariantList>
#include <chrono>

#include "ui/terminal/flow_host.h"

namespace brindlet {

class BarModel final : public QObject {
    Q_OBJECT
    Q_PROPERTY(QString promptState READ promptState NOTIFY changed)
    Q_PROPERTY(QString prompt READ prompt NOTIFY changed)
    Q_PROPERTY(QString statusText READ status NOTIFY changed)
    Q_PROPERTY(QString selection READ selection NOTIFY changed)
    Q_PROPERTY(QString request READ request NOTIFY changed)
    Q_PROPERTY(QString runsText READ runsText NOTIFY changed)
    Q_PROPERTY(QString command READ command NOTIFY changed)
    Q_PROPERTY(QVariantList rows READ rows NOTIFY changed)
    Q_PROPERTY(QString risk READ risk NOTIFY changed)
    Q_PROPERTY(QString confirmTitle READ confirmText NOTIFY changed)
    Q_PROPERTY(bool canConfirm READ canConfirm NOTIFY changed)
    Q_PROPERTY(double progress READ progress NOTIFY changed)  // below 0: none
    Q_PROPERTY(QString fullOutput READ fullOutput NOTIFY changed)
    Q_PROPERTY(bool isPredictionShown READ isPredictionShown NOTIFY changed)
    Q_PROPERTY(QVariantList history READ history NOTIFY changed)

  public:
    explicit BarModel(FlowHost& host);

    QString promptState() const;
    QString prompt() const;
    QString status() const;
    QString selection() const;
    QString request() const;
    QString runsText() const;
    QString command() const;
    QVariantList rows() const;  // {icon, color, text, subtitle}, a heading where icon and color are empty
    QString risk() const;
    QString confirmText() const;
    bool canConfirm() const;
    double progress() const;
    QString fullOutput() const;
    bool isPredictionShown() const;
    QVariantList history() const;  // the newest first: {prompt, command}

    Q_INVOKABLE void setPrompt(const QString& text);
    Q_INVOKABLE void submit();
    Q_INVOKABLE void confirm();
    Q_INVOKABLE void confirmOrDismiss();
    Q_INVOKABLE void refine();
    Q_INVOKABLE void escape();
    Q_INVOKABLE void close();
    Q_INVOKABLE void historyStep(int direction);
    Q_INVOKABLE void chooseFromHistory(int row);
    Q_INVOKABLE void editCommand(const QString& text);
    Q_INVOKABLE void showPrediction(bool isShown);

  signals:
    void changed();

  private:
    const PromptFlowView& view() const { return host_.flow().view(); }

    FlowHost& host_;
    PromptState followed_ = PromptState::enteringPrompt;
    std::chrono::steady_clock::time_point answersFrom_{};
};

}  // namespace brindlet
