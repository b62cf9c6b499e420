#include "trash_can.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "platform/environment.h"
#include "shared/tool.h"
#include "text/utf8.h"

namespace brindlet::tools {

namespace {

namespace fs = std::filesystem;

constexpr mode_t onlyOwner = 0700;
constexpr std::string_view noteEnding = ".trashinfo";
constexpr std::size_t longestName = 255;  // NAME_MAX, with the note's ending and a number
constexpr int mostNamesTried = 100'000;

// One place for trash. Notes in a disk's own one hold paths as seen from the disk's top folder.
struct TrashPlace {
    fs::path folder;
    fs::path top;  // empty: paths are absolute
};

ToolFailure cannotMove(const fs::path& item, int error) {
    return {fmt::format("cannot move '{}': {}", item.string(), std::strerror(error))};
}

std::optional<struct stat> statusOf(const fs::path& path) {
    struct stat status {};
    if (::lstat(path.c_str(), &status) != 0) return std::nullopt;
    return status;
}

fs::path homeTrash() {
    const Environment environment = processEnvironment();
    const auto found = environment.find("XDG_DATA_HOME");
    if (found != environment.end() && found->second.starts_with('/')) return fs::path(found->second) / "Trash";
    return fs::path(homeFolder().text()) / ".local/share/Trash";
}

// The disk on which `path` lies or would lie once it is made.
std::optional<dev_t> diskOf(fs::path path) {
    struct stat status {};
    while (::stat(path.c_str(), &status) != 0) {
        if (!path.has_relative_path()) return std::nullopt;
        path = path.parent_path();
    }
    return status.st_dev;
}

fs::path topFolderOf(const fs::path& item, dev_t disk) {
    fs::path top = item.parent_path();
    while (top.has_relative_path()) {
        const auto above = statusOf(top.parent_path());
        if (!above || above->st_dev != disk) break;
        top = top.parent_path();
    }
    return top;
}

bool isFolderWith(const fs::path& path, mode_t bits, std::optional<uid_t> owner) {
    const auto status = statusOf(path);
    return status && S_ISDIR(status->st_mode) && (status->st_mode & bits) == bits &&
           (!owner || status->st_uid == *owner);
}

// In the order in which they are to be tried.
std::vector<TrashPlace> placesFor(const fs::path& item, dev_t disk) {
    std::vector<TrashPlace> places;
    if (diskOf(homeTrash()) == disk) places.push_back({homeTrash(), {}});
    const fs::path top = topFolderOf(item, disk);
    const std::string user = std::to_string(::getuid());
    // The one that all users share is trusted only with the sticky bit, which keeps them from each other's folders.
    if (isFolderWith(top / ".Trash", S_ISVTX, std::nullopt)) places.push_back({top / ".Trash" / user, top});
    places.push_back({top / (".Trash-" + user), top});
    return places;
}

bool isMade(const TrashPlace& place) {
    std::error_code ignored;
    if (place.top.empty()) {
        fs::create_directories(place.folder.parent_path(), ignored);
    }
    for (const fs::path& folder : {place.folder, place.folder / "files", place.folder / "info"}) {
        ::mkdir(folder.c_str(), onlyOwner);
        if (!isFolderWith(folder, 0, ::getuid())) return false;
    }
    return true;
}

std::string percentEncoded(std::string_view path) {
    constexpr std::string_view plain = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-._~/";
    std::string encoded;
    for (const char byte : path)
        encoded += plain.find(byte) != std::string_view::npos
                       ? std::string(1, byte)
                       : fmt::format("%{:02X}", static_cast<unsigned char>(byte));
    return encoded;
}

std::string noteOn(const fs::path& item, const TrashPlace& place) {
    const std::time_t now = std::time(nullptr);
    std::tm local{};
    ::localtime_r(&now, &local);
    char date[32];
    std::strftime(date, sizeof date, "%Y-%m-%dT%H:%M:%S", &local);
    const fs::path path = place.top.empty() ? item : item.lexically_relative(place.top);
    return fmt::format("[Trash Info]\nPath={}\nDeletionDate={}\n", percentEncoded(path.string()), date);
}

// "a.txt", "a.2.txt", "a.3.txt", short enough for a note of that name.
std::string nameInTrash(const fs::path& item, int number) {
    const std::string inserted = number == 1 ? "" : fmt::format(".{}", number);
    std::string stem = item.stem().string(), extension = item.extension().string();
    const std::size_t room = longestName - noteEnding.size() - inserted.size();
    if (extension.size() > room / 2) stem += std::exchange(extension, "");
    if (stem.size() + extension.size() > room) {
        stem.resize(room - extension.size());
        while (!stem.empty() && !isValidUtf8(stem) && (stem.back() & 0x80) != 0) stem.pop_back();
    }
    return stem + inserted + extension;
}

bool isWritten(const fs::path& note, std::string_view text, int& error) {
    const int descriptor = ::open(note.c_str(), O_CREAT | O_EXCL | O_WRONLY | O_CLOEXEC, 0600);
    if (descriptor < 0) {
        error = errno;
        return false;
    }
    const ssize_t written = ::write(descriptor, text.data(), text.size());
    error = written < 0 ? errno : ENOSPC;
    const bool isWhole = ::close(descriptor) == 0 && written == static_cast<ssize_t>(text.size());
    if (!isWhole) ::unlink(note.c_str());
    return isWhole;
}

// 0, or what the system said. Never over something that is there.
int renamed(const fs::path& from, const fs::path& to) {
    if (::renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), RENAME_NOREPLACE) == 0) return 0;
    if (errno != EINVAL && errno != ENOSYS) return errno;
    // Not every file system knows how to do that in one step.
    if (statusOf(to)) return EEXIST;
    return ::rename(from.c_str(), to.c_str()) == 0 ? 0 : errno;
}

// 0, or what the system said.
int putInto(const TrashPlace& place, const fs::path& item) {
    const std::string text = noteOn(item, place);
    for (int number = 1; number <= mostNamesTried; ++number) {
        const std::string name = nameInTrash(item, number);
        const fs::path note = place.folder / "info" / (name + std::string(noteEnding));
        int error = 0;
        if (!isWritten(note, text, error)) {
            if (error == EEXIST) continue;
            return error;
        }
        error = renamed(item, place.folder / "files" / name);
        if (error == 0) return 0;
        ::unlink(note.c_str());
        if (error != EEXIST) return error;
    }
    return EEXIST;
}

bool isInside(const fs::path& path, const fs::path& folder) {
    const fs::path relative = path.lexically_relative(folder);
    return !relative.empty() && relative.begin()->string() != "..";
}

// Absolute, the folders above it as they really lie. What the item itself is, a link say, stays.
fs::path realPlaceOf(const fs::path& item) {
    std::string text = item.string();
    while (text.size() > 1 && text.back() == '/') text.pop_back();
    const fs::path stripped = text;
    const std::string name = stripped.filename().string();
    if (name.empty() || name == "." || name == "..") throw cannotMove(item, text.empty() ? ENOENT : EINVAL);
    std::error_code error;
    const fs::path parent = fs::canonical(stripped.has_parent_path() ? stripped.parent_path() : ".", error);
    if (error) throw cannotMove(item, error.value());
    return parent / name;
}

}  // namespace

void moveToTrash(const fs::path& item) {
    const fs::path place = realPlaceOf(item);
    const auto status = statusOf(place);
    if (!status) throw cannotMove(item, errno);
    int error = EXDEV;
    for (const TrashPlace& trash : placesFor(place, status->st_dev)) {
        if (isInside(trash.folder, place)) throw ToolFailure{"'" + item.string() + "' holds the trash itself"};
        if (isInside(place, trash.folder)) throw ToolFailure{"'" + item.string() + "' is in the trash already"};
        if (!isMade(trash)) continue;
        error = putInto(trash, place);
        if (error == 0) return;
        if (error != EXDEV) throw cannotMove(item, error);
    }
    // It may know a way to a place that is no disk of this machine.
    const auto gio = programPath("gio");
    if (gio && capture({*gio, "trash", "--", place.string()}).status == 0) return;
    throw ToolFailure{"cannot move '" + item.string() + "': there is no place for trash on its disk"};
}

}  // namespace brindlet::tools
