#include "ui/bar/single_instance.h"

#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusMetaType>
#include <algorithm>
#include <utility>

#include "text/enum_rows.h"
#include "ui/terminal/console.h"

namespace brindlet {

namespace {

constexpr const char* busName = "com.fenwold.Brindlet";
constexpr const char* objectPath = "/com/fenwold/Brindlet";
constexpr const char* interfaceName = "com.fenwold.Brindlet.Bar1";

struct MethodRow {
    BarRequest::Kind key;
    const char* method;
};
constexpr MethodRow methodRows[] = {
    {BarRequest::Kind::show, "Show"},
    {BarRequest::Kind::toggle, "Toggle"},
    {BarRequest::Kind::settings, "OpenSettings"},
    {BarRequest::Kind::quit, "Quit"},
    {BarRequest::Kind::login, "Show"},
    {BarRequest::Kind::permissionsTest, "OpenPermissionsTest"},
};
static_assert(rowsCover(methodRows, BarRequest::Kind::permissionsTest));

FinderSelection selectionOf(const QByteArray& folder, const QByteArrayList& files) {
    FinderSelection selection{.items = {}, .activeFolderPath = folder.toStdString()};
    for (const QByteArray& file : files) selection.items.push_back(file.toStdString());
    return selection;
}

// Each of them is looked at on the disk three times a second.
constexpr std::size_t mostItems = 100'000;

// From anybody on the bus: what is no whole path isn't looked at.
bool isWhole(const FinderSelection& selection) {
    const auto isPath = [](const std::string& path) {
        return path.starts_with('/') && path.find('\0') == std::string::npos;
    };
    return selection.items.size() <= mostItems && isPath(selection.activeFolderPath) &&
           std::ranges::all_of(selection.items, isPath);
}

// A bar that hangs is no reason for a second one.
void report(const QDBusMessage& reply) {
    if (reply.type() != QDBusMessage::ReplyMessage)
        reportProblem("the bar that runs doesn't answer (" + reply.errorMessage().toStdString() +
                      "): end it with 'pkill brindlet-bar' and start it again");
}

QDBusMessage call(const char* method) {
    return QDBusMessage::createMethodCall(busName, objectPath, interfaceName, method);
}

}  // namespace

SingleInstance::SingleInstance(BarRequestHandlers handlers) : handlers_(std::move(handlers)) {}

bool SingleInstance::handOver(const BarRequest& request) {
    QDBusConnection bus = QDBusConnection::sessionBus();
    if (!bus.isConnected() || !bus.interface()->isServiceRegistered(busName)) return false;
    qDBusRegisterMetaType<QByteArrayList>();
    constexpr int longest = 5000;  // milliseconds
    if (request.handedOver) {
        QDBusMessage message = call("HandOver");
        QByteArrayList files;
        for (const std::string& file : request.handedOver->items) files.append(QByteArray::fromStdString(file));
        message << QByteArray::fromStdString(request.handedOver->activeFolderPath) << QVariant::fromValue(files);
        report(bus.call(message, QDBus::Block, longest));
        return true;
    }
    report(bus.call(call(rowOf(methodRows, request.kind).method), QDBus::Block, longest));
    return true;
}

void SingleInstance::listen() {
    QDBusConnection bus = QDBusConnection::sessionBus();
    if (!bus.isConnected()) return;
    qDBusRegisterMetaType<QByteArrayList>();
    bus.registerObject(objectPath, this, QDBusConnection::ExportScriptableSlots);
    bus.registerService(busName);
}

void SingleInstance::Show() {
    handlers_.request({.kind = BarRequest::Kind::show});
}

void SingleInstance::Toggle() {
    handlers_.request({.kind = BarRequest::Kind::toggle});
}

void SingleInstance::OpenSettings() {
    handlers_.request({.kind = BarRequest::Kind::settings});
}

void SingleInstance::OpenPermissionsTest() {
    handlers_.request({.kind = BarRequest::Kind::permissionsTest});
}

void SingleInstance::Quit() {
    handlers_.request({.kind = BarRequest::Kind::quit});
}

void SingleInstance::HandOver(const QByteArray& folder, const QByteArrayList& files) {
    FinderSelection selection = selectionOf(folder, files);
    if (isWhole(selection)) handlers_.request({.kind = BarRequest::Kind::show, .handedOver = std::move(selection)});
}

void SingleInstance::SelectionChanged(uint window, const QByteArray& folder, const QByteArrayList& files) {
    if (folder.isEmpty()) return handlers_.selectionChanged(window, std::nullopt);
    FinderSelection selection = selectionOf(folder, files);
    if (isWhole(selection)) handlers_.selectionChanged(window, std::move(selection));
}

}  // namespace brindlet
