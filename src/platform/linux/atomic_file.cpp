#include "platform/atomic_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <system_error>
#include <vector>

#include "platform/file_system.h"
#include "platform/linux/file_descriptor.h"

namespace brindlet {

namespace {

// With what is put round it, the name stays below the 255 bytes of NAME_MAX.
constexpr std::size_t longestNamePart = 200;
// Long enough that no name of a user's own copy is taken for one of these.
constexpr std::string_view temporaryMark = ".partial-";
constexpr std::string_view freshPart = "XXXXXX";
// No writing takes so long.
constexpr std::chrono::minutes longestWriting{1};

// 0 or an error number, as all below.
int writeAll(const FileDescriptor& file, std::string_view content) {
    while (!content.empty()) {
        const ssize_t count = writeSome(file, content);
        if (count < 0) return errno;
        content.remove_prefix(static_cast<std::size_t>(count));
    }
    return 0;
}

// The file is complete and on the disk before its name can be taken.
int fillFile(const FileDescriptor& file, std::string_view content, unsigned mode) {
    if (::fchmod(file.number(), mode) != 0) return errno;
    if (const int error = writeAll(file, content)) return error;
    return ::fsync(file.number()) == 0 ? 0 : errno;
}

// Makes the new name last through a crash. Some file systems can't sync a folder; the content is safe all the same.
void syncFolder(const FilePath& folder) {
    const FileDescriptor open(::open(folder.text().c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (open) ::fsync(open.number());
}

int replaceFile(const FilePath& file, std::string_view content, unsigned mode) {
    if (file.text().find('\0') != std::string::npos) return EINVAL;  // it would replace another file
    const FilePath folder = file.parent();
    const std::string prefix = "." + std::string(file.name().substr(0, longestNamePart)) + std::string(temporaryMark);
    std::string temporary = folder.child(prefix + std::string(freshPart)).text();
    const FileDescriptor open(::mkostemp(temporary.data(), O_CLOEXEC));
    if (!open) return errno;
    int error = fillFile(open, content, mode);
    if (error == 0 && ::rename(temporary.c_str(), file.text().c_str()) != 0) error = errno;
    if (error != 0) {
        ::unlink(temporary.c_str());
        return error;
    }
    syncFolder(folder);
    removeAbandoned(folder, prefix, longestWriting);
    return 0;
}

}  // namespace

std::optional<Failure> makeFolders(const FilePath& folder) {
    const std::string& path = folder.text();
    for (std::size_t end = path.find('/', 1);; end = path.find('/', end + 1)) {
        const std::string part = path.substr(0, end);
        if (::mkdir(part.c_str(), 0700) != 0 && errno != EEXIST) {
            // On a read-only disk the folders that are there already say so, not that they exist.
            const int error = errno;
            struct stat status {};
            if (::stat(part.c_str(), &status) != 0) return systemFailure("Can't make the folder '" + path + "'", error);
        }
        if (end == std::string::npos) break;
    }
    struct stat status {};
    if (::stat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode)) return std::nullopt;
    return systemFailure("Can't make the folder '" + path + "'", ENOTDIR);
}

std::optional<Failure> writeFileAtomically(const FilePath& file, std::string_view content, unsigned mode) {
    // A link, as people use them for files that they keep elsewhere, stays one: what it leads to is replaced.
    const FilePath target = openFileSystem()->resolvingLinks(file);
    const int error = replaceFile(target, content, mode);
    if (error == 0) return std::nullopt;
    return systemFailure("Can't write '" + file.text() + "'", error);
}

Result<FilePath> makeFreshFolder(const FilePath& folder, std::string_view prefix) {
    std::string path = folder.child(std::string(prefix) + std::string(freshPart)).text();
    if (::mkdtemp(path.data()) == nullptr)
        return systemFailure("Can't make a folder in '" + folder.text() + "'", errno);
    return FilePath(path);
}

void removeAbandoned(const FilePath& folder, std::string_view prefix, std::chrono::seconds age) {
    namespace fs = std::filesystem;
    const auto limit = fs::file_time_type::clock::now() - age;
    std::vector<fs::path> abandoned;
    std::error_code error;
    for (fs::directory_iterator at(folder.text(), error), end; !error && at != end; at.increment(error)) {
        const std::string name = at->path().filename().string();
        if (!name.starts_with(prefix) || name.size() != prefix.size() + freshPart.size()) continue;
        std::error_code unreadable;
        const auto changed = fs::last_write_time(at->path(), unreadable);
        if (!unreadable && changed < limit) abandoned.push_back(at->path());
    }
    for (const fs::path& item : abandoned) fs::remove_all(item, error);
}

std::optional<Failure> moveIntoPlace(const FilePath& file, const FilePath& target) {
    const auto failed = [&] { return systemFailure("Can't put '" + target.text() + "' into place", errno); };
    const FileDescriptor open(::open(file.text().c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
    if (!open || ::fsync(open.number()) != 0) return failed();
    if (::rename(file.text().c_str(), target.text().c_str()) != 0) return failed();
    syncFolder(target.parent());
    return std::nullopt;
}

}  // namespace brindlet
