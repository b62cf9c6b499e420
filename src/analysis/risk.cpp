#include "analysis/risk.h"

#include <algorithm>
#include <iterator>
#include <nlohmann/json.hpp>

#include "text/enum_rows.h"
#include "text/overloaded.h"

namespace brindlet {

namespace {

struct EffectRow {
    CommandEffect key;
    std::string_view rawValue;
    RiskSummary risk;
    std::int64_t leastLegacyLevel;  // of the older single setting, the lowest that allowed it
};
constexpr EffectRow effectRows[] = {
    {CommandEffect::harmless, "Harmless commands", RiskSummary::low, 0},
    {CommandEffect::createNewFiles, "Create new files", RiskSummary::low, 2},
    {CommandEffect::renameFiles, "Rename files", RiskSummary::medium, 4},
    {CommandEffect::moveFiles, "Move files", RiskSummary::medium, 5},
    {CommandEffect::modifyFiles, "Modify files", RiskSummary::medium, 6},
    {CommandEffect::changeFilesOutsideFolder, "Change files outside current folder", RiskSummary::medium, 6},
    {CommandEffect::haveMinorSideEffects, "Have minor side effects", RiskSummary::low, 3},
    {CommandEffect::haveSignificantSideEffects, "Have significant side effects", RiskSummary::high, 7},
    {CommandEffect::moveToTrash, "Move items to Trash", RiskSummary::high, 7},
    {CommandEffect::deleteOrOverwriteFiles, "Delete or overwrite files", RiskSummary::high, 9},
    {CommandEffect::runUnknownScriptsOrCommands, "Run unknown scripts or commands", RiskSummary::high, 9},
    {CommandEffect::commandHasError, "Commands with errors", RiskSummary::high, 9},
};
static_assert(rowsCover(effectRows, CommandEffect::commandHasError) && std::size(effectRows) == commandEffectCount);

constexpr std::string_view riskNames[] = {"low", "medium", "high"};

constexpr auto minor = CommandEffect::haveMinorSideEffects;
constexpr auto significant = CommandEffect::haveSignificantSideEffects;

struct SideEffectRow {
    PlainSideEffect key;
    CommandEffect effect;
    bool runsWhatIsUnknown = false;
};
constexpr SideEffectRow sideEffectRows[] = {
    {PlainSideEffect::launchesApp, minor},
    {PlainSideEffect::revealsInFinder, minor},
    {PlainSideEffect::opensFile, minor},
    {PlainSideEffect::longRunning, minor},
    {PlainSideEffect::indefinite, significant},
    {PlainSideEffect::networkAccess, minor},
    {PlainSideEffect::modifiesSystemSetting, significant},
    {PlainSideEffect::kill, significant},
    {PlainSideEffect::runsInBackground, significant},
    {PlainSideEffect::runningUnknownScript, significant, true},
    {PlainSideEffect::copyToClipboard, minor},
    {PlainSideEffect::readsFromClipboard, minor},
    {PlainSideEffect::unknownCommand, significant, true},
    {PlainSideEffect::partialSupport, significant},
    {PlainSideEffect::unknownFileChanges, significant},
    {PlainSideEffect::filesChangedBeforeReadingFiles, significant},
    {PlainSideEffect::renameToInvisible, significant},
    {PlainSideEffect::homebrewInstall, significant},
    {PlainSideEffect::homebrewUninstall, significant},
    {PlainSideEffect::printsDocument, significant},
};
static_assert(rowsCover(sideEffectRows, PlainSideEffect::printsDocument));

using Effects = std::set<CommandEffect>;

void addEffectsOf(const SideEffectType& type, Effects& effects) {
    std::visit(Overloaded{
                   [&](PowerAction) { effects.insert(significant); },
                   [&](const ExtraFileChanges&) { effects.insert(significant); },
                   [&](const ComplexCommand&) { effects.insert(significant); },
                   [&](PlainSideEffect plain) {
                       const SideEffectRow& row = rowOf(sideEffectRows, plain);
                       effects.insert(row.effect);
                       if (row.runsWhatIsUnknown) effects.insert(CommandEffect::runUnknownScriptsOrCommands);
                   },
               },
               type);
}

void addEffectsOfMove(const FileChange& move, Effects& effects) {
    const MoveMeaning meaning = meaningOfMove(move);
    if (meaning.movesToTrash) effects.insert(CommandEffect::moveToTrash);
    if (meaning.renames) effects.insert(CommandEffect::renameFiles);
    if (meaning.changesFolder) effects.insert(CommandEffect::moveFiles);
}

// A prefix of the text and no more: "/a/bc" counts as inside "/a/b". The Trash is never outside.
bool countsAsInside(const FilePath& path, const FilePath& folder) {
    return path.text().starts_with(folder.text()) || isInTrash(path);
}

void addEffectsOf(const FileChange& change, const FilePath& folder, Effects& effects) {
    switch (change.type) {
        case FileChange::FileChangeType::create:
            effects.insert(CommandEffect::createNewFiles);
            break;
        case FileChange::FileChangeType::modify:
            effects.insert(CommandEffect::modifyFiles);
            break;
        case FileChange::FileChangeType::move:
            addEffectsOfMove(change, effects);
            break;
        case FileChange::FileChangeType::delete_:
        case FileChange::FileChangeType::overwrite:
            effects.insert(CommandEffect::deleteOrOverwriteFiles);
            break;
    }
    if (!countsAsInside(change.url, folder) || (change.sourceURL && !countsAsInside(*change.sourceURL, folder)))
        effects.insert(CommandEffect::changeFilesOutsideFolder);
}

// None for anything but a JSON array of raw values that are all known.
std::optional<Effects> effectsOfStoredText(std::string_view text) {
    const auto stored = nlohmann::json::parse(text, nullptr, /*allow_exceptions=*/false);
    if (!stored.is_array()) return std::nullopt;
    Effects effects;
    for (const auto& element : stored) {
        if (!element.is_string()) return std::nullopt;
        const auto effect = commandEffectFromRawValue(element.get_ref<const std::string&>());
        if (!effect) return std::nullopt;
        effects.insert(*effect);
    }
    return effects;
}

}  // namespace

std::string_view rawValue(CommandEffect effect) {
    return rowOf(effectRows, effect).rawValue;
}

std::optional<CommandEffect> commandEffectFromRawValue(std::string_view rawValue) {
    const auto row = std::ranges::find(effectRows, rawValue, &EffectRow::rawValue);
    if (row == std::end(effectRows)) return std::nullopt;
    return row->key;
}

RiskSummary risk(CommandEffect effect) {
    return rowOf(effectRows, effect).risk;
}

std::string_view caseName(RiskSummary risk) {
    return riskNames[static_cast<std::size_t>(risk)];
}

Effects commandEffects(const AnalysisResult& result, const FilePath& folder) {
    Effects effects{CommandEffect::harmless};
    for (const PredictedChange& predicted : result.changes) addEffectsOf(predicted.change, folder, effects);
    for (const SideEffect& sideEffect : result.sideEffects) addEffectsOf(sideEffect.type, effects);
    if (result.analysisError || !result.commandErrors.empty()) effects.insert(CommandEffect::commandHasError);
    return effects;
}

RiskSummary riskSummary(const Effects& effects) {
    RiskSummary highest = RiskSummary::low;
    for (const CommandEffect effect : effects) highest = std::max(highest, risk(effect));
    return highest;
}

Effects reasonsToAsk(const Effects& effects, const Effects& toggles) {
    Effects reasons;
    std::ranges::set_difference(effects, toggles, std::inserter(reasons, reasons.end()));
    return reasons;
}

AnalysisConfirmationToggleList::AnalysisConfirmationToggleList(SettingsStore& settings) : settings_(settings) {
    if (const auto text = settings_.text(togglesKey)) {
        if (auto stored = effectsOfStoredText(*text)) {
            toggles_ = std::move(*stored);
            return;
        }
    }
    toggles_ = togglesOfLevel(settings_.integer(legacyRiskLevelKey).value_or(defaultRiskLevel));
    save();
}

void AnalysisConfirmationToggleList::set(CommandEffect effect, bool allowed) {
    if (allowed) {
        toggles_.insert(effect);
    } else {
        toggles_.erase(effect);
    }
    save();
}

void AnalysisConfirmationToggleList::save() {
    auto rawValues = nlohmann::json::array();
    for (const CommandEffect effect : toggles_) rawValues.push_back(rawValue(effect));
    // A store that can't be written must not stop a prediction: the set then holds for this run of the program.
    static_cast<void>(settings_.setText(togglesKey, rawValues.dump()));
}

Effects AnalysisConfirmationToggleList::togglesOfLevel(std::int64_t level) {
    Effects toggles;
    for (const EffectRow& row : effectRows)
        if (level >= row.leastLegacyLevel) toggles.insert(row.key);
    return toggles;
}

}  // namespace brindlet
