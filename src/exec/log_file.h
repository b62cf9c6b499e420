// A plain text log for each day, kept for support. Nothing that logging does can fail into the caller.
//
//     LogFile log(dataFolder().child("Logs"));
//     installLogSink([&log](LogLevel level, std::string_view message) { log.write(level, message); });
#pragma once

#include <chrono>
#include <functional>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>

#include "platform/file_path.h"
#include "platform/log.h"

namespace brindlet {

class LogFile {
  public:
    using Clock = std::function<std::chrono::system_clock::time_point()>;

    explicit LogFile(FilePath folder, Clock clock = nullptr);

    // Appends "[<time>] INFO: <message>" or "[<time>] ERROR: <message>" to today's file. Each line is one write, so two
    // processes may log at once.
    void write(LogLevel level, std::string_view message);

    // The newest log file, or the log folder if there is none.
    FilePath latestLogFile() const;
    const FilePath& folder() const { return folder_; }

  private:
    FilePath folder_;
    Clock clock_;
    std::mutex guard_;
    std::optional<std::string> lastLogCleanupDay_;
};

}  // namespace brindlet
