// The one PATH value under which commands run and the simulator looks tools up.
#pragma once

#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/environment.h"
#include "platform/file_system.h"

namespace brindlet {

// The PATH of the user's login shell, asked of the shell itself (-l -i -c, for up to five seconds). What the shell's
// start files print is passed over; without a good answer, this process's own PATH.
std::vector<std::string> loginShellPath(const Environment& environment);

class ToolSearchPath {
  public:
    // `packagesFolder` holds the tools that the program fetched itself, `binariesFolders` those that came with it, in a
    // folder "overrides" those that stand in for the system's of the same name; a folder that does not exist is left
    // out.
    ToolSearchPath(FileSystem& files, FilePath packagesFolder, std::vector<FilePath> binariesFolders,
                   Environment environment);

    // In the order in which a tool is looked for. The login shell is asked at the first call, once; the rest is looked
    // at anew each time.
    std::vector<std::string> folders();
    // The folders joined by ":".
    std::string text();

    // Whether one of the folders holds an executable of that name. The login shell is asked only where none of the
    // other folders does.
    bool holds(std::string_view tool);
    // Where a line would find it.
    std::optional<FilePath> find(std::string_view tool);

  private:
    std::vector<std::string> leadingFolders();
    std::vector<std::string> trailingFolders();
    void appendIfThere(std::vector<std::string>& folders, const FilePath& folder);
    std::optional<FilePath> findIn(const std::vector<std::string>& folders, std::string_view tool);

    FileSystem& files_;
    FilePath packagesFolder_;
    std::vector<FilePath> binariesFolders_;
    Environment environment_;
    std::mutex loginShellGuard_;
    std::optional<std::vector<std::string>> loginShellPath_;
};

}  // namespace brindlet
