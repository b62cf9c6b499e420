#include "ai/ai_model.h"

#include <algorithm>
#include <nlohmann/json.hpp>

#include <fmt/format.h>

#include "ai/custom_model.h"
#include "platform/log.h"
#include "text/enum_rows.h"
#include "text/strings.h"

namespace brindlet {

namespace {

struct ProviderRow {
    AIModelProvider key;
    std::string_view name;
};
constexpr ProviderRow providerRows[] = {
    {AIModelProvider::openAI, "OpenAI"},       {AIModelProvider::anthropic, "Anthropic"},
    {AIModelProvider::google, "Google"},       {AIModelProvider::mistral, "Mistral"},
    {AIModelProvider::inception, "Inception"}, {AIModelProvider::custom, "Custom"},
};
static_assert(rowsCover(providerRows, AIModelProvider::custom));

constexpr std::string_view modelTypeNames[] = {"small", "large", "custom"};

enum ModelTrait : unsigned { plain = 0, reasons = 1, takesTemperature = 2 };

struct ModelRow {
    std::string_view name;  // the id, too
    AIModelProvider provider;
    std::string_view friendlyName;
    std::string_view usageDescription;
    ModelType type;
    unsigned traits = plain;
    std::string_view legacyNames = "";  // with blanks between
};

namespace catalogue {

using enum AIModelProvider;
constexpr ModelType small = ModelType::small, large = ModelType::large;

// In the order in which they are offered.
constexpr ModelRow modelRows[] = {
    {"gpt-5.4-mini", openAI, "GPT-5.4 mini", "Can be slower than GPT 4.1 mini, but gives good results", small, reasons,
     "gpt-5-mini"},
    {"gpt-5.4-nano", openAI, "GPT-5.4 nano", "Reasonably fast, good for summarisation but not ideal for general usage",
     small, reasons, "gpt-5-nano"},
    {"gpt-4.1-mini", openAI, "GPT-4.1 mini", "Perfect for general usage: Fast, yet great accuracy", small,
     takesTemperature, "gpt-4o-mini"},
    {"gpt-4.1-nano", openAI, "GPT-4.1 nano", "Super fast, good for summarisation but not ideal for general usage",
     small, takesTemperature},
    {"claude-haiku-4-5", anthropic, "Claude 4.5 Haiku", "Fast, with similar accuracy to Claude 4 Sonnet", small, plain,
     "claude-3-5-haiku-latest"},
    {"mistral-small-latest", mistral, "Mistral Small", "Fast, but less accurate model", small},
    {"mistral-medium-latest", mistral, "Mistral Medium", "Good for general usage: fast, yet great accuracy", small},
    {"gpt-5.4", openAI, "GPT-5.4", "Can be slower than GPT 4.1, but gives excellent results", large, reasons, "gpt-5"},
    {"gpt-4.1", openAI, "GPT-4.1", "Slow but accurate model", large, takesTemperature, "gpt-4o"},
    {"claude-sonnet-4-5", anthropic, "Claude 4.5 Sonnet", "Slow, but excellent reputation for coding", large, plain,
     "claude-3-7-sonnet-latest claude-sonnet-4-0"},
    {"codestral-latest", mistral, "Codestral", "Fast, but good focus on coding", small},
    {"mistral-large-latest", mistral, "Mistral Large", "Slower, potentially more accurate model", large},
    {"gemini-2.5-flash-lite", google, "Gemini 2.5 Flash Lite", "Super fast, but less accurate", small},
    {"gemini-2.5-flash", google, "Gemini 2.5 Flash", "Great for general usage: Fast, yet great accuracy", small},
    {"gemini-2.5-pro", google, "Gemini 2.5 Pro", "Slow but accurate model", large},
    {"mercury-coder", inception, "Mercury Coder", "Experimental diffusion model, known for speed", small,
     takesTemperature},
    {"mercury-2", inception, "Mercury 2", "Experimental diffusion model, known for speed", small, takesTemperature},
};

}  // namespace catalogue

constexpr std::string_view defaultCommandModelName = "gpt-4.1-mini";
constexpr std::string_view defaultSummarizationModelName = "gpt-4.1-nano";
constexpr std::string_view idsOnByDefault[] = {"gpt-4.1-mini", "claude-haiku-4-5", "claude-sonnet-4-5"};

AIModel modelOf(const ModelRow& row) {
    return {.id = std::string(row.name),
            .provider = row.provider,
            .name = std::string(row.name),
            .legacySelectionNames = splitNonEmpty(row.legacyNames, " "),
            .friendlyName = std::string(row.friendlyName),
            .usageDescription = std::string(row.usageDescription),
            .modelType = row.type,
            .reasoning = (row.traits & reasons) != 0,
            .supportsTemperature = (row.traits & takesTemperature) != 0};
}

bool goesByName(const AIModel& model, std::string_view name) {
    return model.name == name || model.id == name || std::ranges::count(model.legacySelectionNames, name) > 0;
}

const AIModel* builtInModel(std::string_view name) {
    const auto models = AIModelList::all();
    const auto found = std::ranges::find_if(models, [&](const AIModel& model) { return goesByName(model, name); });
    return found == models.end() ? nullptr : &*found;
}

std::vector<AIModel> modelsOfType(ModelType type) {
    std::vector<AIModel> models;
    std::ranges::copy_if(AIModelList::all(), std::back_inserter(models),
                         [&](const AIModel& model) { return model.modelType == type; });
    return models;
}

bool holdsModel(const std::vector<AIModel>& models, std::string_view id) {
    return std::ranges::find(models, id, &AIModel::id) != models.end();
}

// The built-in models that the text of a setting, a JSON array of names, holds; what no model goes by is left out.
std::vector<AIModel> storedModels(const SettingsStore& settings, std::string_view key) {
    std::vector<AIModel> models;
    const auto names = nlohmann::json::parse(settings.text(key).value_or(""), nullptr, /*allow_exceptions=*/false);
    if (!names.is_array()) return models;
    for (const auto& name : names) {
        const AIModel* model = name.is_string() ? builtInModel(name.get_ref<const std::string&>()) : nullptr;
        if (model && !holdsModel(models, model->id)) models.push_back(*model);
    }
    return models;
}

std::vector<std::string> modelNames(const std::vector<AIModel>& models) {
    std::vector<std::string> names;
    for (const AIModel& model : models) names.push_back(model.name);
    return names;
}

std::optional<Failure> storeModels(SettingsStore& settings, std::string_view key, const std::vector<AIModel>& models) {
    const nlohmann::json names = modelNames(models);
    return settings.setText(key, names.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace));
}

}  // namespace

std::string_view rawValue(AIModelProvider provider) {
    return rowOf(providerRows, provider).name;
}

std::string_view rawValue(ModelType type) {
    return modelTypeNames[static_cast<std::size_t>(type)];
}

AIModelList::AIModelList(SettingsStore& settings, CustomModelList& customModels)
    : settings_(settings),
      customModels_(customModels),
      userEnabledModels_(storedModels(settings, explicitlyEnabledAIModelsKey)),
      userDisabledModels_(storedModels(settings, explicitlyDisabledAIModelsKey)) {}

void AIModelList::reload() {
    userEnabledModels_ = storedModels(settings_, explicitlyEnabledAIModelsKey);
    userDisabledModels_ = storedModels(settings_, explicitlyDisabledAIModelsKey);
}

std::span<const AIModel> AIModelList::all() {
    static const std::vector<AIModel> models = [] {
        std::vector<AIModel> made;
        std::ranges::transform(catalogue::modelRows, std::back_inserter(made), modelOf);
        return made;
    }();
    return models;
}

std::vector<AIModel> AIModelList::allSmallModels() {
    return modelsOfType(ModelType::small);
}

std::vector<AIModel> AIModelList::allLargeModels() {
    return modelsOfType(ModelType::large);
}

const AIModel& AIModelList::defaultCommandModel() {
    return *builtInModel(defaultCommandModelName);
}

const AIModel& AIModelList::defaultSummarizationModel() {
    return *builtInModel(defaultSummarizationModelName);
}

std::optional<AIModel> AIModelList::named(std::string_view name) const {
    for (const CustomModel& model : customModels_.validModels())
        if (model.modelName == name) return model.aiModel();
    const AIModel* model = builtInModel(name);
    return model ? std::optional(*model) : std::nullopt;
}

AIModel AIModelList::selected() const {
    const std::string name = settings_.text(selectedModelNameKey).value_or(std::string(defaultCommandModelName));
    return named(name).value_or(defaultCommandModel());
}

AIModel AIModelList::summarizationModel() const {
    const std::string name = settings_.text(summarizationModelNameKey).value_or("");
    if (name.empty()) return defaultSummarizationModel();
    return named(name).value_or(defaultSummarizationModel());
}

std::optional<Failure> AIModelList::select(const AIModel& model) {
    return settings_.setText(selectedModelNameKey, model.name);
}

std::vector<AIModel> AIModelList::enabledModels(const std::vector<AIModel>& models) const {
    const auto isOffered = [&](const AIModel& model) {
        const bool isOn = std::ranges::count(idsOnByDefault, model.id) > 0 || holdsModel(userEnabledModels_, model.id);
        return isOn && !holdsModel(userDisabledModels_, model.id);
    };
    std::vector<AIModel> offered;
    std::ranges::copy_if(models, std::back_inserter(offered), isOffered);
    return offered;
}

std::vector<AIModel> AIModelList::enabledCustomModels() const {
    std::vector<AIModel> offered;
    for (const CustomModel& model : customModels_.validModels())
        if (model.enabled) offered.push_back(model.aiModel());
    return offered;
}

std::optional<Failure> AIModelList::setEnabled(const AIModel& model, bool enabled) {
    std::vector<AIModel>& gaining = enabled ? userEnabledModels_ : userDisabledModels_;
    std::vector<AIModel>& losing = enabled ? userDisabledModels_ : userEnabledModels_;
    if (!holdsModel(gaining, model.id)) gaining.push_back(model);
    std::erase_if(losing, [&](const AIModel& other) { return other.id == model.id; });

    auto failure = storeModels(settings_, explicitlyEnabledAIModelsKey, userEnabledModels_);
    auto otherFailure = storeModels(settings_, explicitlyDisabledAIModelsKey, userDisabledModels_);
    logInfo(fmt::format("User enabled models: {}", joined(modelNames(userEnabledModels_), ", ")));
    logInfo(fmt::format("User disabled models: {}", joined(modelNames(userDisabledModels_), ", ")));
    return failure ? failure : otherFailure;
}

}  // namespace brindlet
