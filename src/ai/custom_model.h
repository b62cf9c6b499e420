// Models of the user's own, behind any endpoint that speaks the chat completions protocol, each in a JSON file.
//
//     CustomModelList models(dataFolder(), secrets);
//     CustomModel model = CustomModel::fresh();
//     model.modelName = "llama3.1";
//     models.add(model);
#pragma once

#include <mutex>
#include <nlohmann/json_fwd.hpp>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "ai/ai_model.h"
#include "platform/file_path.h"
#include "platform/result.h"
#include "platform/secret_store.h"

namespace brindlet {

struct CustomModel {
    std::string id;  // a UUID; also the name of its file and of its key
    std::string modelName;
    std::optional<std::string> friendlyName;
    std::string baseURL;  // or the whole URL that ends in "/chat/completions"
    bool setTemperature = true;
    std::optional<bool> fastMode;  // none counts as true
    bool enabled = true;           // offered in the model menu

    // With an id of its own and the defaults.
    static CustomModel fresh();
    AIModel aiModel() const;
    bool isFast() const { return fastMode.value_or(true); }

    bool operator==(const CustomModel&) const = default;
};

// The fields in order; what is none is left out. The failure says what is missing.
nlohmann::ordered_json toJson(const CustomModel& model);
Result<CustomModel> customModelFromJson(const nlohmann::ordered_json& json);

// Any thread may call it.
class CustomModelList {
  public:
    // Lists the folder "Custom Models" in `dataFolder` at first use; a file that can't be read or decoded is passed
    // over and stays. `secrets` outlives it.
    CustomModelList(const FilePath& dataFolder, SecretStore& secrets);

    std::vector<CustomModel> all();
    // Lists the folder anew, as another program may have changed it.
    void reload();
    // Those with a name and a base URL, the rest of the program works with these.
    std::vector<CustomModel> validModels();
    std::optional<CustomModel> withId(std::string_view id);

    // Write, rewrite or delete the file, too.
    std::optional<Failure> add(const CustomModel& model);
    std::optional<Failure> update(const CustomModel& model);
    // The first with that id; its key stays behind.
    std::optional<Failure> remove(std::string_view id);

    // Trimmed; none where nothing is stored. Storing none or blanks removes it.
    std::optional<std::string> apiKey(std::string_view id);
    std::optional<Failure> setApiKey(std::string_view id, std::optional<std::string_view> key);

  private:
    // With the guard held.
    std::vector<CustomModel>& loaded();

    FilePath folder_;
    SecretStore& secrets_;
    std::mutex guard_;
    std::optional<std::vector<CustomModel>> all_;
};

}  // namespace brindlet
