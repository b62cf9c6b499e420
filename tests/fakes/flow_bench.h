// A flow with nothing real around it: models answer what is laid ready, lines are predicted as told, runs end as told.
//
//     Bench bench;
//     bench.answer("wc -l");
//     bench.request("how many lines?");
//     bench.step();   // the model has answered
#pragma once

#include <deque>
#include <functional>
#include <initializer_list>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "exec/command_history.h"
#include "fakes/fake_disk.h"
#include "fakes/fake_models.h"
#include "fakes/fake_secret_store.h"
#include "fakes/hand_cranked.h"
#include "support/scratch_folder.h"
#include "ui/prompt_flow.h"

namespace brindlet {

struct FakePackages final : FlowPackages {
    std::set<std::string> missing;
    bool isHomebrewAbsent = false;
    bool isNeededForPrediction = false;
    std::optional<Failure> failure;
    int refreshes = 0;

    std::optional<std::string> firstMissingPackage(const std::set<std::string>& required) override {
        for (const std::string& name : required)
            if (missing.contains(name)) return name;
        return std::nullopt;
    }
    bool needsHomebrew(const std::string&) override { return isHomebrewAbsent; }
    bool requiresInstallForPrediction(const std::string&) override { return isNeededForPrediction; }
    std::optional<Failure> install(const std::string& package,
                                   const std::function<void(const CommandProgress&)>& report,
                                   const std::stop_token&) override {
        report(OutputLine{"Unpacking"});
        if (!failure) missing.erase(package);
        return failure;
    }
    void refresh() override { ++refreshes; }
};

// A flow with nothing real around it. Lines are predicted as told, else as harmless.
class Bench {
  public:
    Bench() { finder.take({{"/w/a.txt", "/w/b.txt"}, "/w"}); }

    PromptFlow& flow() {
        if (!flow_) {
            flow_ = std::make_unique<PromptFlow>(FlowServices{
                .loop = loop,
                .workers = workers,
                .finder = finder,
                .generator = generator,
                .models = models,
                .modelList = modelList,
                .packages = packages,
                .analyse =
                    [this](const std::string& line, const std::vector<FilePath>& files, const FilePath&) {
                        ++analyses;
                        analysedFiles = files.size();
                        AnalysisResult result = predicted.contains(line) ? predicted[line] : AnalysisResult{};
                        result.rewrittenCommand = line;
                        return result;
                    },
                .allowedEffects = [] { return AnalysisConfirmationToggleList::togglesOfLevel(3); },
                .run = [this](const std::string& line, const std::vector<FilePath>& files, const FilePath&,
                              const auto& report, const std::stop_token& stop) -> std::optional<CommandRunResult> {
                    std::string entry = line;
                    for (const FilePath& file : files) entry += " " + std::string(file.name());
                    ran.push_back(entry);
                    report(OutputLine{"working"});
                    report(ProgressNorm{0.5});
                    if (stop.stop_requested()) return std::nullopt;
                    if (runResults.empty()) return CommandRunResult{"done", "", 0};
                    auto result = runResults.front();
                    runResults.pop_front();
                    return result;
                },
                .reveal = [this](const std::vector<FilePath>& files) { revealed = files; },
                .exists = [](const FilePath& file) { return file.name() != "never.txt"; },
                .history = &history,
                .isPredictionOut = [this] { return isPredictionOut; }});
            flow_->appear();
            finder.onChange([this] { flow_->selectionChanged(); });
        }
        return *flow_;
    }
    PromptState state() { return flow().view().promptState; }
    void answer(const std::string& text) { models.answers.emplace_back(text); }
    void fail(Failure failure) { models.answers.emplace_back(std::move(failure)); }
    void request(const std::string& text) {
        flow().setPrompt(text);
        flow().submit();
    }
    // One piece of a worker's work, and what comes of it.
    void step() {
        workers.crank();
        loop.crank();
    }
    void finish() {
        while (workers.hasWork()) step();
    }
    static AnalysisResult deletes(const std::string& path) {
        AnalysisResult result;
        result.exitCode = 0;
        result.changes = {
            {.change = {.type = FileChange::FileChangeType::delete_, .url = FilePath(path), .sourceURL = {}}}};
        return result;
    }
    static AnalysisResult creates(std::initializer_list<const char*> paths) {
        AnalysisResult result;
        result.exitCode = 0;
        for (const char* path : paths)
            result.changes.push_back(
                {.change = {.type = FileChange::FileChangeType::create, .url = FilePath(path), .sourceURL = {}}});
        return result;
    }

    ScratchFolder scratch;
    HandCrankedLoop loop;
    HandCrankedWorkers workers;
    FakeDisk disk{"w/a.txt", "w/b.txt"};
    FinderContext finder{loop, workers, disk, [] { return std::optional<FinderSelection>(); }};
    SettingsStore settings{FilePath(scratch.path()).child("settings.json")};
    FakeSecretStore secrets;
    CustomModelList customModels{FilePath(scratch.path()), secrets};
    AIModelList modelList{settings, customModels};
    FakeModels models;
    PromptSimilaritySearch search;
    AICommandGenerator generator{models, customModels, [this] { return PromptSources{search, disk, {}}; }};
    FakePackages packages;
    CommandHistoryStore history{FilePath(scratch.path()), settings};
    std::map<std::string, AnalysisResult> predicted;
    std::deque<CommandRunResult> runResults;
    std::vector<std::string> ran;
    std::vector<FilePath> revealed;
    int analyses = 0;
    bool isPredictionOut = false;
    std::size_t analysedFiles = 0;

  private:
    std::unique_ptr<PromptFlow> flow_;
};

}  // namespace brindlet
