// The contract between generated commands, the simulator and the runner: four variables that carry the selection.
//
//     if (usesPerFileVariables(command)) ...   // such as mv "$FILE_NAME" "${FILE_BASENAME}.bak"
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "platform/environment.h"
#include "platform/file_path.h"

namespace brindlet {

// Plain substring tests: they look at no quoting or context.
bool usesPerFileVariables(std::string_view command);
bool usesAllFilesVariable(std::string_view command);

// How often a command runs: once per file exactly when it uses a per-file variable and not the one for all files.
enum class RunMode { once, oncePerFile, onceOnAllFiles };
RunMode runMode(std::string_view command);
std::string_view caseName(RunMode mode);

// What each run gets as its files: none at all where a line for each file has no files.
std::vector<std::vector<FilePath>> runSelections(std::string_view command, const std::vector<FilePath>& files);

// True where the line names all files at once and there are too many for it; the text is then the error.
inline constexpr std::size_t maxFilesAtOnce = 100;
bool hasTooManyFiles(std::string_view command, const std::vector<FilePath>& files);
inline constexpr std::string_view tooManyFilesText =
    "Sorry, Brindlet can't process more than 100 files at once with 'SPACE_SEPARATED_FILE_NAMES'";

// `base` with FILE_NAME, FILE_EXTENSION, FILE_BASENAME and SPACE_SEPARATED_FILE_NAMES set over it: all four empty where
// there are no files, else the first three of the first file. `files` are absolute paths.
Environment environmentWithFiles(Environment base, const std::vector<FilePath>& files,
                                 const FilePath& workingDirectory);

// The environment of each run of a command, in order: one for each file where it runs once per file (none without
// files), else one for all of them.
std::vector<Environment> runEnvironments(std::string_view command, const std::vector<FilePath>& files,
                                         const FilePath& workingDirectory, const Environment& base);

}  // namespace brindlet
