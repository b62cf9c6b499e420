// Predictions of single lines over a fake disk, and what they hold as short texts.
//
//     FakeDisk disk{"a", "folder/"};
//     described(predict("mv a folder; mkdir new", disk))  // {"move a -> folder/a", "create new/"}
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "analysis/basher_analysis.h"
#include "analysis/models/command_table.h"
#include "fakes/fake_disk.h"
#include "fakes/fake_launcher.h"

namespace brindlet {

struct PredictOptions {
    FilePath folder{"/w"};
    Environment environment = {};
    std::string searchPath = "/usr/bin:/bin";
    FilePath home{"/home/me"};
    FakeLauncher* launcher = nullptr;  // none: real tools say nothing
    AnalysisLimits limits = {};
};

inline AnalysisResult predict(std::string_view line, FileSystem& disk, const PredictOptions& options = {}) {
    FakeLauncher silent;
    const AnalysisServices services{disk,
                                    options.launcher ? *options.launcher : silent,
                                    builtInCommands(),
                                    [&] { return options.searchPath; },
                                    options.home,
                                    options.limits};
    BasherAnalysis analysis(Basher(std::string(line)), options.folder, options.environment,
                            std::make_shared<BasherAnalysisState>(disk), services);
    return analysis.analyse();
}

// A path as seen from "/w"; others stay absolute.
inline std::string shortPath(const FilePath& path) {
    const FilePath folder("/w");
    return path.isInside(folder) ? relativePath(path, folder) : path.text();
}

// "create new/", "delete d", "move a -> c"; a slash behind a folder.
inline std::vector<std::string> described(const std::vector<PredictedChange>& changes) {
    std::vector<std::string> texts;
    for (const auto& [change, isDirectory] : changes) {
        std::string text = std::string(caseName(change.type)) + " ";
        if (change.sourceURL) text += shortPath(*change.sourceURL) + " -> ";
        texts.push_back(text + shortPath(change.url) + (isDirectory ? "/" : ""));
    }
    return texts;
}
inline std::vector<std::string> described(const AnalysisResult& result) {
    return described(result.changes);
}

// "friendly / technical".
inline std::vector<std::string> described(const std::vector<CommandError>& errors) {
    std::vector<std::string> texts;
    for (const auto& error : errors) texts.push_back(error.friendly + " / " + error.technical);
    return texts;
}

// "networkAccess: Makes network request".
inline std::vector<std::string> described(const std::vector<SideEffect>& sideEffects) {
    std::vector<std::string> texts;
    for (const auto& sideEffect : sideEffects)
        texts.push_back(std::string(caseName(sideEffect.type)) + ": " + sideEffect.description());
    return texts;
}

// "highRisk: text"; "" where the analysis came to its end.
inline std::string described(const std::optional<BasherAnalysisError>& error) {
    return error ? std::string(caseName(error->kind)) + ": " + error->text : "";
}

// The exit code, or "?", then the output if there is one: "0", "0 'hi\n'", "? unknown".
inline std::string outcome(const AnalysisResult& result) {
    const std::string exit = result.exitCode ? std::to_string(*result.exitCode) : "?";
    if (!result.output.isKnown()) return exit + " unknown";
    return result.output.text().empty() ? exit : exit + " '" + result.output.text() + "'";
}

}  // namespace brindlet
