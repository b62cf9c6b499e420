#include "ui/settings_panes.h"

#include <gtest/gtest.h>

#include <limits>

#include "fakes/fake_secret_store.h"
#include "fakes/hand_cranked.h"
#include "support/scratch_folder.h"
#include "ui/errands.h"

namespace brindlet::settings_panes_tests {

TEST(SettingsPanes, SwitchesDependOnTheFirst) {
    using enum CommandEffect;
    const auto rows = autoRunSwitches({harmless, renameFiles, moveToTrash});
    ASSERT_EQ(rows.size(), 2 * itemsPerColumn);
    EXPECT_EQ(rows[2], (AutoRunSwitch{renameFiles, "Rename files", true, true, false}));
    EXPECT_EQ(rows[8], (AutoRunSwitch{moveToTrash, "Move items to Trash", true, true, true}));
    EXPECT_FALSE(rows[9].isOn || rows[9].isRed);
    for (const AutoRunSwitch& row : autoRunSwitches({renameFiles, moveToTrash})) {
        EXPECT_FALSE(row.isOn || row.isRed);
        EXPECT_EQ(row.isEnabled, row.effect == harmless);
    }
}

TEST(SettingsPanes, TheModelMenuLeavesEmptySectionsOut) {
    const ScratchFolder scratch;
    SettingsStore settings(scratch.path("settings.json"));
    FakeSecretStore secrets;
    CustomModelList customs(scratch.path("data"), secrets);
    const AIModelList list(settings, customs);
    const std::vector<CustomModel> own = {
        {.id = "1", .modelName = "on", .friendlyName = {}, .baseURL = "u", .fastMode = {}},
        {.id = "2", .modelName = "off", .friendlyName = {}, .baseURL = "u", .fastMode = {}, .enabled = false}};
    struct Case {
        ModelPopupMode mode;
        std::vector<std::string> expected;  // title and number of models
    };
    const Case cases[] = {
        {ModelPopupMode::all, {"Custom models 2", "Small models 12", "Large models 5"}},
        {ModelPopupMode::userEnabledModels, {"Custom models 1", "Small models 2", "Large models 1"}},
        {ModelPopupMode::allAvailable, {"Small models 1", "Large models 1"}},
    };
    for (const auto& [mode, expected] : cases) {
        const auto sections =
            modelSections({.mode = mode, .list = list, .customModels = own, .isUsable = [](const AIModel& model) {
                               return model.provider == AIModelProvider::anthropic;
                           }});
        std::vector<std::string> seen;
        for (const ModelSection& section : sections)
            seen.push_back(std::string(section.title) + " " + std::to_string(section.models.size()));
        EXPECT_EQ(seen, expected);
        EXPECT_EQ(offers(sections, AIModelList::defaultCommandModel()), mode != ModelPopupMode::allAvailable);
    }
}

TEST(SettingsPanes, CustomModelsSayWhatTheyLack) {
    CustomModel model = CustomModel::fresh();
    EXPECT_EQ(titleOf(model), "New custom model");
    EXPECT_NE(problemOf(model), "");
    model.modelName = "llama3.1";
    EXPECT_EQ(titleOf(model), "llama3.1");
    EXPECT_EQ(problemOf(model), "");
    for (const char* url : {" ", "nonsense", "file:///etc/passwd"}) {
        model.baseURL = url;
        EXPECT_NE(problemOf(model), "") << url;
    }
}

TEST(SettingsPanes, PercentagesStayInRange) {
    EXPECT_EQ(percentText(0.379), "37%");
    EXPECT_EQ(percentText(-1), "0%");
    EXPECT_EQ(percentText(7), "100%");
    EXPECT_EQ(percentText(std::numeric_limits<double>::quiet_NaN()), "0%");
}

TEST(SettingsPanes, ErrandsKeepTheirOrderAndOutliveWhoAsked) {
    HandCrankedLoop loop;
    HandCrankedWorkers workers;
    std::string done;
    auto errands = std::make_unique<Errands>(loop, workers);
    const auto ask = [&](char name) {
        errands->queue([&, name]() -> Errands::Outcome {
            done += name;
            return [&, name] { done += std::string("(") + name + ")"; };
        });
    };
    ask('a');
    ask('b');
    workers.crank();
    EXPECT_FALSE(workers.hasWork());  // one after the other, on one worker
    loop.crank();
    EXPECT_EQ(done, "ab(a)(b)");
    ask('c');
    errands.reset();
    workers.crank();
    loop.crank();
    EXPECT_EQ(done, "ab(a)(b)c");  // written, but nobody hears of it
}

}  // namespace brindlet::settings_panes_tests
