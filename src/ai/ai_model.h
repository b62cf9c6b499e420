// The language models that a user can choose from: the catalogue, and what the settings say of it.
//
//     AIModelList models(settings, customModels);
//     const AIModel model = models.selected();
//     for (const AIModel& each : models.enabledModels(AIModelList::allSmallModels())) show(each.friendlyName);
#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "platform/result.h"
#include "platform/settings_store.h"

namespace brindlet {

class CustomModelList;

// The service that runs a model.
enum class AIModelProvider { openAI, anthropic, google, mistral, inception, custom };
// "OpenAI", "Anthropic", "Google", "Mistral", "Inception", "Custom".
std::string_view rawValue(AIModelProvider provider);

enum class ModelType { small, large, custom };
// "small", "large", "custom".
std::string_view rawValue(ModelType type);

struct AIModel {
    std::string id;
    AIModelProvider provider = AIModelProvider::custom;
    std::string name;                               // sent to the provider and stored in the settings
    std::vector<std::string> legacySelectionNames;  // older names that mean this model still
    std::string friendlyName;
    std::string usageDescription;
    ModelType modelType = ModelType::custom;
    bool reasoning = false;
    bool supportsTemperature = false;

    bool operator==(const AIModel&) const = default;
};

class AIModelList {
  public:
    static constexpr std::string_view selectedModelNameKey = "selectedModelName";
    static constexpr std::string_view summarizationModelNameKey = "finalSummarizationModelName";
    static constexpr std::string_view explicitlyEnabledAIModelsKey = "explicitlyEnabledAIModels";
    static constexpr std::string_view explicitlyDisabledAIModelsKey = "explicitlyDisabledAIModels";

    // Reads both lists of the settings at once; both outlive it.
    AIModelList(SettingsStore& settings, CustomModelList& customModels);
    // Reads both lists anew, as another program may have changed them.
    void reload();

    // Every built-in model, in its order; of them the small and the large ones.
    static std::span<const AIModel> all();
    static std::vector<AIModel> allSmallModels();
    static std::vector<AIModel> allLargeModels();
    static const AIModel& defaultCommandModel();
    static const AIModel& defaultSummarizationModel();

    // A custom model by its name, else a built-in one by its name, its id or an older name; none where nothing matches.
    std::optional<AIModel> named(std::string_view name) const;
    // The model for a new command, and the model for summaries: what the settings name, else the default.
    AIModel selected() const;
    AIModel summarizationModel() const;

    // Makes it the model for commands. The failure's sentence names the settings' file.
    std::optional<Failure> select(const AIModel& model);

    // Those of `models` that the menu offers, in the given order.
    std::vector<AIModel> enabledModels(const std::vector<AIModel>& models) const;
    // The user's own models that the menu offers.
    std::vector<AIModel> enabledCustomModels() const;
    // Stores both lists; the failure's sentence names the settings' file.
    std::optional<Failure> setEnabled(const AIModel& model, bool enabled);

  private:
    SettingsStore& settings_;
    CustomModelList& customModels_;
    std::vector<AIModel> userEnabledModels_;
    std::vector<AIModel> userDisabledModels_;
};

}  // namespace brindlet
