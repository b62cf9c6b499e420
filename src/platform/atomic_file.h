// Writing a file whole or not at all.
#pragma once

#include <optional>
#include <string_view>

#include "platform/file_path.h"
#include "platform/result.h"

namespace brindlet {

// Makes the folder and its parents as needed (mode 0700 for those it makes).
std::optional<Failure> makeFolders(const FilePath& folder);

// Temporary file beside it (mode `mode`), fsync, rename into place, fsync of the folder. At a crash either the old
// content stands or the new one. The folder must exist.
std::optional<Failure> writeFileAtomically(const FilePath& file, std::string_view content, unsigned mode = 0600);

// A new folder (mode 0700) whose name begins with `prefix`, in a folder that must exist. It belongs to the caller.
Result<FilePath> makeFreshFolder(const FilePath& folder, std::string_view prefix);

// Gives a file that is complete its name for good: fsync, rename over what has that name, fsync of the folder. Both
// names must be on one disk.
std::optional<Failure> moveIntoPlace(const FilePath& file, const FilePath& target);

}  // namespace brindlet
