#include "exec/output_lines.h"

#include <gtest/gtest.h>

#include <vector>

namespace brindlet {

using Lines = std::vector<std::string>;

TEST(LineSplitter, LinesAreTheSameHoweverTheBytesArrive) {
    struct Case {
        std::string_view bytes;
        Lines lines;
    };
    const Case cases[] = {
        {"", {}},
        {"\n\r\n\n", {}},  // empty lines are left out
        {"a\nb\rc\r\nd", {"a", "b", "c", "d"}},
        {" 10%\r 20%\r", {" 10%", " 20%"}},
        {"n\xC3\xA9\n\xFF\xC3\nx\xE2\x82", {"n\xC3\xA9", "\xFF\xC3", "x\xE2\x82"}},
    };
    for (const auto& [bytes, expected] : cases) {
        for (std::size_t size = 1; size <= 8; ++size) {
            Lines lines;
            LineSplitter splitter([&](std::string_view line) { lines.emplace_back(line); });
            for (std::size_t at = 0; at < bytes.size(); at += size) splitter.feed(bytes.substr(at, size));
            splitter.finish();
            EXPECT_EQ(lines, expected) << bytes << " in pieces of " << size;
        }
    }
}

TEST(LineSplitter, ALineWithoutEndIsPassedOnInPieces) {
    Lines lines;
    LineSplitter splitter([&](std::string_view line) { lines.emplace_back(line); }, 4);
    for (int count = 0; count < 3; ++count) splitter.feed("abc");
    splitter.finish();
    EXPECT_EQ(lines, (Lines{"abcabc", "abc"}));
}

TEST(LineSplitter, LinesThatAreToBeOverwrittenGoTheirOwnWay) {
    Lines lines;
    LineSplitter splitter([&](std::string_view line) { lines.emplace_back(line); });
    splitter.divertOverwritten([&](std::string_view line) { lines.push_back("over " + std::string(line)); });
    for (const char* bytes : {"a\nb\r\n", "\r10%\r20%\r", "done\nre", "st"}) splitter.feed(bytes);
    splitter.feed(std::string(20000, 'x') + '\r');  // so much at once that its newline is still to come
    splitter.finish();
    EXPECT_EQ(lines, (Lines{"a", "b", "over 10%", "over 20%", "done", "rest" + std::string(20000, 'x')}));
}

TEST(BoundedOutput, KeepsAllUpToTheLimitAndThenTheBeginningAndTheEnd) {
    const auto outputOf = [](int lines, std::size_t longLine = 0) {
        BoundedOutput output(80);
        for (int number = 10; number < 10 + lines; ++number) output.addLine("line " + std::to_string(number));
        if (longLine != 0) output.addLine(std::string(longLine, 'x'));
        return output.take();
    };
    EXPECT_EQ(outputOf(0), "");
    EXPECT_EQ(outputOf(10).size(), 80U);
    EXPECT_EQ(outputOf(11),
              "line 10\nline 11\nline 12\nline 13\nline 14\n[4 lines of output left out here]\nline 19\nline 20\n");
    EXPECT_EQ(outputOf(80), outputOf(5) + "[72 lines of output left out here]\nline 87\nline 88\nline 89\n");
    EXPECT_EQ(outputOf(1, 1000), "line 10\n[1 lines of output left out here]\n" + std::string(19, 'x') + "\n");
}

}  // namespace brindlet
