// What one path has been through in a simulation.
#pragma once

#include <optional>
#include <vector>

#include "platform/file_path.h"

namespace brindlet {

enum class FileStateType {
    originallyExisted,
    originallyDidntExist,
    movedOriginalAway,
    movedOriginalFrom,
    created,
    deleted,
    modified,
};

struct FileState {
    FileStateType type;
    std::optional<bool> isDirectory;
    std::optional<FilePath> moveFromURL;
};

struct FileHistory {
    FilePath originalExactPath;  // as first seen, case kept
    FilePath currentExactPath;   // where what stood here is now: a move sets it on the source
    std::vector<FileState>
        history;  // never empty, oldest first; the first is originallyExisted or originallyDidntExist

    // Whether the path exists in the simulation.
    bool exists() const;
    // From the newest state that says so; false where none does.
    bool isDirectory() const;
    // Whether the real file's content is still that of the simulated one, so that a model may read it.
    bool isUnchangedOriginal() const;
    FileStateType lastState() const { return history.back().type; }
};

}  // namespace brindlet
