// The bar's pages are loaded and driven without a display.
#include <gtest/gtest.h>

#include <QApplication>
#include <QQuickStyle>
#include <QQuickWindow>

#include "ui/bar/symbol_picture.h"

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QQuickWindow::setGraphicsApi(QSGRendererInterface::Software);
    QQuickStyle::setStyle("Basic");
    brindlet::SymbolPicture::registerType();
    testing::InitGoogleTest(&argc, argv);
    const QApplication application(argc, argv);
    return RUN_ALL_TESTS();
}
