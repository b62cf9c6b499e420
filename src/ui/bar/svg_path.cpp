#include "ui/bar/svg_path.h"

#include <QRectF>
#include <cctype>
#include <cmath>
#include <numbers>
#include <optional>
#include <string>
#include <vector>

namespace brindlet {

namespace {

// How many numbers a command takes each time; -1: it is none.
int countOf(char command) {
    switch (std::toupper(static_cast<unsigned char>(command))) {
        case 'Z':
            return 0;
        case 'H':
        case 'V':
            return 1;
        case 'M':
        case 'L':
            return 2;
        case 'S':
            return 4;
        case 'C':
            return 6;
        case 'A':
            return 7;
        default:
            return -1;
    }
}

class SvgPathReader {
  public:
    explicit SvgPathReader(const QString& text) : text_(text.toStdString()) {}

    QPainterPath read() {
        char command = 0;
        while (skipBlanks(), at_ < text_.size()) {
            if (countOf(text_[at_]) >= 0)
                command = text_[at_++];
            else if (countOf(command) <= 0)
                break;  // numbers that nothing asks for
            if (!step(command)) break;
            if (command == 'M') command = 'L';
            if (command == 'm') command = 'l';
        }
        return path_;
    }

  private:
    void skipBlanks() {
        while (at_ < text_.size() && (text_[at_] == ' ' || text_[at_] == ',')) ++at_;
    }

    // A second point or a sign begins the next one.
    std::optional<double> number() {
        skipBlanks();
        const std::size_t begin = at_;
        if (at_ < text_.size() && text_[at_] == '-') ++at_;
        bool hasPoint = false;
        while (at_ < text_.size()) {
            const char character = text_[at_];
            if (character == '.' ? hasPoint : std::isdigit(static_cast<unsigned char>(character)) == 0) break;
            hasPoint = hasPoint || character == '.';
            ++at_;
        }
        bool isRead = false;
        const double value = QString::fromStdString(text_.substr(begin, at_ - begin)).toDouble(&isRead);
        return isRead ? std::optional(value) : std::nullopt;
    }

    // One digit, with nothing between it and what follows.
    std::optional<double> flag() {
        skipBlanks();
        if (at_ >= text_.size() || (text_[at_] != '0' && text_[at_] != '1')) return std::nullopt;
        return text_[at_++] - '0';
    }

    bool step(char command) {
        const char kind = static_cast<char>(std::toupper(static_cast<unsigned char>(command)));
        std::vector<double> n;
        for (int index = 0; index < countOf(command); ++index) {
            const auto value = kind == 'A' && (index == 3 || index == 4) ? flag() : number();
            if (!value) return false;
            n.push_back(*value);
        }
        draw(kind, n, command == kind ? QPointF() : path_.currentPosition());
        if (kind != 'C' && kind != 'S') control_ = path_.currentPosition();
        return true;
    }

    void draw(char kind, const std::vector<double>& n, QPointF from) {
        const auto point = [&](std::size_t index) { return from + QPointF(n[index], n[index + 1]); };
        const QPointF here = path_.currentPosition();
        switch (kind) {
            case 'M':
                return path_.moveTo(point(0));
            case 'L':
                return path_.lineTo(point(0));
            case 'H':
                return path_.lineTo(from.x() + n[0], here.y());
            case 'V':
                return path_.lineTo(here.x(), from.y() + n[0]);
            case 'C':
                path_.cubicTo(point(0), point(2), point(4));
                control_ = point(2);
                return;
            case 'S':  // goes on as the curve before it ended
                path_.cubicTo(2 * here - control_, point(0), point(2));
                control_ = point(0);
                return;
            case 'A':
                return drawArc({n[0], n[1]}, n[3] != 0, n[4] != 0, point(5));
            default:
                return path_.closeSubpath();
        }
    }

    // From the ends to the middle as in SVG 1.1, F.6.5, for an ellipse that isn't turned.
    void drawArc(QPointF radii, bool isLarge, bool isClockwise, QPointF end) {
        const QPointF here = path_.currentPosition();
        if (radii.x() <= 0 || radii.y() <= 0 || here == end) return path_.lineTo(end);
        double x = (here.x() - end.x()) / 2 / radii.x();
        double y = (here.y() - end.y()) / 2 / radii.y();
        const double reach = std::hypot(x, y);
        if (reach > 1) {  // too small to get there
            radii *= reach;
            x /= reach;
            y /= reach;
        }
        const double square = x * x + y * y;
        const double height = std::sqrt(std::max(0.0, (1 - square) / square)) * (isLarge == isClockwise ? -1 : 1);
        const QPointF middle((here.x() + end.x()) / 2 + height * y * radii.x(),
                             (here.y() + end.y()) / 2 - height * x * radii.y());
        const auto angleOf = [&](QPointF point) {
            return std::atan2((point.y() - middle.y()) / radii.y(), (point.x() - middle.x()) / radii.x()) * 180 /
                   std::numbers::pi;
        };
        const double start = angleOf(here);
        double sweep = std::fmod(angleOf(end) - start + 720, 360);
        if (!isClockwise && sweep > 0) sweep -= 360;
        // The angles of the toolkit grow the other way round.
        path_.arcTo(QRectF(middle.x() - radii.x(), middle.y() - radii.y(), 2 * radii.x(), 2 * radii.y()), -start,
                    -sweep);
    }

    std::string text_;
    std::size_t at_ = 0;
    QPainterPath path_;
    QPointF control_;  // the last one of a curve
};

}  // namespace

QPainterPath pathOfSvg(const QString& text) {
    return SvgPathReader(text).read();
}

}  // namespace brindlet
