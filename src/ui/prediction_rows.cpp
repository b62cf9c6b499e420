#include "ui/prediction_rows.h"

#include <algorithm>
#include <iterator>
#include <limits>
#include <span>
#include <string_view>
#include <utility>

#include "text/enum_rows.h"
#include "text/overloaded.h"

namespace brindlet {

namespace {

using ChangeType = ChangesViewChangeType;
using Row = ChangesViewIconAndText;
using Rows = std::vector<PredictionRow>;

constexpr std::size_t changesListedSingly = 9;
constexpr std::size_t errorsListedSingly = 2;
constexpr std::size_t namesInGroup = 4;

// --- changes ---

struct ChangeRow {
    ChangeType key;
    int rank;  // among the changes, lowest first
    std::string_view verb;
    std::size_t threshold;  // from so many on a group is one row
    std::string_view color, symbolName;
    std::string_view groupLabel;
};
constexpr ChangeRow changeRows[] = {
    {ChangeType::create, 6, "Creates", 3, "green", "plus", "created items"},
    {ChangeType::move, 4, "Moves", 5, "blue", "arrow.right", "moved items"},
    {ChangeType::rename, 5, "Renames", 3, "blue", "character.cursor.ibeam", "renamed items"},
    {ChangeType::modify, 3, "Modifies", 5, "blue", "pencil", "modified items"},
    {ChangeType::overwrite, 1, "Overwrites", 5, "red", "exclamationmark", "overwritten items"},
    {ChangeType::delete_, 0, "Deletes", 5, "red", "delete.left", "deletions"},
    {ChangeType::moveToTrash, 2, "Moves", 5, "red", "trash", "moved to trash"},
};
static_assert(rowsCover(changeRows, ChangeType::moveToTrash));

// Not the order of the ranks: renames stand before moves here.
constexpr ChangeType groupOrder[] = {
    ChangeType::delete_, ChangeType::overwrite, ChangeType::moveToTrash, ChangeType::modify,
    ChangeType::rename,  ChangeType::move,      ChangeType::create,
};
static_assert(std::size(groupOrder) == std::size(changeRows));

ChangesViewIcon icon(std::string_view color, std::string_view symbolName) {
    return {std::string(color), std::string(symbolName)};
}

ChangesViewIcon iconOf(ChangeType type) {
    const ChangeRow& row = rowOf(changeRows, type);
    return icon(row.color, row.symbolName);
}

// The counts come from a tool's own output, so that their sum may be past all bounds. None may hide a change that is
// listed, so what is below 0 counts as 0.
std::int64_t sumOfCounts(std::int64_t sum, std::int64_t count) {
    constexpr std::int64_t most = std::numeric_limits<std::int64_t>::max();
    count = std::max<std::int64_t>(count, 0);
    return sum > most - count ? most : sum + count;
}

void appendMove(const FileChange& move, std::vector<ChangesViewChange>& changes) {
    const MoveMeaning meaning = meaningOfMove(move);
    if (meaning.movesToTrash) changes.push_back({ChangeType::moveToTrash, move});
    if (meaning.renames) changes.push_back({ChangeType::rename, move});
    if (meaning.changesFolder) changes.push_back({ChangeType::move, move});
}

void appendChange(const FileChange& change, std::vector<ChangesViewChange>& changes) {
    switch (change.type) {
        case FileChange::FileChangeType::create:
            changes.push_back({ChangeType::create, change});
            break;
        case FileChange::FileChangeType::modify:
            changes.push_back({ChangeType::modify, change});
            break;
        case FileChange::FileChangeType::move:
            appendMove(change, changes);
            break;
        case FileChange::FileChangeType::delete_:
            changes.push_back({ChangeType::delete_, change});
            break;
        case FileChange::FileChangeType::overwrite:
            changes.push_back({ChangeType::overwrite, change});
            break;
    }
}

int rankOf(ChangeType type) {
    return rowOf(changeRows, type).rank;
}

bool standsBefore(const ChangesViewChange& left, const ChangesViewChange& right) {
    if (left.type != right.type) return rankOf(left.type) < rankOf(right.type);
    return left.fileChange.url < right.fileChange.url;
}

// The changes of one type, which stand side by side in a view.
std::span<const ChangesViewChange> groupOf(const ChangesView& view, ChangeType type) {
    const auto isOfType = [type](const ChangesViewChange& change) { return change.type == type; };
    const auto first = std::ranges::find_if(view.changes, isOfType);
    return {first, std::find_if_not(first, view.changes.end(), isOfType)};
}

// --- side effects and errors ---

enum class SubtitleStyle { none, description, caution };

struct SideEffectRow {
    PlainSideEffect key;
    std::string_view text;
    std::string_view symbolName, color;
    SubtitleStyle subtitle;
};
constexpr SideEffectRow sideEffectRows[] = {
    {PlainSideEffect::launchesApp, "Launches app", "checkmark", "green", SubtitleStyle::description},
    {PlainSideEffect::revealsInFinder, "Reveals in Finder", "checkmark", "green", SubtitleStyle::description},
    {PlainSideEffect::opensFile, "Opens an item", "checkmark", "green", SubtitleStyle::description},
    {PlainSideEffect::longRunning, "Long-running operation", "clock", "yellow", SubtitleStyle::none},
    {PlainSideEffect::indefinite, "Runs indefinitely", "clock", "red", SubtitleStyle::none},
    {PlainSideEffect::networkAccess, "Makes network request", "network", "blue", SubtitleStyle::description},
    {PlainSideEffect::modifiesSystemSetting, "Modifies system setting", "gearshape", "red", SubtitleStyle::description},
    {PlainSideEffect::kill, "Force quits a process", "xmark.octagon", "red", SubtitleStyle::description},
    {PlainSideEffect::runsInBackground, "Runs in background", "play", "red", SubtitleStyle::none},
    {PlainSideEffect::runningUnknownScript, "Runs unpredictable script", "applescript", "red", SubtitleStyle::caution},
    {PlainSideEffect::copyToClipboard, "Copies to clipboard", "list.clipboard", "green", SubtitleStyle::none},
    {PlainSideEffect::readsFromClipboard, "Reads from clipboard", "list.clipboard", "green", SubtitleStyle::none},
    {PlainSideEffect::unknownCommand, "Prediction unavailable", "exclamationmark", "red", SubtitleStyle::description},
    {PlainSideEffect::partialSupport, "Unpredictable effects", "exclamationmark", "red", SubtitleStyle::description},
    {PlainSideEffect::unknownFileChanges, "Unpredictable file changes", "exclamationmark", "red",
     SubtitleStyle::description},
    {PlainSideEffect::filesChangedBeforeReadingFiles, "Prediction may miss file changes", "exclamationmark", "orange",
     SubtitleStyle::description},
    {PlainSideEffect::renameToInvisible, "File becomes hidden", "eye", "red", SubtitleStyle::description},
    {PlainSideEffect::homebrewInstall, "Install Homebrew Package", "shippingbox", "red", SubtitleStyle::description},
    {PlainSideEffect::homebrewUninstall, "Uninstall Homebrew Package", "shippingbox", "red",
     SubtitleStyle::description},
    {PlainSideEffect::printsDocument, "Prints document", "printer", "blue", SubtitleStyle::description},
};
static_assert(rowsCover(sideEffectRows, PlainSideEffect::printsDocument));

struct ErrorTitleRow {
    BasherAnalysisError::Kind key;
    std::string_view text;
};
constexpr ErrorTitleRow errorTitleRows[] = {
    {BasherAnalysisError::Kind::simulationError, "Error analysing command"},
    {BasherAnalysisError::Kind::unimplemented, "Can't analyse this"},
    {BasherAnalysisError::Kind::wontWorkInBrindlet, "Won't work in Brindlet"},
    {BasherAnalysisError::Kind::bannedInBrindlet, "Won't work in Brindlet"},
    {BasherAnalysisError::Kind::highRisk, "Risky command"},
    {BasherAnalysisError::Kind::otherError, "Error analysing command"},
    {BasherAnalysisError::Kind::noFilesSelected, "No files selected"},
};
static_assert(rowsCover(errorTitleRows, BasherAnalysisError::Kind::noFilesSelected));

std::optional<std::string> subtitleOf(const SideEffect& sideEffect, SubtitleStyle style) {
    switch (style) {
        case SubtitleStyle::none:
            break;
        case SubtitleStyle::description:
            return sideEffect.description();
        case SubtitleStyle::caution:
            return "Proceed with caution: " + sideEffect.description() + "\nMay control apps or modify files.";
    }
    return std::nullopt;
}

std::optional<std::string> noneIfEmpty(const std::string& text) {
    return text.empty() ? std::nullopt : std::optional(text);
}

void appendErrors(const std::vector<CommandError>& errors, Rows& rows) {
    if (errors.size() <= errorsListedSingly) {
        for (const CommandError& error : errors) rows.push_back({rowFor(error), std::nullopt});
        return;
    }
    const std::string text = std::to_string(errors.size()) + " errors including: " + errors.back().friendly;
    rows.push_back({{icon("red", "apple.terminal"), text, std::nullopt}, std::nullopt});
}

// --- the body ---

bool isAtOrBelow(const FilePath& path, const FilePath& folder) {
    return path == folder || path.isInside(folder);
}

// The part of `path` below `folder`, which holds it; empty for the folder itself.
std::string_view partBelow(const FilePath& path, const FilePath& folder) {
    if (path == folder) return {};
    return std::string_view(path.text()).substr(folder.isRoot() ? 1 : folder.text().size() + 1);
}

struct Surroundings {
    const FilePath& workingDirectory;
    const FilePath& home;
};

PredictionRow singleRow(const ChangesViewChange& change, const Surroundings& around) {
    const auto shown = [&](const FilePath& path) { return shownPath(path, around.workingDirectory, around.home); };
    std::string text(verbOf(change.type));
    if (change.fileChange.sourceURL) text += ' ' + shown(*change.fileChange.sourceURL) + " to";
    return {{iconOf(change.type), text + ' ' + shown(change.fileChange.url), std::nullopt}, change};
}

std::string includedNames(std::span<const ChangesViewChange> group) {
    std::string names;
    for (std::size_t index = 0; index < std::min(group.size(), namesInGroup); ++index) {
        if (index > 0) names += ", ";
        names += group[index].fileChange.url.name();
    }
    return "Including " + names;
}

void appendGroup(ChangeType type, std::span<const ChangesViewChange> group, std::int64_t extraCount,
                 const Surroundings& around, Rows& rows) {
    const ChangeRow& row = rowOf(changeRows, type);
    const std::int64_t total = sumOfCounts(static_cast<std::int64_t>(group.size()), extraCount);
    if (total < 1) return;
    if (group.size() < row.threshold && extraCount == 0) {
        for (const ChangesViewChange& change : group) rows.push_back(singleRow(change, around));
        return;
    }
    rows.push_back({{iconOf(type), std::to_string(total) + ' ' + std::string(row.groupLabel),
                     group.empty() ? std::nullopt : std::optional(includedNames(group))},
                    std::nullopt});
}

void appendSummary(const ChangesView& view, const Surroundings& around, Rows& rows) {
    for (const ChangeType type : groupOrder) {
        const std::int64_t extraCount = type == ChangeType::move     ? view.extraMoves
                                        : type == ChangeType::create ? view.extraCopies
                                                                     : 0;
        appendGroup(type, groupOf(view, type), extraCount, around, rows);
    }
}

void appendChanges(const ChangesView& view, const Surroundings& around, Rows& rows) {
    const bool isListComplete = view.extraMoves == 0 && view.extraCopies == 0;
    if (view.changes.size() > changesListedSingly || !isListComplete) {
        appendSummary(view, around, rows);
        return;
    }
    // Deletions come first, and from their threshold on are counted in a short list too.
    const auto deletions = groupOf(view, ChangeType::delete_);
    appendGroup(ChangeType::delete_, deletions, 0, around, rows);
    for (const ChangesViewChange& change : std::span(view.changes).subspan(deletions.size()))
        rows.push_back(singleRow(change, around));
}

}  // namespace

ChangesView::ChangesView(const AnalysisResult& result) {
    for (const PredictedChange& predicted : result.changes) appendChange(predicted.change, changes);
    std::ranges::stable_sort(changes, standsBefore);
    for (const SideEffect& sideEffect : result.sideEffects) {
        if (const auto* extra = std::get_if<ExtraFileChanges>(&sideEffect.type)) {
            std::int64_t& sum = extra->kind == ExtraFileChanges::Kind::moves ? extraMoves : extraCopies;
            sum = sumOfCounts(sum, extra->count);
        } else {
            sideEffects.push_back(sideEffect);
        }
    }
}

ChangesViewIconAndText rowFor(const SideEffect& sideEffect) {
    return std::visit(
        Overloaded{
            [](PowerAction action) {
                return Row{icon("red", "power"), defaultDescription(action), std::nullopt};
            },
            [&](const ExtraFileChanges&) {
                return Row{icon("orange", "exclamationmark"), "Additional file changes", sideEffect.description()};
            },
            [](const ComplexCommand& complex) {
                return Row{icon("red", "exclamationmark"), "Unpredictable effects", complex.message};
            },
            [&](PlainSideEffect plain) {
                const SideEffectRow& row = rowOf(sideEffectRows, plain);
                return Row{icon(row.color, row.symbolName), std::string(row.text),
                           subtitleOf(sideEffect, row.subtitle)};
            },
        },
        sideEffect.type);
}

ChangesViewIconAndText rowFor(const CommandError& error) {
    return {icon("red", "apple.terminal"), error.friendly.empty() ? "Will have error" : error.friendly,
            noneIfEmpty(error.technical)};
}

ChangesViewIconAndText rowFor(const BasherAnalysisError& error) {
    const bool hasText = error.kind != BasherAnalysisError::Kind::noFilesSelected;
    return {icon("red", "exclamationmark"), std::string(rowOf(errorTitleRows, error.kind).text),
            hasText ? error.text : "Please select files to run this command"};
}

std::vector<PredictionRow> predictionRowsWithChanges(const AnalysisResult& result, const FilePath& workingDirectory,
                                                     const FilePath& home, bool predictionNeedsInstall) {
    const auto only = [](Row row) { return Rows{{std::move(row), std::nullopt}}; };
    if (predictionNeedsInstall)
        return only({icon("yellow", "clock"), "Prediction will be available after installation", std::nullopt});
    if (result.analysisError) return only(rowFor(*result.analysisError));

    const ChangesView view(result);
    Rows rows;
    appendErrors(result.commandErrors, rows);
    appendChanges(view, {workingDirectory, home}, rows);
    for (const SideEffect& sideEffect : view.sideEffects) rows.push_back({rowFor(sideEffect), std::nullopt});
    if (!rows.empty()) return rows;
    return only({std::nullopt, "No file changes or known side effects; likely informational only.", std::nullopt});
}

std::vector<ChangesViewIconAndText> predictionRows(const AnalysisResult& result, const FilePath& workingDirectory,
                                                   const FilePath& home, bool predictionNeedsInstall) {
    std::vector<Row> rows;
    for (PredictionRow& each : predictionRowsWithChanges(result, workingDirectory, home, predictionNeedsInstall))
        rows.push_back(std::move(each.row));
    return rows;
}

std::string_view verbOf(ChangesViewChangeType type) {
    return rowOf(changeRows, type).verb;
}

PathParts partsOfPath(const FilePath& path, const FilePath& workingDirectory, const FilePath& home) {
    using From = PathParts::From;
    if (const std::size_t mark = path.text().find(trashMark); mark != std::string::npos)
        return {From::trash, path.text().substr(mark + trashMark.size())};
    if (isAtOrBelow(path, workingDirectory))
        return {From::folder, std::string(path == workingDirectory ? path.name() : partBelow(path, workingDirectory))};
    if (isAtOrBelow(path, home)) return {From::home, std::string(partBelow(path, home))};
    return {From::folder, path.text()};
}

std::string shownPath(const FilePath& path, const FilePath& workingDirectory, const FilePath& home) {
    const PathParts parts = partsOfPath(path, workingDirectory, home);
    switch (parts.from) {
        case PathParts::From::trash:
            return "Trash/" + parts.rest;
        case PathParts::From::home:
            return parts.rest.empty() ? "~" : "~/" + parts.rest;
        case PathParts::From::folder:
            break;
    }
    return parts.rest;
}

}  // namespace brindlet
