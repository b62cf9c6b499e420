#include "exec/log_file.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <time.h>

#include "support/scratch_folder.h"

namespace brindlet {

namespace log_file_tests {

using std::chrono::hours;
using std::chrono::minutes;
using std::chrono::seconds;
using std::chrono::system_clock;

// 2026-11-22T21:46:44Z, which is already the next day in the zone of these tests.
constexpr std::time_t evening = 1795384004;

class LogFileTest : public testing::Test {
  protected:
    void SetUp() override {
        ::setenv("TZ", "XST-5", 1);
        ::tzset();
    }
    void TearDown() override {
        ::unsetenv("TZ");
        ::tzset();
    }

    void makeAged(const std::string& name, std::time_t time) {
        scratch.write("Logs/" + name, "");
        const timespec times[2] = {{time, 0}, {time, 0}};
        ::utimensat(AT_FDCWD, folder.child(name).text().c_str(), times, 0);
    }
    bool exists(const std::string& name) { return scratch.exists("Logs/" + name); }

    ScratchFolder scratch;
    FilePath folder = scratch.path("Logs");
    system_clock::time_point now = system_clock::from_time_t(evening);
    LogFile log{folder, [this] { return now; }};
};

TEST_F(LogFileTest, LinesOfOneDayInOneFileByLocalDate) {
    log.write(LogLevel::info, "one\ntwo");
    now += seconds(1);
    log.write(LogLevel::error, "caf\xE9");
    EXPECT_EQ(scratch.read("Logs/brindlet_log_2026-11-23.txt"),
              "[2026-11-22T21:46:44Z] INFO: one\ntwo\n[2026-11-22T21:46:45Z] ERROR: caf\xEF\xBF\xBD\n");
    EXPECT_EQ(log.latestLogFile(), folder.child("brindlet_log_2026-11-23.txt"));
    now += hours(24);
    log.write(LogLevel::info, "next day");
    EXPECT_EQ(log.latestLogFile(), folder.child("brindlet_log_2026-11-24.txt"));
}

TEST_F(LogFileTest, CleansUpOnceADayAfterFourteenDays) {
    constexpr std::time_t fourteenDays = 14 * 24 * 3600;
    makeAged("brindlet_log_old.txt", evening - fourteenDays - 60);
    makeAged("brindlet_log_kept.txt", evening - fourteenDays + 60);
    makeAged("brindlet_log_old.txt.bak", 0);
    makeAged("other.txt", 0);
    log.write(LogLevel::info, "first of the day");
    EXPECT_FALSE(exists("brindlet_log_old.txt"));
    EXPECT_TRUE(exists("brindlet_log_kept.txt"));
    EXPECT_TRUE(exists("brindlet_log_old.txt.bak"));
    EXPECT_TRUE(exists("other.txt"));

    now += minutes(2);
    log.write(LogLevel::info, "same day");
    EXPECT_TRUE(exists("brindlet_log_kept.txt"));
    now += hours(24);
    log.write(LogLevel::info, "next day");
    EXPECT_FALSE(exists("brindlet_log_kept.txt"));
}

TEST_F(LogFileTest, AFailureIsPrintedOnceAndTheCallerGoesOn) {
    scratch.write("Logs", "a file where the folder should be");
    testing::internal::CaptureStderr();
    log.write(LogLevel::info, "lost");
    log.write(LogLevel::info, "lost too");
    const std::string printed = testing::internal::GetCapturedStderr();
    EXPECT_TRUE(printed.starts_with("Failed to write to log file: ")) << printed;
    EXPECT_EQ(printed.find('\n'), printed.size() - 1) << printed;
    EXPECT_EQ(log.latestLogFile(), folder);
}

}  // namespace log_file_tests
}  // namespace brindlet
