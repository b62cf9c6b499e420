#include "platform/linux/forked_task.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <stdexcept>

namespace brindlet {

namespace forked_task_tests {

using namespace std::chrono_literals;

TEST(ForkedTask, OnlyAWholeAnswerInTimeCounts) {
    int here = 0;
    const std::string large(300'000, 'x');  // more than a pipe holds
    EXPECT_EQ(runForked(10s, [&] { return ++here, large; }), large);
    EXPECT_EQ(here, 0);
    EXPECT_EQ(runForked(10s, [] { return std::string(); }), "");
    EXPECT_EQ(runForked(10s, []() -> std::string { throw std::runtime_error("no"); }), std::nullopt);
    EXPECT_EQ(runForked(10s, [] { return ::raise(SIGKILL), std::string("not reached"); }), std::nullopt);
    EXPECT_EQ(runForked(30ms, [] { return ::pause(), std::string("not reached"); }), std::nullopt);
}

}  // namespace forked_task_tests
}  // namespace brindlet
