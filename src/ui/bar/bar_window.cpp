#include "ui/bar/bar_window.h"

#include <xcb/xcb.h>

#include <QGuiApplication>
#include <QScreen>
#include <algorithm>
#include <cstdlib>
#include <memory>
#include <string_view>

namespace brindlet {

namespace {

Rectangle rectangleOf(const QRect& rectangle) {
    return {static_cast<double>(rectangle.x()), static_cast<double>(rectangle.y()),
            static_cast<double>(rectangle.width()), static_cast<double>(rectangle.height())};
}

// Nullptr on other systems than X11.
xcb_connection_t* xConnection() {
    const auto* x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
    return x11 != nullptr ? x11->connection() : nullptr;
}

// Without the keyboard, which stays with the file manager.
constexpr const char* showsWithoutActivating = "_q_showWithoutActivating";

}  // namespace

BarWindow::BarWindow(QQuickWindow& page) : page_(&page) {
    page.setFlags(Qt::FramelessWindowHint | Qt::Tool);
    QObject::connect(qGuiApp, &QGuiApplication::focusWindowChanged, &connections_, [this] { applyLevel(); });
}

bool BarWindow::isVisible() const {
    return page_ && page_->isVisible();
}

bool BarWindow::isKey() const {
    return page_ && page_->isActive();
}

std::vector<Screen> BarWindow::screens() const {
    std::vector<Screen> screens;
    for (const QScreen* screen : QGuiApplication::screens())
        screens.push_back({rectangleOf(screen->geometry()), rectangleOf(screen->availableGeometry())});
    return screens;
}

void BarWindow::makeKeyAndOrderFront() {
    if (!page_) return;
    page_->setProperty(showsWithoutActivating, false);
    page_->show();
    page_->raise();
    page_->requestActivate();
}

void BarWindow::orderFrontRegardless() {
    if (!page_) return;
    page_->setProperty(showsWithoutActivating, true);
    page_->show();
    page_->raise();
}

// Above the file manager's window it is anyway, and a dialog of that window's is not to be covered.
void BarWindow::orderFront() {
    if (!isAboveFinder_ || !isVisible()) orderFrontRegardless();
}

void BarWindow::orderOut() {
    if (page_) page_->hide();
}

void BarWindow::setFrame(const Rectangle& frame) {
    if (!page_) return;
    const QRect target = QRectF(frame.x, frame.y, frame.width, frame.height).toRect();
    if (page_->geometry() != target) page_->setGeometry(target);
}

void BarWindow::setLevel(int level) {
    level_ = level;
    applyLevel();
}

// On top of all, it would lie on the file manager's dialogs and on the settings, too. Where it is bound to the file
// manager's window it needn't be.
void BarWindow::applyLevel() {
    if (!page_) return;
    const QWindow* active = QGuiApplication::focusWindow();
    const bool isOthers = active != nullptr && active != page_ && active->transientParent() != page_;
    const bool isOnTop = level_ == floatingWindowLevel && !isAboveFinder_ && !isOthers;
    if (page_->flags().testFlag(Qt::WindowStaysOnTopHint) != isOnTop) page_->setFlag(Qt::WindowStaysOnTopHint, isOnTop);
}

// Window managers keep a window right above the one that it is transient for, and restack both together. Qt writes a
// value of its own when the window is mapped, so this comes after that.
void BarWindow::standAbove(WindowId finderWindow) {
    xcb_connection_t* connection = xConnection();
    if (!page_ || connection == nullptr) return;
    const auto window = static_cast<xcb_window_t>(page_->winId());
    xcb_change_property(connection, XCB_PROP_MODE_REPLACE, window, XCB_ATOM_WM_TRANSIENT_FOR, XCB_ATOM_WINDOW, 32, 1,
                        &finderWindow);
    xcb_flush(connection);
    isAboveFinder_ = true;
    applyLevel();
    page_->raise();
}

void BarWindow::close() {
    if (page_) page_->hide();
    page_.clear();
}

bool hasCompositor() {
    xcb_connection_t* connection = xConnection();
    if (connection == nullptr) return true;
    constexpr std::string_view name = "_NET_WM_CM_S0";
    const auto freed = [](void* memory) { std::free(memory); };
    const std::unique_ptr<xcb_intern_atom_reply_t, decltype(freed)> atom(
        xcb_intern_atom_reply(connection, xcb_intern_atom(connection, 0, name.size(), name.data()), nullptr), freed);
    if (!atom) return false;
    const std::unique_ptr<xcb_get_selection_owner_reply_t, decltype(freed)> owner(
        xcb_get_selection_owner_reply(connection, xcb_get_selection_owner(connection, atom->atom), nullptr), freed);
    return owner && owner->owner != XCB_NONE;
}

// A screen's upper left corner is at the same numbers in both.
Rectangle pointsOfPixels(const Rectangle& pixels) {
    for (const QScreen* screen : QGuiApplication::screens()) {
        const double scale = screen->devicePixelRatio();
        const Rectangle frame = rectangleOf(screen->geometry());
        const Rectangle inPixels{frame.x, frame.y, frame.width * scale, frame.height * scale};
        const double x = pixels.x + pixels.width / 2;
        const double y = pixels.y + pixels.height / 2;
        const bool isOnIt =
            x >= inPixels.x && x < inPixels.x + inPixels.width && y >= inPixels.y && y < inPixels.y + inPixels.height;
        if (isOnIt)
            return {frame.x + (pixels.x - frame.x) / scale, frame.y + (pixels.y - frame.y) / scale,
                    pixels.width / scale, pixels.height / scale};
    }
    const double scale = qGuiApp->devicePixelRatio();
    return {pixels.x / scale, pixels.y / scale, pixels.width / scale, pixels.height / scale};
}

}  // namespace brindlet
