// The desktop's program: the bar, the item in the panel, the hot key, the settings and the first-run pages.
//
//     BarProgram program(context, selectionReader);
//     program.start(request);
//     return QApplication::exec();
#pragma once

#include <QQmlEngine>
#include <map>
#include <memory>
#include <string>

#include "desktop/linux/permission_items.h"
#include "ui/application_shell.h"
#include "ui/bar/bar_desktop.h"
#include "ui/bar/bar_model.h"
#include "ui/bar/hot_key.h"
#include "ui/bar/menu_bar_tutorial_model.h"
#include "ui/bar/onboarding_model.h"
#include "ui/bar/permissions_test_model.h"
#include "ui/bar/qt_loop.h"
#include "ui/bar/settings_model.h"
#include "ui/bar/single_instance.h"
#include "ui/bar/tray.h"
#include "ui/terminal/flow_host.h"

namespace brindlet {

class BarProgram final : private ShellActions, private ShellPermissions {
  public:
    // `reader` answers by selectionAnswer(); both outlive it.
    BarProgram(CommandLineContext& context, AnsweringProcess& reader);
    ~BarProgram() override;
    BarProgram(const BarProgram&) = delete;
    BarProgram& operator=(const BarProgram&) = delete;

    void start(const BarRequest& request);
    // For an end that comes in the midst of everything: what runs is ended with all its children.
    void endWork();

  private:
    // What the shell asks for.
    bool isProgramActive() override;
    bool hasFileManagerBounds() override;
    bool hasBar() override;
    void activateFileManager() override;
    void openHomeFolder() override;
    void showPromptWindow(bool activates, bool takesKeys) override;
    void activateProgram() override;
    void animateBarClosed() override;
    void openOnboarding(OnboardingPage page) override;
    void closeOnboarding() override;
    void openMenuBarTutorial() override;
    void setDockIconVisible(bool isVisible) override;
    void startFollowingWindows() override;
    void registerHotKey() override;
    void buildIndexAndRefreshPackages() override;
    bool checkAccessibility() override;
    bool checkAppleEvents() override;

    FlowOptions flowOptions();
    BarFrameActions frameActions();
    BarDesktopParts desktopParts();
    PermissionChecks permissionChecks();
    SettingsParts settingsParts();
    OnboardingParts onboardingParts();
    void take(const BarRequest& request);
    void showFolder(const FilePath& folder);
    void takeDropped(const QList<QUrl>& urls);
    std::vector<TrayEntry> trayEntries();
    ShortcutParts shortcutParts();
    QString hotKeyText() const;
    void openSettings(const QString& tab);
    // The window of a page, made when it is first asked for; throws UsageError where Qt Quick isn't whole.
    QQuickWindow* page(const char* name, QVariantMap properties);
    void show(const char* name, QObject& model);

    CommandLineContext& context_;
    AnsweringProcess& reader_;
    QtLoop loop_;
    std::unique_ptr<FilePresenter> presenter_;
    BarDesktop desktop_;
    FlowHost host_;
    ThreadWorkers workers_;
    AutostartEntry autostart_;
    Permissions permissions_;
    ApplicationShell shell_;
    BarModel model_;
    BarFrame frame_;
    HotKey hotKey_;
    SettingsModel settingsModel_;
    OnboardingModel onboardingModel_;
    MenuBarTutorialModel tutorialModel_;
    PermissionsTestModel permissionsTestModel_;
    QQmlEngine engine_;
    std::map<std::string, std::unique_ptr<QQuickWindow>> pages_;
    SingleInstance instance_;
    std::unique_ptr<Tray> tray_;
};

}  // namespace brindlet
