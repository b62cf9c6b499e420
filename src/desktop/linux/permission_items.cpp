#include "desktop/linux/permission_items.h"

#include <unistd.h>

#include <cerrno>
#include <utility>

#include "desktop/file_managers.h"
#include "desktop/linux/selection_reader.h"
#include "desktop/linux/session_bus.h"
#include "desktop/linux/x_window_source.h"
#include "platform/atomic_file.h"
#include "platform/file_system.h"
#include "platform/linux/file_descriptor.h"
#include "text/strings.h"

namespace brindlet {

namespace {

using namespace std::chrono_literals;

constexpr auto longestBusCall = 1000ms;
constexpr std::size_t longestEntry = 65536;

bool hasAccessibilityBus(const Environment& environment) {
    return callSessionBus(environment,
                          {.name = "org.a11y.Bus", .object = "/org/a11y/bus", .method = "org.a11y.Bus.GetAddress"},
                          longestBusCall)
        .has_value();
}

// Connections of their own, since checks run on any thread. With no window to try it on nothing speaks against it.
bool canReadSelection(AnsweringProcess& helper) {
    const auto front = XWindowSource().frontFolderWindowDetails();
    if (!front) return true;
    const auto content = readSelection(helper, *front, true);
    return content && content->selectedNames;
}

// Only programs of Qt wait to be told that assistive programs are in use.
std::optional<Failure> announceAssistivePrograms(const Environment& environment) {
    const auto front = XWindowSource().frontFolderWindowDetails();
    const FileManager* manager = front ? fileManagerOfIdentifier(front->identifier) : nullptr;
    if (manager == nullptr || !manager->isOfQt) return std::nullopt;
    const BusCall call{.name = "org.a11y.Bus",
                       .object = "/org/a11y/bus",
                       .method = "org.freedesktop.DBus.Properties.Set",
                       .arguments = {"string:org.a11y.Status", "string:IsEnabled", "variant:boolean:true"}};
    if (callSessionBus(environment, call, longestBusCall)) return std::nullopt;
    return Failure{"The accessibility bus can't be told that it is used."};
}

// As freedesktop.org has it for desktop entries: quoted, with the characters escaped that stay special in quotes, and
// percent signs doubled.
std::string quotedExec(const std::string& program) {
    std::string quoted = "\"";
    for (const char byte : program) {
        if (byte == '\\') quoted += "\\\\\\";  // once for the quotes, once more for the value
        if (byte == '"' || byte == '`' || byte == '$') quoted += "\\\\";
        if (byte == '%') quoted += '%';
        quoted += byte;
    }
    return quoted + '"';
}

}  // namespace

bool isWaylandSession(const Environment& environment) {
    const auto display = environment.find("WAYLAND_DISPLAY");
    return display != environment.end() && !display->second.empty();
}

std::vector<PermissionItem> accessibilityItems(const Environment& environment) {
    // Nobody can grant that in a Wayland session, where the bar stands at the bottom of the screen.
    if (isWaylandSession(environment)) return {};
    return {{.title = "The windows of other programs can be followed",
             .remedy =
                 "Start a window manager that keeps the hints of the desktop, such as that of Xfce, GNOME, KDE or "
                 "MATE.",
             .check = [] { return XWindowSource().canFollow(); },
             .isRequired = false}};  // the bar stands free without it
}

// None is required: without any, a companion in the file manager or its context menu still tells what is selected.
std::vector<PermissionItem> automationItems(const Environment& environment, AnsweringProcess& helper) {
    return {{.title = "The desktop's accessibility bus answers",
             .remedy = "Install the package at-spi2-core, log out and log in again.",
             .check = [environment] { return hasAccessibilityBus(environment); },
             .isRequired = false},
            {.title = "The file manager tells what is selected",
             .remedy = "Close all windows of the file manager and open it again. In Thunar choose View > View as "
                       "Detailed List. PCManFM needs the packages libatk-adaptor and libgail-common, and "
                       "GTK_MODULES=gail:atk-bridge in its environment.",
             .check = [&helper] { return canReadSelection(helper); },
             .mend = [environment] { return announceAssistivePrograms(environment); },
             .isRequired = false}};
}

AutostartEntry::AutostartEntry(FilePath autostartFolder, FilePath program)
    : file_(autostartFolder.child("brindlet.desktop")), program_(std::move(program)) {}

FilePath AutostartEntry::folderOf(const Environment& environment) {
    const auto config = environment.find("XDG_CONFIG_HOME");
    const bool isSet = config != environment.end() && config->second.starts_with('/');
    return (isSet ? FilePath(config->second) : homeFolder().child(".config")).child("autostart");
}

bool AutostartEntry::isEnabled() const {
    const auto entry = openFileSystem()->readFile(file_, longestEntry);
    if (!entry) return false;
    for (const std::string& line : split(*entry, "\n")) {
        const std::string setting = replacedAll(line, " ", "");
        if (setting == "Hidden=true" || setting == "X-GNOME-Autostart-enabled=false") return false;
    }
    return true;
}

std::optional<Failure> AutostartEntry::setEnabled(bool enabled) {
    if (!enabled) {
        if (::unlink(file_.text().c_str()) == 0 || errno == ENOENT) return std::nullopt;
        return systemFailure("Can't remove '" + file_.text() + "'", errno);
    }
    if (const auto failure = makeFolders(file_.parent())) return failure;
    return writeFileAtomically(file_,
                               "[Desktop Entry]\nType=Application\nName=Brindlet\nExec=" + quotedExec(program_.text()) +
                                   " bar --login\nX-GNOME-Autostart-enabled=true\n",
                               0644);
}

}  // namespace brindlet
