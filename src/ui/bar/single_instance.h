// The one bar of a session, by its name on the session bus: a second start hands over what it was given and ends. File
// managers' extensions speak to the same object.
//
//     if (SingleInstance::handOver(request)) return 0;
//     SingleInstance instance({.request = ..., .selectionChanged = ...});
//     instance.listen();
#pragma once

#include <QByteArray>
#include <QByteArrayList>
#include <QObject>
#include <QString>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "desktop/finder_context.h"

namespace brindlet {

// What a start of the program asks for.
struct BarRequest {
    enum class Kind { show, toggle, settings, quit, login, permissionsTest };
    Kind kind = Kind::show;
    std::optional<FinderSelection> handedOver{};  // with `show` only
};

struct BarRequestHandlers {
    std::function<void(const BarRequest& request)> request;
    // A file manager's extension says what is selected in one of its windows, 0: in its front window. None: nothing
    // that is on a disk, or the window has gone.
    std::function<void(std::uint32_t window, std::optional<FinderSelection> selection)> selectionChanged;
};

// Without a session bus every start is the first.
class SingleInstance final : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "com.fenwold.Brindlet.Bar1")

  public:
    explicit SingleInstance(BarRequestHandlers handlers);

    // True: another one runs, and has taken the request.
    static bool handOver(const BarRequest& request);
    void listen();

  public slots:
    // As they are called on the bus; paths are the bytes that they are.
    Q_SCRIPTABLE void Show();
    Q_SCRIPTABLE void Toggle();
    Q_SCRIPTABLE void OpenSettings();
    Q_SCRIPTABLE void OpenPermissionsTest();
    Q_SCRIPTABLE void Quit();
    Q_SCRIPTABLE void HandOver(const QByteArray& folder, const QByteArrayList& files);
    Q_SCRIPTABLE void SelectionChanged(uint window, const QByteArray& folder, const QByteArrayList& files);

  private:
    BarRequestHandlers handlers_;
};

}  // namespace brindlet
