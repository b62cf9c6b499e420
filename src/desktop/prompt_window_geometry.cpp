#include "desktop/prompt_window_geometry.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "text/overloaded.h"

namespace brindlet {

namespace {

constexpr double overlapWithFinder = 14 - 2;
// Below the upper edge of the window: the title bar of one that straddles two screens decides.
constexpr double decisiveDepth = 100;

const Screen* mainScreenOf(const std::vector<Screen>& screens) {
    const auto main = std::find_if(screens.begin(), screens.end(),
                                   [](const Screen& screen) { return screen.frame.x == 0 && screen.frame.y == 0; });
    return main == screens.end() ? nullptr : &*main;
}

const Screen& screenBelow(const Rectangle& finder, const std::vector<Screen>& screens, const Screen& main) {
    const Point decisive{finder.x + finder.width / 2, finder.y + finder.height - decisiveDepth};
    const Screen* best = &main;
    double mostOverlap = 0;
    for (const Screen& screen : screens) {
        if (screen.frame.holds(decisive)) return screen;
        const double overlap = screen.frame.overlapWith(finder);
        if (overlap <= mostOverlap) continue;
        mostOverlap = overlap;
        best = &screen;
    }
    return *best;
}

Rectangle moved(const Rectangle& rectangle, double right, double down) {
    return {rectangle.x + right, rectangle.y + down, rectangle.width, rectangle.height};
}

// Of the curve from (0, 0) to (1, 1) with the control points (0.42, 0) and (1, 1), the y at `x`.
double easedIn(double x) {
    double low = 0;
    double high = 1;
    for (int halvings = 0; halvings < 30; ++halvings) {
        const double middle = (low + high) / 2;
        const double rest = 1 - middle;
        const double curveX = 3 * rest * rest * middle * 0.42 + 3 * rest * middle * middle + middle * middle * middle;
        (curveX < x ? low : high) = middle;
    }
    return low * low * (3 - 2 * low);
}

double sprung(const Spring& spring, double seconds) {
    const double speed = 2 * std::numbers::pi / spring.response;
    const double decay = spring.damping * speed;
    if (spring.damping >= 1) return 1 - (1 + speed * seconds) * std::exp(-speed * seconds);
    const double swing = speed * std::sqrt(1 - spring.damping * spring.damping);
    return 1 - std::exp(-decay * seconds) * (std::cos(swing * seconds) + decay / swing * std::sin(swing * seconds));
}

}  // namespace

Rectangle flipped(const Rectangle& rectangle, double mainScreenHeight) {
    return {rectangle.x, mainScreenHeight - rectangle.y - rectangle.height, rectangle.width, rectangle.height};
}

std::optional<Rectangle> promptWindowFrame(const Rectangle& finderBounds, const std::vector<Screen>& screens) {
    const Screen* main = mainScreenOf(screens);
    if (main == nullptr) return std::nullopt;
    const Rectangle finder = flipped(finderBounds, main->frame.height);
    const Screen& screen = screenBelow(finder, screens, *main);
    return Rectangle{finder.x - promptWindowOverhang,
                     std::max(finder.y - promptWindowHeight + overlapWithFinder, screen.visibleFrame.y),
                     finder.width + 2 * promptWindowOverhang, promptWindowHeight};
}

std::optional<Rectangle> promptWindowFrameFromTop(const Rectangle& finderBounds, const std::vector<Screen>& screens) {
    if (screens.empty()) return std::nullopt;
    // Of screens that stand at different heights none need lie at (0, 0) here: then the first is the main one.
    const Screen* atOrigin = mainScreenOf(screens);
    const Rectangle main = atOrigin != nullptr ? atOrigin->frame : screens.front().frame;
    const auto turned = [&](const Rectangle& each) { return flipped(moved(each, -main.x, -main.y), main.height); };
    std::vector<Screen> fromBottom;
    for (const Screen& screen : screens) fromBottom.push_back({turned(screen.frame), turned(screen.visibleFrame)});
    const auto frame = promptWindowFrame(moved(finderBounds, -main.x, -main.y), fromBottom);
    return frame ? std::optional(moved(flipped(*frame, main.height), main.x, main.y)) : std::nullopt;
}

Fold foldOf(bool isFlippedOpen) {
    if (isFlippedOpen) return {0, 1, Spring{.response = 0.4, .damping = 0.3}};
    return {-90, 0, EaseIn{0.2}};
}

double progressOf(const FoldAnimation& animation, double secondsSinceStart) {
    const double seconds = std::max(0.0, secondsSinceStart);
    return std::visit(
        Overloaded{
            [&](const Spring& spring) { return sprung(spring, seconds); },
            [&](const EaseIn& ease) { return seconds >= ease.seconds ? 1.0 : easedIn(seconds / ease.seconds); },
        },
        animation);
}

}  // namespace brindlet
