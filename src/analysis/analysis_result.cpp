#include "analysis/analysis_result.h"

#include "text/enum_rows.h"
#include "text/strings.h"

namespace brindlet {

namespace {

struct ChangeTypeRow {
    FileChange::FileChangeType key;
    std::string_view name;
};
constexpr ChangeTypeRow changeTypeRows[] = {
    {FileChange::FileChangeType::create, "create"},       {FileChange::FileChangeType::modify, "modify"},
    {FileChange::FileChangeType::move, "move"},           {FileChange::FileChangeType::delete_, "delete"},
    {FileChange::FileChangeType::overwrite, "overwrite"},
};
static_assert(rowsCover(changeTypeRows, FileChange::FileChangeType::overwrite));

struct ErrorKindRow {
    BasherAnalysisError::Kind key;
    std::string_view name;
};
constexpr ErrorKindRow errorKindRows[] = {
    {BasherAnalysisError::Kind::simulationError, "simulationError"},
    {BasherAnalysisError::Kind::unimplemented, "unimplemented"},
    {BasherAnalysisError::Kind::wontWorkInBrindlet, "wontWorkInBrindlet"},
    {BasherAnalysisError::Kind::bannedInBrindlet, "bannedInBrindlet"},
    {BasherAnalysisError::Kind::highRisk, "highRisk"},
    {BasherAnalysisError::Kind::otherError, "otherError"},
    {BasherAnalysisError::Kind::noFilesSelected, "noFilesSelected"},
};
static_assert(rowsCover(errorKindRows, BasherAnalysisError::Kind::noFilesSelected));

}  // namespace

std::string_view caseName(FileChange::FileChangeType type) {
    return rowOf(changeTypeRows, type).name;
}

std::string_view caseName(BasherAnalysisError::Kind kind) {
    return rowOf(errorKindRows, kind).name;
}

bool isInTrash(const FilePath& path) {
    return contains(path.text(), trashMark);
}

MoveMeaning meaningOfMove(const FileChange& move) {
    if (isInTrash(move.url)) return {.movesToTrash = true};
    if (!move.sourceURL) return {};
    return {.renames = move.sourceURL->name() != move.url.name(),
            .changesFolder = move.sourceURL->parent() != move.url.parent()};
}

}  // namespace brindlet
