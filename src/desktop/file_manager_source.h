// What the front window of the file manager shows and has selected, asked only when it may have changed: reading a
// selection takes the file manager's time, and the user mostly does something else.
//
//     FileManagerSource source(files, {.front = lookAtFront, .read = readContent});
//     FinderContext context(loop, workers, files, [&] { return source.fetch(); });
//     source.handOver({{"/w/a.txt"}, "/w"});   // from an action of its context menu
#pragma once

#include <chrono>
#include <functional>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "desktop/finder_context.h"
#include "desktop/window_source.h"
#include "platform/file_system.h"

namespace brindlet {

struct FolderContent {
    std::string folder;
    // None where the window doesn't tell what is selected, such as Thunar's icons.
    std::optional<std::vector<std::string>> selectedNames;

    bool operator==(const FolderContent&) const = default;
};

struct FileManagerQuestions {
    // None where no file manager's window is shown.
    std::function<std::optional<FolderWindowDetails>()> front;
    // None where nothing can be read. `isFresh`: what was found at an earlier call mustn't be relied on.
    std::function<std::optional<FolderContent>(const FolderWindowDetails&, bool isFresh)> read;
    std::function<std::chrono::steady_clock::time_point()> now = [] { return std::chrono::steady_clock::now(); };
};

class FileManagerSource {
  public:
    FileManagerSource(FileSystem& files, FileManagerQuestions questions);

    // One look, for a FinderContext; one at a time. A window is read for a second after the user has touched it, and
    // now and then beside that. None where nothing is new.
    Result<std::optional<FinderSelection>> fetch();

    // From any thread. What an action or a drop handed over stands until another window is in front, or it shows
    // something else; what a companion inside the file manager says of a window stands until it says otherwise.
    void handOver(FinderSelection selection);
    // None: it says no longer.
    void takeFromCompanion(WindowId window, std::optional<FinderSelection> selection);

    // From any thread: false where the last window that was read doesn't tell what is selected in it, so that an empty
    // selection means nothing.
    bool knowsSelection() const;

  private:
    using SourceTime = std::chrono::steady_clock::time_point;
    struct HandedOver {
        FinderSelection selection;
        std::optional<FolderWindowDetails> window;  // in front at that time, as first seen afterwards
        bool isNew = true;
    };

    std::optional<FinderSelection> told(const std::optional<FolderWindowDetails>& front);
    bool isDue(const FolderWindowDetails& front, SourceTime now);
    std::optional<FinderSelection> readWindow(const FolderWindowDetails& front);

    FileSystem& files_;
    FileManagerQuestions questions_;
    mutable std::mutex guard_;  // of these three
    std::optional<HandedOver> handedOver_;
    std::map<WindowId, FinderSelection> fromCompanions_;
    bool knowsSelection_ = true;
    // Of `fetch` alone.
    std::optional<FolderWindowDetails> lastFront_;
    SourceTime touchedAt_{};
    SourceTime lastReadAt_{};
    bool hasSettled_ = true;  // read once since the user's last touch had its effect
    bool isFresh_ = false;
};

}  // namespace brindlet
