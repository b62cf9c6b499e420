// The bar's page, driven by keys and clicks through every state of the flow. With BRINDLET_PICTURES set to a folder
// each state is photographed there, too; BRINDLET_PAGES may name a folder to take the pages from.
#include <gtest/gtest.h>

#include <QDir>
#include <QDropEvent>
#include <QGuiApplication>
#include <QImage>
#include <QMimeData>
#include <QPalette>
#include <QQmlComponent>
#include <QQmlEngine>
#include <QQuickItem>
#include <QQuickWindow>
#include <QRegularExpression>
#include <QTest>
#include <cmath>
#include <memory>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "fakes/flow_bench.h"
#include "ui/bar/bar_frame.h"
#include "ui/bar/bar_model.h"
#include "ui/prediction_rows.h"

namespace brindlet {
namespace bar_page_tests {

QUrl pageNamed(const QString& name) {
    const QString folder = qEnvironmentVariable("BRINDLET_PAGES");
    return folder.isEmpty() ? QUrl("qrc:/brindlet/qml/" + name) : QUrl::fromLocalFile(folder + "/" + name);
}

// Whatever Qt has to say while a test runs is a fault of a page, but for what the platform without a display can't do.
class Warnings {
  public:
    Warnings() {
        heard().clear();
        qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString& text) {
            if (!text.contains("propagateSizeHints") && !text.contains("raise()")) heard().append(text);
        });
    }
    ~Warnings() {
        qInstallMessageHandler(nullptr);
        EXPECT_EQ(heard().join('\n').toStdString(), "");
    }

  private:
    static QStringList& heard() {
        static QStringList texts;
        return texts;
    }
};

// The page with a flow behind it in which nothing is real.
class Page {
  public:
    explicit Page(const BarFrameLook& look = {.overhang = 30}) { frame.setLook(look); }

    // With what the bench has been told until now.
    void open(int width = 860) {
        model = std::make_unique<BarModel>(BarParts{
            bench.flow(), bench.finder, bench.packages, bench.modelList,
            [this]() -> std::optional<PredictReport> {
                return PredictReport{.command = {},
                                     .result = bench.flow().view().analysisResult,
                                     .runs = {},
                                     .folder = FilePath("/home/u/w"),
                                     .home = FilePath("/home/u"),
                                     .toggles = {},
                                     .missingPackage = {},
                                     .predictionNeedsInstall = bench.packages.isNeededForPrediction &&
                                                               bench.flow().view().missingPackageName.has_value()};
            },
            [this] { said.append("packages"); }});
        QQmlComponent component(&engine, pageNamed("Bar.qml"));
        if (!component.isReady()) throw std::runtime_error(component.errorString().toStdString());
        root.reset(component.createWithInitialProperties(
            {{"model", QVariant::fromValue(model.get())}, {"frame", QVariant::fromValue(&frame)}}));
        bar = qobject_cast<QQuickWindow*>(root.get());
        bar->setGeometry(100, 700, width, 85);
        bar->show();
        bar->requestActivate();
        settle();
    }
    // Layout, lazily made popovers and animations come to rest.
    static void settle(int milliseconds = 0) { QTest::qWait(milliseconds); }

    // The items of that name that are seen, in the bar or in a popover.
    std::vector<QQuickItem*> items(const QString& name) const {
        std::vector<QQuickItem*> found;
        for (QWindow* window : QGuiApplication::allWindows())
            if (const auto* quick = qobject_cast<QQuickWindow*>(window); quick != nullptr && quick->isVisible())
                collect(quick->contentItem(), name, found);
        return found;
    }
    // None where it is hidden.
    QQuickItem* item(const QString& name) const {
        const auto found = items(name);
        return found.empty() ? nullptr : found.front();
    }
    QQuickWindow* popover(const QString& name) const {
        for (QWindow* window : QGuiApplication::allWindows())
            if (window->objectName() == name && window->isVisible()) return qobject_cast<QQuickWindow*>(window);
        return nullptr;
    }
    std::string text(const QString& name) const {
        const QQuickItem* found = item(name);
        return found != nullptr ? found->property("text").toString().toStdString()
                                : "(" + name.toStdString() + " is hidden)";
    }
    bool hasKeyboard(const QString& name) const {
        QQuickItem* found = item(name);
        if (found == nullptr) return false;
        activate(found->window());
        return found->hasActiveFocus();
    }
    void click(const QString& name) {
        QQuickItem* found = item(name);
        ASSERT_NE(found, nullptr) << name.toStdString();
        const QPointF middle = found->mapToScene(QPointF(found->width() / 2, found->height() / 2));
        QTest::mouseClick(found->window(), Qt::LeftButton, {}, middle.toPoint());
        settle();
    }
    void key(Qt::Key key, Qt::KeyboardModifiers modifiers = {}, QWindow* window = nullptr) {
        activate(window != nullptr ? window : bar);
        QTest::keyClick(window != nullptr ? window : bar, key, modifiers);
        settle();
    }
    void type(const QString& text, QWindow* window = nullptr) {
        for (const QChar letter : text) QTest::keyClick(window != nullptr ? window : bar, letter.toLatin1());
    }
    void step() {
        bench.step();
        settle();
        activate(bar);
    }
    // Without a display each window that is shown gets the keyboard, which a popover doesn't take from a real one.
    static void activate(QWindow* window) {
        window->requestActivate();
        settle();
    }
    // Asks for something odd that is answered with the line.
    void ask(const std::string& line, const QString& request = "do something odd") {
        bench.answer(line);
        type(request);
        key(Qt::Key_Return);
        step();
    }
    void photograph(const QString& name) const {
        const QString folder = qEnvironmentVariable("BRINDLET_PICTURES");
        if (folder.isEmpty()) return;
        settle(400);
        for (QWindow* window : QGuiApplication::allWindows()) {
            auto* quick = qobject_cast<QQuickWindow*>(window);
            if (quick == nullptr || !quick->isVisible()) continue;
            const QString part =
                window == bar ? "" : "_" + (window->objectName().isEmpty() ? "hint" : window->objectName());
            quick->grabWindow().save(QDir(folder).filePath(name + part + ".png"));
        }
    }

    Bench bench;
    QStringList said;  // what was asked of the frame
    BarFrame frame{
        {.pressCloseButton = [this] { said.append("close"); },
         .windowShouldClose = [this] { said.append("shouldClose"); },
         .returnToFinder = [this] { said.append("finder"); },
         .openSettings = [this](const QString& tab) { said.append("settings " + tab); },
         .dropped = [this](const QList<QUrl>& urls) { said.append(QString("%1 dropped").arg(urls.size())); }}};
    QQmlEngine engine;
    std::unique_ptr<BarModel> model;
    std::unique_ptr<QObject> root;
    QQuickWindow* bar = nullptr;

  private:
    static void collect(QQuickItem* item, const QString& name, std::vector<QQuickItem*>& found) {
        if (!item->isVisible()) return;
        if (item->objectName() == name) found.push_back(item);
        for (QQuickItem* child : item->childItems()) collect(child, name, found);
    }

    Warnings warnings_;
};

using Type = FileChange::FileChangeType;

AnalysisResult changing(std::initializer_list<FileChange> changes) {
    AnalysisResult result;
    result.exitCode = 0;
    for (const FileChange& change : changes) result.changes.push_back({.change = change});
    return result;
}

FileChange change(Type type, const char* path) {
    return {.type = type, .url = FilePath(path), .sourceURL = {}};
}

FileChange moved(const char* from, const char* to) {
    return {.type = Type::move, .url = FilePath(to), .sourceURL = FilePath(from)};
}

TEST(BarPage, FieldTakesARequestAndTheFlowRunsToItsEnd) {
    Page page;
    page.bench.runResults.push_back({"a.txt: 12\nb.txt: 40\n", "", 0});
    page.open();
    EXPECT_TRUE(page.hasKeyboard("field"));
    EXPECT_EQ(page.item("field")->property("placeholderText").toString(), "Enter query or command");
    EXPECT_EQ(page.item("selection")->property("text").toString(), "2 items");
    EXPECT_FALSE(page.item("submit")->isEnabled());
    page.photograph("01_entering");
    page.bench.answer("wc -l");
    page.bench.answer("📝 52 lines in all, 12 of them in a.txt");
    page.type("how many lines");
    EXPECT_EQ(page.bench.flow().view().prompt, "how many lines");
    page.photograph("02_typed");
    page.click("submit");
    EXPECT_EQ(page.text("status"), "how many lines");
    EXPECT_FALSE(page.item("field"));
    EXPECT_TRUE(page.hasKeyboard("result"));
    page.photograph("03_sending");
    page.step();
    page.photograph("04_running");
    page.step();
    EXPECT_EQ(page.text("status"), "a.txt: 12, b.txt: 40");
    EXPECT_TRUE(page.item("progress"));
    page.photograph("05_interpreting");
    page.step();
    EXPECT_EQ(page.text("status"), "📝 52 lines in all, 12 of them in a.txt");
    EXPECT_EQ(page.text("refine"), "Follow up...");
    page.photograph("06_complete");
    page.click("outputIcon");
    ASSERT_TRUE(page.popover("fullOutput"));
    EXPECT_EQ(page.text("outputText"), "a.txt: 12\nb.txt: 40\n");
    page.photograph("07_output");
    page.click("outputIcon");
    EXPECT_FALSE(page.popover("fullOutput"));
    EXPECT_TRUE(page.hasKeyboard("result"));
    page.key(Qt::Key_Return);
    EXPECT_EQ(page.text("field"), "");
    EXPECT_TRUE(page.hasKeyboard("field"));
}

TEST(BarPage, PredictionIsShownEditedAndConfirmed) {
    Page page;
    page.bench.predicted["tidy up"] = changing(
        {change(Type::delete_, "/home/u/w/old report.txt"), change(Type::overwrite, "/home/u/w/summary.md"),
         moved("/home/u/w/IMG_2041.jpg", "/home/u/w/2024/beach.jpg"),
         moved("/home/u/w/notes.txt", "/home/u/.Trash/notes.txt"), change(Type::create, "/home/u/Archive/w.zip"),
         moved("/home/u/w/a rather long name of a photograph from the summer holidays by the sea 2023.jpg",
               "/home/u/w/2023/a rather long name of a photograph from the summer holidays by the sea.jpg"),
         change(Type::modify, "/home/u/w/שלום עולם.txt"), change(Type::create, "/etc/w.conf")});
    page.bench.predicted["tidy up"].sideEffects = {
        {PlainSideEffect::networkAccess, "Downloads 'https://example.com/a.zip'"},
        {PlainSideEffect::runningUnknownScript, "./setup.sh"}};
    page.open();
    page.ask("tidy up", "tidy up this folder and put the photos where they belong");
    ASSERT_TRUE(page.popover("prediction"));
    EXPECT_EQ(page.text("request"), "tidy up this folder and put the photos where they belong");
    EXPECT_EQ(page.text("runs"), "Runs <b>once</b>:");
    EXPECT_EQ(page.text("command"), "tidy up");
    EXPECT_EQ(page.items("row").size(), 12U);
    EXPECT_EQ(page.text("confirm"), "Confirm");
    EXPECT_EQ(page.item("predictionIcon")->property("symbol").toString(), "exclamationmark.octagon.fill");
    EXPECT_TRUE(page.hasKeyboard("result"));
    page.photograph("10_prediction");
    page.click("predictionIcon");
    EXPECT_FALSE(page.popover("prediction"));
    page.click("predictionIcon");
    ASSERT_TRUE(page.popover("prediction"));

    page.click("command");
    QWindow* popover = page.popover("prediction");
    page.key(Qt::Key_End, {}, popover);
    page.type(" now", popover);
    EXPECT_EQ(page.bench.flow().view().editedBashCommand, "tidy up now");
    page.key(Qt::Key_Return, {}, popover);
    EXPECT_EQ(page.bench.state(), PromptState::runningCommand);
    EXPECT_FALSE(page.popover("prediction"));
    EXPECT_TRUE(page.hasKeyboard("result"));
}

TEST(BarPage, APredictionThatTakesLongIsWaitedFor) {
    Page page;
    page.bench.predicted["rm a.txt"] = Bench::deletes("/home/u/w/a.txt");
    page.open();
    page.ask("rm a.txt");
    page.bench.isPredictionOut = true;
    page.bench.finder.take({{"/home/u/w/a.txt"}, "/home/u/w"});
    ASSERT_EQ(page.items("row").size(), 1U);
    EXPECT_EQ(page.item("row")->property("row").toMap()["icon"].toString(), "clock");
    EXPECT_FALSE(page.item("confirm")->isEnabled());
    page.bench.isPredictionOut = false;
    page.bench.flow().predictionArrived();
    EXPECT_EQ(page.item("row")->property("row").toMap()["verb"].toString(), "Deletes");
    EXPECT_TRUE(page.item("confirm")->isEnabled());
}

TEST(BarPage, KeysOfTheStates) {
    Page page;
    page.bench.predicted["rm a.txt"] = Bench::deletes("/home/u/w/a.txt");
    page.open();
    page.ask("rm a.txt");
    page.key(Qt::Key_Return);  // too soon to have been read
    EXPECT_EQ(page.bench.state(), PromptState::awaitingConfirmation);
    page.key(Qt::Key_R, Qt::ControlModifier);
    EXPECT_EQ(page.bench.state(), PromptState::enteringFollowUpPrompt);
    EXPECT_EQ(page.item("field")->property("placeholderText").toString(), "Refine your request...");
    EXPECT_TRUE(page.item("followUpPredictionIcon"));
    page.photograph("20_followup");
    page.key(Qt::Key_Escape);
    EXPECT_EQ(page.bench.state(), PromptState::awaitingConfirmation);
    EXPECT_TRUE(page.popover("prediction"));
    page.key(Qt::Key_Escape);
    EXPECT_EQ(page.bench.state(), PromptState::enteringPrompt);
    page.key(Qt::Key_Tab);
    EXPECT_EQ(page.said, QStringList{"finder"});

    page.key(Qt::Key_Up);
    EXPECT_EQ(page.bench.state(), PromptState::awaitingConfirmation);
    EXPECT_TRUE(page.hasKeyboard("result"));
    page.key(Qt::Key_Down);
    EXPECT_EQ(page.bench.state(), PromptState::enteringPrompt);
    EXPECT_TRUE(page.hasKeyboard("field"));
    page.key(Qt::Key_Up);
    QTest::qWait(320);
    page.key(Qt::Key_Return);
    EXPECT_EQ(page.bench.state(), PromptState::runningCommand);
    page.click("close");
    EXPECT_EQ(page.bench.state(), PromptState::enteringPrompt);
    page.click("close");
    page.click("gear");
    EXPECT_EQ(page.said, (QStringList{"finder", "close", "settings "}));
    page.bar->close();
    EXPECT_TRUE(page.bar->isVisible());
    EXPECT_EQ(page.said.last(), "shouldClose");
}

TEST(BarPage, FieldKeepsToItsLengthAndWidth) {
    Page page;
    page.open();
    const double empty = page.item("field")->width();
    EXPECT_EQ(empty, 200);
    page.item("field")->setProperty("text", QString(249, 'x'));
    page.type("yz");
    EXPECT_EQ(page.bench.flow().view().prompt.size(), 250U);
    EXPECT_EQ(page.text("field").size(), 250U);
    QTest::qWait(250);  // it widens in steps
    EXPECT_GT(page.item("field")->width(), 2 * empty);
    page.photograph("21_long");
    for (const int width : {260, 300, 420, 1400}) {
        page.bar->resize(width, 85);
        Page::settle(20);
        const QQuickItem* field = page.item("field");
        const QQuickItem* close = page.item("close");
        EXPECT_LE(field->mapToScene({field->width(), 0}).x(), close->mapToScene({0, 0}).x()) << width;
        EXPECT_LE(close->mapToScene({close->width(), 0}).x(), width - 30) << width;
        EXPECT_GT(field->width(), 20) << width;
        page.photograph(QString("22_width_%1").arg(width));
    }
}

TEST(BarPage, QuestionIsAnsweredInTheField) {
    Page page;
    page.open();
    page.ask("echo \"Which of the two folders do you mean, the one with the photos or the one with the invoices?\"");
    EXPECT_EQ(page.bench.state(), PromptState::question);
    EXPECT_EQ(page.text("question"),
              "Which of the two folders do you mean, the one with the photos or the one with the invoices?");
    EXPECT_EQ(page.item("field")->property("placeholderText").toString(), "Respond...");
    page.photograph("23_question");
    page.type("photos");
    page.bench.answer("wc -l");
    page.click("reply");
    EXPECT_EQ(page.bench.state(), PromptState::sendingRequest);
    EXPECT_EQ(page.text("status"), "photos");
}

TEST(BarPage, ErrorsAreRedAndShownWhole) {
    Page page;
    page.open();
    page.bench.fail(
        {"The model could not be reached: the name api.example.com has no address. Is there a connection?"});
    page.type("anything");
    page.key(Qt::Key_Return);
    page.step();
    EXPECT_EQ(page.bench.state(), PromptState::presentingError);
    EXPECT_EQ(page.text("refine"), "Refine request...");
    EXPECT_FALSE(page.item("predictionIcon"));  // there is no command
    EXPECT_GT(page.item("status")->property("color").value<QColor>().redF(), 0.7F);
    page.photograph("24_error");
}

TEST(BarPage, RequirementsStandAboveThePrediction) {
    struct Case {
        const char* package;
        bool isHomebrewAbsent, isNeededForPrediction;
        const char* confirm;
        const char* installs;
        bool canConfirm;
    };
    const Case cases[] = {{"FFmpeg", false, false, "Install and Confirm", "Installs locally to Brindlet", true},
                          {"Ghostscript", true, false, "Install and Confirm", "Installs with Homebrew", false},
                          {"FFmpeg", false, true, "Install", "Installs locally to Brindlet", true}};
    for (const auto& each : cases) {
        SCOPED_TRACE(each.confirm);
        Page page;
        page.bench.packages.missing = {each.package};
        page.bench.packages.isHomebrewAbsent = each.isHomebrewAbsent;
        page.bench.packages.isNeededForPrediction = each.isNeededForPrediction;
        page.bench.predicted["convert it"].requiredPackages = {each.package};
        page.open();
        page.ask("convert it");
        ASSERT_TRUE(page.item("requirement"));
        EXPECT_EQ(page.text("confirm"), each.confirm);
        EXPECT_EQ(page.text("installs"), each.installs);
        EXPECT_EQ(page.item("confirm")->isEnabled(), each.canConfirm);
        EXPECT_EQ(page.item("manualHomebrew") != nullptr, each.isHomebrewAbsent);
        EXPECT_EQ(page.items("row").size(), 1U);
        page.photograph(QString("30_missing_%1_%2").arg(each.package).arg(each.isNeededForPrediction));
        if (each.isHomebrewAbsent) continue;
        page.click("installs");
        EXPECT_EQ(page.said, QStringList{"packages"});
        page.click("confirm");
        EXPECT_EQ(page.bench.state(), PromptState::installingPackage);
        page.photograph("31_installing");
    }
}

TEST(BarPage, ManyRowsScroll) {
    Page page;
    AnalysisResult& result = page.bench.predicted["everything"];
    for (int number = 0; number < 40; ++number)
        result.sideEffects.push_back({PlainSideEffect::networkAccess, "Downloads file " + std::to_string(number)});
    result.commandErrors = {{"No such file", "mv: cannot stat 'x': No such file or directory"}};
    page.open();
    page.ask("everything");
    const QQuickWindow* popover = page.popover("prediction");
    ASSERT_TRUE(popover);
    EXPECT_EQ(page.items("row").size(), 41U);
    EXPECT_LE(popover->height(), popover->screen()->size().height() * 0.7 + 40);
    EXPECT_GT(page.item("predictionScroll")->property("contentHeight").toDouble(),
              page.item("predictionScroll")->height());
    EXPECT_TRUE(page.item("confirm"));
    page.photograph("32_forty");
    // More than can be laid out at once come on request.
    result.sideEffects.resize(1);
    for (int number = 0; number < 1000; ++number)
        result.sideEffects.push_back({PlainSideEffect::kill, "Process " + std::to_string(number)});
    page.bench.finder.take({{"/home/u/w/other.txt"}, "/w"});
    Page::settle(50);
    EXPECT_EQ(page.items("row").size(), 100U);
}

TEST(BarPage, PopoverStandsWhereThereIsRoom) {
    Page page;
    page.bench.predicted["rm a.txt"] = Bench::deletes("/home/u/w/a.txt");
    page.open();
    page.ask("rm a.txt");
    const QQuickWindow* popover = page.popover("prediction");
    ASSERT_TRUE(popover);
    const QRect screen = popover->screen()->geometry();
    for (const QPoint place : {QPoint(100, 700), QPoint(100, 0), QPoint(-400, 300), QPoint(700, 300)}) {
        page.bar->setPosition(place);
        Page::settle(20);
        const QRect area = popover->geometry().adjusted(16, 16, -16, -16);  // without the shadow
        EXPECT_TRUE(screen.contains(area)) << place.x() << " " << place.y();
        EXPECT_EQ(area.bottom() < place.y(), place.y() > 0) << place.y();
    }
}

TEST(BarPage, HistoryIsChosenRemovedAndCleared) {
    Page page;
    page.bench.predicted["rm a.txt"] = Bench::deletes("/home/u/w/a.txt");
    page.open();
    page.click("clock");
    ASSERT_TRUE(page.popover("historyList"));
    page.photograph("40_history_empty");
    page.click("clock");
    for (const char* line : {"rm a.txt", "rm b.txt", "rm c.txt"}) {
        page.bench.predicted[line] = Bench::deletes("/home/u/w/a.txt");
        page.ask(line, QString("request of ") + line);
        page.key(Qt::Key_Escape);
    }
    page.click("clock");
    ASSERT_TRUE(page.popover("historyList"));
    page.photograph("41_history");
    page.key(Qt::Key_Up, {}, page.popover("historyList"));
    page.key(Qt::Key_Delete, {}, page.popover("historyList"));
    EXPECT_EQ(page.bench.flow().view().commandHistory.size(), 2U);
    EXPECT_EQ(page.bench.flow().view().commandHistory.back().bashCommand, "rm b.txt");
    page.key(Qt::Key_Up, {}, page.popover("historyList"));
    page.key(Qt::Key_Return, {}, page.popover("historyList"));
    EXPECT_EQ(page.bench.state(), PromptState::awaitingConfirmation);
    EXPECT_FALSE(page.popover("historyList"));
    page.key(Qt::Key_Escape);
    page.click("clock");
    page.click("clearHistory");
    page.photograph("42_history_clear");
    EXPECT_EQ(page.bench.flow().view().commandHistory.size(), 2U);
    page.click("reallyClear");
    EXPECT_TRUE(page.bench.flow().view().commandHistory.empty());
}

TEST(BarPage, FilesAreDroppedAndHintsAreShown) {
    Page page({.overhang = 30, .knowsSelection = false});
    page.open();
    EXPECT_TRUE(page.item("selection")->property("isUnknown").toBool());  // nothing is said of "This folder"
    QMimeData files;
    files.setUrls({QUrl("file:///w/a.txt"), QUrl("file:///w/b.txt")});
    QMimeData words;
    words.setText("a.txt");
    for (const QMimeData* data : {&words, &files}) {
        const QPointF place(80, 40);
        QDragEnterEvent enter(place.toPoint(), Qt::CopyAction, data, Qt::LeftButton, {});
        QCoreApplication::sendEvent(page.bar, &enter);
        QDropEvent drop(place, Qt::CopyAction, data, Qt::LeftButton, {});
        QCoreApplication::sendEvent(page.bar, &drop);
    }
    EXPECT_EQ(page.said, QStringList{"2 dropped"});

    for (const auto& [name, hint] : {std::pair("selection", "Drop files here"), std::pair("close", "Hide the bar")}) {
        const QQuickItem* item = page.item(name);
        QTest::mouseMove(page.bar, item->mapToScene(QPointF(item->width() / 2, item->height() / 2)).toPoint());
        ASSERT_TRUE(QTest::qWaitFor([&] { return page.popover("hint") != nullptr; }, 2000)) << name;
        EXPECT_TRUE(page.popover("hint")->property("text").toString().contains(hint)) << name;
        page.photograph(QString("51_hint_") + name);
        QTest::mouseMove(page.bar, QPoint(300, 80));
        Page::settle(50);
        EXPECT_FALSE(page.popover("hint")) << name;
    }
}

TEST(BarPage, ModelIsChosen) {
    Page page;
    page.open();
    EXPECT_EQ(page.item("models")->property("title").toString(), "GPT-4.1 mini");
    page.click("models");
    QWindow* menu = page.popover("modelMenu");
    ASSERT_TRUE(menu);
    page.photograph("43_models");
    page.key(Qt::Key_Down, {}, menu);
    page.key(Qt::Key_Return, {}, menu);
    EXPECT_EQ(page.bench.flow().view().selectedModel.name, "claude-haiku-4-5");
    EXPECT_FALSE(page.popover("modelMenu"));
    for (const AIModel& model : AIModelList::all()) page.bench.modelList.setEnabled(model, false);
    page.model->refreshModels();
    EXPECT_EQ(page.item("models")->property("title").toString(), "Add an API key or custom model in Settings...");
    page.click("models");
    EXPECT_EQ(page.said, QStringList{"settings AI Models"});
}

TEST(BarPage, FitsANarrowBar) {
    Page page;
    page.bench.predicted["mv"] =
        changing({moved("/home/u/w/a rather long name of a photograph.jpg", "/home/u/w/2023/a shorter one.jpg"),
                  change(Type::delete_, "/home/u/w/old report of the year before the last.txt")});
    page.bench.runResults.push_back({"done\n", "", 0});
    page.open(300);
    page.ask("mv", "put the photographs into folders by the year in which they were taken, and drop the report");
    page.photograph("60_narrow");
    const QQuickWindow* popover = page.popover("prediction");
    ASSERT_TRUE(popover);
    for (const QQuickItem* path : page.items("path"))
        EXPECT_LE(path->mapToScene({path->width(), 0}).x(), popover->width() - 30) << path->width();
    page.bench.answer(
        "The photographs lie in three folders now: 2021 with 14, 2022 with 96 and 2023 with 205 of them.");
    page.click("confirm");
    page.step();
    page.photograph("61_narrow");
    page.step();
    EXPECT_EQ(page.bench.state(), PromptState::complete);
    for (const char* name : {"status", "predictionIcon", "outputIcon", "close"}) {
        const QQuickItem* item = page.item(name);
        ASSERT_NE(item, nullptr) << name;
        EXPECT_LE(item->mapToScene({item->width(), 0}).x(), 270) << name;
    }
    EXPECT_GT(page.item("status")->width(), 100);
    page.photograph("62_narrow");
}

TEST(BarPage, FollowsTheDesktopsColours) {
    struct Case {
        const char* window;
        bool hasCompositor;
    };
    const Case cases[] = {{"#f0f0f0", true}, {"#202022", true}, {"#f0f0f0", false}};
    const QPalette before = QGuiApplication::palette();
    for (const auto& [window, hasCompositor] : cases) {
        QGuiApplication::setPalette(QPalette(QColor(window)));
        Page page({.overhang = 30, .hasCompositor = hasCompositor, .isTranslucent = false});
        page.bench.predicted["rm a.txt"] = Bench::deletes("/home/u/w/a.txt");
        page.open();
        page.ask("rm a.txt");
        const double ground = QColor(window).lightnessF();
        for (const char* name : {"status", "request", "command"}) {
            const double ink = page.item(name)->property("color").value<QColor>().lightnessF();
            EXPECT_GT(std::abs(ink - ground), 0.3) << name << " on " << window;
        }
        const QImage picture = page.bar->grabWindow();
        EXPECT_NEAR(QColor(picture.pixel(picture.width() / 2, 10)).lightnessF(), ground, 0.15);
        // Without a compositor nothing may be transparent, which would be black.
        for (QQuickWindow* each : {page.bar, page.popover("prediction")})
            EXPECT_EQ(each->grabWindow().pixelColor(1, 1).lightnessF() < 0.5, hasCompositor);
        page.photograph(QString("50_ground_%1_%2").arg(QString(window).mid(1)).arg(hasCompositor));
    }
    QGuiApplication::setPalette(before);
}

TEST(BarPage, TypingRebuildsNothing) {
    Page page;
    page.bench.predicted["rm a.txt"] = Bench::deletes("/home/u/w/a.txt");
    page.open();
    page.ask("rm a.txt");
    page.key(Qt::Key_R, Qt::ControlModifier);
    int rebuilt = 0;
    for (const auto signal : {&BarModel::predictionChanged, &BarModel::historyChanged, &BarModel::modelsChanged,
                              &BarModel::stateChanged, &BarModel::selectionChanged})
        QObject::connect(page.model.get(), signal, page.bar, [&rebuilt] { ++rebuilt; });
    page.type("only the first");
    EXPECT_EQ(rebuilt, 0);
    EXPECT_EQ(page.bench.flow().view().prompt, "only the first");
}

TEST(BarPage, EverySymbolHasAPicture) {
    Warnings warnings;
    QQmlEngine engine;
    QQmlComponent component(&engine);
    component.setData(
        "import QtQuick\nimport \"Symbols.js\" as Symbols\nQtObject { function has(name) { return "
        "Symbols.has(name) } }",
        pageNamed("names.qml"));
    const std::unique_ptr<QObject> table(component.create());
    ASSERT_TRUE(table) << component.errorString().toStdString();
    QStringList names{"checkmark.shield", "exclamationmark.shield", "hare", "brain", "hammer.circle", "gear",
                      "info.circle"};
    const auto take = [&names](const ChangesViewIconAndText& row) {
        if (row.icon) names.append(QString::fromStdString(row.icon->symbolName));
    };
    for (int value = 0; value <= static_cast<int>(PlainSideEffect::printsDocument); ++value)
        take(rowFor(SideEffect{static_cast<PlainSideEffect>(value), {}}));
    take(rowFor(SideEffect{PowerAction::sleep, {}}));
    take(rowFor(CommandError{}));
    for (const auto type : {Type::create, Type::modify, Type::delete_, Type::overwrite})
        take(predictionRows(changing({change(type, "/w/a")}), FilePath("/w"), FilePath("/h")).front());
    for (const char* target : {"/w/b", "/w/s/a", "/h/.Trash/a"})
        take(predictionRows(changing({moved("/w/a", target)}), FilePath("/w"), FilePath("/h")).front());
    // Those that the pages name.
    static const QRegularExpression named("(?:name|symbol|iconName):[^\"\\n]*\"([a-z.]+)\"");
    const QDir pages(qEnvironmentVariable("BRINDLET_PAGES", ":/brindlet/qml"));
    for (const QString& page : pages.entryList({"*.qml"})) {
        QFile file(pages.filePath(page));
        ASSERT_TRUE(file.open(QIODevice::ReadOnly));
        for (auto match = named.globalMatch(QString::fromUtf8(file.readAll())); match.hasNext();)
            names.append(match.next().captured(1));
    }
    EXPECT_GT(names.size(), 40);
    for (const QString& name : names) {
        QVariant isThere;
        QMetaObject::invokeMethod(table.get(), "has", Q_RETURN_ARG(QVariant, isThere), Q_ARG(QVariant, name));
        EXPECT_TRUE(isThere.toBool()) << name.toStdString();
    }
}

}  // namespace bar_page_tests
}  // namespace brindlet
