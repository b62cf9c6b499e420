#include "analysis/overlay.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <set>
#include <unordered_set>

#include "analysis/programming_error.h"
#include "text/characters.h"

namespace brindlet {

namespace {

using ChangeType = FileChange::FileChangeType;

bool isSpecialFile(const FilePath& path) {
    return path.text() == "/dev/null" || path.text() == "/dev/stderr" || path.text() == "/dev/stdout";
}

// `/dev/null` as a folder would make "//": the root is its own separator.
std::string insidePrefix(const FilePath& folder) {
    return folder.isRoot() ? "/" : folder.text() + "/";
}

// The folders that are gone, and whether a path lies strictly inside one of them.
class DeletedFolders {
  public:
    void add(const FilePath& folder) { folders_.insert(folder.text()); }
    bool contains(const FilePath& path) const {
        if (folders_.empty()) return false;
        const std::string& text = path.text();
        for (auto slash = text.rfind('/'); slash != std::string::npos && slash > 0; slash = text.rfind('/', slash - 1))
            if (folders_.count(text.substr(0, slash)) != 0) return true;
        return folders_.count("/") != 0 && !path.isRoot();
    }

  private:
    std::unordered_set<std::string> folders_;
};

bool endsGone(FileStateType type) {
    return type == FileStateType::originallyDidntExist || type == FileStateType::movedOriginalAway ||
           type == FileStateType::deleted;
}

bool wasOnlyModified(const FileHistory& history) {
    return std::all_of(history.history.begin(), history.history.end(), [](const FileState& state) {
        return state.type == FileStateType::modified || state.type == FileStateType::originallyExisted;
    });
}

bool wasMoved(const FileHistory& history) {
    return std::any_of(history.history.begin(), history.history.end(),
                       [](const FileState& state) { return state.type == FileStateType::movedOriginalFrom; });
}

}  // namespace

FileHistory& Overlay::history(const FilePath& path) {
    std::string key = lowercased(path.text());
    if (auto found = histories_.find(key); found != histories_.end()) {
        noteCaseTwin(path, *found->second);
        return *found->second;
    }
    const ItemKind kind = files_.look(path);
    FileState first{FileStateType::originallyDidntExist, std::nullopt, std::nullopt};
    if (kind != ItemKind::missing) first = {FileStateType::originallyExisted, kind == ItemKind::folder, std::nullopt};
    auto made = std::make_unique<FileHistory>(FileHistory{path, path, {first}});
    FileHistory& history = *made;
    histories_.emplace(std::move(key), std::move(made));
    byCurrentPath_.emplace(path.text(), &history);
    return history;
}

const FileHistory* Overlay::known(const FilePath& path) const {
    const auto found = histories_.find(lowercased(path.text()));
    return found == histories_.end() ? nullptr : found->second.get();
}

void Overlay::noteCaseTwin(const FilePath& path, const FileHistory& known) {
    if (path == known.originalExactPath || path == known.currentExactPath) return;
    if (!twinsLookedAt_.insert(path.text()).second) return;
    // Of two that are missing nothing can be lost.
    const bool stands = files_.look(path) != ItemKind::missing;
    if (stands || known.exists()) caseTwins_.push_back({path, stands, &known});
}

std::vector<std::string> Overlay::caseTwins() const {
    std::vector<std::string> sentences;
    for (const auto& [path, stands, known] : caseTwins_) {
        if (!stands && known->currentExactPath == path && wasMoved(*known)) continue;  // changed its case, no more
        sentences.push_back("'" + std::string(path.name()) + "' and '" + std::string(known->originalExactPath.name()) +
                            "' are taken for one file here, but this disk may tell capital letters apart");
    }
    return sentences;
}

void Overlay::addFileChange(const FileChange& change, std::optional<bool> isDirectory, bool createParentDirectories,
                            const FilePath& currentDirectory) {
    if (change.type == ChangeType::overwrite)
        programmingError(
            "We don't support adding an overwrite change directly, this is automatically discovered at the end");
    if (isSpecialFile(change.url)) return;
    if (createParentDirectories) {
        if (change.type != ChangeType::create)
            programmingError("createParentDirectories is only supported for create changes");
        makeParents(change.url, currentDirectory);
    }
    FileHistory& target = history(change.url);
    switch (change.type) {
        case ChangeType::create:
            if (!isDirectory) programmingError("A create change must say whether it makes a directory");
            target.history.push_back({FileStateType::created, isDirectory, std::nullopt});
            return;
        case ChangeType::modify:
            if (target.exists()) {
                target.history.push_back({FileStateType::modified, std::nullopt, std::nullopt});
                return;
            }
            if (!isDirectory) programmingError("A modify change of what is missing must say whether it is a directory");
            target.history.push_back({FileStateType::created, isDirectory, std::nullopt});
            return;
        case ChangeType::delete_:
            return applyDelete(change.url, target);
        case ChangeType::move:
            return applyMove(change, isDirectory, target);
        case ChangeType::overwrite:
            return;
    }
}

void Overlay::makeParents(const FilePath& path, const FilePath& currentDirectory) {
    std::vector<FilePath> missing;
    for (FilePath folder = path.parent(); folder != currentDirectory && !folder.isRoot(); folder = folder.parent()) {
        if (history(folder).exists()) break;
        missing.push_back(folder);
    }
    for (auto folder = missing.rbegin(); folder != missing.rend(); ++folder)
        history(*folder).history.push_back({FileStateType::created, true, std::nullopt});
}

void Overlay::applyDelete(const FilePath& path, FileHistory& target) {
    if (!target.exists()) return;
    const bool wasDirectory = target.isDirectory();
    const FileState gone{FileStateType::deleted, std::nullopt, std::nullopt};
    target.history.push_back(gone);
    if (!wasDirectory) return;
    forEachInside(path, [&](FileHistory& inside) {
        if (inside.exists()) inside.history.push_back(gone);
    });
}

void Overlay::applyMove(const FileChange& change, std::optional<bool> isDirectory, FileHistory& target) {
    FileHistory& source = history(*change.sourceURL);
    std::optional<FilePath> origin;
    if (source.lastState() == FileStateType::movedOriginalFrom) origin = source.history.back().moveFromURL;
    if (source.lastState() == FileStateType::originallyExisted) origin = change.sourceURL;
    setCurrentPath(source, change.url);
    if (!origin) {  // made in the simulation: nothing of the disk moves
        target.history.push_back({FileStateType::created, isDirectory, std::nullopt});
        source.history.push_back({FileStateType::deleted, std::nullopt, std::nullopt});
        return;
    }
    target.history.push_back({FileStateType::movedOriginalFrom, isDirectory, origin});
    if (&source != &target)  // one record: a change of case alone
        source.history.push_back({FileStateType::movedOriginalAway, std::nullopt, std::nullopt});
}

void Overlay::setCurrentPath(FileHistory& history, const FilePath& path) {
    auto [first, last] = byCurrentPath_.equal_range(history.currentExactPath.text());
    auto entry = std::find_if(first, last, [&](const auto& pair) { return pair.second == &history; });
    byCurrentPath_.erase(entry);
    history.currentExactPath = path;
    byCurrentPath_.emplace(path.text(), &history);
}

template <class Action>
void Overlay::forEachInside(const FilePath& folder, Action action) const {
    const std::string prefix = insidePrefix(folder);
    for (auto entry = byCurrentPath_.lower_bound(prefix);
         entry != byCurrentPath_.end() && entry->first.starts_with(prefix); ++entry)
        if (entry->first.size() > prefix.size()) action(*entry->second);
}

std::vector<PredictedChange> Overlay::changes(std::vector<FilePath>* unsaid) const {
    DeletedFolders deleted;
    for (const auto& [key, history] : histories_)
        if (history->lastState() == FileStateType::deleted && history->isDirectory())
            deleted.add(history->currentExactPath);

    std::vector<PredictedChange> found;
    std::unordered_set<std::string> accounted;
    const auto emit = [&](ChangeType type, const FilePath& url, const FileHistory& history,
                          std::optional<FilePath> source = std::nullopt) {
        found.push_back({{type, url, std::move(source)}, history.isDirectory()});
    };
    for (const auto& [key, history] : histories_) {
        const FilePath& url = history->currentExactPath;
        if (deleted.contains(url)) continue;
        switch (history->lastState()) {
            case FileStateType::originallyExisted:
                accounted.insert(lowercased(url.text()));
                break;
            case FileStateType::originallyDidntExist:
            case FileStateType::movedOriginalAway:
            case FileStateType::deleted:
                break;
            case FileStateType::movedOriginalFrom: {
                const auto& source = history->history.back().moveFromURL;
                emit(ChangeType::move, url, *history, source);
                accounted.insert(lowercased(source->text()));
                break;
            }
            case FileStateType::created:
                emit(ChangeType::create, url, *history);
                break;
            case FileStateType::modified:
                if (!wasOnlyModified(*history)) {
                    emit(ChangeType::create, url, *history);
                    break;
                }
                emit(ChangeType::modify, url, *history);
                accounted.insert(lowercased(url.text()));
                break;
        }
    }
    for (const auto& [key, history] : histories_) {
        if (history->history.front().type != FileStateType::originallyExisted || accounted.count(key) != 0) continue;
        if (deleted.contains(history->currentExactPath)) {
            if (unsaid != nullptr && !deleted.contains(history->originalExactPath))
                unsaid->push_back(history->originalExactPath);
            continue;
        }
        emit(endsGone(history->lastState()) ? ChangeType::delete_ : ChangeType::overwrite, history->originalExactPath,
             *history);
    }
    std::sort(found.begin(), found.end(), [](const PredictedChange& left, const PredictedChange& right) {
        if (left.change.url != right.change.url) return left.change.url < right.change.url;
        if (left.change.type != right.change.type) return left.change.type < right.change.type;
        return left.change.sourceURL < right.change.sourceURL;
    });
    return found;
}

bool Overlay::hasChangesOtherThanModifications() const {
    const auto all = changes();
    return std::any_of(all.begin(), all.end(),
                       [](const PredictedChange& change) { return change.change.type != ChangeType::modify; });
}

bool Overlay::isDirectoryEmpty(const FilePath& folder) {
    const FileHistory& record = history(folder);
    if (!record.exists())
        programmingError(("isDirectoryEmpty called on non-existent directory: " + folder.text()).c_str());
    if (!record.isDirectory()) programmingError(("isDirectoryEmpty called on non-directory: " + folder.text()).c_str());
    std::set<std::string_view> names;
    if (record.history.front().type == FileStateType::originallyExisted)
        if (const auto& real = realNames(folder)) names.insert(real->begin(), real->end());
    // What is gone first: a moved item's record points at the same place as the one that stands there now.
    const auto touched = touchedIn(folder);
    for (const auto* item : touched)
        if (!item->exists()) names.erase(item->currentExactPath.name());
    return names.empty() &&
           std::none_of(touched.begin(), touched.end(), [](const auto* item) { return item->exists(); });
}

const std::optional<std::vector<std::string>>& Overlay::realNames(const FilePath& folder) {
    auto [entry, isNew] = realNames_.try_emplace(folder.text());
    if (isNew) {
        entry->second = files_.listNames(folder);
        // A shell lists in the order of its locale.
        if (entry->second)
            std::sort(entry->second->begin(), entry->second->end(),
                      [](const std::string& left, const std::string& right) {
                          const int order = std::strcoll(left.c_str(), right.c_str());
                          return order != 0 ? order < 0 : left < right;
                      });
    }
    return entry->second;
}

std::vector<const FileHistory*> Overlay::touchedIn(const FilePath& folder) const {
    std::vector<const FileHistory*> found;
    const std::size_t prefixSize = insidePrefix(folder).size();
    forEachInside(folder, [&](const FileHistory& history) {
        if (history.currentExactPath.text().find('/', prefixSize) == std::string::npos) found.push_back(&history);
    });
    return found;
}

}  // namespace brindlet
