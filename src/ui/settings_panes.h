// What the settings window says and offers, apart from its drawing.
//
//     for (const AutoRunSwitch& each : autoRunSwitches(toggles.toggles())) draw(each.title, each.isOn);
//     for (const ModelSection& section : modelSections(choice)) draw(section.title, section.models);
#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <set>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "ai/ai_model.h"
#include "ai/custom_model.h"
#include "ai/provider_api_keys.h"
#include "analysis/risk.h"
#include "exec/packages.h"

namespace brindlet {

struct SettingsTab {
    std::string_view label;
    std::string_view symbolName;
};
// In the order in which they are shown.
std::span<const SettingsTab> settingsTabs();
// None for a label that no tab has.
std::optional<std::size_t> settingsTabNamed(std::string_view label);

// Every place outside the program that one of its windows leads to.
struct Link {
    std::string_view name;
    std::string_view label;
    std::string_view url;
};
// The links of the about tab, in order.
std::span<const Link> aboutLinks();
// Aborts for a name that isn't in the table.
const Link& linkNamed(std::string_view name);

// --- What may run without asking ---

struct AutoRunSwitch {
    CommandEffect effect;
    std::string_view title;
    bool isOn = false;
    bool isEnabled = true;
    bool isRed = false;
    bool operator==(const AutoRunSwitch&) const = default;
};
// One for each effect, in order: the first `itemsPerColumn` stand in the first column, the others in the second.
inline constexpr std::size_t itemsPerColumn = commandEffectCount / 2;
std::vector<AutoRunSwitch> autoRunSwitches(const std::set<CommandEffect>& allowed);

// Lines behind a help button; none for an effect that explains itself.
std::span<const std::string_view> helpLines(CommandEffect effect);

// --- Models ---

enum class ModelPopupMode { all, allAvailable, userEnabledModels };

struct ModelChoice {
    ModelPopupMode mode;
    const AIModelList& list;
    const std::vector<CustomModel>& customModels;  // the valid ones
    // Whether a request to it could go somewhere; asked only for `allAvailable`.
    std::function<bool(const AIModel&)> isUsable{};
};
struct ModelSection {
    std::string_view title;
    std::vector<AIModel> models;  // at least one
};
// The menu of a model popup.
std::vector<ModelSection> modelSections(const ModelChoice& choice);
bool offers(const std::vector<ModelSection>& sections, const AIModel& model);

// A model that nobody has named yet is a "New custom model".
std::string titleOf(const CustomModel& model);
// Why no request could be made with it, in a sentence; empty where one could.
std::string problemOf(const CustomModel& model);

// What an empty field for a provider's key says.
std::string keyPlaceholder(AIModelProvider provider, KeyOrigin origin);

// --- Extra tools ---

struct PackageRow {
    const PackageInfo* package;
    bool isInstalled = false;
    std::optional<InstallationProgress> active{};  // an installation or removal that is running

    std::string_view symbolName() const { return isInstalled ? "checkmark.circle.fill" : "icloud.and.arrow.down"; }
};
struct PackageSection {
    std::string_view title;
    std::string_view text;  // empty: none
    std::vector<PackageRow> rows;
};
std::vector<PackageSection> packageSections(const PackageManager& packages);

// "37%"; of what is below 0, above 1 or no number the nearest.
std::string percentText(double progress);

}  // namespace brindlet
