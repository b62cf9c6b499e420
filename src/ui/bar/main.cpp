// The desktop bar: brindlet-bar [--folder DIR] [FILE...]. `brindlet bar` starts it.
#include <QApplication>
#include <QQmlApplicationEngine>
#include <QQuickStyle>
#include <QQuickWindow>
#include <exception>
#include <string>
#include <vector>

#include "ui/bar/bar_model.h"
#include "ui/bar/qt_loop.h"
#include "ui/terminal/command_line_context.h"
#include "ui/terminal/console.h"
#include "ui/terminal/exit_code.h"
#include "ui/terminal/flow_host.h"

#include "exec/progress_trackers.h"

namespace brindlet {

namespace {

struct BarWords {
    std::string folder;
    std::vector<std::string> files;
};

// What Qt has left of the words.
BarWords wordsOf(const QStringList& arguments) {
    BarWords words;
    bool areOptionsOver = false;
    for (qsizetype at = 1; at < arguments.size(); ++at) {
        const std::string word = arguments[at].toStdString();
        if (!areOptionsOver && word == "--") {
            areOptionsOver = true;
        } else if (!areOptionsOver && word == "--folder" && at + 1 < arguments.size()) {
            words.folder = arguments[++at].toStdString();
        } else {
            words.files.push_back(word);
        }
    }
    return words;
}

int runBarProgram(const QApplication& application) {
    CommandLineContext context;
    const BarWords words = wordsOf(application.arguments());
    if (!words.folder.empty()) context.useFolder(words.folder);
    std::vector<FilePath> files = context.existingFiles(words.files);
    context.startLogging();

    QtLoop loop;
    FlowOptions options;
    options.trackers = chooseProgressTracker;
    options.reveals = true;
    FlowHost host(context, loop, std::move(files), std::move(options));
    BarModel model(host);
    host.flow().appear();

    QQmlApplicationEngine engine;
    engine.setInitialProperties({{"model", QVariant::fromValue(&model)}});
    engine.load(QUrl("qrc:/brindlet/qml/Bar.qml"));
    if (engine.rootObjects().isEmpty())
        throw UsageError{"the bar's pages can't be loaded: is Qt Quick installed whole?"};
    return QApplication::exec();
}

}  // namespace

}  // namespace brindlet

int main(int argc, char** argv) {
    using namespace brindlet;
    prepareStandardStreams();
    // Without a graphics card's help it is the quicker and the smaller one, and works on every machine.
    QQuickWindow::setGraphicsApi(QSGRendererInterface::Software);
    QQuickStyle::setStyle("Basic");
    QApplication application(argc, argv);
    QApplication::setApplicationName("Brindlet");
    QApplication::setDesktopFileName("com.fenwold.Brindlet");
    try {
        return runBarProgram(application);
    } catch (const UsageError& error) {
        reportProblem(error.sentence);
        return exitWrongUsage;
    } catch (const std::exception& error) {
        reportProblem(std::string("something went wrong that shouldn't have: ") + error.what());
        return exitFailed;
    }
}
