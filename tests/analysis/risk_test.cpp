#include "analysis/risk.h"

#include <gtest/gtest.h>

#include "analysis/described_changes.h"
#include "support/scratch_folder.h"

namespace brindlet {
namespace risk_tests {

using enum CommandEffect;
using Effects = std::set<CommandEffect>;

const FilePath folder("/a/b");

const Effects allEffects{harmless,
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
                         commandHasError};

TEST(CommandEffects, OfChanges) {
    struct Case {
        std::vector<std::string> changes;
        Effects effects;  // beside `harmless`
        RiskSummary risk;
    };
    const Case cases[] = {
        {{}, {}, RiskSummary::low},
        {{"create /a/b/x"}, {createNewFiles}, RiskSummary::low},
        {{"modify /a/b/x"}, {modifyFiles}, RiskSummary::medium},
        {{"delete /a/b/x"}, {deleteOrOverwriteFiles}, RiskSummary::high},
        {{"create /a/b/x", "overwrite /a/b/x"}, {createNewFiles, deleteOrOverwriteFiles}, RiskSummary::high},
        {{"move /a/b/x /a/b/y"}, {renameFiles}, RiskSummary::medium},
        {{"move /a/b/x /a/b/s/x"}, {moveFiles}, RiskSummary::medium},
        {{"move /a/b/x /a/b/s/y"}, {renameFiles, moveFiles}, RiskSummary::medium},
        {{"move /a/b/x /a/b/x"}, {}, RiskSummary::low},
        {{"create /tmp/x"}, {createNewFiles, changeFilesOutsideFolder}, RiskSummary::medium},
        {{"move /c/x /a/b/x"}, {moveFiles, changeFilesOutsideFolder}, RiskSummary::medium},
        {{"create /a/bc/x"}, {createNewFiles}, RiskSummary::low},  // the text's prefix, not the folder's
        // The Trash is neither outside nor a new name, but a source may be outside.
        {{"move /a/b/x /home/u/.Trash/y"}, {moveToTrash}, RiskSummary::high},
        {{"move /c/x /home/u/.Trash/x"}, {moveToTrash, changeFilesOutsideFolder}, RiskSummary::high},
        {{"move /home/u/.Trash/x /a/b/x"}, {moveFiles}, RiskSummary::medium},
        {{"delete /home/u/.Trash/x"}, {deleteOrOverwriteFiles}, RiskSummary::high},
        {{"delete /home/u/.Trash"}, {deleteOrOverwriteFiles, changeFilesOutsideFolder}, RiskSummary::high},
    };
    for (const auto& [changes, effects, risk] : cases) {
        SCOPED_TRACE(joined(changes, "; "));
        Effects expected = effects;
        expected.insert(harmless);
        EXPECT_EQ(commandEffects(resultOf(changes), folder), expected);
        EXPECT_EQ(riskSummary(expected), risk);
    }
    EXPECT_EQ(riskSummary({}), RiskSummary::low);
}

TEST(CommandEffects, OfSideEffectsAndErrors) {
    const Effects unknown{harmless, runUnknownScriptsOrCommands, haveSignificantSideEffects};
    const std::pair<SideEffectType, Effects> cases[] = {
        {PowerAction::preventSleep, {harmless, haveSignificantSideEffects}},
        {ExtraFileChanges{ExtraFileChanges::Kind::copies, 2}, {harmless, haveSignificantSideEffects}},
        {ComplexCommand{"eval"}, {harmless, haveSignificantSideEffects}},
        {PlainSideEffect::networkAccess, {harmless, haveMinorSideEffects}},
        {PlainSideEffect::indefinite, {harmless, haveSignificantSideEffects}},
        {PlainSideEffect::unknownCommand, unknown},
        {PlainSideEffect::runningUnknownScript, unknown},
    };
    for (const auto& [type, effects] : cases) {
        SCOPED_TRACE(caseName(type));
        EXPECT_EQ(commandEffects(resultOf({}, {{type, {}}, {type, "twice"}}), folder), effects);
    }
    EXPECT_EQ(reasonsToAsk(unknown, {harmless, haveSignificantSideEffects}), Effects{runUnknownScriptsOrCommands});

    AnalysisResult stopped;
    stopped.analysisError = BasherAnalysisError{BasherAnalysisError::Kind::noFilesSelected, ""};
    EXPECT_EQ(commandEffects(stopped, folder), (Effects{harmless, commandHasError}));
    EXPECT_EQ(commandEffects(resultOf({}, {}, {{"f", "t"}}), folder), (Effects{harmless, commandHasError}));
}

TEST(SideEffects, DefaultDescriptionsWithPayload) {
    EXPECT_EQ(defaultDescription(ExtraFileChanges{ExtraFileChanges::Kind::moves, 5}),
              "Also moves 5 other files not listed");
    EXPECT_EQ(defaultDescription(ComplexCommand{"why"}), "why");
    EXPECT_EQ((SideEffect{PlainSideEffect::kill, {}}).description(), "Force quits a process");
    EXPECT_EQ((SideEffect{PlainSideEffect::kill, "Force quits 'vim'"}).description(), "Force quits 'vim'");
}

class ToggleList : public testing::Test {
  protected:
    const ScratchFolder scratch_;
    SettingsStore settings_{scratch_.path().child("settings.json")};
};

TEST_F(ToggleList, StartsFromWhatIsStored) {
    using List = AnalysisConfirmationToggleList;
    constexpr std::int64_t level = 0;  // what bad text falls back to here, to tell it from the default
    settings_.setInteger(List::legacyRiskLevelKey, level);
    const std::pair<std::string_view, Effects> cases[] = {
        {R"(["Rename files", "Harmless commands","Rename files"])", {harmless, renameFiles}},
        {"[]", {}},
        {"", {harmless}},
        {"[\"Rename files\"", {harmless}},
        {"[\"Rename files\"] x", {harmless}},
        {R"({"Rename files": true})", {harmless}},
        {R"(["Rename files", 4])", {harmless}},
        {R"(["Rename files", "rename files"])", {harmless}},
        {"[\"\xff\"]", {harmless}},
    };
    for (const auto& [text, toggles] : cases) {
        SCOPED_TRACE(text);
        settings_.setText(List::togglesKey, text);
        EXPECT_EQ(List(settings_).toggles(), toggles);
        // A good text stays as it was written, a bad one is replaced.
        const bool isReplaced = toggles == Effects{harmless};
        EXPECT_EQ(settings_.text(List::togglesKey), isReplaced ? R"(["Harmless commands"])" : text);
    }
}

TEST_F(ToggleList, DefaultAndChangesAreSaved) {
    using List = AnalysisConfirmationToggleList;
    List list(settings_);
    EXPECT_EQ(list.toggles(), (Effects{harmless, createNewFiles, haveMinorSideEffects}));
    EXPECT_EQ(settings_.text(List::togglesKey),
              R"(["Harmless commands","Create new files","Have minor side effects"])");
    list.set(createNewFiles, false);
    list.set(moveFiles, true);
    EXPECT_EQ(List(settings_).toggles(), (Effects{harmless, moveFiles, haveMinorSideEffects}));
}

TEST(ToggleLevels, EachAllowsMore) {
    EXPECT_EQ(AnalysisConfirmationToggleList::togglesOfLevel(-1), Effects{});
    EXPECT_EQ(AnalysisConfirmationToggleList::togglesOfLevel(1), Effects{harmless});
    EXPECT_EQ(AnalysisConfirmationToggleList::togglesOfLevel(5),
              (Effects{harmless, createNewFiles, haveMinorSideEffects, renameFiles, moveFiles}));
    EXPECT_EQ(reasonsToAsk(allEffects, AnalysisConfirmationToggleList::togglesOfLevel(8)),
              (Effects{deleteOrOverwriteFiles, runUnknownScriptsOrCommands, commandHasError}));
    EXPECT_EQ(AnalysisConfirmationToggleList::togglesOfLevel(9), allEffects);
}

}  // namespace risk_tests
}  // namespace brindlet
