#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <nlohmann/json.hpp>

#include "ai/ai_model.h"
#include "ai/custom_model.h"
#include "ai/provider_api_keys.h"
#include "fakes/fake_secret_store.h"
#include "support/scratch_folder.h"

namespace brindlet {
namespace models_tests {

using Names = std::vector<std::string>;

struct Surroundings {
    ScratchFolder disk;
    FakeSecretStore secrets;
    SettingsStore settings{disk.path("settings.json")};
    CustomModelList customModels{disk.path(), secrets};

    AIModelList models() { return {settings, customModels}; }
    void addCustom(const std::string& name, const std::string& url = "http://localhost") {
        CustomModel model = CustomModel::fresh();
        model.modelName = name;
        model.baseURL = url;
        EXPECT_EQ(customModels.add(model), std::nullopt);
    }
};

Names namesOf(const std::vector<AIModel>& models) {
    Names names;
    for (const AIModel& model : models) names.push_back(model.name);
    return names;
}

Names enabledNames(const AIModelList& models) {
    return namesOf(models.enabledModels({AIModelList::all().begin(), AIModelList::all().end()}));
}

TEST(Models, TheChosenOnesAreFoundByWhatIsStored) {
    struct Case {
        const char* stored;
        std::string command, summary;
    };
    const Case cases[] = {
        {nullptr, "gpt-4.1-mini", "gpt-4.1-nano"},
        {"", "gpt-4.1-mini", "gpt-4.1-nano"},
        {"no such", "gpt-4.1-mini", "gpt-4.1-nano"},
        {"GPT-4.1", "gpt-4.1-mini", "gpt-4.1-nano"},  // names are told apart by case
        {"gpt-4o", "gpt-4.1", "gpt-4.1"},
        {"gpt-4o-mini", "gpt-4.1-mini", "gpt-4.1-mini"},
        {"claude-3-7-sonnet-latest", "claude-sonnet-4-5", "claude-sonnet-4-5"},
        {"claude-sonnet-4-0", "claude-sonnet-4-5", "claude-sonnet-4-5"},
        {"own", "own", "own"},
        {"no-url", "gpt-4.1-mini", "gpt-4.1-nano"},
    };
    for (const auto& [stored, command, summary] : cases) {
        SCOPED_TRACE(stored ? stored : "unset");
        Surroundings here;
        here.addCustom("own");
        here.addCustom("no-url", " \t");
        here.addCustom("", "http://localhost");
        for (const auto key : {AIModelList::selectedModelNameKey, AIModelList::summarizationModelNameKey})
            EXPECT_EQ(stored ? here.settings.setText(key, stored) : std::nullopt, std::nullopt);
        EXPECT_EQ(here.models().selected().name, command);
        EXPECT_EQ(here.models().summarizationModel().name, summary);
        EXPECT_EQ(here.settings.text(AIModelList::selectedModelNameKey), stored ? std::optional(stored) : std::nullopt);
    }
}

TEST(Models, ACustomOneShadowsABuiltInOne) {
    Surroundings here;
    here.addCustom("gpt-4.1");
    here.addCustom("gpt-4o-mini");
    EXPECT_EQ(here.models().named("gpt-4.1")->provider, AIModelProvider::custom);
    EXPECT_EQ(here.models().named("gpt-4o-mini")->provider, AIModelProvider::custom);
    EXPECT_EQ(here.models().named("gpt-4o")->provider, AIModelProvider::openAI);  // older name of the shadowed one
    EXPECT_EQ(here.models().selected().provider, AIModelProvider::openAI);
    here.addCustom("gpt-4.1-mini");  // also where nothing is chosen
    EXPECT_EQ(here.models().selected().provider, AIModelProvider::custom);
    EXPECT_EQ(here.models().summarizationModel().provider, AIModelProvider::openAI);
}

TEST(Models, TheMenuFollowsWhatTheUserTurnedOnAndOff) {
    struct Case {
        const char* enabled;
        const char* disabled;
        Names menu;
    };
    const Names byDefault{"gpt-4.1-mini", "claude-haiku-4-5", "claude-sonnet-4-5"};
    const Case cases[] = {
        {"", "", byDefault},
        {"[]", "not JSON", byDefault},
        {R"({"gpt-4.1": 1})", R"("gpt-4.1-mini")", byDefault},
        {R"([1, null, ["gpt-4.1"], "gone", ""])", "[[[", byDefault},
        {R"(["gpt-5"])", R"(["claude-3-5-haiku-latest", "own"])", {"gpt-4.1-mini", "gpt-5.4", "claude-sonnet-4-5"}},
        {R"(["mercury-2"])", R"(["mercury-2", "gpt-4.1-mini"])", {"claude-haiku-4-5", "claude-sonnet-4-5"}},
    };
    for (const auto& [enabled, disabled, menu] : cases) {
        SCOPED_TRACE(enabled);
        Surroundings here;
        here.addCustom("own");
        EXPECT_EQ(here.settings.setText(AIModelList::explicitlyEnabledAIModelsKey, enabled), std::nullopt);
        EXPECT_EQ(here.settings.setText(AIModelList::explicitlyDisabledAIModelsKey, disabled), std::nullopt);
        EXPECT_EQ(enabledNames(here.models()), menu);
    }
}

TEST(Models, TurningOnAndOffMovesBetweenTheLists) {
    Surroundings here;
    EXPECT_EQ(here.settings.setText(AIModelList::explicitlyEnabledAIModelsKey, R"(["gpt-5", "gpt-5.4"])"),
              std::nullopt);
    AIModelList models = here.models();
    const AIModel haiku = *models.named("claude-haiku-4-5");
    for (const bool isOn : {false, false, true}) {
        EXPECT_EQ(models.setEnabled(haiku, isOn), std::nullopt);
        EXPECT_EQ(namesOf(models.enabledModels({haiku})).size(), isOn ? 1u : 0u);
        EXPECT_EQ(namesOf(here.models().enabledModels({haiku})).size(), isOn ? 1u : 0u);  // of the settings
        EXPECT_EQ(here.settings.text(AIModelList::explicitlyDisabledAIModelsKey),
                  isOn ? "[]" : R"(["claude-haiku-4-5"])");
    }
    EXPECT_EQ(here.settings.text(AIModelList::explicitlyEnabledAIModelsKey), R"(["gpt-5.4","claude-haiku-4-5"])");
    // The given order holds, not the catalogue's.
    EXPECT_EQ(namesOf(models.enabledModels({haiku, *models.named("gpt-4.1"), *models.named("gpt-5.4")})),
              (Names{"claude-haiku-4-5", "gpt-5.4"}));
}

TEST(CustomModels, FilesThatCantBeReadStayAndAreLeftOut) {
    const std::string good =
        R"({"id": "a", "modelName": "m", "baseURL": "u", "setTemperature": false, "enabled": true)";
    struct Case {
        std::string content;
        bool isRead;
    };
    const Case cases[] = {
        {good + "}", true},
        {good + R"(, "friendlyName": null, "fastMode": null, "more": [1]})", true},
        {good + R"(, "friendlyName": 1})", false},
        {good + R"(, "fastMode": "yes"})", false},
        {R"({"id": "a", "modelName": "m", "baseURL": "u", "setTemperature": false})", false},
        {R"({"id": 1, "modelName": "m", "baseURL": "u", "setTemperature": false, "enabled": true})", false},
        {"[]", false},
        {"", false},
        {std::string(30'000, '['), false},
        {good + ", \"x\": \"\xff\"}", false},
        {good + R"(, "x": ")" + std::string(1'000'000, 'x') + "\"}", false},
    };
    for (const auto& [content, isRead] : cases) {
        SCOPED_TRACE(content.substr(0, 120));
        Surroundings here;
        const FilePath file = here.disk.write("Custom Models/a.json", content);
        here.disk.write("Custom Models/b.json", R"({"id": "b", "modelName": "other", "baseURL": "u",)"
                                                R"("setTemperature": true, "fastMode": false, "enabled": false})");
        here.disk.write("Custom Models/.c.json.Xa2b3c", good + "}");
        here.disk.write("Custom Models/.c.json", good + "}");
        EXPECT_EQ(here.customModels.all().size(), isRead ? 2u : 1u);
        EXPECT_FALSE(here.customModels.withId("b")->isFast());
        EXPECT_TRUE(!isRead || here.customModels.withId("a")->isFast());
        EXPECT_EQ(here.disk.read("Custom Models/a.json"), content);
    }
}

TEST(CustomModels, AreStoredAsTheyAre) {
    Surroundings here;
    CustomModel model = CustomModel::fresh();
    model.modelName = "m \xff\n";
    model.friendlyName = "";
    EXPECT_EQ(model.aiModel().friendlyName, model.modelName);
    model.modelName = "m";
    EXPECT_EQ(here.customModels.add(model), std::nullopt);
    const std::string file = "Custom Models/" + model.id + ".json";
    EXPECT_EQ(nlohmann::ordered_json::parse(here.disk.read(file)).dump(),
              R"({"id":")" + model.id +
                  R"(","modelName":"m","friendlyName":"","baseURL":"http://localhost:1234","setTemperature":true,)"
                  R"("enabled":true})");
    EXPECT_EQ(CustomModelList(here.disk.path(), here.secrets).all(), here.customModels.all());

    model.friendlyName = "M";
    model.fastMode = false;
    EXPECT_EQ(here.customModels.update(model), std::nullopt);
    EXPECT_EQ(*CustomModelList(here.disk.path(), here.secrets).withId(model.id), model);
    EXPECT_EQ(here.customModels.setApiKey(model.id, " k\n"), std::nullopt);
    EXPECT_EQ(here.customModels.remove(model.id), std::nullopt);
    EXPECT_FALSE(here.disk.exists(file));
    EXPECT_EQ(here.customModels.apiKey(model.id), "k");  // stays behind
    EXPECT_EQ(here.customModels.setApiKey(model.id, " \n"), std::nullopt);
    EXPECT_EQ(here.customModels.apiKey(model.id), std::nullopt);
    EXPECT_NE(here.customModels.update(model), std::nullopt);
}

// An id comes from a file: it must not reach what lies elsewhere.
TEST(CustomModels, AnIdLeadsNowhereElse) {
    for (const std::string id : {"../victim", "/victim", "x/../../victim", "", ".."}) {
        SCOPED_TRACE(id);
        Surroundings here;
        here.disk.write("victim.json", "untouched");
        here.disk.write("Custom Models/x.json", R"({"id": ")" + id + R"(", "modelName": "m", "baseURL": "u",)" +
                                                    R"("setTemperature": true, "enabled": true})");
        CustomModel model = here.customModels.all().at(0);
        model.enabled = false;
        const auto failure = here.customModels.update(model);
        EXPECT_EQ(failure.has_value(), id != "..");  // "...json" is a name like any other
        EXPECT_EQ(here.customModels.remove(id).has_value(), id != "..");
        EXPECT_TRUE(here.customModels.all().empty());
        EXPECT_EQ(here.disk.read("victim.json"), "untouched");
    }
}

TEST(Keys, ComeFromTheStoreOrTheEnvironment) {
    struct Case {
        const char* stored;
        const char* variable;
        std::string key;
        KeyOrigin origin;
    };
    const Case cases[] = {
        {nullptr, nullptr, "", KeyOrigin::none},         {" sk-1\n", nullptr, "sk-1", KeyOrigin::stored},
        {"sk-1", "sk-2", "sk-1", KeyOrigin::stored},     {nullptr, "\tsk-2 ", "sk-2", KeyOrigin::environment},
        {" \n", "sk-2", "sk-2", KeyOrigin::environment}, {nullptr, "  ", "", KeyOrigin::none},
    };
    for (const auto& [stored, variable, key, origin] : cases) {
        Surroundings here;
        Environment environment;
        if (stored) here.secrets.secrets["Brindlet Google API Key"] = stored;
        if (variable) environment["GEMINI_API_KEY"] = variable;
        ProviderApiKeys keys(here.secrets, environment);
        EXPECT_EQ(keys.key(AIModelProvider::google), key);
        EXPECT_EQ(keys.origin(AIModelProvider::google), origin);
        EXPECT_EQ(keys.configuredProviders().size(), key.empty() ? 0u : 1u);
        EXPECT_EQ(keys.key(AIModelProvider::custom), "");
    }
}

TEST(Keys, AreStoredTrimmedAndClearedByBlanks) {
    Surroundings here;
    const Environment environment{{"OPENAI_API_KEY", "sk-environment"}};
    ProviderApiKeys keys(here.secrets, environment);
    EXPECT_EQ(keys.key(AIModelProvider::openAI), "sk-environment");
    EXPECT_EQ(keys.setKey(AIModelProvider::openAI, "sk-1\r\n"), std::nullopt);
    EXPECT_EQ(keys.setKey(AIModelProvider::inception, "sk-2"), std::nullopt);
    EXPECT_EQ(here.secrets.secrets["Brindlet OpenAI API Key"], "sk-1");
    EXPECT_EQ(keys.key(AIModelProvider::openAI), "sk-1");
    EXPECT_EQ(keys.configuredProviders(),
              (std::vector<AIModelProvider>{AIModelProvider::openAI, AIModelProvider::inception}));
    EXPECT_EQ(keys.setKey(AIModelProvider::openAI, keys.key(AIModelProvider::openAI)), std::nullopt);
    EXPECT_EQ(keys.key(AIModelProvider::openAI), "sk-1");
    EXPECT_EQ(keys.setKey(AIModelProvider::openAI, "\n"), std::nullopt);
    EXPECT_EQ(here.secrets.secrets.count("Brindlet OpenAI API Key"), 0u);
    EXPECT_EQ(keys.key(AIModelProvider::openAI), "sk-environment");
}

}  // namespace models_tests
}  // namespace brindlet
