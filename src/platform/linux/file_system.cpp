#include "platform/file_system.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <climits>
#include <string_view>

#include "platform/linux/file_descriptor.h"

namespace brindlet {

namespace {

// As many links as the kernel itself follows in one path.
constexpr int mostLinks = 40;

// A path with a NUL in it would reach the kernel as another, shorter one.
bool isNameable(const FilePath& path) {
    return path.text().find('\0') == std::string::npos;
}

std::string cantRead(const FilePath& path) {
    return "Can't read '" + path.text() + "'";
}

Result<std::string> readAll(const FileDescriptor& file, const FilePath& path, std::size_t sizeHint,
                            std::size_t maxBytes) {
    std::string bytes;
    bytes.reserve(sizeHint);
    std::array<char, 64 * 1024> chunk;
    while (true) {
        const ssize_t count = readSome(file, chunk.data(), chunk.size());
        if (count == 0) return bytes;
        if (count < 0) return systemFailure(cantRead(path), errno);
        bytes.append(chunk.data(), static_cast<std::size_t>(count));
        if (bytes.size() > maxBytes) return systemFailure(cantRead(path), EFBIG);
    }
}

// The target of a link, or none with `errno` saying why: EINVAL where something stands there that is no link.
std::optional<std::string> readLink(const std::string& path) {
    std::array<char, PATH_MAX> target;
    const ssize_t length = ::readlink(path.c_str(), target.data(), target.size());
    if (length < 0) return std::nullopt;
    return std::string(target.data(), static_cast<std::size_t>(length));
}

// The first component of `path` is cut off it.
std::string_view takeComponent(std::string_view& path) {
    const std::size_t start = std::min(path.find_first_not_of('/'), path.size());
    const std::size_t end = std::min(path.find('/', start), path.size());
    const std::string_view component = path.substr(start, end - start);
    path.remove_prefix(end);
    return component;
}

class LinkResolver {
  public:
    // None where there are too many links, as in a loop of them.
    std::optional<FilePath> resolve(const FilePath& path) {
        std::string_view rest = path.text();
        FilePath resolved;
        while (true) {
            std::string_view behind = rest;
            const std::string_view component = takeComponent(behind);
            if (component.empty()) return resolved;
            std::optional<FilePath> next = followed(resolved, component);
            if (linksSeen_ > mostLinks) return std::nullopt;
            // From the first component on that does not exist or leads nowhere, everything stays as it stands.
            if (!next) return FilePath::resolve(rest.substr(rest.find_first_not_of('/')), resolved);
            resolved = *std::move(next);
            rest = behind;
        }
    }

  private:
    // Where `component` of `folder` leads, through all the links; none if nothing stands there.
    std::optional<FilePath> followed(FilePath folder, std::string_view component) {
        std::string pending(component);
        while (true) {
            std::string_view rest = pending;
            const std::string_view name = takeComponent(rest);
            if (name.empty()) return folder;
            if (name == "." || name == "..") {
                if (name == "..") folder = folder.parent();
                pending = std::string(rest);
                continue;
            }
            FilePath path = folder.child(name);
            const std::optional<std::string> target = readLink(path.text());
            if (!target && errno != EINVAL) return std::nullopt;
            if (!target) {
                folder = std::move(path);
                pending = std::string(rest);
                continue;
            }
            if (++linksSeen_ > mostLinks) return std::nullopt;
            if (target->starts_with('/')) folder = FilePath();
            pending = *target + std::string(rest);
        }
    }

    int linksSeen_ = 0;
};

struct LinuxFileSystem final : FileSystem {
    ItemKind look(const FilePath& path) override {
        struct stat status {};
        if (!isNameable(path) || ::stat(path.text().c_str(), &status) != 0) return ItemKind::missing;
        return S_ISDIR(status.st_mode) ? ItemKind::folder : ItemKind::file;
    }

    std::optional<std::vector<std::string>> listNames(const FilePath& folder) override {
        if (!isNameable(folder)) return std::nullopt;
        const std::unique_ptr<DIR, void (*)(DIR*)> stream(::opendir(folder.text().c_str()),
                                                          [](DIR* open) { ::closedir(open); });
        if (!stream) return std::nullopt;
        std::vector<std::string> names;
        while (true) {
            errno = 0;
            const dirent* entry = ::readdir(stream.get());
            if (!entry && errno != 0) return std::nullopt;
            if (!entry) return names;
            const std::string_view name = entry->d_name;
            if (name != "." && name != "..") names.emplace_back(name);
        }
    }

    Result<std::string> readFile(const FilePath& path, std::size_t maxBytes) override {
        if (!isNameable(path)) return systemFailure(cantRead(path), ENOENT);
        // Looked at before it is opened, since opening alone moves some devices, and once more when it is open, since
        // another thing may stand there by then.
        struct stat status {};
        if (::stat(path.text().c_str(), &status) != 0) return systemFailure(cantRead(path), errno);
        if (S_ISDIR(status.st_mode)) return systemFailure(cantRead(path), EISDIR);
        if (!S_ISREG(status.st_mode)) return Failure{cantRead(path) + ": Not a plain file"};
        const FileDescriptor file(::open(path.text().c_str(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
        if (!file || ::fstat(file.number(), &status) != 0) return systemFailure(cantRead(path), errno);
        if (!S_ISREG(status.st_mode)) return Failure{cantRead(path) + ": Not a plain file"};
        const auto size = static_cast<std::size_t>(status.st_size);
        if (size > maxBytes) return systemFailure(cantRead(path), EFBIG);
        return readAll(file, path, size, maxBytes);
    }

    FilePath resolvingLinks(const FilePath& path) override {
        if (!isNameable(path)) return path;
        return LinkResolver().resolve(path).value_or(path);
    }

    bool isExecutableFile(const FilePath& path) override {
        return isPlainFile(path) && ::faccessat(AT_FDCWD, path.text().c_str(), X_OK, AT_EACCESS) == 0;
    }

  private:
    static bool isPlainFile(const FilePath& path) {
        struct stat status {};
        return isNameable(path) && ::stat(path.text().c_str(), &status) == 0 && S_ISREG(status.st_mode);
    }
};

}  // namespace

std::unique_ptr<FileSystem> openFileSystem() {
    return std::make_unique<LinuxFileSystem>();
}

}  // namespace brindlet
