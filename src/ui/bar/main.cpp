// The desktop bar: brindlet-bar [--toggle | --settings | --quit | --login] [--folder DIR] [FILE...]. `brindlet bar`
// starts it.
#include <QApplication>
#include <QQuickStyle>
#include <QQuickWindow>
#include <QSocketNotifier>
#include <cstdlib>
#include <exception>
#include <string>
#include <string_view>
#include <vector>

#include "desktop/linux/selection_reader.h"
#include "platform/environment.h"
#include "ui/bar/bar_program.h"
#include "ui/bar/symbol_picture.h"
#include "ui/terminal/command_line_context.h"
#include "ui/terminal/console.h"
#include "ui/terminal/exit_code.h"
#include "ui/terminal/interruption.h"

namespace brindlet {

namespace {

struct KindRow {
    std::string_view word;
    BarRequest::Kind kind;
};
constexpr KindRow kindRows[] = {{"--toggle", BarRequest::Kind::toggle},
                                {"--settings", BarRequest::Kind::settings},
                                {"--quit", BarRequest::Kind::quit},
                                {"--login", BarRequest::Kind::login},
                                {"--permissions-test", BarRequest::Kind::permissionsTest}};  // for support

// `brindlet bar` has looked at the words before; a folder and files are whole paths.
BarRequest requestOf(const std::vector<std::string>& arguments) {
    BarRequest request;
    FinderSelection selection;
    bool areOptionsOver = false;
    for (std::size_t at = 1; at < arguments.size(); ++at) {
        const std::string& word = arguments[at];
        const auto* row = std::ranges::find(kindRows, std::string_view(word), &KindRow::word);
        if (areOptionsOver) {
            selection.items.push_back(word);
        } else if (word == "--") {
            areOptionsOver = true;
        } else if (word == "--folder" && at + 1 < arguments.size()) {
            selection.activeFolderPath = arguments[++at];
        } else if (row != std::end(kindRows)) {
            request.kind = row->kind;
        } else if (word.starts_with('-')) {
            throw UsageError{"'" + word + "' is no option of the bar: see 'brindlet bar --help'"};
        } else {
            selection.items.push_back(word);
        }
    }
    if (selection.activeFolderPath.empty() && !selection.items.empty())
        selection.activeFolderPath = FilePath(selection.items.front()).parent().text();
    if (!selection.activeFolderPath.empty()) request.handedOver = std::move(selection);
    return request;
}

// Qt ends the program from within when the display has gone. No command may stay behind.
BarProgram* runningProgram = nullptr;
void endWithTheDisplay() {
    if (runningProgram != nullptr) runningProgram->endWork();
}
struct RunningMark {
    explicit RunningMark(BarProgram& program) { runningProgram = &program; }
    ~RunningMark() { runningProgram = nullptr; }
};

int runBarProgram(const BarRequest& request, AnsweringProcess& reader) {
    if (request.kind == BarRequest::Kind::quit) return 0;  // none runs
    CommandLineContext context;
    context.startLogging();
    const Interruption interruption;
    QSocketNotifier politeEnd(interruption.descriptor(), QSocketNotifier::Read);
    QObject::connect(&politeEnd, &QSocketNotifier::activated, [&] {
        politeEnd.setEnabled(false);
        QApplication::quit();
    });
    BarProgram program(context, reader);
    const RunningMark mark(program);
    std::atexit(endWithTheDisplay);
    program.start(request);
    return QApplication::exec();
}

}  // namespace

}  // namespace brindlet

int main(int argc, char** argv) {
    using namespace brindlet;
    prepareStandardStreams();
    try {
        // Before there are other threads.
        AnsweringProcess reader(selectionAnswer());
        // Without a graphics card's help it is the quicker and the smaller one, and works on every machine.
        if (!qEnvironmentVariableIsSet("QSG_RHI_BACKEND")) QQuickWindow::setGraphicsApi(QSGRendererInterface::Software);
        QQuickStyle::setStyle("Basic");
        SymbolPicture::registerType();
        QApplication application(argc, argv);
        QApplication::setApplicationName("Brindlet");
        QApplication::setApplicationVersion(BRINDLET_VERSION);
        QApplication::setDesktopFileName("com.fenwold.Brindlet");
        QApplication::setWindowIcon(programIcon());
        QApplication::setQuitOnLastWindowClosed(false);
        const BarRequest request = requestOf({argv, argv + argc});  // without Qt's own
        if (SingleInstance::handOver(request)) return 0;
        return runBarProgram(request, reader);
    } catch (const UsageError& error) {
        reportProblem(error.sentence);
        return exitWrongUsage;
    } catch (const std::exception& error) {
        reportProblem(std::string("something went wrong that shouldn't have: ") + error.what());
        return exitFailed;
    }
}
