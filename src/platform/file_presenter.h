// The desktop's file manager, as far as results are shown in it.
//
//     const auto presenter = openFilePresenter(environment, [](const std::string& sentence) { ... });
//     presenter->selectInFileManager({FilePath("/w/a.txt"), FilePath("/w/b.txt")});
#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "platform/environment.h"
#include "platform/file_path.h"

namespace brindlet {

// What happens at the end of a line that ends in "| finderSelect" or "| presentFiles". Nothing here can fail into the
// caller.
struct FilePresenter {
    virtual ~FilePresenter() = default;
    // Opens the file manager with exactly these items selected, which lie in one folder.
    virtual void selectInFileManager(const std::vector<FilePath>& items) = 0;
    // Opens a folder in the file manager.
    virtual void openFolder(const FilePath& folder) = 0;
};

// What could not be shown, and what could only be shown in part, as one sentence for the user.
using TellUser = std::function<void(const std::string& sentence)>;

// For the session that `environment` names by its bus and its display. Where it names none the presenter only tells
// what would have been shown. A helper that has not answered after `longestHelp` is ended; a cold start of a file
// manager took up to 1.3 s.
std::unique_ptr<FilePresenter> openFilePresenter(const Environment& environment, TellUser tell,
                                                 std::chrono::milliseconds longestHelp = std::chrono::seconds(5));

}  // namespace brindlet
