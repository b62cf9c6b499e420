// Tables of lines with what is predicted of them, over a fake disk and a launcher that answers every tool alike; and
// predictions over the real disk with the real tools.
//
//     expectRows({"a"}, {{.line = "rm a", .changes = {"delete a"}}});
//     inOrdinaryProcess([] { RealPrediction real; real.scratch.write("a", ""); described(real.predict("ls")); });
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <vector>

#include "analysis/risk.h"
#include "support/ordinary_user.h"
#include "support/predict.h"
#include "support/scratch_folder.h"
#include "text/strings.h"

namespace brindlet {

using Texts = std::vector<std::string>;

struct ModelRow {
    std::string line{};
    ToolOutcome answer{};  // of every real tool; unset: nothing can be said
    Texts launches{};      // each with its words joined by "|"
    Texts changes{};
    Texts errors{};            // "friendly / technical"
    Texts sideEffects{};       // "case: description"
    std::string outcome = "";  // "" stands for "0", or for exit 1 with the technical text of the last error as output
    std::string ends = "";     // "highRisk: text" where the analysis ends
};

inline std::string expectedOutcome(const ModelRow& row) {
    if (!row.outcome.empty()) return row.outcome;
    if (!row.ends.empty()) return "? unknown";
    if (row.errors.empty()) return "0";
    const std::string& error = row.errors.back();
    return "1 '" + error.substr(error.find(" / ") + 3) + "'";
}

inline void expectRows(const std::vector<std::string_view>& disk, const std::vector<ModelRow>& rows,
                       const Environment& environment = {}) {
    for (const ModelRow& row : rows) {
        SCOPED_TRACE(row.line);
        FakeDisk files;
        for (const auto entry : disk) files.add(entry);
        FakeLauncher launcher;
        launcher.answer = [&](const ToolLaunch&) { return row.answer; };
        const AnalysisResult result = predict(row.line, files, {.environment = environment, .launcher = &launcher});
        Texts launches;
        for (const auto& launch : launcher.launches) launches.push_back(joined(launch.arguments, "|"));
        EXPECT_EQ(launches, row.launches);
        EXPECT_EQ(described(result.analysisError), row.ends);
        EXPECT_EQ(described(result), row.changes);
        EXPECT_EQ(described(result.commandErrors), row.errors);
        EXPECT_EQ(described(result.sideEffects), row.sideEffects);
        EXPECT_EQ(outcome(result), expectedOutcome(row));
    }
}

// Whether the user is asked before the line runs, as the settings are at first.
inline bool isAskedAbout(const AnalysisResult& result, const FilePath& folder) {
    return !reasonsToAsk(commandEffects(result, folder), AnalysisConfirmationToggleList::togglesOfLevel(
                                                             AnalysisConfirmationToggleList::defaultRiskLevel))
                .empty();
}

// Made in an ordinary process alone: what stands in its scratch folder belongs to that user.
struct RealPrediction {
    ScratchFolder scratch;
    std::unique_ptr<FileSystem> files = openFileSystem();
    std::unique_ptr<ReadOnlyLauncher> launcher = openReadOnlyLauncher({.wallClock = std::chrono::milliseconds{5'000}});

    AnalysisResult predict(std::string_view line) {
        const AnalysisServices services{*files, *launcher, builtInCommands(),
                                        [] { return std::string("/usr/bin:/bin:/usr/sbin:/sbin"); }, scratch.path()};
        BasherAnalysis analysis(Basher(std::string(line)), scratch.path(), {},
                                std::make_shared<BasherAnalysisState>(*files), services);
        return analysis.analyse();
    }
    // The changes with paths as seen from the scratch folder.
    Texts changes(std::string_view line) {
        Texts texts = described(predict(line));
        for (auto& text : texts) text = replacedAll(text, scratch.path().text() + "/", "");
        return texts;
    }
    bool canLaunch() const { return launcher->layers() != "none"; }
};

}  // namespace brindlet
