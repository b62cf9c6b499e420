#include "desktop/finder_context.h"

#include <utility>

#include "platform/log.h"

namespace brindlet {

namespace {

constexpr std::chrono::milliseconds pollInterval{300};

std::string withFolderSlash(FileSystem& files, std::string path) {
    if (path.empty() || path.ends_with('/') || files.look(FilePath(path)) != ItemKind::folder) return path;
    return path + "/";
}

}  // namespace

struct FinderContext::State : std::enable_shared_from_this<FinderContext::State> {
    State(MainLoop& mainLoop, Workers& threads, FileSystem& disk, FinderSource finder)
        : loop(mainLoop), workers(threads), files(disk), source(std::move(finder)) {}

    MainLoop& loop;
    Workers& workers;
    FileSystem& files;
    FinderSource source;
    std::vector<std::string> items{};
    std::optional<std::string> activeFolderPath{};
    std::function<void()> observer{};
    std::size_t refreshTask = 0;  // the number of the poll loop that runs; 0: none
    std::size_t tasksStarted = 0;
    bool isGone = false;

    // One round of the loop with that number, or a single one of number 0.
    void fetch(std::size_t task) {
        workers.start([self = shared_from_this(), task] {
            auto found = self->source();
            // Here, as the disk may be slow, or a server that has gone.
            if (found && *found) found = std::optional(self->withFolderSlashes(std::move(**found)));
            self->loop.post([self, task, found = std::move(found)] {
                if (self->isGone) return;
                self->take(found);
                if (task != 0) self->loop.postAfter(pollInterval, [self, task] { self->goOn(task); });
            });
        });
    }

    void goOn(std::size_t task) {
        if (!isGone && task == refreshTask) fetch(task);
    }

    void take(const Result<std::optional<FinderSelection>>& found) {
        if (!found) return logError(found.failure().description);
        if (*found) publish((*found)->items, (*found)->activeFolderPath);
    }

    FinderSelection withFolderSlashes(FinderSelection selection) const {
        for (std::string& item : selection.items) item = withFolderSlash(files, std::move(item));
        selection.activeFolderPath = withFolderSlash(files, std::move(selection.activeFolderPath));
        return selection;
    }

    void publish(std::vector<std::string> newItems, std::optional<std::string> newFolder) {
        if (items == newItems && activeFolderPath == newFolder) return;
        items = std::move(newItems);
        activeFolderPath = std::move(newFolder);
        if (observer) observer();
    }
};

FinderContext::FinderContext(MainLoop& loop, Workers& workers, FileSystem& files, FinderSource source)
    : state_(std::make_shared<State>(loop, workers, files, std::move(source))) {}

FinderContext::~FinderContext() {
    state_->isGone = true;
}

void FinderContext::start() {
    if (state_->refreshTask != 0) stop();
    state_->refreshTask = ++state_->tasksStarted;
    state_->fetch(state_->refreshTask);
}

void FinderContext::stop() {
    state_->refreshTask = 0;
    state_->publish({}, std::nullopt);
}

void FinderContext::fetch() {
    state_->fetch(0);
}

void FinderContext::take(const FinderSelection& selection) {
    state_->take(std::optional(state_->withFolderSlashes(selection)));
}

const std::vector<std::string>& FinderContext::items() const {
    return state_->items;
}

const std::optional<std::string>& FinderContext::activeFolderPath() const {
    return state_->activeFolderPath;
}

void FinderContext::onChange(std::function<void()> observer) {
    state_->observer = std::move(observer);
}

std::string selectionLabel(const FinderContext& context) {
    const auto& folder = context.activeFolderPath();
    const auto& items = context.items();
    if (!folder) return "";
    if (items.empty() || (items.size() == 1 && items.front() == *folder)) return "This folder";
    return items.size() == 1 ? "1 item" : std::to_string(items.size()) + " items";
}

}  // namespace brindlet
