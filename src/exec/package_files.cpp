#include "exec/package_files.h"

#include <filesystem>
#include <string>
#include <system_error>

#include "platform/atomic_file.h"
#include "platform/file_lock.h"

namespace brindlet {

namespace {

namespace fs = std::filesystem;

// Names in the folder that are no tools.
constexpr std::string_view lockName = ".lock";
constexpr std::string_view removedPrefix = ".removed-";
constexpr std::string_view gatheredPrefix = "gathered-";

void removeItems(const FilePath& item) {
    std::error_code ignored;
    fs::remove_all(item.text(), ignored);
}

Failure cant(std::string_view doWhat, const FilePath& item, const std::error_code& error) {
    return Failure{"Can't " + std::string(doWhat) + " '" + item.text() + "': " + error.message()};
}

std::string homeName(const PackageInfo& package) {
    return "." + std::string(package.name);
}

// Relative, so that the whole folder may be moved elsewhere.
fs::path linkTarget(const PackageInfo& package, std::string_view binary) {
    return fs::path(homeName(package)) / std::string(binary);
}

bool isLinked(const PackageInfo& package, std::string_view binary, const FilePath& folder) {
    std::error_code error;
    return fs::read_symlink(folder.child(binary).text(), error) == linkTarget(package, binary) && !error;
}

// A link could lead anywhere, and a file without the right to run it is no tool.
bool isPlainProgram(const FilePath& file, FileSystem& files) {
    std::error_code error;
    const auto status = fs::symlink_status(file.text(), error);
    return !error && fs::is_regular_file(status) && files.isExecutableFile(file);
}

// The tools and nothing else, each of them safe on the disk.
Result<FilePath> gatheredTools(const PackageInfo& package, const FilePath& unpacked, FileSystem& files) {
    for (const std::string_view binary : package.binaries)
        if (!isPlainProgram(unpacked.child(binary), files))
            return Failure{"The archive '" + std::string(package.zipName) + "' holds no tool '" + std::string(binary) +
                           "'"};
    Result<FilePath> gathered = makeFreshFolder(unpacked, gatheredPrefix);
    if (!gathered) return gathered;
    for (const std::string_view binary : package.binaries)
        if (auto failure = moveIntoPlace(unpacked.child(binary), gathered->child(binary))) return *failure;
    return gathered;
}

// What else has a tool's name was put there by hand or is half of something.
std::optional<Failure> linkTools(const PackageInfo& package, const FilePath& folder) {
    for (const std::string_view binary : package.binaries) {
        if (isLinked(package, binary, folder)) continue;
        const FilePath place = folder.child(binary);
        std::error_code error;
        fs::remove(place.text(), error);
        if (!error) fs::create_symlink(linkTarget(package, binary), place.text(), error);
        if (error) return cant("make", place, error);
    }
    return std::nullopt;
}

void removeLinks(const PackageInfo& package, const FilePath& folder) {
    for (const std::string_view binary : package.binaries)
        if (isLinked(package, binary, folder)) removeItems(folder.child(binary));
}

}  // namespace

StagingFolder::~StagingFolder() {
    removeItems(path_);
}

bool exceeds(const FilePath& folder, const UnpackLimits& limits) {
    std::uint64_t bytes = 0;
    std::size_t entries = 0;
    std::error_code error;
    const auto options = fs::directory_options::skip_permission_denied;
    for (fs::recursive_directory_iterator at(folder.text(), options, error), end; !error && at != end;
         at.increment(error)) {
        std::error_code gone;
        if (at->is_regular_file(gone) && !at->is_symlink(gone)) {
            const std::uintmax_t size = at->file_size(gone);
            if (!gone) bytes += size;
        }
        if (++entries > limits.entries || bytes > limits.bytes) return true;
    }
    return false;
}

std::optional<Failure> placeTools(const PackageInfo& package, const FilePath& unpacked, const FilePath& folder,
                                  FileSystem& files) {
    const Result<FilePath> gathered = gatheredTools(package, unpacked, files);
    if (!gathered) return gathered.failure();
    const Result<FileLock> lock = FileLock::take(folder.child(lockName));
    if (!lock) return lock.failure();

    const FilePath home = folder.child(homeName(package));
    const StagingFolder older(folder.child(std::string(removedPrefix) + std::string(package.name)));
    removeItems(older.path());
    std::error_code error;
    fs::rename(home.text(), older.path().text(), error);
    const bool hadOlder = !error;
    auto failure = linkTools(package, folder);
    if (!failure) failure = moveIntoPlace(*gathered, home);
    if (!failure) return std::nullopt;
    if (hadOlder) {
        fs::rename(older.path().text(), home.text(), error);
    } else {
        removeLinks(package, folder);
    }
    return failure;
}

std::optional<Failure> removeTools(const PackageInfo& package, const FilePath& folder) {
    std::error_code error;
    if (!fs::is_directory(folder.text(), error)) return std::nullopt;
    const Result<FileLock> lock = FileLock::take(folder.child(lockName));
    if (!lock) return lock.failure();

    const FilePath home = folder.child(homeName(package));
    const StagingFolder removed(folder.child(std::string(removedPrefix) + std::string(package.name)));
    removeItems(removed.path());
    fs::rename(home.text(), removed.path().text(), error);
    if (error && error != std::errc::no_such_file_or_directory) return cant("remove", home, error);
    for (const std::string_view binary : package.binaries) {
        const FilePath place = folder.child(binary);
        fs::remove(place.text(), error);
        if (error) return cant("remove", place, error);
    }
    return std::nullopt;
}

}  // namespace brindlet
