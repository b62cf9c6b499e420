#include "ai/custom_model.h"

#include <algorithm>
#include <filesystem>
#include <memory>
#include <nlohmann/json.hpp>
#include <system_error>
#include <utility>

#include <fmt/format.h>

#include "ai/ai_command.h"
#include "platform/atomic_file.h"
#include "platform/file_system.h"
#include "text/strings.h"

namespace brindlet {

namespace {

using ModelJson = nlohmann::ordered_json;

// Written by this program it is a few hundred bytes. Reading an object takes time by the square of its keys.
constexpr std::size_t largestModelFile = 32 * 1024;
constexpr std::size_t longestModelId = 200;
constexpr std::string_view modelFileEnding = ".json";
constexpr std::string_view newModelBaseURL = "http://localhost:1234";

// A field of the file is there and of its kind, or it isn't.
template <class Value>
std::optional<Value> fieldOf(const ModelJson& json, const char* key);

template <>
std::optional<std::string> fieldOf(const ModelJson& json, const char* key) {
    const auto found = json.find(key);
    if (found == json.end() || !found->is_string()) return std::nullopt;
    return found->get<std::string>();
}

template <>
std::optional<bool> fieldOf(const ModelJson& json, const char* key) {
    const auto found = json.find(key);
    if (found == json.end() || !found->is_boolean()) return std::nullopt;
    return found->get<bool>();
}

// Reads the fields one after the other; the first that isn't as it should be stays in `badKey`.
class ModelFields {
  public:
    explicit ModelFields(const ModelJson& json) : json_(json) {}

    template <class Value>
    void require(const char* key, Value& field) {
        auto value = fieldOf<Value>(json_, key);
        if (value) field = std::move(*value);
        if (!value && !badKey) badKey = key;
    }
    // Missing and null alike are none.
    template <class Value>
    void allow(const char* key, std::optional<Value>& field) {
        const auto found = json_.find(key);
        if (found == json_.end() || found->is_null()) return;
        field = fieldOf<Value>(json_, key);
        if (!field && !badKey) badKey = key;
    }

    const char* badKey = nullptr;

  private:
    const ModelJson& json_;
};

// An id may come from a file that anybody wrote: it mustn't lead to another folder.
bool isPlainName(std::string_view id) {
    return !id.empty() && id.size() <= longestModelId && id.find_first_of(std::string_view("/\0", 2)) == id.npos;
}

Result<FilePath> fileOf(const FilePath& folder, std::string_view id) {
    if (isPlainName(id)) return folder.child(std::string(id) + std::string(modelFileEnding));
    return Failure{fmt::format("The id '{}' can't be the name of a file in '{}'", id, folder.text())};
}

std::optional<CustomModel> modelIn(FileSystem& files, const FilePath& file) {
    const Result<std::string> text = files.readFile(file, largestModelFile);
    if (!text) return std::nullopt;
    auto model = customModelFromJson(ModelJson::parse(*text, nullptr, /*allow_exceptions=*/false));
    return model ? std::optional(std::move(*model)) : std::nullopt;
}

// In the order of the files' names, so that two runs agree. What begins with a point is somebody's unfinished work.
std::vector<CustomModel> modelsIn(const FilePath& folder) {
    const std::unique_ptr<FileSystem> files = openFileSystem();
    auto names = files->listNames(folder).value_or(std::vector<std::string>());
    std::ranges::sort(names);
    std::vector<CustomModel> models;
    for (const std::string& name : names) {
        if (name.starts_with('.')) continue;
        if (auto model = modelIn(*files, folder.child(name))) models.push_back(std::move(*model));
    }
    return models;
}

std::optional<Failure> writeModel(const FilePath& folder, const CustomModel& model) {
    const Result<FilePath> file = fileOf(folder, model.id);
    if (!file) return file.failure();
    if (auto failure = makeFolders(folder)) return failure;
    return writeFileAtomically(*file, toJson(model).dump(4, ' ', false, ModelJson::error_handler_t::replace) + "\n");
}

std::optional<Failure> deleteModelFile(const FilePath& folder, std::string_view id) {
    const Result<FilePath> file = fileOf(folder, id);
    if (!file) return file.failure();
    std::error_code error;
    if (std::filesystem::remove(file->text(), error)) return std::nullopt;
    return Failure{
        fmt::format("Can't delete '{}': {}", file->text(), error ? error.message() : "There is no such file")};
}

std::string customKeyAccount(std::string_view id) {
    return fmt::format("Brindlet custom model API Key {}", id);
}

}  // namespace

CustomModel CustomModel::fresh() {
    return {.id = newUuid(),
            .modelName = "",
            .friendlyName = std::nullopt,
            .baseURL = std::string(newModelBaseURL),
            .fastMode = std::nullopt};
}

AIModel CustomModel::aiModel() const {
    return {.id = id,
            .provider = AIModelProvider::custom,
            .name = modelName,
            .legacySelectionNames = {},
            .friendlyName = friendlyName && !friendlyName->empty() ? *friendlyName : modelName,
            .usageDescription = "",
            .modelType = ModelType::custom};
}

ModelJson toJson(const CustomModel& model) {
    ModelJson json = ModelJson::object();
    json["id"] = model.id;
    json["modelName"] = model.modelName;
    if (model.friendlyName) json["friendlyName"] = *model.friendlyName;
    json["baseURL"] = model.baseURL;
    json["setTemperature"] = model.setTemperature;
    if (model.fastMode) json["fastMode"] = *model.fastMode;
    json["enabled"] = model.enabled;
    return json;
}

Result<CustomModel> customModelFromJson(const ModelJson& json) {
    if (!json.is_object()) return Failure{"A custom model is no object"};
    CustomModel model;
    ModelFields fields(json);
    fields.require("id", model.id);
    fields.require("modelName", model.modelName);
    fields.allow("friendlyName", model.friendlyName);
    fields.require("baseURL", model.baseURL);
    fields.require("setTemperature", model.setTemperature);
    fields.allow("fastMode", model.fastMode);
    fields.require("enabled", model.enabled);
    if (fields.badKey)
        return Failure{fmt::format("A custom model's \"{}\" is missing or of the wrong kind", fields.badKey)};
    return model;
}

CustomModelList::CustomModelList(const FilePath& dataFolder, SecretStore& secrets)
    : folder_(dataFolder.child("Custom Models")), secrets_(secrets) {}

std::vector<CustomModel>& CustomModelList::loaded() {
    if (!all_) all_ = modelsIn(folder_);
    return *all_;
}

std::vector<CustomModel> CustomModelList::all() {
    const std::lock_guard lock(guard_);
    return loaded();
}

void CustomModelList::reload() {
    const std::lock_guard lock(guard_);
    all_ = modelsIn(folder_);
}

std::vector<CustomModel> CustomModelList::validModels() {
    std::vector<CustomModel> valid = all();
    std::erase_if(valid, [](const CustomModel& model) {
        return trimmedBlanks(model.baseURL).empty() || trimmedBlanks(model.modelName).empty();
    });
    return valid;
}

std::optional<CustomModel> CustomModelList::withId(std::string_view id) {
    const std::lock_guard lock(guard_);
    const auto found = std::ranges::find(loaded(), id, &CustomModel::id);
    return found == all_->end() ? std::nullopt : std::optional(*found);
}

std::optional<Failure> CustomModelList::add(const CustomModel& model) {
    const std::lock_guard lock(guard_);
    loaded();
    if (auto failure = writeModel(folder_, model)) return failure;
    all_->push_back(model);
    return std::nullopt;
}

std::optional<Failure> CustomModelList::update(const CustomModel& model) {
    const std::lock_guard lock(guard_);
    const auto place = std::ranges::find(loaded(), model.id, &CustomModel::id);
    if (place == all_->end()) return Failure{"Custom model not found"};
    if (auto failure = writeModel(folder_, model)) return failure;
    *place = model;
    return std::nullopt;
}

std::optional<Failure> CustomModelList::remove(std::string_view id) {
    const std::lock_guard lock(guard_);
    const auto place = std::ranges::find(loaded(), id, &CustomModel::id);
    if (place == all_->end()) return std::nullopt;
    const std::string itsId = place->id;  // `id` may be a view of it
    all_->erase(place);
    return deleteModelFile(folder_, itsId);
}

std::optional<std::string> CustomModelList::apiKey(std::string_view id) {
    auto stored = secrets_.read(customKeyAccount(id));
    if (!stored) return std::nullopt;
    std::string key(trimmed(*stored));
    wipe(*stored);
    return key;
}

std::optional<Failure> CustomModelList::setApiKey(std::string_view id, std::optional<std::string_view> key) {
    const std::string_view text = trimmed(key.value_or(""));
    const std::string account = customKeyAccount(id);
    return text.empty() ? secrets_.remove(account) : secrets_.write(account, text);
}

}  // namespace brindlet
