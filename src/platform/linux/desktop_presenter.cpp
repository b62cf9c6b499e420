// Shows files by the D-Bus interface org.freedesktop.FileManager1, asked through dbus-send(1), and folders through
// xdg-open(1) where nobody offers that interface. Seen with Thunar 4.18, Nautilus 43, Nemo 5.6, Caja 1.26, PCManFM-Qt
// 1.2 and Dolphin 22.12: of several items only Dolphin selects all in one window, the others open a window for each,
// and a new one though a window shows the folder. So items are selected in that through the accessibility bus; where
// there is none, the others are asked for the first, and the rest is selected in its window in the same way. Asking
// for the folder instead opens no fewer windows (Thunar, Nemo, Caja: always a new one; Nautilus: neither way), and
// where the rest can't be selected the first would need a window of its own. A Thunar with our companion in it is asked
// before all that (companions/thunar).
#include <fmt/format.h>

#include <algorithm>
#include <chrono>
#include <optional>
#include <string_view>
#include <thread>
#include <utility>

#include "platform/child_process.h"
#include "platform/file_presenter.h"
#include "platform/linux/accessible_selection.h"
#include "text/strings.h"

namespace brindlet {

namespace {

using PresenterClock = std::chrono::steady_clock;
using namespace std::chrono_literals;

constexpr std::chrono::milliseconds helpPatience = 50ms;
constexpr std::chrono::milliseconds longestSelecting = 3s;
// A window that was asked for comes up a moment after the answer (Thunar 4.18).
constexpr std::chrono::milliseconds newWindowPatience = 1500ms;
constexpr std::chrono::milliseconds newWindowPause = 100ms;
constexpr std::size_t mostNamesTold = 20;
constexpr std::size_t mostReplyBytes = std::size_t{1} << 20;

constexpr std::string_view sharedName = "org.freedesktop.FileManager1";
constexpr std::string_view dolphinPrefix = "org.kde.dolphin-";  // with the process id behind it
// The names under which running file managers answer to that interface. Who gets the shared name where several are
// installed is chance, so that one that runs is asked by its own.
constexpr std::string_view thunarName = "org.xfce.Thunar";
constexpr std::string_view thunarCompanion = "com.fenwold.Brindlet.Thunar";
constexpr std::string_view ownNames[] = {dolphinPrefix, "org.gnome.Nautilus", thunarName, "org.Nemo", "org.mate.Caja"};

// Everything but the unreserved characters of RFC 3986 is spelt out, so that no shell, list or locale has a say.
std::string fileUri(const FilePath& path) {
    constexpr std::string_view plain = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-._~/";
    std::string uri = "file://";
    for (const char byte : path.text()) {
        if (plain.find(byte) != std::string_view::npos) {
            uri += byte;
        } else {
            uri += fmt::format("%{:02X}", static_cast<unsigned char>(byte));
        }
    }
    return uri;
}

std::string fileUris(const std::vector<FilePath>& items) {
    std::string uris;
    for (const FilePath& item : items) uris += (uris.empty() ? "" : ",") + fileUri(item);
    return uris;
}

std::string counted(const std::vector<FilePath>& items) {
    return items.size() == 1 ? "1 item" : fmt::format("{} items", items.size());
}

std::string namesOf(const std::vector<FilePath>& items) {
    std::string names;
    for (std::size_t at = 0; at < std::min(items.size(), mostNamesTold); ++at)
        names += (names.empty() ? "" : ", ") + items[at].text();
    if (items.size() > mostNamesTold) names += fmt::format(" and {} more", items.size() - mostNamesTold);
    return names;
}

// Only tells. What stands for a file manager where there is no desktop.
class TellingPresenter final : public FilePresenter {
  public:
    explicit TellingPresenter(TellUser tell) : tell_(std::move(tell)) {}
    void selectInFileManager(const std::vector<FilePath>& items) override { tellSelection(items); }
    void tellSelection(const std::vector<FilePath>& items) const {
        tell_(fmt::format("a file manager would now show {} selected: {}", counted(items), namesOf(items)));
    }
    void openFolder(const FilePath& folder) override { tell_("a file manager would now open " + folder.text()); }

  private:
    TellUser tell_;
};

// Who is asked to show files.
struct FileManagerNames {
    std::string own;
    std::string companion;  // empty where it has none
};

struct HelperEnd {
    std::optional<int> status;  // none: it had not ended when its time was over
    std::string output;
};

// A helper that outlives its time is ended with all it has started.
HelperEnd runHelper(const Environment& environment, std::chrono::milliseconds longest,
                    std::vector<std::string> arguments) {
    auto child = ChildProcess::start({.arguments = std::move(arguments),
                                      .folder = FilePath(),
                                      .environment = environment,
                                      .joinsStandardError = true});
    HelperEnd end;
    if (!child) return end;
    const auto limit = PresenterClock::now() + longest;
    while (PresenterClock::now() < limit && end.output.size() < mostReplyBytes) {
        const bool hadExited = (*child)->exitStatus().has_value();
        const ReadState state = (*child)->read(end.output, helpPatience);
        if (state == ReadState::bytes) continue;
        if (hadExited || state == ReadState::ended) break;
    }
    // A closed pipe is mostly the exit itself, seen a moment early.
    while (!(end.status = (*child)->exitStatus()) && PresenterClock::now() < limit) std::this_thread::sleep_for(1ms);
    return end;
}

class DesktopPresenter final : public FilePresenter {
  public:
    DesktopPresenter(Environment environment, TellUser tell, std::chrono::milliseconds longestHelp)
        : environment_(std::move(environment)),
          longestHelp_(longestHelp),
          tell_(tell),
          withoutDesktop_(std::move(tell)) {}

    void selectInFileManager(const std::vector<FilePath>& items) override {
        if (items.empty()) return;
        const std::optional<FileManagerNames> manager = fileManager();
        if (manager && selectByCompanion(*manager, items)) return;
        if (manager && !manager->own.starts_with(dolphinPrefix)) return selectInOneWindow(*manager, items);
        if (!call(manager, "ShowItems", items)) showFolderOf(items);
    }

    void openFolder(const FilePath& folder) override {
        if (!call(fileManager(), "ShowFolders", {folder}) && !openByHandler(folder)) withoutDesktop_.openFolder(folder);
    }

  private:
    // By a file manager that would open a window for each, also where one shows their folder already.
    void selectInOneWindow(const FileManagerNames& manager, const std::vector<FilePath>& items) const {
        std::optional<AccessibleSelection> selection;
        if (hasAccessibilityBus())
            selection.emplace(items, environment_, std::min<std::chrono::milliseconds>(longestHelp_, longestSelecting));
        std::optional<pid_t> process = selection ? processOf(manager.own) : std::nullopt;
        if (process && selection->selectWhereShown(*process)) return;
        if (!call(manager, "ShowItems", {items.front()})) return showFolderOf(items);
        if (items.size() == 1) return;
        // It may have been started only now.
        if (selectInNewWindowByCompanion(fileManager().value_or(manager), items)) return;
        process = selection ? processOf(manager.own) : std::nullopt;
        if (process && selection->selectInWindowOfFirst(*process)) return;
        tell_(fmt::format("the file manager selects one item at a time, the first of these {}: {}", counted(items),
                          namesOf(items)));
    }

    // In a window that shows their folder, which is raised. It waits for files that were just written.
    bool selectByCompanion(const FileManagerNames& manager, const std::vector<FilePath>& items) const {
        if (manager.companion.empty()) return false;
        const HelperEnd end = send(manager.companion, "/com/fenwold/Brindlet/Companion",
                                   "com.fenwold.Brindlet.Companion1.Select", {"array:string:" + fileUris(items)});
        return end.status == 0 && contains(end.output, "boolean true");
    }

    bool selectInNewWindowByCompanion(const FileManagerNames& manager, const std::vector<FilePath>& items) const {
        const auto limit = PresenterClock::now() + newWindowPatience;
        while (!selectByCompanion(manager, items)) {
            if (manager.companion.empty() || PresenterClock::now() >= limit) return false;
            std::this_thread::sleep_for(newWindowPause);
        }
        return true;
    }

    void showFolderOf(const std::vector<FilePath>& items) const {
        if (!openByHandler(items.front().parent())) return withoutDesktop_.tellSelection(items);
        tell_(fmt::format("the file manager can only show the folder of the {} to select: {}", counted(items),
                          namesOf(items)));
    }

    // Asking starts the bus where it doesn't run, as it does for the file manager itself. libatspi would ask too, but
    // wait for the answer without end.
    bool hasAccessibilityBus() const {
        return send("org.a11y.Bus", "/org/a11y/bus", "org.a11y.Bus.GetAddress", {}).status == 0;
    }

    std::optional<pid_t> processOf(const std::string& busName) const {
        const HelperEnd end = send("org.freedesktop.DBus", "/org/freedesktop/DBus",
                                   "org.freedesktop.DBus.GetConnectionUnixProcessID", {"string:" + busName});
        constexpr std::string_view type = "uint32 ";
        const std::size_t at = end.output.find(type);
        if (end.status != 0 || at == std::string::npos) return std::nullopt;
        const auto process = parsedInteger(trimmed(std::string_view(end.output).substr(at + type.size())));
        return process ? std::optional<pid_t>(static_cast<pid_t>(*process)) : std::nullopt;
    }

    HelperEnd send(std::string_view name, std::string_view object, std::string_view method,
                   const std::vector<std::string>& arguments) const {
        std::vector<std::string> command{"/usr/bin/env",
                                         "dbus-send",
                                         "--session",
                                         "--print-reply",
                                         "--reply-timeout=" + std::to_string(longestHelp_.count()),
                                         fmt::format("--dest={}", name),
                                         std::string(object),
                                         std::string(method)};
        command.insert(command.end(), arguments.begin(), arguments.end());
        return runHelper(environment_, longestHelp_, std::move(command));
    }

    // The one that runs, else the shared name, which starts one; none where no bus answers.
    std::optional<FileManagerNames> fileManager() const {
        const HelperEnd listed =
            send("org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus.ListNames", {});
        if (listed.status != 0) return std::nullopt;
        const bool hasCompanion = contains(listed.output, fmt::format("\"{}\"", thunarCompanion));
        for (const std::string_view name : ownNames) {
            const std::string_view end = name == dolphinPrefix ? "" : "\"";
            const std::size_t begin = listed.output.find(fmt::format("\"{}{}", name, end)) + 1;
            if (begin == 0) continue;
            return FileManagerNames{
                .own = listed.output.substr(begin, listed.output.find('"', begin) - begin),
                .companion = std::string(name == thunarName && hasCompanion ? thunarCompanion : "")};
        }
        return FileManagerNames{.own = std::string(sharedName), .companion = ""};
    }

    bool call(const std::optional<FileManagerNames>& manager, std::string_view method,
              const std::vector<FilePath>& items) const {
        if (!manager) return false;
        const HelperEnd end =
            send(manager->own, "/org/freedesktop/FileManager1", fmt::format("{}.{}", sharedName, method),
                 {"array:string:" + fileUris(items), "string:"});
        return end.status == 0;
    }

    // xdg-open may be the file manager itself for as long as its window is open, so that it is started in the
    // background and left alone: it has failed only if it says so at once.
    bool openByHandler(const FilePath& folder) const {
        const HelperEnd end = runHelper(environment_, longestHelp_,
                                        {"/bin/sh", "-c",
                                         "command -v xdg-open >/dev/null || exit 1\n"
                                         "xdg-open \"$1\" >/dev/null 2>&1 &\n"
                                         "for pause in 1 2 3 4 5 6 7 8 9 10; do\n"
                                         "    kill -0 $! 2>/dev/null || { wait $!; exit; }\n"
                                         "    sleep 0.1\n"
                                         "done",
                                         "sh", fileUri(folder)});
        return end.status == 0;
    }

    Environment environment_;
    std::chrono::milliseconds longestHelp_;
    TellUser tell_;
    TellingPresenter withoutDesktop_;
};

bool isSet(const Environment& environment, std::string_view name) {
    const auto found = environment.find(name);
    return found != environment.end() && !found->second.empty();
}

}  // namespace

std::unique_ptr<FilePresenter> openFilePresenter(const Environment& environment, TellUser tell,
                                                 std::chrono::milliseconds longestHelp) {
    const bool hasDisplay = isSet(environment, "DISPLAY") || isSet(environment, "WAYLAND_DISPLAY");
    if (hasDisplay && isSet(environment, "DBUS_SESSION_BUS_ADDRESS"))
        return std::make_unique<DesktopPresenter>(environment, std::move(tell), longestHelp);
    return std::make_unique<TellingPresenter>(std::move(tell));
}

}  // namespace brindlet
