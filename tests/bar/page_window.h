// A page of the bar's program in a window that nobody sees, driven as people drive it. A warning of the page's engine
// fails the test. Where BRINDLET_SHOTS names a folder, pictures are left there.
//
//     PageWindow page("Settings.qml", &model);
//     page.show();
//     page.click("tab2");
//     EXPECT_EQ(page.text("version"), "Version 1.0");
#pragma once

#include <gtest/gtest.h>

#include <QApplication>
#include <QImage>
#include <QQmlApplicationEngine>
#include <QQuickItem>
#include <QQuickWindow>
#include <QTest>
#include <string>

namespace brindlet {

class PageWindow {
  public:
    PageWindow(const std::string& page, QObject* model) {
        warnings().clear();
        former_ = qInstallMessageHandler(&PageWindow::hear);
        engine_.setInitialProperties({{"model", QVariant::fromValue(model)}});
        engine_.load(QUrl(QString::fromStdString("qrc:/brindlet/qml/" + page)));
        if (!engine_.rootObjects().isEmpty()) window_ = qobject_cast<QQuickWindow*>(engine_.rootObjects().first());
        if (window_ == nullptr) throw std::runtime_error("no page " + page + ": " + warnings().toStdString());
    }
    ~PageWindow() {
        window_->setVisible(false);
        qInstallMessageHandler(former_);
        EXPECT_EQ(warnings().toStdString(), "");
    }
    PageWindow(const PageWindow&) = delete;
    PageWindow& operator=(const PageWindow&) = delete;

    QQuickWindow& window() { return *window_; }
    void show() {
        window_->show();
        window_->requestActivate();
        EXPECT_TRUE(QTest::qWaitForWindowActive(window_));
    }

    bool has(const std::string& name) { return find(window_->contentItem(), QString::fromStdString(name)) != nullptr; }
    // One that is visible; throws where there is none.
    QQuickItem& item(const std::string& name) {
        QQuickItem* found = find(window_->contentItem(), QString::fromStdString(name));
        if (found == nullptr) throw std::runtime_error("nothing visible is named " + name);
        return *found;
    }
    // One inside another.
    QQuickItem& item(const std::string& outer, const std::string& name) {
        QQuickItem* found = find(&item(outer), QString::fromStdString(name));
        if (found == nullptr) throw std::runtime_error("nothing visible in " + outer + " is named " + name);
        return *found;
    }
    std::string text(const std::string& name) { return item(name).property("text").toString().toStdString(); }

    void click(QQuickItem& target) {
        bringIntoView(target);
        const QPointF middle = target.mapToScene({target.width() / 2, target.height() / 2});
        QTest::mouseClick(window_, Qt::LeftButton, {}, middle.toPoint());
        QCoreApplication::processEvents();
    }
    void click(const std::string& name) { click(item(name)); }
    void key(Qt::Key key, Qt::KeyboardModifiers held = {}) { QTest::keyClick(window_, key, held); }
    // In place of what the field holds.
    void fill(const std::string& field, const std::string& text) {
        click(field);
        key(Qt::Key_A, Qt::ControlModifier);
        if (text.empty()) key(Qt::Key_Backspace);
        for (const char each : text) QTest::keyClick(window_, each);
        key(Qt::Key_Return);
    }

    void shoot(const std::string& name) {
        const QString folder = qEnvironmentVariable("BRINDLET_SHOTS");
        if (folder.isEmpty()) return;
        QTest::qWait(150);  // for what is being animated
        window_->grabWindow().save(folder + "/" + QString::fromStdString(name) + ".png");
    }

  private:
    static QString& warnings() {
        static QString all;
        return all;
    }
    static void hear(QtMsgType type, const QMessageLogContext&, const QString& message) {
        const bool isOfPlatform = message.contains("propagateSizeHints");
        if (type != QtDebugMsg && type != QtInfoMsg && !isOfPlatform && !warnings().contains(message))
            warnings() += message + "\n";
    }
    static QQuickItem* find(QQuickItem* item, const QString& name) {
        if (!item->isVisible()) return nullptr;
        if (item->objectName() == name) return item;
        for (QQuickItem* child : item->childItems())
            if (QQuickItem* found = find(child, name)) return found;
        return nullptr;
    }
    void bringIntoView(QQuickItem& target) {
        for (QQuickItem* above = target.parentItem(); above != nullptr; above = above->parentItem()) {
            if (!above->inherits("QQuickFlickable")) continue;
            const double top = target.mapToItem(above, {0, 0}).y() + above->property("contentY").toDouble();
            const double longest = above->property("contentHeight").toDouble() - above->height();
            above->setProperty("contentY", std::clamp(top - above->height() / 2, 0.0, std::max(0.0, longest)));
        }
        QCoreApplication::processEvents();
    }

    QQmlApplicationEngine engine_;
    QQuickWindow* window_ = nullptr;
    QtMessageHandler former_ = nullptr;
};

}  // namespace brindlet
