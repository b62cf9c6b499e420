#include "ui/terminal/progress_line.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <array>
#include <limits>

namespace brindlet {

TEST(ProgressLine, Rows) {
    struct Case {
        std::optional<double> fraction;
        std::string_view status;
        std::size_t turn, columns;
        std::string row;
    };
    const Case cases[] = {
        {0.0, "", 0, 79, "[........................]   0%"},
        {0.5, "a\x1b[2J", 0, 79, "[############............]  50%  a\\x1b[2J"},
        {0.999, "", 0, 79, "[#######################.]  99%"},
        {1.0, "", 0, 79, "[########################] 100%"},
        {std::nullopt, "", 0, 30, "[####......]"},
        {std::nullopt, "", 6, 30, "[......####]"},
        {std::nullopt, "", 8, 30, "[....####..]"},
        {std::nullopt, "", 12, 30, "[####......]"},
        {std::nullopt, "adding: name", 0, 24, "[####....]  adding: name"},
        {std::nullopt, "adding: name", 0, 23, "[####...]  adding: name"},
        {std::nullopt, "\u65E5\u672C\u8A9E", 0, 14, "[####]  \u65E5\u672C\u8A9E"},  // two columns each
        {std::nullopt, "\u65E5\u672C\u8A9E", 0, 13, "[####]  \u65E5\u672C"},
        {0.5, "a", 0, 2, "[]"},
        {std::nullopt, "a", 7, 0, ""},
    };
    for (const auto& [fraction, status, turn, columns, row] : cases)
        EXPECT_EQ(ProgressLine::row(fraction, status, turn, columns), row) << columns;
}

TEST(ProgressLine, IsDrawnAfterAWhileNotTooOftenAndTakenAway) {
    std::array<int, 2> ends{};
    ASSERT_EQ(::pipe(ends.data()), 0);
    auto now = std::chrono::steady_clock::time_point{};
    const auto drawn = [&] {
        std::array<char, 4096> bytes;
        [[maybe_unused]] const ssize_t written = ::write(ends[1], "|", 1);
        return std::string(bytes.data(), static_cast<std::size_t>(::read(ends[0], bytes.data(), bytes.size())));
    };
    {
        ProgressLine line(ends[1], [&now] { return now; });
        line.show(ProgressNorm{0.25});
        line.hide();
        EXPECT_EQ(drawn(), "|");  // not worth it yet
        now += std::chrono::milliseconds(300);
        line.show(ProgressNorm{std::numeric_limits<double>::quiet_NaN()});
        line.show(ProgressNorm{7});
        EXPECT_EQ(drawn(), "\r[######..................]  25%\x1b[K|");
        line.hide();
        line.hide();
        EXPECT_EQ(drawn(), "\r\x1b[K|");
        now += std::chrono::milliseconds(50);
        line.resume();
    }
    EXPECT_EQ(drawn(), "\r[########################] 100%\x1b[K\r\x1b[K|");
    ::close(ends[0]);
    ::close(ends[1]);
}

}  // namespace brindlet
