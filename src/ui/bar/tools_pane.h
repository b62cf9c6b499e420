// The tab "Extra tools": the packages, what is installed of them, and what is being installed or removed.
#pragma once

#include <QObject>
#include <QString>
#include <QVariantList>
#include <memory>
#include <stop_token>

#include "exec/packages.h"
#include "platform/main_loop.h"
#include "ui/errands.h"

namespace brindlet {

struct ToolsPaneParts {
    PackageManager& packages;
    MainLoop& loop;
    Workers& workers;
};

class ToolsPane final : public QObject {
    Q_OBJECT
    Q_PROPERTY(QVariantList sections READ sections NOTIFY changed)
    Q_PROPERTY(QString problem READ problem NOTIFY changed)

  public:
    explicit ToolsPane(ToolsPaneParts parts);
    ~ToolsPane() override;  // ends what it had begun

    // Finds out anew what is installed.
    void refresh();
    // As long as it is shown it follows what is installed from anywhere in the program.
    void setShown(bool isShown);

    // {title, text, rows: [{name, description, licenseName, licenseURL, sourceURL, symbol, isInstalled, isActive,
    // progress, percent, message}]}
    QVariantList sections() const { return sections_; }
    QString problem() const { return problem_; }

    Q_INVOKABLE void install(const QString& name);
    Q_INVOKABLE void uninstall(const QString& name);

  signals:
    void changed();

  private:
    void perform(const QString& name, bool isInstalling);
    void look();
    void followLater();

    ToolsPaneParts parts_;
    QVariantList sections_;
    QString problem_;
    bool isShown_ = false;
    bool isFollowing_ = false;
    std::shared_ptr<bool> isThere_ = std::make_shared<bool>(true);
    std::stop_source stop_;
    Errands errands_;
};

}  // namespace brindlet
