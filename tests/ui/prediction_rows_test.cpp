#include "ui/prediction_rows.h"

#include <gtest/gtest.h>

#include "analysis/described_changes.h"

namespace brindlet {
namespace prediction_rows_tests {

using Rows = std::vector<std::string>;

const FilePath workingDirectory("/home/u/w");
const FilePath home("/home/u");

// A row on one line: "color symbol: text (subtitle)".
Rows described(const std::vector<ChangesViewIconAndText>& rows) {
    Rows lines;
    for (const auto& row : rows) {
        std::string line = row.icon ? row.icon->color + " " + row.icon->symbolName + ": " : "";
        line += row.text;
        if (row.subtitle) line += " (" + *row.subtitle + ")";
        lines.push_back(line);
    }
    return lines;
}

Rows rowsOf(const AnalysisResult& result) {
    return described(predictionRows(result, workingDirectory, home));
}

std::vector<std::string> numbered(const std::string& type, int count) {
    std::vector<std::string> changes;
    for (int number = 1; number <= count; ++number) changes.push_back(type + std::to_string(number));
    return changes;
}

SideEffect extra(ExtraFileChanges::Kind kind, std::int64_t count) {
    return {ExtraFileChanges{kind, count}, {}};
}

TEST(PredictionRows, FileChanges) {
    using Kind = ExtraFileChanges::Kind;
    const std::string w = "/home/u/w/";
    struct Case {
        std::vector<std::string> changes;
        std::vector<SideEffect> sideEffects;
        Rows rows;
    };
    const Case cases[] = {
        {{"create " + w + "n", "modify " + w + "m", "move " + w + "a " + w + "s/b", "delete " + w + "d",
          "overwrite " + w + "o", "move " + w + "t /home/u/.Trash/t2", "move " + w + "same " + w + "same"},
         {},
         {"red delete.left: Deletes d", "red exclamationmark: Overwrites o", "red trash: Moves t to Trash/t2",
          "blue pencil: Modifies m", "blue arrow.right: Moves a to s/b",
          "blue character.cursor.ibeam: Renames a to s/b", "green plus: Creates n"}},
        {{"create " + w + "b", "create " + w + "a", "create " + w + "B"},
         {},
         {"green plus: Creates B", "green plus: Creates a", "green plus: Creates b"}},
        // Below ten rows each stands for itself, but for five deletions; with ten, or with changes beyond those
        // listed, all groups are counted.
        {numbered("delete " + w, 4),
         {},
         {"red delete.left: Deletes 1", "red delete.left: Deletes 2", "red delete.left: Deletes 3",
          "red delete.left: Deletes 4"}},
        {{"delete " + w + "1", "delete " + w + "2", "delete " + w + "3", "delete " + w + "4", "delete " + w + "5",
          "create " + w + "a", "create " + w + "b", "create " + w + "c"},
         {},
         {"red delete.left: 5 deletions (Including 1, 2, 3, 4)", "green plus: Creates a", "green plus: Creates b",
          "green plus: Creates c"}},
        {numbered("delete " + w, 10), {}, {"red delete.left: 10 deletions (Including 1, 10, 2, 3)"}},
        {numbered("delete " + w, 5),
         {extra(Kind::moves, 1)},
         {"red delete.left: 5 deletions (Including 1, 2, 3, 4)", "blue arrow.right: 1 moved items"}},
        {{"create " + w + "x", "create " + w + "s/y"},
         {extra(Kind::copies, 4), extra(Kind::copies, 6)},
         {"green plus: 12 created items (Including y, x)"}},
        {{}, {extra(Kind::moves, 300)}, {"blue arrow.right: 300 moved items"}},
        {{"modify " + w + "x"}, {extra(Kind::moves, -9)}, {"blue pencil: Modifies x"}},
        {{},
         {extra(Kind::moves, INT64_MAX), extra(Kind::moves, INT64_MAX)},
         {"blue arrow.right: 9223372036854775807 moved items"}},
        // Five files that get another folder and another name: ten rows, each group named after where the files go,
        // and renames before moves, the other way round than in a list.
        {{"move " + w + "a " + w + "s/1", "move " + w + "b " + w + "s/2", "move " + w + "c " + w + "s/3",
          "move " + w + "d " + w + "s/4", "move " + w + "e " + w + "s/5"},
         {},
         {"blue character.cursor.ibeam: 5 renamed items (Including 1, 2, 3, 4)",
          "blue arrow.right: 5 moved items (Including 1, 2, 3, 4)"}},
    };
    for (const auto& [changes, sideEffects, rows] : cases) {
        SCOPED_TRACE(joined(changes, "; "));
        EXPECT_EQ(rowsOf(resultOf(changes, sideEffects)), rows);
    }
}

TEST(PredictionRows, TenChangesInSmallGroupsAreListedByGroup) {
    std::vector<std::string> changes;
    for (const std::string type : {"delete /x/d", "overwrite /x/o", "modify /x/m", "create /x/c"})
        for (const std::string& change : numbered(type, type == "create /x/c" ? 2 : 3)) changes.push_back(change);
    EXPECT_EQ(rowsOf(resultOf(changes)).size(), 11U);
    EXPECT_EQ(rowsOf(resultOf(changes)).back(), "green plus: Creates /x/c2");
}

TEST(PredictionRows, Body) {
    const std::string create = "create /home/u/w/x";
    const SideEffect network{PlainSideEffect::networkAccess, "Downloads 'a'"};
    const CommandError first{"One", "sh: one"}, second{"", "sh: two"}, third{"Three", ""};
    const std::string_view nothing = "No file changes or known side effects; likely informational only.";

    EXPECT_EQ(rowsOf(resultOf({})), Rows{std::string(nothing)});
    EXPECT_EQ(rowsOf(resultOf({"move /home/u/w/x /home/u/w/x"})), Rows{std::string(nothing)});
    EXPECT_EQ(rowsOf(resultOf({create}, {network}, {first, second})),
              (Rows{"red apple.terminal: One (sh: one)", "red apple.terminal: Will have error (sh: two)",
                    "green plus: Creates x", "blue network: Makes network request (Downloads 'a')"}));
    EXPECT_EQ(
        rowsOf(resultOf({}, {network}, {first, second, third})),
        (Rows{"red apple.terminal: 3 errors including: Three", "blue network: Makes network request (Downloads 'a')"}));

    AnalysisResult stopped = resultOf({create}, {network}, {first});
    stopped.analysisError = BasherAnalysisError{BasherAnalysisError::Kind::highRisk, "why"};
    EXPECT_EQ(rowsOf(stopped), Rows{"red exclamationmark: Risky command (why)"});
    EXPECT_EQ(described(predictionRows(stopped, workingDirectory, home, /*predictionNeedsInstall=*/true)),
              Rows{"yellow clock: Prediction will be available after installation"});
    stopped.analysisError = BasherAnalysisError{BasherAnalysisError::Kind::noFilesSelected, ""};
    EXPECT_EQ(rowsOf(stopped),
              Rows{"red exclamationmark: No files selected (Please select files to run this command)"});
}

TEST(PredictionRows, SideEffects) {
    const std::pair<SideEffect, std::string_view> cases[] = {
        {{PowerAction::restart, "own words"}, "red power: Restarts computer"},
        {{ComplexCommand{"eval runs"}, {}}, "red exclamationmark: Unpredictable effects (eval runs)"},
        {extra(ExtraFileChanges::Kind::copies, 3),
         "orange exclamationmark: Additional file changes (Also copies 3 other files not listed)"},
        {{PlainSideEffect::revealsInFinder, {}},
         "green checkmark: Reveals in Finder (Shows an file or folder in Finder)"},
        {{PlainSideEffect::longRunning, "own words"}, "yellow clock: Long-running operation"},
        {{PlainSideEffect::runningUnknownScript, "Runs 'x.sh'"},
         "red applescript: Runs unpredictable script "
         "(Proceed with caution: Runs 'x.sh'\nMay control apps or modify files.)"},
    };
    for (const auto& [sideEffect, row] : cases) EXPECT_EQ(described({rowFor(sideEffect)}), Rows{std::string(row)});
}

TEST(PredictionRows, ShownPaths) {
    struct Case {
        std::string_view path, folder, shown;
    };
    const Case cases[] = {
        {"/home/u/w/s/a", "/home/u/w", "s/a"},
        {"/home/u/w", "/home/u/w", "w"},
        {"/home/u/a", "/home/u/w", "~/a"},
        {"/home/u", "/home/u/w", "~"},
        {"/home/u", "/home/u", "u"},
        {"/home/u/wide/a", "/home/u/w", "~/wide/a"},  // neither in the folder
        {"/home/u2/a", "/home/u/w", "/home/u2/a"},    // nor at home, though the texts begin alike
        {"/etc/a", "/", "etc/a"},
        {"/etc/a", "/home/u/w", "/etc/a"},
        {"/home/u/.Trash/s/a", "/home/u/.Trash", "Trash/s/a"},
        {"/home/u/.Trash", "/home/u/w", "~/.Trash"},
    };
    for (const auto& [path, folder, shown] : cases)
        EXPECT_EQ(shownPath(FilePath(path), FilePath(folder), home), shown) << path << " from " << folder;
}

TEST(PredictionRows, SingleChangesComeWithTheirPaths) {
    const AnalysisResult result = resultOf({"move /home/u/w/a /home/u/.Trash/a", "delete /home/u/w/d"});
    const auto rows = predictionRowsWithChanges(result, workingDirectory, home);
    ASSERT_EQ(rows.size(), 2U);
    ASSERT_TRUE(rows[0].change && rows[1].change);
    EXPECT_EQ(rows[0].change->type, ChangesViewChangeType::delete_);
    EXPECT_EQ(rows[1].change->type, ChangesViewChangeType::moveToTrash);
    using From = PathParts::From;
    const std::pair<const char*, PathParts> cases[] = {{"/home/u/.Trash/s/a", {From::trash, "s/a"}},
                                                       {"/home/u/w/s/a", {From::folder, "s/a"}},
                                                       {"/home/u/w", {From::folder, "w"}},
                                                       {"/home/u/x", {From::home, "x"}},
                                                       {"/home/u", {From::home, ""}},
                                                       {"/home/under", {From::folder, "/home/under"}}};
    for (const auto& [path, parts] : cases) {
        SCOPED_TRACE(path);
        EXPECT_EQ(partsOfPath(FilePath(path), workingDirectory, home), parts);
    }
}

}  // namespace prediction_rows_tests
}  // namespace brindlet
