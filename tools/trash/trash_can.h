// The desktop's trash, by the trash rules of freedesktop.org, version 1.0: what is put here appears in every
// file manager's trash, which can put it back.
//
//     moveToTrash("a.txt");  // now in ~/.local/share/Trash/files, with a note of where it lay in .../info
#pragma once

#include <filesystem>

namespace brindlet::tools {

// Moves a file, a folder or a symbolic link as it stands. An item on another disk goes to the trash of that disk. A
// ToolFailure where it can't be moved; the item is then where it was.
void moveToTrash(const std::filesystem::path& item);

}  // namespace brindlet::tools
