#include "ui/bar/bar_program.h"

#include <QApplication>
#include <QFile>
#include <QMessageBox>
#include <QQmlComponent>
#include <QScreen>
#include <algorithm>
#include <filesystem>
#include <system_error>
#include <utility>

#include "exec/progress_trackers.h"
#include "platform/atomic_file.h"
#include "platform/log.h"
#include "ui/bar/qt_text.h"
#include "ui/bar/update_check.h"
#include "ui/terminal/console.h"
#include "ui/terminal/exit_code.h"

namespace brindlet {

namespace {

constexpr const char* barPage = "Bar";
constexpr const char* settingsPage = "Settings";
constexpr const char* onboardingPage = "Onboarding";
constexpr const char* tutorialPage = "MenuBarTutorial";
constexpr const char* permissionsTestPage = "PermissionsTest";

constexpr std::string_view hotKeyKey = "toggleWindow";
constexpr std::string_view defaultHotKey = "Ctrl+Space";

// The program that people call, as seen from this one: beside it, or in bin where this is in libexec/brindlet.
FilePath commandProgram() {
    std::error_code error;
    const FilePath folder = FilePath(std::filesystem::read_symlink("/proc/self/exe", error).string()).parent();
    const FilePath beside = folder.child("brindlet");
    if (std::filesystem::is_regular_file(beside.text(), error)) return beside;
    return folder.parent().parent().child("bin").child("brindlet");
}

QVariantMap propertiesOf(QObject& model) {
    return {{QStringLiteral("model"), QVariant::fromValue(&model)}};
}

// Window managers put a window wherever there is room.
void placeInMiddle(QQuickWindow& window) {
    const QRect room = window.screen()->availableGeometry();
    const int below = std::max(0, room.height() - window.height());
    window.setPosition(room.x() + (room.width() - window.width()) / 2, room.y() + below * 2 / 5);
}

void showUpdateSentence(const QString& sentence) {
    auto* box = new QMessageBox(QMessageBox::Information, QStringLiteral("Brindlet"), sentence);
    box->setTextFormat(Qt::PlainText);
    box->setAttribute(Qt::WA_DeleteOnClose);
    box->show();
}

}  // namespace

BarProgram::BarProgram(CommandLineContext& context, AnsweringProcess& reader)
    : context_(context),
      reader_(reader),
      presenter_(openFilePresenter(context.environment(), [](const std::string& sentence) { logInfo(sentence); })),
      desktop_(loop_, context.files(), reader),
      host_(context, loop_, {}, flowOptions()),
      autostart_(AutostartEntry::folderOf(context.environment()), commandProgram()),
      permissions_(context.settings(), permissionChecks()),
      shell_(context.settings(), *this, *this),
      model_({.flow = host_.flow(),
              .finder = host_.finder(),
              .packages = host_.packages(),
              .modelList = context.models(),
              .prediction = [this] { return host_.currentPrediction(); },
              .showPackagesFolder =
                  [this] {
                      makeFolders(CommandLineContext::packagesFolder());  // a failure is one of showing it
                      showFolder(CommandLineContext::packagesFolder());
                  }}),
      frame_(frameActions()),
      hotKey_([this] { shell_.toggleBar(); }),
      settingsModel_(settingsParts()),
      onboardingModel_(onboardingParts()),
      tutorialModel_(shortcutParts()),
      permissionsTestModel_(permissions_, loop_, workers_),
      instance_({.request = [this](const BarRequest& request) { take(request); },
                 .selectionChanged =
                     [this](std::uint32_t window, std::optional<FinderSelection> selection) {
                         desktop_.takeFromCompanion(window, std::move(selection));
                     }}) {
    desktop_.prepare(desktopParts());
}

BarProgram::~BarProgram() {
    host_.flow().reset();  // nothing goes on unseen
    desktop_.end();
    pages_.clear();
}

void BarProgram::start(const BarRequest& request) {
    instance_.listen();
    tray_ = std::make_unique<Tray>([this] { return trayEntries(); });
    if (request.handedOver) {
        desktop_.handOver(*request.handedOver);
    } else if (!desktop_.isDocking()) {
        desktop_.handOver({.items = {}, .activeFolderPath = homeFolder().text()});
    }
    // Somebody who calls for the program wants to see the bar; at login it is as it was left.
    if (request.kind == BarRequest::Kind::show || request.kind == BarRequest::Kind::toggle)
        context_.settings().setBoolean(ApplicationShell::wantsToBeActiveKey, true);
    shell_.onLaunch();
    if (request.kind == BarRequest::Kind::settings && shell_.hasBegun()) openSettings({});
    if (request.kind == BarRequest::Kind::permissionsTest) show(permissionsTestPage, permissionsTestModel_);
}

void BarProgram::endWork() {
    host_.flow().observe({});
    host_.flow().reset();
    host_.finish();
}

FlowOptions BarProgram::flowOptions() {
    FlowOptions options;
    options.trackers = chooseProgressTracker;
    options.reveals = true;
    options.finderSource = desktop_.finderSource();
    options.predictsBeside = true;
    options.isSelectionDoubtful = [this] { return !desktop_.knowsSelection(); };
    options.tell = [](const std::string& sentence) { logInfo(sentence); };
    return options;
}

BarFrameActions BarProgram::frameActions() {
    return {.pressCloseButton =
                [this] {
                    if (desktop_.bar() != nullptr) desktop_.bar()->pressCloseButton();
                },
            .windowShouldClose =
                [this] {
                    if (desktop_.bar() != nullptr) desktop_.bar()->windowShouldClose();
                },
            .returnToFinder = [this] { desktop_.tracker().activateFinder(); },
            .openSettings = [this](const QString& tab) { openSettings(tab); },
            .dropped = [this](const QList<QUrl>& urls) { takeDropped(urls); }};
}

BarDesktopParts BarProgram::desktopParts() {
    return {.frame = frame_,
            .finder = host_.finder(),
            .makePage =
                [this] {
                    QVariantMap properties = propertiesOf(model_);
                    properties.insert(QStringLiteral("frame"), QVariant::fromValue(&frame_));
                    return page(barPage, std::move(properties));
                },
            .wantsToBeActive = [this] { return shell_.wantsToBeActive(); },
            .isTranslucent =
                [this] { return context_.settings().boolean(ApplicationShell::translucentKey).value_or(true); },
            .openFolder = [this](const FilePath& folder) { showFolder(folder); },
            .onAppear = [this] { host_.flow().appear(); },
            .onPressedCloseButton = [this] { shell_.pressedCloseButton(); },
            .onDidClose = [this] { shell_.setWantsToBeActive(false); }};
}

PermissionChecks BarProgram::permissionChecks() {
    return {.accessibility = accessibilityItems(context_.environment()),
            .appleEvents = automationItems(context_.environment(), reader_),
            .reset = {},
            .launchAtLogin = &autostart_};
}

SettingsParts BarProgram::settingsParts() {
    return {.settings = context_.settings(),
            .models = context_.models(),
            .customModels = context_.customModels(),
            .keys = context_.apiKeys(),
            .packages = context_.packages(),
            .permissions = permissions_,
            .log = context_.log(),
            .loop = loop_,
            .workers = workers_,
            .isModelUsable =
                [this](const AIModel& model) { return !host_.models().models().whyUnusable(model).has_value(); },
            .shortcut = shortcutParts(),
            .reRunPermissions = [this] { openOnboarding(OnboardingPage::accessibilityPermission); },
            .reveal = [this](const FilePath& file) { presenter_->selectInFileManager({file}); },
            .version = QApplication::applicationVersion(),
            .changed = [this] { desktop_.refreshLook(); }};
}

OnboardingParts BarProgram::onboardingParts() {
    return {.permissions = permissions_,
            .loop = loop_,
            .workers = workers_,
            .actions = contextMenuActions(context_.environment()),
            .finished =
                [this] {
                    permissions_.enableLaunchAtLoginOnce();
                    shell_.onboardingFinished();
                },
            .closed = [this] { shell_.onboardingClosed(); },
            .quit = [] { QApplication::quit(); }};
}

ShortcutParts BarProgram::shortcutParts() {
    return {
        .stored = [this] { return hotKeyText(); },
        .store =
            [this](const QString& keys) {
                const QString problem = hotKey_.set(keys);
                if (const auto failure = context_.settings().setText(hotKeyKey, keys.toStdString()))
                    return qt(failure->description);
                return problem;
            },
        .recording =
            [this](bool isRecording) { hotKey_.set(isRecording || !shell_.hasBegun() ? QString() : hotKeyText()); }};
}

QString BarProgram::hotKeyText() const {
    return qt(context_.settings().text(hotKeyKey).value_or(std::string(defaultHotKey)));
}

// The program itself.

void BarProgram::take(const BarRequest& request) {
    if (request.kind == BarRequest::Kind::quit) return QApplication::quit();
    if (request.kind == BarRequest::Kind::permissionsTest) return show(permissionsTestPage, permissionsTestModel_);
    if (request.handedOver) desktop_.handOver(*request.handedOver);
    if (!shell_.hasBegun()) return show(onboardingPage, onboardingModel_);
    switch (request.kind) {
        case BarRequest::Kind::toggle:
            return shell_.toggleBar();
        case BarRequest::Kind::settings:
            return openSettings({});
        default:
            if (shell_.wantsToBeActive()) return shell_.showBarIfWanted();
            shell_.setWantsToBeActive(true);
    }
}

void BarProgram::showFolder(const FilePath& folder) {
    workers_.start([this, folder] { presenter_->openFolder(folder); });
}

void BarProgram::takeDropped(const QList<QUrl>& urls) {
    FinderSelection selection;
    for (const QUrl& url : urls) {
        if (!url.isLocalFile()) continue;
        const FilePath file(QFile::encodeName(url.toLocalFile()).toStdString());
        if (selection.items.empty()) selection.activeFolderPath = file.parent().text();
        selection.items.push_back(file.text());
    }
    if (!selection.items.empty()) desktop_.handOver(std::move(selection));
}

std::vector<TrayEntry> BarProgram::trayEntries() {
    const auto bar = shell_.barMenuItem();
    return {
        {.title = qt(bar.title), .keys = hotKeyText(), .isEnabled = bar.isEnabled, .choose = bar.choose},
        {},
        {.title = QStringLiteral("Check for Updates…"),
         .isEnabled = shell_.shownOnboarding(),
         .choose = [] { checkForUpdates(QApplication::applicationVersion(), showUpdateSentence); }},
        {},
        {.title = QStringLiteral("Settings..."), .choose = [this] { openSettings({}); }},
        {},
        {.title = QStringLiteral("Quit"), .keys = QStringLiteral("Ctrl+Q"), .choose = [] { QApplication::quit(); }}};
}

QQuickWindow* BarProgram::page(const char* name, QVariantMap properties) {
    auto& window = pages_[name];
    if (window) return window.get();
    QQmlComponent component(&engine_, QUrl(QStringLiteral("qrc:/brindlet/qml/%1.qml").arg(QLatin1String(name))));
    std::unique_ptr<QObject> made(component.createWithInitialProperties(properties));
    window.reset(qobject_cast<QQuickWindow*>(made.get()));
    if (!window) {
        logError(component.errorString().toStdString());
        throw UsageError{"the bar's pages can't be loaded: is Qt Quick installed whole?"};
    }
    static_cast<void>(made.release());
    return window.get();
}

void BarProgram::show(const char* name, QObject& model) {
    const bool isNew = !pages_.contains(name);
    QQuickWindow* window = page(name, propertiesOf(model));
    if (isNew) placeInMiddle(*window);
    window->show();
    window->raise();
    window->requestActivate();
}

void BarProgram::openSettings(const QString& tab) {
    if (!tab.isEmpty()) settingsModel_.openTab(tab);
    show(settingsPage, settingsModel_);
}

// What the shell asks for.

bool BarProgram::isProgramActive() {
    return QApplication::applicationState() == Qt::ApplicationActive && QApplication::focusWindow() != nullptr;
}

bool BarProgram::hasFileManagerBounds() {
    return desktop_.tracker().currentBounds().has_value();
}

bool BarProgram::hasBar() {
    return desktop_.bar() != nullptr;
}

void BarProgram::activateFileManager() {
    desktop_.tracker().activateFinder();
}

void BarProgram::openHomeFolder() {
    desktop_.openHomeFolder();
}

void BarProgram::showPromptWindow(bool activates, bool takesKeys) {
    desktop_.showPromptWindow(activates, takesKeys);
}

void BarProgram::activateProgram() {
    desktop_.activateProgram();
}

void BarProgram::animateBarClosed() {
    if (desktop_.bar() != nullptr) desktop_.bar()->animateClosed();
}

void BarProgram::openOnboarding(OnboardingPage page) {
    onboardingModel_.open(page);
    show(onboardingPage, onboardingModel_);
}

void BarProgram::closeOnboarding() {
    page(onboardingPage, propertiesOf(onboardingModel_))->close();
}

void BarProgram::openMenuBarTutorial() {
    show(tutorialPage, tutorialModel_);
}

// Windows stand in the panel's list by themselves while they are shown; the bar never does.
void BarProgram::setDockIconVisible(bool) {}

void BarProgram::startFollowingWindows() {
    desktop_.startFollowing();
}

void BarProgram::registerHotKey() {
    if (const QString problem = hotKey_.set(hotKeyText()); !problem.isEmpty()) logError(problem.toStdString());
}

// Beside the first picture of the bar, not before it.
void BarProgram::buildIndexAndRefreshPackages() {
    workers_.start([this] {
        host_.models().search();
        context_.packages().refresh();
    });
}

bool BarProgram::checkAccessibility() {
    return permissions_.checkAccessibility();
}

bool BarProgram::checkAppleEvents() {
    return permissions_.checkAppleEvents();
}

}  // namespace brindlet
