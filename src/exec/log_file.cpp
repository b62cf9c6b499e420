#include "exec/log_file.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <ctime>
#include <exception>
#include <memory>
#include <set>
#include <system_error>
#include <utility>
#include <vector>

#include "platform/atomic_file.h"
#include "text/utf8.h"

namespace brindlet {

namespace {

constexpr std::string_view namePrefix = "brindlet_log_";
constexpr int daysKept = 14;

// By POSIX calls throughout: each of them says what failed without throwing, and a log must never fail into its caller.
std::string formatted(const char* format, const std::tm& time) {
    char text[64];
    return {text, std::strftime(text, sizeof text, format, &time)};
}

std::tm localTime(std::time_t time) {
    std::tm parts{};
    ::localtime_r(&time, &parts);
    return parts;
}

std::string isoTime(std::time_t time) {
    std::tm parts{};
    ::gmtime_r(&time, &parts);
    return formatted("%Y-%m-%dT%H:%M:%SZ", parts);
}

bool isLogName(std::string_view name) {
    return name.starts_with(namePrefix) && pathExtension(name) == "txt";
}

std::vector<std::string> logNames(const FilePath& folder) {
    std::vector<std::string> names;
    const std::unique_ptr<DIR, int (*)(DIR*)> listing(::opendir(folder.text().c_str()), ::closedir);
    if (!listing) return names;
    while (const dirent* entry = ::readdir(listing.get()))
        if (isLogName(entry->d_name)) names.emplace_back(entry->d_name);
    return names;
}

// Calendar days, so that a change to or from summer time moves the moment by an hour.
std::time_t daysBefore(std::time_t now, int days) {
    std::tm parts = localTime(now);
    parts.tm_mday -= days;
    parts.tm_isdst = -1;
    return std::mktime(&parts);
}

void removeOldLogs(const FilePath& folder, std::time_t now) {
    const std::time_t oldestKept = daysBefore(now, daysKept);
    for (const std::string& name : logNames(folder)) {
        const std::string path = folder.child(name).text();
        struct stat status {};
        if (::lstat(path.c_str(), &status) == 0 && status.st_mtim.tv_sec < oldestKept) ::unlink(path.c_str());
    }
}

std::string systemWords() {
    return std::generic_category().message(errno);
}

// What went wrong, if anything did. A named pipe that someone put there would block without O_NONBLOCK.
std::optional<std::string> append(const FilePath& file, std::string_view line) {
    const int descriptor =
        ::open(file.text().c_str(), O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC | O_NOCTTY | O_NONBLOCK, 0600);
    if (descriptor < 0) return systemWords();
    std::optional<std::string> reason;
    const ssize_t written = ::write(descriptor, line.data(), line.size());
    if (written < 0) {
        reason = systemWords();
    } else if (static_cast<std::size_t>(written) != line.size()) {
        reason = "only a part of the line could be written";
    }
    ::close(descriptor);
    return reason;
}

// Once for each reason: a full disk is worth one line, not one for every line that is lost.
void printFailure(const std::string& reason) {
    static std::mutex guard;
    static std::set<std::string> printed;
    const std::lock_guard lock(guard);
    if (printed.insert(reason).second) std::fprintf(stderr, "Failed to write to log file: %s\n", reason.c_str());
}

std::string lineText(LogLevel level, std::string_view message, std::time_t now) {
    return "[" + isoTime(now) + (level == LogLevel::error ? "] ERROR: " : "] INFO: ") + toValidUtf8(message) + "\n";
}

}  // namespace

LogFile::LogFile(FilePath folder, Clock clock)
    : folder_(std::move(folder)), clock_(clock ? std::move(clock) : Clock(std::chrono::system_clock::now)) {}

void LogFile::write(LogLevel level, std::string_view message) {
    try {
        const std::lock_guard lock(guard_);
        if (const auto failure = makeFolders(folder_)) return printFailure(failure->description);

        const std::time_t now = std::chrono::system_clock::to_time_t(clock_());
        const std::string today = formatted("%Y-%m-%d", localTime(now));
        if (lastLogCleanupDay_ != today) {
            lastLogCleanupDay_ = today;
            removeOldLogs(folder_, now);
        }
        const FilePath file = folder_.child(std::string(namePrefix) + today + ".txt");
        if (const auto reason = append(file, lineText(level, message, now))) printFailure(*reason);
    } catch (const std::exception&) {
        // Nothing is left to do here but run out of memory, and that is not for the caller of a log to hear.
    }
}

FilePath LogFile::latestLogFile() const {
    const std::vector<std::string> names = logNames(folder_);
    const auto newest = std::max_element(names.begin(), names.end());
    return newest == names.end() ? folder_ : folder_.child(*newest);
}

}  // namespace brindlet
