// A folder of a test's own under the system's temporary folder, gone with its owner.
//
//     ScratchFolder scratch;
//     scratch.write("sub/a.txt", "content");
//     const auto before = scratch.snapshot();
//     ...
//     EXPECT_EQ(scratch.snapshot(), before);
#pragma once

#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <stdexcept>
#include <string>
#include <string_view>

#include "platform/file_path.h"

namespace brindlet {

// What can be changed about an item in place.
struct ItemState {
    unsigned mode = 0;  // with the kind of item
    unsigned owner = 0;
    long long modifiedAt = 0;  // nanoseconds; 0 for a link
    std::string content;       // of a file, or the target of a link

    bool operator==(const ItemState&) const = default;
};

class ScratchFolder {
  public:
    ScratchFolder() {
        // Resolved, since the temporary folder may be reached through a link.
        std::string pattern = std::filesystem::canonical(std::filesystem::temp_directory_path()) / "brindlet-XXXXXX";
        if (!::mkdtemp(pattern.data())) throw std::runtime_error("no scratch folder can be made");
        path_ = FilePath(pattern);
    }
    ~ScratchFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(path_.text(), ignored);
    }
    ScratchFolder(const ScratchFolder&) = delete;
    ScratchFolder& operator=(const ScratchFolder&) = delete;

    const FilePath& path() const { return path_; }
    FilePath path(std::string_view relative) const { return FilePath::resolve(relative, path_); }

    // Makes the folders above the file as well.
    FilePath write(std::string_view relative, std::string_view content) const {
        const FilePath file = path(relative);
        std::filesystem::create_directories(file.parent().text());
        std::ofstream(file.text(), std::ios::binary) << content;
        return file;
    }
    FilePath makeFolder(std::string_view relative) const {
        std::filesystem::create_directories(path(relative).text());
        return path(relative);
    }
    FilePath link(std::string_view relative, std::string_view target) const {
        std::filesystem::create_symlink(target, path(relative).text());
        return path(relative);
    }

    bool exists(std::string_view relative) const {
        return std::filesystem::exists(std::filesystem::symlink_status(path(relative).text()));
    }
    std::string read(std::string_view relative) const {
        std::ifstream stream(path(relative).text(), std::ios::binary);
        return {std::istreambuf_iterator<char>(stream), {}};
    }

    // Every item below the folder by its path as seen from it, and "." for the folder itself.
    std::map<std::string, ItemState> snapshot() const {
        std::map<std::string, ItemState> items{{".", stateOf(path_.text())}};
        for (const auto& entry : std::filesystem::recursive_directory_iterator(path_.text()))
            items[relativePath(FilePath(entry.path().string()), path_)] = stateOf(entry.path().string());
        return items;
    }

  private:
    ItemState stateOf(const std::string& item) const {
        struct stat status {};
        ::lstat(item.c_str(), &status);
        ItemState state{.mode = status.st_mode, .owner = status.st_uid, .modifiedAt = 0, .content = ""};
        if (S_ISLNK(status.st_mode)) {
            state.content = std::filesystem::read_symlink(item).string();
            return state;
        }
        state.modifiedAt = status.st_mtim.tv_sec * 1'000'000'000LL + status.st_mtim.tv_nsec;
        if (S_ISREG(status.st_mode)) state.content = read(relativePath(FilePath(item), path_));
        return state;
    }

    FilePath path_;
};

}  // namespace brindlet
