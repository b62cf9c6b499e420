// Outlines in the notation of SVG paths, as the table of symbols has them: moves, lines, curves and arcs of circles and
// upright ellipses.
//
//     painter.drawPath(pathOfSvg("M4 12h16M14 6l6 6-6 6"));
#pragma once

#include <QPainterPath>
#include <QString>

namespace brindlet {

// Up to the first place that can't be read.
QPainterPath pathOfSvg(const QString& text);

}  // namespace brindlet
