#include "execute.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <utility>

#include <fmt/format.h>

namespace fiotraf {

namespace {

class Descriptor {
  public:
    explicit Descriptor(int number) : number_(number) {}
    ~Descriptor() { close(); }
    Descriptor(Descriptor&& other) noexcept : number_(std::exchange(other.number_, -1)) {}
    Descriptor& operator=(Descriptor&&) = delete;

    bool isOpen() const { return number_ >= 0; }
    int number() const { return number_; }
    // False where the last bytes didn't reach the disk.
    bool close() { return number_ < 0 || ::close(std::exchange(number_, -1)) == 0; }

  private:
    int number_;
};

Descriptor openFolder(int at, const std::string& path) {
    return Descriptor(::openat(at, path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
}

// A name in an open folder.
struct Place {
    int folder;
    std::string name;
};

// "a.txt", "a 2.txt", "a 3.txt".
std::string numbered(const std::string& name, int number) {
    if (number == 1) return name;
    const std::filesystem::path path(name);
    return fmt::format("{} {}{}", path.stem().string(), number, path.extension().string());
}

// False, with errno set, where it fails; EEXIST where the name is taken.
bool renameWithoutReplacing(const Place& from, const Place& to) {
    if (::renameat2(from.folder, from.name.c_str(), to.folder, to.name.c_str(), RENAME_NOREPLACE) == 0) return true;
    if (errno != EINVAL && errno != ENOSYS) return false;
    // Some file systems can't do this in one step: for a moment the file has both names.
    if (::linkat(from.folder, from.name.c_str(), to.folder, to.name.c_str(), 0) != 0) return false;
    return ::unlinkat(from.folder, from.name.c_str(), 0) == 0;
}

// Under the first name of "a.txt", "a 2.txt" and so on that is free. False, with errno set, if it fails.
bool placeUnderFreeName(const Place& from, int folder, const std::string& name) {
    constexpr int most = 10'000;
    for (int number = 1; number <= most; ++number) {
        if (renameWithoutReplacing(from, {folder, numbered(name, number)})) return true;
        if (errno != EEXIST) return false;
    }
    return false;
}

bool copyBytes(int from, int to) {
    char bytes[65536];
    for (;;) {
        const ssize_t count = ::read(from, bytes, sizeof bytes);
        if (count == 0) return true;
        if (count < 0) return false;
        for (ssize_t at = 0; at < count;) {
            const ssize_t written = ::write(to, bytes + at, static_cast<std::size_t>(count - at));
            if (written < 0) return false;
            at += written;
        }
    }
}

// Content, mode and times; a copy that fails half way leaves the temporary file to its caller.
bool copyTo(const Place& temporary, const Place& source) {
    const Descriptor from(::openat(source.folder, source.name.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
    struct stat status {};
    if (!from.isOpen() || ::fstat(from.number(), &status) != 0) return false;
    if (!S_ISREG(status.st_mode)) return errno = EINVAL, false;
    Descriptor to(::openat(temporary.folder, temporary.name.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600));
    if (!to.isOpen() || !copyBytes(from.number(), to.number())) return false;
    const timespec times[] = {status.st_atim, status.st_mtim};
    return ::fchmod(to.number(), status.st_mode & 0777) == 0 && ::futimens(to.number(), times) == 0 &&
           ::fsync(to.number()) == 0 && to.close();
}

// The copy has a hidden name until it is whole.
bool copyInto(int folder, const Place& source) {
    const auto moment = std::chrono::steady_clock::now().time_since_epoch().count();
    const Place temporary{folder, fmt::format(".fiotraf-{}-{}.part", ::getpid(), moment)};
    if (copyTo(temporary, source) && placeUnderFreeName(temporary, folder, source.name)) return true;
    const int error = errno;
    ::unlinkat(folder, temporary.name.c_str(), 0);
    errno = error;
    return false;
}

bool moveInto(int folder, const Place& source) {
    if (placeUnderFreeName(source, folder, source.name)) return true;
    const bool isOnOtherDisk = errno == EXDEV;
    return isOnOtherDisk && copyInto(folder, source) && ::unlinkat(source.folder, source.name.c_str(), 0) == 0;
}

std::string failure(std::string_view what, const std::string& name) {
    return fmt::format("can't {} '{}': {}", what, name, std::strerror(errno));
}

void placeFiles(Outcome& outcome, int folder, int target, const std::vector<std::string>& names, bool copies) {
    for (const auto& name : names) {
        const Place source{folder, name};
        if (copies ? copyInto(target, source) : moveInto(target, source))
            ++outcome.placed;
        else
            outcome.failures.push_back(failure(copies ? "copy" : "move", name));
    }
}

void fillFolder(Outcome& outcome, int folder, const Category& category, bool copies) {
    if (::mkdirat(folder, category.folder.c_str(), 0777) != 0 && errno != EEXIST) {
        outcome.failures.push_back(failure("make the folder", category.folder));
        return;
    }
    const Descriptor target = openFolder(folder, category.folder);
    if (!target.isOpen()) {
        outcome.failures.push_back(failure("open the folder", category.folder));
        return;
    }
    const std::size_t before = outcome.placed;
    placeFiles(outcome, folder, target.number(), category.files, copies);
    placeFiles(outcome, folder, target.number(), category.taken, copies);
    outcome.folders += outcome.placed > before;
}

}  // namespace

Outcome execute(const Plan& plan, const Options& options) {
    Outcome outcome;
    const Descriptor folder = openFolder(AT_FDCWD, options.folder);
    if (!folder.isOpen()) {
        outcome.failures.push_back(fmt::format("can't open the folder '{}': {}", options.folder, std::strerror(errno)));
        return outcome;
    }
    for (const auto& category : plan.categories) fillFolder(outcome, folder.number(), category, options.copies);
    return outcome;
}

}  // namespace fiotraf
