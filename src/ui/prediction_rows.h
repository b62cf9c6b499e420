// What the user reads before a command runs: a few lines that say what will change and what else will happen. Each row
// is a value; a front end only draws it.
//
//     for (const auto& row : predictionRows(result, folder, home, missingPackage)) print(row.text);
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "analysis/analysis_result.h"
#include "platform/file_path.h"

namespace brindlet {

struct ChangesViewIcon {
    std::string color;       // "red", "blue", "green", "orange", "yellow"
    std::string symbolName;  // names the picture meant, such as "exclamationmark"
    bool operator==(const ChangesViewIcon&) const = default;
};

struct ChangesViewIconAndText {
    std::optional<ChangesViewIcon> icon;  // none for a plain line
    std::string text;
    std::optional<std::string> subtitle;
    bool operator==(const ChangesViewIconAndText&) const = default;
};

enum class ChangesViewChangeType { create, move, rename, modify, overwrite, delete_, moveToTrash };

struct ChangesViewChange {
    ChangesViewChangeType type = ChangesViewChangeType::create;
    FileChange fileChange;
    bool operator==(const ChangesViewChange&) const = default;
};

// The changes as rows, sorted by what matters most; the side effects without the counts of further changes.
struct ChangesView {
    std::vector<ChangesViewChange> changes;
    std::int64_t extraMoves = 0;
    std::int64_t extraCopies = 0;
    std::vector<SideEffect> sideEffects;

    explicit ChangesView(const AnalysisResult& result);
};

ChangesViewIconAndText rowFor(const SideEffect& sideEffect);
ChangesViewIconAndText rowFor(const CommandError& error);
ChangesViewIconAndText rowFor(const BasherAnalysisError& error);

// The rows of the display's body, in order. `predictionNeedsInstall`: the prediction waits for a missing tool.
std::vector<ChangesViewIconAndText> predictionRows(const AnalysisResult& result, const FilePath& workingDirectory,
                                                   const FilePath& home, bool predictionNeedsInstall = false);

// The same rows with the change of each that tells of a single one: for who draws the verb and the paths apart.
struct PredictionRow {
    ChangesViewIconAndText row;
    std::optional<ChangesViewChange> change;
};
std::vector<PredictionRow> predictionRowsWithChanges(const AnalysisResult& result, const FilePath& workingDirectory,
                                                     const FilePath& home, bool predictionNeedsInstall = false);

// "Creates", "Moves", ...
std::string_view verbOf(ChangesViewChangeType type);

// A path as it is shown: where it is counted from, and the rest.
struct PathParts {
    enum class From { folder, trash, home };
    From from = From::folder;
    std::string rest;  // empty for the home folder itself
    bool operator==(const PathParts&) const = default;
};
PathParts partsOfPath(const FilePath& path, const FilePath& workingDirectory, const FilePath& home);
// The same as a text: "Trash/name", "~/rest", or relative to the working directory.
std::string shownPath(const FilePath& path, const FilePath& workingDirectory, const FilePath& home);

}  // namespace brindlet
