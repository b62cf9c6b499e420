// The simulated file tree: the real one, looked at once per path, and over it what the line has changed so far.
//
// Paths are case-insensitive: `a.TXT` and `A.txt` are one file. Symbolic links are not modelled: a path is taken as
// written; only the first look at the real disk sees through a link.
//
//     overlay.addFileChange({FileChange::FileChangeType::create, path, {}}, false, false, here);
//     overlay.changes();
#pragma once

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "analysis/analysis_result.h"
#include "analysis/file_history.h"
#include "platform/file_system.h"

namespace brindlet {

class Overlay {
  public:
    explicit Overlay(FileSystem& files) : files_(files) {}

    // The record of a path, made on first use. Stays valid as long as the overlay.
    FileHistory& history(const FilePath& path);

    // The record of a path, if it was ever asked for.
    const FileHistory* known(const FilePath& path) const;

    // Records a change. An `overwrite` is never recorded: it is found when the list is built. `isDirectory` must be
    // given for a create and for a modify of what isn't there. With `createParentDirectories` (creates only) the
    // missing folders above, as far as `currentDirectory`, are made first.
    void addFileChange(const FileChange& change, std::optional<bool> isDirectory, bool createParentDirectories,
                       const FilePath& currentDirectory);

    // The final list, as of now: sorted by path and then by type. Takes time linear in the paths touched. `unsaid` gets
    // the real items that are gone without a change that says so: those moved to a folder that is deleted in its turn.
    std::vector<PredictedChange> changes(std::vector<FilePath>* unsaid = nullptr) const;
    // Whether `changes()` would hold anything but modifications.
    bool hasChangesOtherThanModifications() const;

    // Simulated emptiness of a folder that exists.
    bool isDirectoryEmpty(const FilePath& folder);

    // The real names in a folder, listed once; none if it can't be listed.
    const std::optional<std::vector<std::string>>& realNames(const FilePath& folder);

    // The touched paths that stand directly in `folder` now.
    std::vector<const FileHistory*> touchedIn(const FilePath& folder) const;

    // A sentence for each path that differs from one touched before in nothing but case, where one of them stands: two
    // files, it may be, that the simulation takes for one.
    std::vector<std::string> caseTwins() const;

  private:
    void applyDelete(const FilePath& path, FileHistory& target);
    void applyMove(const FileChange& change, std::optional<bool> isDirectory, FileHistory& target);
    void makeParents(const FilePath& path, const FilePath& currentDirectory);
    void setCurrentPath(FileHistory& history, const FilePath& path);
    void noteCaseTwin(const FilePath& path, const FileHistory& known);
    // Every history whose currentExactPath lies strictly inside `folder`.
    template <class Action>
    void forEachInside(const FilePath& folder, Action action) const;

    FileSystem& files_;
    std::unordered_map<std::string, std::unique_ptr<FileHistory>> histories_;  // by lower-cased path
    std::multimap<std::string, FileHistory*, std::less<>> byCurrentPath_;
    std::unordered_map<std::string, std::optional<std::vector<std::string>>> realNames_;
    struct CaseTwin {
        FilePath path;
        bool stands;  // on the disk
        const FileHistory* known;
    };
    std::vector<CaseTwin> caseTwins_;
    std::unordered_set<std::string> twinsLookedAt_;
};

}  // namespace brindlet
