#include "desktop/file_manager_source.h"

#include <fmt/format.h>

#include <algorithm>
#include <utility>

#include "platform/log.h"

namespace brindlet {

namespace {

using namespace std::chrono_literals;

// What a click does is seen in the window some 0.1 s later, and a slow folder takes its time.
constexpr auto settlingTime = 1000ms;
// For what changes without the user: files that go, and selections that programs make.
constexpr auto restingInterval = 3000ms;
// Of all that companions tell of; a file manager that dies takes nothing back.
constexpr std::size_t mostWindows = 256;

// Of a link that leads nowhere: it is there, though nothing can be seen through it.
bool isListed(FileSystem& files, const FilePath& item) {
    const auto names = files.listNames(item.parent());
    return names && std::find(names->begin(), names->end(), item.name()) != names->end();
}

bool showsTheSame(const FolderWindowDetails& one, const FolderWindowDetails& other) {
    return one.id == other.id && one.title == other.title;
}

}  // namespace

FileManagerSource::FileManagerSource(FileSystem& files, FileManagerQuestions questions)
    : files_(files), questions_(std::move(questions)) {}

Result<std::optional<FinderSelection>> FileManagerSource::fetch() {
    const auto front = questions_.front();
    if (auto selection = told(front)) {
        // Other programs say so: what is no folder is as good as nothing.
        if (files_.look(FilePath(selection->activeFolderPath)) != ItemKind::folder)
            return std::optional<FinderSelection>();
        return selection;
    }
    if (!front || !isDue(*front, questions_.now())) return std::optional<FinderSelection>();
    return readWindow(*front);
}

std::optional<FinderSelection> FileManagerSource::told(const std::optional<FolderWindowDetails>& front) {
    const std::lock_guard lock(guard_);
    if (handedOver_) {
        if (std::exchange(handedOver_->isNew, false)) handedOver_->window = front;
        const auto& window = handedOver_->window;
        const bool stands = window && front ? showsTheSame(*window, *front) : !window && !front;
        if (stands) return handedOver_->selection;
        handedOver_.reset();
        lastFront_.reset();  // the window is to be read at once
    }
    if (!front) return std::nullopt;
    const auto known = fromCompanions_.find(front->id);
    if (known == fromCompanions_.end()) return std::nullopt;
    knowsSelection_ = true;
    return known->second;
}

bool FileManagerSource::isDue(const FolderWindowDetails& front, SourceTime now) {
    if (lastFront_ != front) {
        isFresh_ = !lastFront_ || !showsTheSame(*lastFront_, front);
        lastFront_ = front;
        touchedAt_ = now;
        hasSettled_ = false;
    } else if (now - touchedAt_ >= settlingTime) {
        if (hasSettled_ && now - lastReadAt_ < restingInterval) return false;
        // A folder of the same name has the same title.
        isFresh_ = !std::exchange(hasSettled_, true);
    } else {
        isFresh_ = false;
    }
    lastReadAt_ = now;
    return true;
}

std::optional<FinderSelection> FileManagerSource::readWindow(const FolderWindowDetails& front) {
    const auto content = questions_.read(front, isFresh_);
    if (!content) return std::nullopt;
    const FilePath folder(content->folder);
    if (files_.look(folder) != ItemKind::folder) return std::nullopt;
    FinderSelection selection{.items = {}, .activeFolderPath = folder.text()};
    const auto names = content->selectedNames.value_or(std::vector<std::string>());
    // Names are what the view displays: some have an empty one instead, and a path would lead elsewhere.
    const bool isReadable = std::none_of(names.begin(), names.end(), [](const std::string& name) {
        return name.empty() || name == "." || name == ".." || name.find('/') != std::string::npos;
    });
    {
        const std::lock_guard lock(guard_);
        knowsSelection_ = content->selectedNames && isReadable;
    }
    if (!isReadable) return selection;
    for (const std::string& name : names) {
        const FilePath item = folder.child(name);
        if (files_.look(item) == ItemKind::missing && !isListed(files_, item)) {
            logError(fmt::format("The file manager shows '{}', which isn't on the disk.", item.text()));
            continue;
        }
        selection.items.push_back(item.text());
    }
    return selection;
}

void FileManagerSource::handOver(FinderSelection selection) {
    const std::lock_guard lock(guard_);
    handedOver_ = HandedOver{.selection = std::move(selection), .window = std::nullopt};
    knowsSelection_ = true;
}

void FileManagerSource::takeFromCompanion(WindowId window, std::optional<FinderSelection> selection) {
    const std::lock_guard lock(guard_);
    if (fromCompanions_.size() >= mostWindows) fromCompanions_.clear();  // those that are there tell again
    if (selection)
        fromCompanions_.insert_or_assign(window, std::move(*selection));
    else
        fromCompanions_.erase(window);
}

bool FileManagerSource::knowsSelection() const {
    const std::lock_guard lock(guard_);
    return knowsSelection_;
}

}  // namespace brindlet
