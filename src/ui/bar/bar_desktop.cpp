#include "ui/bar/bar_desktop.h"

#include <QBitmap>
#include <QGuiApplication>
#include <QPainter>
#include <QQuickWindow>
#include <QRegion>
#include <QScreen>
#include <thread>
#include <utility>

#include "desktop/file_managers.h"
#include "desktop/free_standing_windows.h"
#include "desktop/linux/permission_items.h"
#include "desktop/linux/selection_reader.h"
#include "platform/environment.h"
#include "ui/bar/sleep_listener.h"

namespace brindlet {

namespace {

using namespace std::chrono_literals;

// A cold start of a file manager takes a second or two, and it must not be asked for a second window meanwhile.
constexpr auto openingTime = 4s;
constexpr auto managerPatience = 3000ms;
constexpr auto managerPause = 100ms;
// Compositors come and go without word of it.
constexpr auto lookInterval = 2s;

Screen primaryScreen() {
    const auto rectangleOf = [](const QRect& rectangle) {
        return Rectangle{static_cast<double>(rectangle.x()), static_cast<double>(rectangle.y()),
                         static_cast<double>(rectangle.width()), static_cast<double>(rectangle.height())};
    };
    const QScreen* screen = QGuiApplication::primaryScreen();
    if (screen == nullptr) return {};  // the last one was unplugged
    return {rectangleOf(screen->geometry()), rectangleOf(screen->availableGeometry())};
}

}  // namespace

BarDesktop::BarDesktop(MainLoop& loop, FileSystem& files, AnsweringProcess& reader)
    : files_(files), reader_(reader), loop_(loop), fold_([this](double degrees, double opacity) {
          if (!parts_) return;
          BarFrameLook look = parts_->frame.look();
          look.foldDegrees = degrees;
          look.foldOpacity = opacity;
          parts_->frame.setLook(look);
      }) {
    chooseWindows();
    tracker_ = std::make_unique<FinderWindowTracker>(loop, *windows_, workspace_);
    FileManagerQuestions questions;
    questions.front = [] { return std::optional<FolderWindowDetails>(); };
    if (isDocking()) {
        // One of its own, since it is asked on workers.
        questions.front = [own = std::make_shared<XWindowSource>()] { return own->frontFolderWindowDetails(); };
    }
    questions.read = [this](const FolderWindowDetails& window, bool isFresh) {
        return readSelection(reader_, window, isFresh);
    };
    source_ = std::make_shared<FileManagerSource>(files_, std::move(questions));
    QObject::connect(&lookTimer_, &QTimer::timeout, [this] { refreshLook(); });
}

BarDesktop::~BarDesktop() = default;

void BarDesktop::chooseWindows() {
    if (QGuiApplication::platformName() == QStringLiteral("xcb") && !isWaylandSession(processEnvironment())) {
        auto windows = std::make_unique<XWindowSource>(pointsOfPixels);
        // A program that starts with the session may be there before the window manager.
        for (auto waited = 0ms; !windows->canFollow() && waited < managerPatience; waited += managerPause)
            std::this_thread::sleep_for(managerPause);
        if (windows->canFollow()) {
            xWindows_ = windows.get();
            notifier_ = std::make_unique<QSocketNotifier>(windows->descriptor(), QSocketNotifier::Read);
            QObject::connect(notifier_.get(), &QSocketNotifier::activated, [this] { xWindows_->readEvents(); });
            windows_ = std::move(windows);
            return;
        }
    }
    windows_ = std::make_unique<FreeStandingWindows>(primaryScreen);
}

FinderSource BarDesktop::finderSource() {
    return [source = source_, &loop = loop_, self = std::weak_ptr(self_)] {
        const bool knew = source->knowsSelection();
        auto found = source->fetch();
        if (source->knowsSelection() != knew)
            loop.post([self] {
                if (const auto desktop = self.lock()) (*desktop)->refreshLook();
            });
        return found;
    };
}

void BarDesktop::handOver(FinderSelection selection) {
    source_->handOver(std::move(selection));
    refreshLook();
    if (parts_) parts_->finder.fetch();
}

void BarDesktop::takeFromCompanion(WindowId window, std::optional<FinderSelection> selection) {
    if (window == 0) {
        const auto front = tracker_->frontFinderWindowElement();
        if (!front || front->owner.bundleIdentifier != "org.gnome.Nautilus") return;
        window = front->id;
    }
    source_->takeFromCompanion(window, std::move(selection));
    if (parts_ && bar() != nullptr) parts_->finder.fetch();
}

void BarDesktop::prepare(BarDesktopParts parts) {
    parts_.emplace(std::move(parts));
    keeper_ = std::make_unique<PromptWindowKeeper>(
        PromptWindowSurroundings{
            .loop = loop_, .tracker = *tracker_, .workspace = workspace_, .finderContext = parts_->finder},
        PromptWindowActions{.wantsToBeActive = parts_->wantsToBeActive,
                            .makeWindow = [this] { return makeWindow(); },
                            .openHomeFolder = [this] { openHomeFolder(); },
                            .activateBrindlet = [this] { activateProgram(); },
                            .onPressedCloseButton = parts_->onPressedCloseButton,
                            .onDidClose = parts_->onDidClose,
                            .onControllerChange = [this](auto* controller) { followController(controller); }});
    sleepListener_ = std::make_unique<SleepListener>(workspace_);
    // The file manager's window may stay where it is while the bar below it has no place any more.
    const auto follow = [this] {
        if (bar() != nullptr) bar()->startFollowing(500ms);
    };
    for (const auto change :
         {&QGuiApplication::screenAdded, &QGuiApplication::screenRemoved, &QGuiApplication::primaryScreenChanged})
        QObject::connect(qGuiApp, change, sleepListener_.get(), follow);
}

std::unique_ptr<PromptWindow> BarDesktop::makeWindow() {
    if (!page_) {
        page_ = parts_->makePage();
        for (const auto change : {&QWindow::widthChanged, &QWindow::heightChanged})
            QObject::connect(page_, change, [this] { cutToShape(); });
        QObject::connect(page_, &QWindow::activeChanged, [this] { refreshLook(); });
    }
    fold_.jumpTo(foldOf(false));
    return std::make_unique<BarWindow>(*page_);
}

void BarDesktop::followController(PromptWindowController* controller) {
    if (controller == nullptr) return lookTimer_.stop();
    parts_->onAppear();
    controller->promptWindowContext().onChange = [this] { turnFold(); };
    refreshLook();
    lookTimer_.start(lookInterval);
    // The window is up by then.
    loop_.post([this] {
        if (bar() != nullptr) bar()->viewDidAppear();
    });
}

void BarDesktop::turnFold() {
    const Fold fold = foldOf(bar() != nullptr && bar()->promptWindowContext().flippedOpen);
    // What is transparent while it turns would be black.
    if (hasCompositor())
        fold_.turnTo(fold);
    else if (fold.opacity > 0)
        fold_.jumpTo(fold);
}

void BarDesktop::refreshLook() {
    if (!parts_ || !page_) return;
    BarFrameLook look = parts_->frame.look();
    look.overhang = promptWindowOverhang;
    look.hasCompositor = hasCompositor();
    look.isTranslucent = look.hasCompositor && parts_->isTranslucent();
    look.knowsSelection = source_->knowsSelection();
    look.isActive = page_->isActive();
    parts_->frame.setLook(look);
    cutToShape();
}

// Without a compositor the window is as large as what is seen of it.
void BarDesktop::cutToShape() {
    if (!page_) return;
    if (hasCompositor()) return page_->setMask(QRegion());
    QBitmap shape(page_->size());
    shape.clear();
    QPainter painter(&shape);
    painter.setPen(Qt::NoPen);
    painter.setBrush(Qt::color1);
    painter.drawRoundedRect(QRectF(shape.rect()).adjusted(promptWindowOverhang, 0, -promptWindowOverhang, 0),
                            promptWindowCornerRadius, promptWindowCornerRadius);
    painter.end();
    page_->setMask(QRegion(shape));
}

void BarDesktop::openHomeFolder() {
    const auto now = std::chrono::steady_clock::now();
    if (now - std::exchange(homeOpenedAt_, now) < openingTime) return;
    parts_->openFolder(homeFolder());
}

void BarDesktop::activateProgram() {
    if (!page_ || !page_->isVisible()) return;
    page_->raise();
    page_->requestActivate();
}

}  // namespace brindlet
