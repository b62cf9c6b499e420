#include <gtest/gtest.h>

#include <QSignalSpy>
#include <filesystem>
#include <thread>

#include "bar/page_window.h"
#include "fakes/fake_secret_store.h"
#include "fakes/hand_cranked.h"
#include "support/scratch_folder.h"
#include "text/strings.h"
#include "ui/bar/menu_bar_tutorial_model.h"
#include "ui/bar/settings_model.h"

namespace brindlet::settings_page_tests {

using namespace std::chrono_literals;

constexpr std::string_view standInBrew = R"brew(#!/bin/bash
here="$(dirname "$0")"
case "$1" in
    list) echo ghostscript ;;
    install) echo "Fetching dependencies for $2: jpeg-turbo"; echo "🍺  /opt/homebrew/Cellar/jpeg-turbo: 9 files"
             while [ ! -e "$here/go" ]; do sleep 0.02; done; exit 7 ;;
    uninstall) exit 3 ;;
esac
)brew";

struct Autostart final : LaunchAtLogin {
    bool isOn = false;
    bool isEnabled() const override { return isOn; }
    std::optional<Failure> setEnabled(bool enabled) override {
        isOn = enabled;
        return std::nullopt;
    }
};

class SettingsPageTest : public testing::Test {
  protected:
    SettingsPageTest() {
        std::filesystem::permissions(scratch.write("brew", standInBrew).text(), std::filesystem::perms::owner_all);
        secrets.secrets["Brindlet OpenAI API Key"] = "sk-old";
    }

    // What was asked of workers, and what comes of it.
    void settle() {
        QCoreApplication::processEvents();
        for (loop.crank(); workers.hasWork(); loop.crank()) workers.crank();
        QCoreApplication::processEvents();
    }
    void show(const QString& tab) {
        model.openTab(tab);
        page.show();
        settle();
    }
    AIModel summarization() { return AIModelList(settings, customModels).summarizationModel(); }

    ScratchFolder scratch;
    SettingsStore settings{scratch.path("settings.json")};
    FakeSecretStore secrets;
    Environment environment{{"SHELL", "/bin/false"}, {"PATH", "/usr/bin:/bin"}, {"ANTHROPIC_API_KEY", "sk-env"}};
    CustomModelList customModels{scratch.path("data"), secrets};
    AIModelList models{settings, customModels};
    ProviderApiKeys keys{secrets, environment};
    std::unique_ptr<FileSystem> files = openFileSystem();
    ToolSearchPath searchPath{*files, scratch.path("data/Packages"), {}, environment};
    PackageManager packages{{.files = *files,
                             .searchPath = searchPath,
                             .packagesFolder = scratch.path("data/Packages"),
                             .environment = environment,
                             .homebrewPaths = {scratch.path("brew").text()}}};
    Autostart autostart;
    Permissions permissions{settings, {.launchAtLogin = &autostart}};
    LogFile log{scratch.path("data/Logs")};
    HandCrankedLoop loop;
    HandCrankedWorkers workers;
    QString hotKey = "Ctrl+Space";
    QStringList opened;
    std::vector<std::string> revealed;
    int permissionRuns = 0;
    ShortcutParts shortcutParts{.stored = [this] { return hotKey; },
                                .store = [this](const QString& text) -> QString {
                                    if (text == "Alt+F4") return "Another program has this key.";
                                    hotKey = text;
                                    return {};
                                }};
    SettingsModel model{{.settings = settings,
                         .models = models,
                         .customModels = customModels,
                         .keys = keys,
                         .packages = packages,
                         .permissions = permissions,
                         .log = log,
                         .loop = loop,
                         .workers = workers,
                         .isModelUsable =
                             [this](const AIModel& each) {
                                 return each.provider == AIModelProvider::custom || !keys.key(each.provider).empty();
                             },
                         .shortcut = shortcutParts,
                         .reRunPermissions = [this] { ++permissionRuns; },
                         .reveal = [this](const FilePath& file) { revealed.emplace_back(file.text()); },
                         .openUrl = [this](const QString& url) { opened.append(url); }}};
    PageWindow page{"Settings.qml", &model};
};

TEST_F(SettingsPageTest, GeneralShowsWhatIsStoredAndStoresWhatIsAsked) {
    settings.setBoolean("translucentPromptWindow", false);
    show("General");
    EXPECT_FALSE(page.item("translucent").property("isOn").toBool());
    page.click("translucent");
    EXPECT_EQ(settings.boolean("translucentPromptWindow"), true);
    page.click("launchAtLogin");
    EXPECT_TRUE(autostart.isOn);
    EXPECT_TRUE(page.item("launchAtLogin").property("isOn").toBool());
    page.click("permissions");
    EXPECT_EQ(permissionRuns, 1);
    page.shoot("general");
}

TEST_F(SettingsPageTest, TheRecorderTakesCombinationsOnly) {
    show("General");
    struct Case {
        Qt::Key key;
        Qt::KeyboardModifiers held;
        const char* stored;
        bool isRecording;
    };
    const Case cases[] = {
        {Qt::Key_Escape, {}, "Ctrl+Space", false},
        {Qt::Key_B, {}, "Ctrl+Space", true},  // no modifier: it waits on
        {Qt::Key_B, Qt::ShiftModifier, "Ctrl+Space", true},
        {Qt::Key_B, Qt::ControlModifier | Qt::AltModifier, "Ctrl+Alt+B", false},
        {Qt::Key_F4, Qt::AltModifier, "Ctrl+Alt+B", false},  // another program's
        {Qt::Key_W, Qt::ControlModifier, "Ctrl+W", false},   // else it would close the window
        {Qt::Key_Backspace, {}, "", false},
    };
    for (const auto& [key, held, stored, isRecording] : cases) {
        SCOPED_TRACE(stored + std::to_string(key));
        page.click("recorder");
        EXPECT_TRUE(model.shortcut()->isRecording());
        page.key(key, held);
        EXPECT_EQ(hotKey.toStdString(), stored);
        EXPECT_EQ(model.shortcut()->isRecording(), isRecording);
        EXPECT_EQ(page.has("shortcutProblem"), key == Qt::Key_F4 || isRecording);
        if (key == Qt::Key_F4) page.shoot("general_problem");
        EXPECT_TRUE(page.window().isVisible());
    }
}

TEST_F(SettingsPageTest, TheSwitchesFollowTheFirstOne) {
    show("Auto-run");
    const auto stored = [&] { return AnalysisConfirmationToggleList(settings).toggles(); };
    const auto isOn = [&](int at) { return page.item("switch" + std::to_string(at)).property("isOn").toBool(); };
    EXPECT_TRUE(isOn(1));
    EXPECT_FALSE(page.has("notice"));
    AnalysisConfirmationToggleList(settings).set(CommandEffect::renameFiles, true);  // by the command line
    page.click("switch9");
    EXPECT_TRUE(stored().contains(CommandEffect::deleteOrOverwriteFiles));
    EXPECT_TRUE(stored().contains(CommandEffect::renameFiles));
    EXPECT_TRUE(isOn(2));
    EXPECT_TRUE(page.item("switch9").property("isRed").toBool());
    EXPECT_TRUE(contains(page.text("noticeText"), "delete or overwrite files without"));
    page.item("help6").forceActiveFocus();
    page.key(Qt::Key_Return);
    page.shoot("auto_run");
    page.key(Qt::Key_Escape);
    EXPECT_TRUE(page.window().isVisible());
    page.click("switch0");
    EXPECT_FALSE(isOn(1));
    EXPECT_FALSE(page.item("switch9").isEnabled());
    EXPECT_EQ(page.text("noticeText"), "Brindlet will <b>always</b> ask for confirmation before running commands.");
    page.shoot("auto_run_off");
    page.click("switch9");
    EXPECT_TRUE(stored().contains(CommandEffect::deleteOrOverwriteFiles));  // it can't be pressed
}

TEST_F(SettingsPageTest, KeysAreReadAndWrittenOnWorkersOnly) {
    model.openTab("AI Models");
    page.show();
    EXPECT_EQ(page.text("key OpenAI"), "");
    EXPECT_TRUE(page.has("noModels"));
    settle();
    EXPECT_EQ(page.text("key OpenAI"), "sk-old");
    EXPECT_EQ(page.item("key Anthropic").property("placeholderText").toString(), "From the variable ANTHROPIC_API_KEY");
    page.shoot("models");
    page.fill("key Google", " g-1 ");
    EXPECT_EQ(secrets.secrets.count("Brindlet Google API Key"), 0U);
    settle();
    EXPECT_EQ(secrets.secrets["Brindlet Google API Key"], "g-1");
    EXPECT_EQ(page.text("key Google"), "g-1");
    page.fill("key OpenAI", "");
    page.fill("key Google", "g-2");  // the later of two is the one that stays
    settle();
    EXPECT_EQ(secrets.secrets, (std::map<std::string, std::string, std::less<>>{{"Brindlet Google API Key", "g-2"}}));
    EXPECT_EQ(model.aiModels()->summarizationTitle(), "");  // its provider has no key any more
}

TEST_F(SettingsPageTest, ModelsOfTheMenuAndOfSummaries) {
    show("AI Models");
    page.click("model gpt-4.1-mini");
    page.click("model gpt-5.4");
    const std::vector<AIModel> large = AIModelList(settings, customModels).enabledModels(AIModelList::allLargeModels());
    EXPECT_EQ(large.front().id, "gpt-5.4");
    EXPECT_TRUE(AIModelList(settings, customModels).enabledModels({AIModelList::defaultCommandModel()}).empty());

    // Another program turns one on meanwhile: seen when the window is opened again.
    page.window().close();
    AIModelList(settings, customModels).setEnabled(AIModelList::all()[0], true);
    show("AI Models");
    EXPECT_TRUE(page.item("model gpt-5.4-mini").property("isOn").toBool());

    QStringList titles;
    for (const QVariant& section : model.aiModels()->summarizationSections())
        titles.append(section.toMap()["title"].toString());
    EXPECT_EQ(titles, (QStringList{"Small models", "Large models"}));
    page.click("summarization");
    EXPECT_TRUE(QTest::qWaitFor([&] { return QGuiApplication::focusWindow() != &page.window(); }));
    QTest::keyClick(QGuiApplication::focusWindow(), Qt::Key_End);
    QTest::keyClick(QGuiApplication::focusWindow(), Qt::Key_Up);
    QTest::keyClick(QGuiApplication::focusWindow(), Qt::Key_Return);
    EXPECT_EQ(summarization().id, "gpt-4.1-mini");
    model.aiModels()->selectSummarization("claude-haiku-4-5");
    EXPECT_EQ(summarization().id, "claude-haiku-4-5");
    EXPECT_EQ(page.item("summarization").property("title").toString(), "Claude 4.5 Haiku");
    secrets.secrets.clear();
    environment.clear();
    model.setShown(true);
    settle();
    page.click("addKey");
    EXPECT_TRUE(page.item("key OpenAI").hasActiveFocus());
}

TEST_F(SettingsPageTest, CustomModelsAreAddedEditedAndDeleted) {
    show("AI Models");
    page.click("addCustomModel");
    settle();
    EXPECT_EQ(page.text("custom 0"), "New custom model");
    EXPECT_TRUE(page.has("customProblem"));
    page.fill("modelName", "llama3.1");
    page.fill("baseURL", "no url");
    EXPECT_TRUE(page.has("customProblem"));
    page.shoot("custom_model");
    page.fill("baseURL", "http://localhost:11434");
    page.fill("customKey", "k-1");
    page.click("fastMode");
    settle();
    EXPECT_FALSE(page.has("customProblem"));
    CustomModelList stored(scratch.path("data"), secrets);
    ASSERT_EQ(stored.validModels().size(), 1U);
    const CustomModel kept = stored.all()[0];
    EXPECT_EQ(kept.modelName, "llama3.1");
    EXPECT_EQ(kept.baseURL, "http://localhost:11434");
    EXPECT_EQ(kept.fastMode, false);
    EXPECT_EQ(stored.apiKey(kept.id), "k-1");
    EXPECT_EQ(model.aiModels()->summarizationSections()[0].toMap()["title"], "Custom models");

    page.click("addCustomModel");
    EXPECT_EQ(page.text("modelName"), "");  // not what the other form held
    page.click("delete 0");
    page.shoot("delete_alert");
    page.key(Qt::Key_Escape);
    EXPECT_TRUE(page.window().isVisible());
    EXPECT_FALSE(page.has("yes"));
    EXPECT_EQ(CustomModelList(scratch.path("data"), secrets).all().size(), 2U);
    page.click("delete 0");
    page.click("yes");
    settle();
    EXPECT_FALSE(CustomModelList(scratch.path("data"), secrets).withId(kept.id));
    EXPECT_EQ(page.text("custom 0"), "New custom model");
}

TEST_F(SettingsPageTest, FieldsThatAreLeftStoreWhatTheyHold) {
    show("AI Models");
    page.click("addCustomModel");
    const auto name = [&] { return customModels.all()[0].modelName; };
    const auto type = [&](const char* field, const char* text) {
        page.click(field);
        for (const char* each = text; *each != 0; ++each) QTest::keyClick(&page.window(), *each);
    };
    type("modelName", "a");
    page.key(Qt::Key_Escape);
    EXPECT_TRUE(page.window().isVisible());
    EXPECT_EQ(page.text("modelName"), "");  // back to what is stored
    type("modelName", "b");
    page.click("edit 0");
    EXPECT_EQ(name(), "b");
    page.click("edit 0");
    type("modelName", "c");
    page.click("tab0");
    EXPECT_NE(name(), "b");
    page.click("tab2");
    type("key Google", "g-1");
    EXPECT_EQ(page.text("key Google"), "g-1");
    EXPECT_TRUE(page.item("key Google").hasActiveFocus());
    page.window().close();
    settle();
    EXPECT_EQ(secrets.secrets["Brindlet Google API Key"], "g-1");
}

TEST_F(SettingsPageTest, ToolsShowWhatRunsAndWhatFailed) {
    show("Extra tools");
    EXPECT_EQ(page.item("tool Ghostscript", "act").property("text").toString().toStdString(), "Uninstall");
    page.click(page.item("tool Ghostscript", "act"));
    settle();
    EXPECT_EQ(page.text("toolsProblem"), "Failed to uninstall Ghostscript: Homebrew uninstall failed with status 3");
    page.click(page.item("tool QPDF", "licence"));
    page.click("learnMore");
    EXPECT_EQ(opened, (QStringList{"https://qpdf.readthedocs.io/en/stable/license.html", "https://brew.sh"}));

    page.click(page.item("tool QPDF", "act"));
    {
        const std::jthread installing([&] { workers.crank(); });
        EXPECT_TRUE(QTest::qWaitFor([&] {
            loop.pass(100ms);
            return page.has("message") && contains(page.text("message"), "Installing QPDF components");
        }));
        EXPECT_EQ(page.text("percent"), "52%");
        page.shoot("tools");
        scratch.write("go", "");
    }
    settle();
    EXPECT_FALSE(page.has("percent"));
    EXPECT_TRUE(page.text("toolsProblem").starts_with("Failed to install QPDF: Failure while running "));
}

TEST_F(SettingsPageTest, AboutLeadsToItsPlacesAndToTheLog) {
    show("About");
    EXPECT_EQ(page.text("version"), "Version 1.0");
    page.click("link Release Notes");
    EXPECT_EQ(opened, QStringList{"https://brindlet.example/release-notes"});
    const FilePath newest = scratch.write("data/Logs/brindlet_log_2026-01-02.txt", "x");
    page.click("showErrorLogs");
    settle();
    EXPECT_EQ(revealed, std::vector<std::string>{newest.text()});
    page.shoot("about");
}

TEST_F(SettingsPageTest, TabsAreReachedByKeysAndInTheDark) {
    const QPalette light = QApplication::palette();
    QPalette dark = light;
    dark.setColor(QPalette::Window, QColor("#202020"));
    QApplication::setPalette(dark);
    show("General");
    const char* names[] = {"general_dark", "auto_run_dark", "models_dark", "tools_dark", "about_dark"};
    page.item("tabs").forceActiveFocus();
    for (int tab = 0; tab < 5; ++tab) {
        EXPECT_EQ(model.tab(), tab);
        page.shoot(names[tab]);
        page.key(Qt::Key_Right);
    }
    EXPECT_EQ(model.tab(), 4);
    page.key(Qt::Key_Escape);
    EXPECT_FALSE(page.window().isVisible());
    QApplication::setPalette(light);
}

TEST_F(SettingsPageTest, TheTutorialRecordsTheSameKey) {
    MenuBarTutorialModel tutorial(shortcutParts);
    PageWindow shown("MenuBarTutorial.qml", &tutorial);
    shown.show();
    shown.shoot("tutorial");
    shown.click("recorder");
    shown.key(Qt::Key_Escape);
    EXPECT_TRUE(shown.window().isVisible());  // it ended the recording only
    shown.click("recorder");
    shown.key(Qt::Key_J, Qt::MetaModifier);
    EXPECT_EQ(hotKey, "Meta+J");
    shown.key(Qt::Key_Escape);
    EXPECT_FALSE(shown.window().isVisible());
}

}  // namespace brindlet::settings_page_tests
