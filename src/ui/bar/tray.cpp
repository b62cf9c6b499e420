#include "ui/bar/tray.h"

#include <QAction>
#include <QKeySequence>
#include <QPainter>
#include <QPainterPath>
#include <chrono>
#include <utility>

namespace brindlet {

namespace {

using namespace std::chrono_literals;

constexpr auto panelInterval = 5s;

// A window, the bar under it, and a prompt in the bar.
QPixmap drawnSign(int size) {
    QPixmap picture(size, size);
    picture.fill(Qt::transparent);
    QPainter painter(&picture);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.scale(size / 24.0, size / 24.0);
    painter.setPen(QPen(QColor("#8a8f98"), 1.5));
    painter.setBrush(QColor("#e9ecf1"));
    painter.drawRoundedRect(QRectF(4, 2.5, 16, 11), 2, 2);
    painter.setPen(Qt::NoPen);
    painter.setBrush(QColor("#2f7cf6"));
    painter.drawRoundedRect(QRectF(1.5, 12, 21, 9.5), 4, 4);
    painter.setPen(QPen(Qt::white, 1.7, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.setBrush(Qt::NoBrush);
    QPainterPath prompt(QPointF(5.5, 14.5));
    prompt.lineTo(8, 16.75);
    prompt.lineTo(5.5, 19);
    painter.drawPath(prompt);
    painter.drawLine(QPointF(11, 19), QPointF(16, 19));
    return picture;
}

}  // namespace

QIcon programIcon() {
    QIcon icon;
    for (const int size : {16, 22, 24, 32, 48, 64, 128}) icon.addPixmap(drawnSign(size));
    return icon;
}

Tray::Tray(std::function<std::vector<TrayEntry>()> entries) : entries_(std::move(entries)), item_(programIcon()) {
    item_.setToolTip(QStringLiteral("Brindlet"));
    item_.setContextMenu(&menu_);
    QObject::connect(&menu_, &QMenu::aboutToShow, [this] { fill(); });
    QObject::connect(&retry_, &QTimer::timeout, [this] { appear(); });
    fill();
    appear();
}

void Tray::fill() {
    menu_.clear();
    for (const TrayEntry& entry : entries_()) {
        if (entry.title.isEmpty()) {
            menu_.addSeparator();
            continue;
        }
        QAction* action = menu_.addAction(entry.title, [choose = entry.choose] { choose(); });
        action->setEnabled(entry.isEnabled);
        if (!entry.keys.isEmpty()) action->setShortcut(QKeySequence(entry.keys, QKeySequence::PortableText));
    }
}

// The panel may come later than a program that starts at login.
void Tray::appear() {
    const bool isThere = QSystemTrayIcon::isSystemTrayAvailable();
    if (isThere) item_.show();
    if (isThere)
        retry_.stop();
    else
        retry_.start(panelInterval);
}

void Tray::showMessage(const QString& title, const QString& text) {
    if (item_.isVisible()) item_.showMessage(title, text, programIcon());
}

}  // namespace brindlet
