// Writing a file whole or not at all.
#pragma once

#include <chrono>
#include <optional>
#include <string_view>

#include "platform/file_path.h"
#include "platform/result.h"

namespace brindlet {

// Makes the folder and its parents as needed (mode 0700 for those it makes).
std::optional<Failure> makeFolders(const FilePath& folder);

// Temporary file beside it (mode `mode`), fsync, rename into place, fsync of the folder. At a crash either the old
// content stands or the new one. The folder must exist. What killed writers left beside it goes, once it is old.
std::optional<Failure> writeFileAtomically(const FilePath& file, std::string_view content, unsigned mode = 0600);

// A new folder (mode 0700) whose name begins with `prefix`, in a folder that must exist. It belongs to the caller.
Result<FilePath> makeFreshFolder(const FilePath& folder, std::string_view prefix);

// Removes the files and folders that were made under a fresh name beginning with `prefix`, as above, and have not
// changed for as long as `age`: whoever made them was killed.
void removeAbandoned(const FilePath& folder, std::string_view prefix, std::chrono::seconds age);

// Gives a file or folder that is complete its name for good: fsync, rename over what has that name, fsync of the folder
// that holds it. Both names must be on one disk.
std::optional<Failure> moveIntoPlace(const FilePath& file, const FilePath& target);

}  // namespace brindlet
