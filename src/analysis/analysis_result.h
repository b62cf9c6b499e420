// The product of a simulation: what a line of bash would change, print and say.
#pragma once

#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "analysis/side_effect.h"
#include "analysis/sim_string.h"
#include "platform/file_path.h"

namespace brindlet {

struct FileChange {
    enum class FileChangeType { create, modify, move, delete_, overwrite };

    FileChangeType type = FileChangeType::create;
    FilePath url;                       // the path affected; for a move the destination
    std::optional<FilePath> sourceURL;  // of a move, else none
    bool operator==(const FileChange&) const = default;
};

// "create", "modify", "move", "delete", "overwrite".
std::string_view caseName(FileChange::FileChangeType type);

// What stands in the path of everything that is in a Trash folder.
inline constexpr std::string_view trashMark = "/.Trash/";
bool isInTrash(const FilePath& path);

// What a move does to an item: puts it into the Trash, or else gives it another name, another folder, both or neither.
struct MoveMeaning {
    bool movesToTrash = false;
    bool renames = false;
    bool changesFolder = false;
};
MoveMeaning meaningOfMove(const FileChange& move);

// A change as the simulation found it, with what stands at `url`.
struct PredictedChange {
    FileChange change;
    bool isDirectory = false;
    bool operator==(const PredictedChange&) const = default;
};

// The predicted failure of one command. It does not stop the simulation.
struct CommandError {
    std::string friendly;   // a short title for the user
    std::string technical;  // what a real shell would print
    bool operator==(const CommandError&) const = default;
};

// The end of a simulation; thrown, and caught in one place.
struct BasherAnalysisError {
    enum class Kind {
        simulationError,    // the simulation cannot go on
        unimplemented,      // a bash or tool feature that is not modelled
        wontWorkInBrindlet, // the command needs something the program cannot give it, such as a terminal
        bannedInBrindlet,   // refused outright; never run
        highRisk,           // the command can do more than the simulation can show
        otherError,         // anything else, among them the text of a BasherError
        noFilesSelected,    // the command needs selected files and there are none; has no text
    };
    Kind kind;
    std::string text;
    bool operator==(const BasherAnalysisError&) const = default;
};

std::string_view caseName(BasherAnalysisError::Kind kind);

struct AnalysisResult {
    std::optional<int> exitCode;  // none when it cannot be predicted
    SimString output = SimString::known("");
    std::vector<PredictedChange> changes;  // sorted by path and then by type
    std::vector<SideEffect> sideEffects;   // without duplicates, in order of first arrival
    std::vector<CommandError> commandErrors;
    std::optional<BasherAnalysisError> analysisError;  // set if the simulation stopped
    std::set<std::string> requiredPackages;
    std::string rewrittenCommand;  // the text to run: the tree printed back, or the original on an analysis error
    bool operator==(const AnalysisResult&) const = default;
};

}  // namespace brindlet
