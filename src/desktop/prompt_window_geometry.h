// Where the bar stands below a window, and how it folds open and shut.
//
//     promptWindowFrame({100, 50, 800, 500}, {{{0, 0, 1280, 900}, {0, 0, 1280, 860}}})
//         == Rectangle{70, 277, 860, 85}   // from the bottom left, as promptWindowFrame has it
#pragma once

#include <optional>
#include <variant>
#include <vector>

#include "desktop/rectangle.h"

namespace brindlet {

inline constexpr double promptWindowHeight = 85;
// What the window reaches past each side of the one above it. The view leaves it empty, for its shadow and its fold.
inline constexpr double promptWindowOverhang = 30;
inline constexpr double promptWindowCornerRadius = 22;

// Both in the same coordinates. The visible frame is the part that no panel takes.
struct Screen {
    Rectangle frame;
    Rectangle visibleFrame;

    bool operator==(const Screen&) const = default;
};

// `finderBounds` has its origin at the top left of the main screen, the one at (0, 0), and y growing down; screens and
// the result have theirs at its bottom left, and y growing up. None without such a screen.
std::optional<Rectangle> promptWindowFrame(const Rectangle& finderBounds, const std::vector<Screen>& screens);

// The same with everything from the top left, as X11 has it, where the first screen is the main one if none lies at
// (0, 0). None without a screen.
std::optional<Rectangle> promptWindowFrameFromTop(const Rectangle& finderBounds, const std::vector<Screen>& screens);

// A rectangle of the one kind in the coordinates of the other.
Rectangle flipped(const Rectangle& rectangle, double mainScreenHeight);

// A spring without mass: `response` is the time of one swing in seconds, and a `damping` of 1 would keep it from
// swinging over.
struct Spring {
    double response;
    double damping;
    bool operator==(const Spring&) const = default;
};
struct EaseIn {
    double seconds;
    bool operator==(const EaseIn&) const = default;
};
using FoldAnimation = std::variant<Spring, EaseIn>;

// What the bar turns to about its upper edge, by rotation about the x axis, and the way there.
struct Fold {
    double degrees;
    double opacity;
    FoldAnimation animation;
    bool operator==(const Fold&) const = default;
};
Fold foldOf(bool isFlippedOpen);

// How much of the way is done: 0 at the start, 1 at the end, and a little more while a spring swings over.
double progressOf(const FoldAnimation& animation, double secondsSinceStart);

}  // namespace brindlet
