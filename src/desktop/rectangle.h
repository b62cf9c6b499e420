// Where windows and screens are.
//
//     Rectangle{0, 0, 100, 50}.holds({100, 10}) == false   // the right and the far edge belong to the neighbour
#pragma once

#include <algorithm>

namespace brindlet {

struct Point {
    double x = 0;
    double y = 0;

    bool operator==(const Point&) const = default;
};

struct Rectangle {
    double x = 0;
    double y = 0;
    double width = 0;
    double height = 0;

    bool holds(Point point) const {
        return point.x >= x && point.x < x + width && point.y >= y && point.y < y + height;
    }
    double overlapWith(const Rectangle& other) const {
        const double across = std::min(x + width, other.x + other.width) - std::max(x, other.x);
        const double down = std::min(y + height, other.y + other.height) - std::max(y, other.y);
        return std::max(0.0, across) * std::max(0.0, down);
    }

    bool operator==(const Rectangle&) const = default;
};

}  // namespace brindlet
