// What a prediction comes down to: a set of effects, which is held against what the user lets run without asking, and
// one risk, which colours the display.
//
//     auto reasons = reasonsToAsk(commandEffects(result, folder), toggles.toggles());
#pragma once

#include <optional>
#include <set>
#include <string>
#include <string_view>

#include "analysis/analysis_result.h"
#include "platform/file_path.h"
#include "platform/settings_store.h"

namespace brindlet {

// In declared order. The raw value of each is both its title and its form in storage.
enum class CommandEffect {
    harmless,
    createNewFiles,
    renameFiles,
    moveFiles,
    modifyFiles,
    changeFilesOutsideFolder,
    haveMinorSideEffects,
    haveSignificantSideEffects,
    moveToTrash,
    deleteOrOverwriteFiles,
    runUnknownScriptsOrCommands,
    commandHasError,
};
inline constexpr int commandEffectCount = 12;

enum class RiskSummary { low, medium, high };

std::string_view rawValue(CommandEffect effect);
std::optional<CommandEffect> commandEffectFromRawValue(std::string_view rawValue);
RiskSummary risk(CommandEffect effect);
std::string_view caseName(RiskSummary risk);

// The effects of a prediction for a command that is for the folder. Pure.
std::set<CommandEffect> commandEffects(const AnalysisResult& result, const FilePath& folder);

// The highest risk among them; low where there are none.
RiskSummary riskSummary(const std::set<CommandEffect>& effects);

// The effects that are not allowed without asking. None: the command may run at once.
std::set<CommandEffect> reasonsToAsk(const std::set<CommandEffect>& effects, const std::set<CommandEffect>& toggles);

// The effects that may run without asking, as the user has set them.
class AnalysisConfirmationToggleList {
  public:
    static constexpr std::string_view togglesKey = "analysisConfirmationToggles";
    static constexpr std::string_view legacyRiskLevelKey = "autoRunRiskLevel";
    static constexpr int defaultRiskLevel = 3;

    // Reads the stored set; without a good one, makes it from the older risk level or the default, and saves it.
    explicit AnalysisConfirmationToggleList(SettingsStore& settings);

    const std::set<CommandEffect>& toggles() const { return toggles_; }
    void set(CommandEffect effect, bool allowed);  // and saves
    void save();

    static std::set<CommandEffect> togglesOfLevel(std::int64_t level);

  private:
    SettingsStore& settings_;
    std::set<CommandEffect> toggles_;
};

}  // namespace brindlet
