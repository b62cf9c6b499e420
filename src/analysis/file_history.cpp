#include "analysis/file_history.h"

#include <algorithm>

namespace brindlet {

namespace {

bool saysWhatStandsHere(FileStateType type) {
    return type != FileStateType::originallyDidntExist && type != FileStateType::movedOriginalAway &&
           type != FileStateType::deleted;
}

}  // namespace

bool FileHistory::exists() const {
    switch (lastState()) {
        case FileStateType::originallyExisted:
        case FileStateType::movedOriginalFrom:
        case FileStateType::created:
        case FileStateType::modified:
            return true;
        case FileStateType::originallyDidntExist:
        case FileStateType::movedOriginalAway:
        case FileStateType::deleted:
            return false;
    }
    return false;
}

bool FileHistory::isDirectory() const {
    for (auto state = history.rbegin(); state != history.rend(); ++state)
        if (saysWhatStandsHere(state->type) && state->isDirectory) return *state->isDirectory;
    return false;
}

bool FileHistory::isUnchangedOriginal() const {
    if (lastState() == FileStateType::originallyExisted) return true;
    return std::all_of(history.begin(), history.end(), [](const FileState& state) {
        return state.type == FileStateType::originallyExisted || state.type == FileStateType::modified;
    });
}

}  // namespace brindlet
