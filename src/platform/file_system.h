// The real file tree, for reading. What lies behind it on this system is in platform/linux; tests bring a FakeDisk.
#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/file_path.h"
#include "platform/result.h"

namespace brindlet {

enum class ItemKind { missing, file, folder };

struct FileSystem {
    virtual ~FileSystem() = default;

    // What stands at the path, links followed. What can't be seen (no permission, a loop of links, a broken link)
    // counts as missing.
    virtual ItemKind look(const FilePath& path) = 0;

    // The names in a folder, "." and ".." left out, in the order in which the disk gives them; none if it can't be
    // listed.
    virtual std::optional<std::vector<std::string>> listNames(const FilePath& folder) = 0;

    // The bytes of a file, links followed. Fails, with a sentence, for what is no plain file, can't be read, or has
    // more than `maxBytes`. Never waits on a pipe or device.
    virtual Result<std::string> readFile(const FilePath& path, std::size_t maxBytes) = 0;

    // The path with the symbolic links in it resolved as far as they exist; the rest is kept as it stands.
    virtual FilePath resolvingLinks(const FilePath& path) = 0;

    // True for a plain file that this user may execute.
    virtual bool isExecutableFile(const FilePath& path) = 0;
};

std::unique_ptr<FileSystem> openFileSystem();

}  // namespace brindlet
