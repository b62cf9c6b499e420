// The one PATH value under which commands run and the simulator looks tools up.
#pragma once

#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "platform/environment.h"
#include "platform/file_system.h"

namespace brindlet {

// The PATH of the user's login shell, asked of the shell itself (-l -i -c, for up to five seconds). What the shell's
// start files print is passed over; without a good answer, this process's own PATH.
std::vector<std::string> loginShellPath(const Environment& environment);

class ToolSearchPath {
  public:
    // `packagesFolder` holds the tools that the program fetched itself, `binariesFolder` those that came with it; a
    // folder that does not exist is left out.
    ToolSearchPath(FileSystem& files, FilePath packagesFolder, FilePath binariesFolder, Environment environment);

    // The folders joined by ":". The login shell is asked at the first call, once; the rest is looked at anew each time.
    std::string text();

  private:
    FileSystem& files_;
    FilePath packagesFolder_;
    FilePath binariesFolder_;
    Environment environment_;
    std::mutex loginShellGuard_;
    std::optional<std::vector<std::string>> loginShellPath_;
};

}  // namespace brindlet
