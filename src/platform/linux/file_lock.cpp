#include "platform/file_lock.h"

#include <fcntl.h>
#include <sys/file.h>

#include <cerrno>
#include <thread>

#include "platform/linux/file_descriptor.h"

namespace brindlet {

namespace {

// flock(2) can wait by itself, but not for a limited time, and a stopped program may hold the lock for good.
constexpr std::chrono::milliseconds attemptInterval{10};

}  // namespace

Result<FileLock> FileLock::take(const FilePath& file, std::chrono::milliseconds patience) {
    const std::string what = "Can't lock '" + file.text() + "'";
    auto open = std::make_shared<FileDescriptor>(::open(file.text().c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600));
    if (!*open) return systemFailure(what, errno);
    const auto deadline = std::chrono::steady_clock::now() + patience;
    while (::flock(open->number(), LOCK_EX | LOCK_NB) != 0) {
        if (errno != EWOULDBLOCK && errno != EINTR) return systemFailure(what, errno);
        if (std::chrono::steady_clock::now() >= deadline) return Failure{what + ": Another program holds it"};
        std::this_thread::sleep_for(attemptInterval);
    }
    return FileLock(std::move(open));
}

}  // namespace brindlet
