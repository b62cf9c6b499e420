#include "desktop/prompt_window_geometry.h"

#include <gtest/gtest.h>

namespace brindlet {

void PrintTo(const Rectangle& rectangle, std::ostream* stream) {
    *stream << rectangle.x << ',' << rectangle.y << ' ' << rectangle.width << 'x' << rectangle.height;
}

namespace prompt_window_geometry_tests {

// From the bottom left: a main screen with a panel of 40 at its lower edge, one to the right of it, higher up.
const Screen mainScreen{{0, 0, 1280, 900}, {0, 40, 1280, 860}};
const Screen rightScreen{{1280, 300, 1000, 600}, {1280, 310, 1000, 590}};

TEST(PromptWindowGeometry, StandsBelowTheWindowOnItsScreen) {
    struct Case {
        const char* what;
        Rectangle finder;  // from the top left of the main screen
        std::vector<Screen> screens;
        std::optional<Rectangle> frame;
    };
    const Case cases[] = {
        {"overlaps the lower edge by 12", {100, 50, 800, 500}, {mainScreen}, Rectangle{70, 277, 860, 85}},
        {"never below the visible frame", {100, 50, 800, 830}, {mainScreen}, Rectangle{70, 40, 860, 85}},
        {"taller than the screen", {0, -100, 800, 2000}, {mainScreen}, Rectangle{-30, 40, 860, 85}},
        {"its title bar's screen decides",
         {1000, 100, 500, 600},
         {rightScreen, mainScreen},
         Rectangle{970, 127, 560, 85}},
        {"on the other one", {1100, 100, 500, 600}, {mainScreen, rightScreen}, Rectangle{1070, 310, 560, 85}},
        {"on none: the larger overlap",
         {1000, -150, 700, 900},
         {mainScreen, rightScreen},
         Rectangle{970, 310, 760, 85}},
        {"on equal overlaps the earlier",
         {1180, -150, 200, 240},
         {rightScreen, mainScreen},
         Rectangle{1150, 737, 260, 85}},
        {"nowhere: the main screen", {5000, 3000, 300, 300}, {rightScreen, mainScreen}, Rectangle{4970, 40, 360, 85}},
        {"no main screen, no frame", {100, 50, 800, 500}, {rightScreen}, std::nullopt},
    };
    for (const auto& [what, finder, screens, frame] : cases) {
        SCOPED_TRACE(what);
        EXPECT_EQ(promptWindowFrame(finder, screens), frame);
        std::vector<Screen> fromTop;
        for (const Screen& screen : screens)
            fromTop.push_back({flipped(screen.frame, 900), flipped(screen.visibleFrame, 900)});
        if (frame) {
            EXPECT_EQ(promptWindowFrameFromTop(finder, fromTop), flipped(*frame, 900));
        }
    }
    EXPECT_EQ(promptWindowFrameFromTop({100, 50, 800, 500}, {}), std::nullopt);
    // Bottoms in line: neither of the two lies at (0, 0).
    const std::vector<Screen> uneven = {{{0, 300, 800, 600}, {0, 300, 800, 560}},
                                        {{800, 0, 1280, 900}, {800, 0, 1280, 900}}};
    EXPECT_EQ(promptWindowFrameFromTop({100, 350, 500, 300}, uneven), (Rectangle{70, 638, 560, 85}));
    EXPECT_EQ(promptWindowFrameFromTop({100, 350, 500, 530}, uneven), (Rectangle{70, 775, 560, 85}));
    EXPECT_EQ(promptWindowFrameFromTop({900, 0, 500, 900}, uneven), (Rectangle{870, 815, 560, 85}));
}

TEST(PromptWindowGeometry, FoldsByTheTellingTimes) {
    const auto open = foldOf(true).animation;
    EXPECT_EQ(progressOf(open, 0), 0);
    EXPECT_NEAR(progressOf(open, 0.2097), 1.372, 0.005);  // swings over by exp(-0.3 pi / sqrt(1 - 0.09))
    EXPECT_NEAR(progressOf(open, 2), 1, 0.001);
    EXPECT_NEAR(progressOf(Spring{0.4, 1}, 0.4), 0.9864, 0.0001);
    const auto shut = foldOf(false).animation;
    EXPECT_EQ(progressOf(shut, -1), 0);
    EXPECT_LT(progressOf(shut, 0.1), 0.4);  // slow at first
    EXPECT_EQ(progressOf(shut, 0.2), 1);
}

}  // namespace prompt_window_geometry_tests
}  // namespace brindlet
