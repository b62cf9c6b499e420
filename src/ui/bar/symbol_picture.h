// The picture of a symbol, on a grid of 24 by 24 that is as large as the item. A Shape would do, but for lists, which
// it isn't cut off at, and for layers, which know nothing of screens with more than one pixel to the point.
//
//     SymbolPicture { stroke: "M4 12h16"; color: "black"; width: 16; height: 16 }
#pragma once

#include <QColor>
#include <QQuickPaintedItem>
#include <QString>

namespace brindlet {

class SymbolPicture : public QQuickPaintedItem {
    Q_OBJECT
    Q_PROPERTY(QString stroke MEMBER stroke_ NOTIFY changed)
    Q_PROPERTY(QString fill MEMBER fill_ NOTIFY changed)
    Q_PROPERTY(QColor color MEMBER color_ NOTIFY changed)
    Q_PROPERTY(double lineWidth MEMBER lineWidth_ NOTIFY changed)

  public:
    explicit SymbolPicture(QQuickItem* parent = nullptr);
    void paint(QPainter* painter) override;

    // Under `import Brindlet`; once, before pages are loaded.
    static void registerType();

  signals:
    void changed();

  private:
    QString stroke_;
    QString fill_;
    QColor color_;
    double lineWidth_ = 1.75;
};

}  // namespace brindlet
