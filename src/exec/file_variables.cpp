#include "exec/file_variables.h"

#include <algorithm>

#include "text/strings.h"

namespace brindlet {

namespace {

constexpr std::string_view perFileUses[] = {
    "${FILE_NAME", "$FILE_NAME", "${FILE_BASENAME", "$FILE_BASENAME", "${FILE_EXTENSION", "$FILE_EXTENSION",
};
constexpr std::string_view allFilesUses[] = {"$SPACE_SEPARATED_FILE_NAMES", "${SPACE_SEPARATED_FILE_NAMES"};

template <std::size_t count>
bool containsAny(std::string_view text, const std::string_view (&parts)[count]) {
    return std::any_of(std::begin(parts), std::end(parts),
                       [text](std::string_view part) { return contains(text, part); });
}

// The simulator reads this value back, so that only the double quotes in a name are marked; what bash itself is given
// is made by the runner.
std::string inQuotes(std::string_view name) {
    return '"' + replacedAll(name, "\"", "\\\"") + '"';
}

std::string quotedNames(const std::vector<FilePath>& files, const FilePath& workingDirectory) {
    std::vector<std::string> names;
    names.reserve(files.size());
    for (const FilePath& file : files) names.push_back(inQuotes(relativePath(file, workingDirectory)));
    return joined(names, " ");
}

}  // namespace

bool usesPerFileVariables(std::string_view command) {
    return containsAny(command, perFileUses);
}

bool usesAllFilesVariable(std::string_view command) {
    return containsAny(command, allFilesUses);
}

RunMode runMode(std::string_view command) {
    if (usesAllFilesVariable(command)) return RunMode::onceOnAllFiles;
    return usesPerFileVariables(command) ? RunMode::oncePerFile : RunMode::once;
}

std::string_view caseName(RunMode mode) {
    switch (mode) {
        case RunMode::once:
            return "once";
        case RunMode::oncePerFile:
            return "oncePerFile";
        case RunMode::onceOnAllFiles:
            return "onceOnAllFiles";
    }
    return "";
}

Environment environmentWithFiles(Environment base, const std::vector<FilePath>& files,
                                 const FilePath& workingDirectory) {
    const bool hasFiles = !files.empty();
    base["FILE_NAME"] = hasFiles ? relativePath(files.front(), workingDirectory) : "";
    base["FILE_EXTENSION"] = hasFiles ? pathExtension(files.front().text()) : "";
    base["FILE_BASENAME"] = hasFiles ? pathBaseName(files.front().text()) : "";
    base["SPACE_SEPARATED_FILE_NAMES"] = quotedNames(files, workingDirectory);
    return base;
}

std::vector<Environment> runEnvironments(std::string_view command, const std::vector<FilePath>& files,
                                         const FilePath& workingDirectory, const Environment& base) {
    if (runMode(command) != RunMode::oncePerFile) return {environmentWithFiles(base, files, workingDirectory)};
    std::vector<Environment> environments;
    environments.reserve(files.size());
    for (const FilePath& file : files) environments.push_back(environmentWithFiles(base, {file}, workingDirectory));
    return environments;
}

std::vector<std::vector<FilePath>> runSelections(std::string_view command, const std::vector<FilePath>& files) {
    if (runMode(command) != RunMode::oncePerFile) return {files};
    std::vector<std::vector<FilePath>> each;
    each.reserve(files.size());
    for (const FilePath& file : files) each.push_back({file});
    return each;
}

bool hasTooManyFiles(std::string_view command, const std::vector<FilePath>& files) {
    return usesAllFilesVariable(command) && files.size() > maxFilesAtOnce;
}

}  // namespace brindlet
