// The variables that a process is given, and the folders that belong to the user.
#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>

#include "platform/file_path.h"

namespace brindlet {

using Environment = std::map<std::string, std::string, std::less<>>;

// A copy of this process's own environment.
Environment processEnvironment();

// The user's home folder: HOME where it is set to an absolute path, else what the user database says.
FilePath homeFolder();

// The home folder of another user by name; none where the user database does not know the name.
std::optional<FilePath> homeFolderOf(std::string_view user);

// Where the program keeps its data (history, secrets, tools, logs) and its settings. BRINDLET_DATA_HOME and
// BRINDLET_CONFIG_HOME stand in their place; else XDG_DATA_HOME/Brindlet and XDG_CONFIG_HOME/Brindlet with the
// defaults of the XDG base directories, version 0.8. Neither is made here.
FilePath dataFolder();
FilePath configFolder();

}  // namespace brindlet
