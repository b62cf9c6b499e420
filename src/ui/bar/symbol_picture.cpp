#include "ui/bar/symbol_picture.h"

#include <QPainter>
#include <QPen>
#include <QtQml>

#include "ui/bar/svg_path.h"

namespace brindlet {

namespace {

constexpr double gridSide = 24;

}  // namespace

SymbolPicture::SymbolPicture(QQuickItem* parent) : QQuickPaintedItem(parent) {
    setAntialiasing(true);
    connect(this, &SymbolPicture::changed, this, [this] { update(); });
}

void SymbolPicture::paint(QPainter* painter) {
    painter->scale(width() / gridSide, height() / gridSide);
    if (!fill_.isEmpty()) painter->fillPath(pathOfSvg(fill_), color_);
    if (!stroke_.isEmpty())
        painter->strokePath(pathOfSvg(stroke_), QPen(color_, lineWidth_, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
}

void SymbolPicture::registerType() {
    qmlRegisterType<SymbolPicture>("Brindlet", 1, 0, "SymbolPicture");
}

}  // namespace brindlet
