// The settings window: its tabs, and what stands in them. Nothing in it waits: what may take its time is done on
// workers.
//
//     SettingsModel settings({.settings = ..., .models = ...});
//     engine.setInitialProperties({{"model", QVariant::fromValue(&settings)}});
//     settings.openTab("AI Models");
#pragma once

#include <QObject>
#include <QString>
#include <QVariantList>
#include <QVariantMap>
#include <functional>

#include "desktop/permissions.h"
#include "exec/log_file.h"
#include "ui/bar/ai_models_pane.h"
#include "ui/bar/shortcut_model.h"
#include "ui/bar/tools_pane.h"

namespace brindlet {

// All of it outlives the model and the workers.
struct SettingsParts {
    SettingsStore& settings;
    AIModelList& models;
    CustomModelList& customModels;
    ProviderApiKeys& keys;
    PackageManager& packages;
    Permissions& permissions;
    LogFile& log;
    MainLoop& loop;
    Workers& workers;
    std::function<bool(const AIModel&)> isModelUsable;  // called on workers
    ShortcutParts shortcut;
    std::function<void()> reRunPermissions;
    // Shows a file selected in the file manager, on a worker; may take a second.
    std::function<void(const FilePath&)> reveal;
    QString version{};  // empty: it can't be read
    // What else the program shows by these settings may have to be drawn anew.
    std::function<void()> changed{};
    std::function<void(const QString& url)> openUrl{};  // none: the desktop's own way
};

class SettingsModel final : public QObject {
    Q_OBJECT
    Q_PROPERTY(QVariantList tabs READ tabs CONSTANT)
    Q_PROPERTY(int tab READ tab WRITE setTab NOTIFY tabChanged)
    Q_PROPERTY(brindlet::ShortcutModel* shortcut READ shortcut CONSTANT)
    Q_PROPERTY(brindlet::AIModelsPane* aiModels READ aiModels CONSTANT)
    Q_PROPERTY(brindlet::ToolsPane* tools READ tools CONSTANT)
    Q_PROPERTY(bool launchAtLogin READ launchAtLogin WRITE setLaunchAtLogin NOTIFY generalChanged)
    Q_PROPERTY(bool isTranslucent READ isTranslucent WRITE setTranslucent NOTIFY generalChanged)
    Q_PROPERTY(QVariantList switches READ switches NOTIFY switchesChanged)
    Q_PROPERTY(int itemsPerColumn READ itemsPerColumnCount CONSTANT)
    Q_PROPERTY(QVariantMap notice READ notice NOTIFY switchesChanged)
    Q_PROPERTY(QString versionText READ versionText CONSTANT)
    Q_PROPERTY(QVariantList aboutLinks READ links CONSTANT)
    Q_PROPERTY(QString problem READ problem NOTIFY problemChanged)

  public:
    explicit SettingsModel(SettingsParts parts);

    QVariantList tabs() const;  // {label, symbol}
    int tab() const { return tab_; }
    void setTab(int tab);
    // By its label; one that no tab has changes nothing.
    void openTab(const QString& label);

    ShortcutModel* shortcut() { return &shortcut_; }
    AIModelsPane* aiModels() { return &aiModels_; }
    ToolsPane* tools() { return &tools_; }

    bool launchAtLogin() const;
    void setLaunchAtLogin(bool isOn);
    bool isTranslucent() const;
    void setTranslucent(bool isOn);

    QVariantList switches() const;  // {title, isOn, isEnabled, isRed, help: [lines]}
    static int itemsPerColumnCount();
    QVariantMap notice() const;  // {symbol, color, text}; empty: none
    QString versionText() const;
    QVariantList links() const;  // {label, url}
    QString problem() const { return problem_; }

    // The window has appeared, or has gone.
    Q_INVOKABLE void setShown(bool isShown);
    Q_INVOKABLE void setSwitch(int index, bool isOn);
    Q_INVOKABLE void reRunPermissions();
    Q_INVOKABLE void showErrorLogs();
    // One of the table of links by its name, or a whole address of a package.
    Q_INVOKABLE void openLink(const QString& name);
    Q_INVOKABLE void openUrl(const QString& url);

  signals:
    void tabChanged();
    void generalChanged();
    void switchesChanged();
    void problemChanged();

  private:
    void report(const std::optional<Failure>& failure);

    SettingsParts parts_;
    std::set<CommandEffect> allowed_;
    int tab_ = 0;
    QString problem_;
    ShortcutModel shortcut_;
    AIModelsPane aiModels_;
    ToolsPane tools_;
    Errands errands_;
};

}  // namespace brindlet
