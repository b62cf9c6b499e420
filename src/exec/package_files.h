// The folder that holds the tools which the program fetched itself: "ffmpeg" and "ffprobe" in it are links into
// ".FFmpeg". One renaming of that folder makes both appear, or both go, so that a package is there whole or not at all
// at whatever moment a program or the power is cut off.
//
//     StagingFolder staging(*makeFreshFolder(packagesFolder, stagingPrefix));
//     unzip(archive, staging.path());
//     if (exceeds(staging.path(), limits)) return tooMuch();
//     return placeTools(package, staging.path(), packagesFolder, files);
#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>
#include <utility>

#include "exec/package_table.h"
#include "platform/file_path.h"
#include "platform/file_system.h"
#include "platform/result.h"

namespace brindlet {

// What is unpacked lies under such a name until it is known to be whole. A program that was killed leaves it behind;
// after the time no other program can still be at it.
inline constexpr std::string_view stagingPrefix = ".unpacking-";
inline constexpr std::chrono::hours stagingLifetime{24};

// Takes a folder away, with all that is in it, when it is itself gone.
class StagingFolder {
  public:
    explicit StagingFolder(FilePath path) : path_(std::move(path)) {}
    ~StagingFolder();
    StagingFolder(const StagingFolder&) = delete;
    StagingFolder& operator=(const StagingFolder&) = delete;

    const FilePath& path() const { return path_; }

  private:
    FilePath path_;
};

// What an archive may unpack to. The tools themselves are some hundred megabytes.
struct UnpackLimits {
    std::uint64_t bytes = std::uint64_t{2} << 30;
    std::size_t entries = 10'000;
};

// Whether more than that lies in the folder and below.
bool exceeds(const FilePath& folder, const UnpackLimits& limits);

// Moves the package's tools out of `unpacked`, which lies in `folder`, to their place there. Fails, and leaves an older
// installation as it was, unless all of them are there.
std::optional<Failure> placeTools(const PackageInfo& package, const FilePath& unpacked, const FilePath& folder,
                                  FileSystem& files);

// No failure where there are none.
std::optional<Failure> removeTools(const PackageInfo& package, const FilePath& folder);

}  // namespace brindlet
