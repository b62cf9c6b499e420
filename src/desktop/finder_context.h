// What is selected, and the folder that is open: asked of a source again and again, and published.
//
//     FinderContext context(loop, workers, files, [] { return FinderSelection{{"/w/a.txt"}, "/w"}; });
//     context.onChange([&] { flow.selectionChanged(); });
//     context.start();
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/file_system.h"
#include "platform/main_loop.h"
#include "platform/result.h"

namespace brindlet {

struct FinderSelection {
    std::vector<std::string> items;
    std::string activeFolderPath;

    bool operator==(const FinderSelection&) const = default;
};

// One look at the file manager, on a thread of its own. None: it has nothing to say now, such as no window, and what
// it said last stays; a failure goes to the log.
using FinderSource = std::function<Result<std::optional<FinderSelection>>()>;

// All of it on the loop's thread.
class FinderContext {
  public:
    FinderContext(MainLoop& loop, Workers& workers, FileSystem& files, FinderSource source);
    ~FinderContext();
    FinderContext(const FinderContext&) = delete;
    FinderContext& operator=(const FinderContext&) = delete;

    // Looks now, and again a moment after each answer.
    void start();
    // The round that is out may still write once.
    void stop();
    // One round, and nothing more.
    void fetch();
    // As if the source had said so: for a front end that knows the selection itself.
    void take(const FinderSelection& selection);

    // Absolute paths in the file manager's order; folders end in "/".
    const std::vector<std::string>& items() const;
    // Ends in "/"; none before the first answer and after `stop`.
    const std::optional<std::string>& activeFolderPath() const;

    // Called when one of the two has another value.
    void onChange(std::function<void()> observer);

  private:
    struct State;
    std::shared_ptr<State> state_;
};

// "This folder", "1 item", "3 items"; nothing without a folder.
std::string selectionLabel(const FinderContext& context);

}  // namespace brindlet
