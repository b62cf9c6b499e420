// Symbols: what their paths are read as, and that they are drawn sharp and anew.
#include <gtest/gtest.h>

#include <QGuiApplication>
#include <QQmlComponent>
#include <QQmlEngine>
#include <QQuickItem>
#include <QQuickWindow>
#include <QTest>
#include <memory>

#include "ui/bar/svg_path.h"

namespace brindlet {

namespace {

TEST(SymbolPaths, AreReadAsSvg) {
    struct Case {
        const char* path;
        QRectF bounds;
        QPointF end;
    };
    const Case cases[] = {
        {"M4 12h16M14 6l6 6-6 6", {4, 6, 16, 12}, {14, 18}},  // numbers that a sign parts
        {"M1 2 3 4v.5.5", {1, 2, 2, 3}, {3, 5}},              // lines after a move; numbers that a point parts
        {"M3 12a9 9 0 1 0 18 0 9 9 0 1 0-18 0", {3, 3, 18, 18}, {3, 12}},  // a circle of two arcs
        {"M12 3a9 9 0 019 9", {12, 3, 9, 9}, {21, 12}},                    // flags with nothing between them
        {"M0 0a1 1 0 0 1 4 0", {0, -2, 4, 2}, {4, 0}},                     // an arc that is too small to get there
        {"M0 0c0 2 4 2 4 0s4-2 4 0", {0, -1.5, 8, 3}, {8, 0}},             // a curve that goes on
        {"M2 2h4v4z", {2, 2, 4, 4}, {2, 2}},
        {"M1 1l5 5q1 1 2 2", {1, 1, 5, 5}, {6, 6}},  // up to what can't be read
        {"M1 1l5", {1, 1, 0, 0}, {1, 1}},
        {"5 5", {}, {0, 0}},
    };
    for (const auto& [text, bounds, end] : cases) {
        SCOPED_TRACE(text);
        const QPainterPath path = pathOfSvg(QString::fromLatin1(text));
        const QRectF found = path.boundingRect();
        EXPECT_LT((found.topLeft() - bounds.topLeft()).manhattanLength(), 0.05);
        EXPECT_LT((found.bottomRight() - bounds.bottomRight()).manhattanLength(), 0.05);
        EXPECT_LT((path.currentPosition() - end).manhattanLength(), 0.01);
    }
}

// A symbol that changed out of sight kept its old picture; one in a list stuck out of it.
TEST(Symbols, AreDrawnAnewAndWithinTheirList) {
    QQmlEngine engine;
    QQmlComponent component(&engine);
    component.setData(R"(
        import QtQuick
        Window {
            width: 40; height: 40; color: "white"
            property alias symbol: symbol
            Item {
                width: 40; height: 20; clip: true
                Symbol { id: symbol; y: 0; name: "minus"; size: 40 }
            }
        })",
                      QUrl("qrc:/brindlet/qml/SymbolTest.qml"));
    const std::unique_ptr<QObject> made(component.create());
    auto* window = qobject_cast<QQuickWindow*>(made.get());
    ASSERT_NE(window, nullptr) << component.errorString().toStdString();
    window->show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(window));
    const auto isInked = [&](int x, int y) {
        const QImage image = window->grabWindow();
        const double scale = image.width() / 40.0;
        return qGray(image.pixel(static_cast<int>(x * scale), static_cast<int>(y * scale))) < 128;
    };
    auto* symbol = qvariant_cast<QQuickItem*>(window->property("symbol"));
    EXPECT_TRUE(isInked(20, 19));
    EXPECT_FALSE(isInked(20, 21));  // the line's lower half
    EXPECT_FALSE(isInked(20, 12));
    symbol->setVisible(false);
    symbol->setProperty("name", "plus");
    EXPECT_FALSE(isInked(20, 19));
    symbol->setVisible(true);
    EXPECT_TRUE(isInked(20, 12));
}

}  // namespace

}  // namespace brindlet
