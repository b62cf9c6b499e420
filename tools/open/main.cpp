// open opens files, folders and addresses with what the desktop has for them, or with an application by its name.
//
// Exit codes: 0 opened, 1 something couldn't be, 64 wrong usage, 69 no desktop or a program is missing.
#include <sys/stat.h>

#include <algorithm>
#include <filesystem>
#include <map>

#include "applications.h"
#include "launch.h"
#include "platform/environment.h"
#include "platform/file_presenter.h"
#include "shared/command_line.h"
#include "shared/tool.h"
#include "text/characters.h"
#include "text/strings.h"

namespace brindlet::tools {

namespace {

namespace fs = std::filesystem;

// -n, -g, -j and -F ask for what the desktop decides here.
constexpr OptionRow openOptions[] = {{"-a", true}, {"-e"}, {"-t"}, {"-R"}, {"-W"},
                                     {"-n"},       {"-g"}, {"-j"}, {"-F"}, {"-u", true}};

constexpr std::string_view openUsage = "open takes files, folders or addresses, -a APPLICATION, -e, -t, -R and -W";

// The applications of which every such system has one under another name.
enum class Role { terminal, handlerOf, handlerOfFile, named };
struct StandIn {
    std::string_view asked;
    Role role;
    std::string_view detail{};  // a content type, or another name
};
constexpr StandIn standIns[] = {
    {"terminal", Role::terminal},
    {"iterm", Role::terminal},
    {"finder", Role::handlerOf, "inode/directory"},
    {"safari", Role::handlerOf, "x-scheme-handler/https"},
    {"mail", Role::handlerOf, "x-scheme-handler/mailto"},
    {"textedit", Role::handlerOf, "text/plain"},
    {"preview", Role::handlerOfFile},
    {"quicktime player", Role::handlerOfFile},
    {"activity monitor", Role::named, "System Monitor"},
    {"system settings", Role::named, "Settings"},
    {"system preferences", Role::named, "Settings"},
};

constexpr std::string_view terminals[] = {
    "x-terminal-emulator", "xdg-terminal-exec", "gnome-terminal", "kgx",   "konsole", "xfce4-terminal", "mate-terminal",
    "qterminal",           "lxterminal",        "alacritty",      "kitty", "foot",    "xterm"};

struct Request {
    std::vector<std::string> items;      // absolute paths and addresses
    std::vector<std::string> arguments;  // for the application alone
    bool waits = false;
};

void needDesktop() {
    const Environment environment = processEnvironment();
    const auto isSet = [&](std::string_view name) {
        const auto found = environment.find(name);
        return found != environment.end() && !found->second.empty();
    };
    if (!isSet("DISPLAY") && !isSet("WAYLAND_DISPLAY"))
        throw ToolFailure{"there is no desktop session here to open it in", statusMissingEngine};
}

bool isAddress(std::string_view word) {
    const std::size_t colon = word.find(':');
    if (colon == std::string_view::npos || colon < 2) return false;
    const auto isAllowed = [](char byte) {
        return (byte >= 'a' && byte <= 'z') || (byte >= 'A' && byte <= 'Z') || (byte >= '0' && byte <= '9') ||
               byte == '+' || byte == '-' || byte == '.';
    };
    return std::all_of(word.begin(), word.begin() + static_cast<std::ptrdiff_t>(colon), isAllowed);
}

// As the folders above it really lie; a link stays one.
std::string realPlaceOf(const fs::path& item) {
    const std::string name = item.filename().string();
    if (name.empty() || name == "." || name == "..") return fs::canonical(item).string();
    return (fs::canonical(item.has_parent_path() ? item.parent_path() : ".") / name).string();
}

std::string itemFor(const std::string& word) {
    std::error_code error;
    if (fs::exists(fs::symlink_status(word, error))) return realPlaceOf(word);
    if (isAddress(word)) return word;
    throw ToolFailure{"'" + word + "' doesn't exist"};
}

std::string terminalProgram() {
    for (const std::string_view name : terminals)
        if (auto path = programPath(name)) return *path;
    return neededProgram(terminals[0], "xterm");
}

int started(const Launch& program, const std::string& what) {
    const int status = launch(program);
    if (status != 0 && !program.waits) throw ToolFailure{what + " could not be started"};
    return status;
}

// One window for each folder; for a file, the one that it lies in.
int openTerminal(const Request& request) {
    const std::string program = terminalProgram();
    std::vector<std::string> folders;
    for (const std::string& item : request.items) {
        if (isAddress(item)) throw ToolFailure{"a terminal opens folders, and '" + item + "' is none"};
        folders.push_back(fs::is_directory(item) ? item : fs::path(item).parent_path().string());
    }
    if (folders.empty()) folders.emplace_back();
    for (const std::string& folder : folders)
        if (const int status = started({{program}, folder, request.waits}, "the terminal")) return status;
    return 0;
}

int openWithHandlers(const Request& request) {
    const std::string program = neededProgram("xdg-open", "xdg-utils");
    for (const std::string& item : request.items) {
        const int status = launch({{program, item}, "", request.waits});
        if (status != 0) throw ToolFailure{"the desktop has nothing that opens '" + item + "'", status};
    }
    return 0;
}

int openWith(const Application& application, const Request& request) {
    for (std::vector<std::string> words : commandWords(application, request.items)) {
        if (!words.front().starts_with('/')) {
            const auto path = programPath(words.front());
            if (!path) throw ToolFailure{"'" + application.name + "' is not installed whole: its program is missing"};
            words.front() = *path;
        }
        words.insert(words.end(), request.arguments.begin(), request.arguments.end());
        if (application.needsTerminal) words.insert(words.begin(), {terminalProgram(), "-e"});
        if (const int status = started({words, application.folder, request.waits}, "'" + application.name + "'"))
            return status;
    }
    return 0;
}

int openWithHandlerOf(std::string_view type, const Request& request) {
    const Captured asked = capture({neededProgram("xdg-mime", "xdg-utils"), "query", "default", std::string(type)});
    // Several ids, where one of them may not be installed.
    for (const std::string& id : splitNonEmpty(trimmed(asked.output), ";"))
        if (const auto application = applicationWithId(id)) return openWith(*application, request);
    throw ToolFailure{"the desktop has no application for '" + std::string(type) + "'"};
}

std::string lowerBareName(std::string_view asked) {
    while (asked.size() > 1 && asked.ends_with('/')) asked.remove_suffix(1);
    std::string name = lowercased(asked.substr(asked.rfind('/') + 1));
    if (name.ends_with(".app")) name.resize(name.size() - 4);
    return name;
}

int openWithNamed(const std::string& asked, const Request& request) {
    if (const auto application = applicationNamed(asked)) return openWith(*application, request);
    const std::string name = lowerBareName(asked);
    const auto* row =
        std::find_if(std::begin(standIns), std::end(standIns), [&](const StandIn& each) { return each.asked == name; });
    if (row != std::end(standIns)) {
        if (row->role == Role::terminal) return openTerminal(request);
        if (row->role == Role::handlerOf) return openWithHandlerOf(row->detail, request);
        if (row->role == Role::handlerOfFile && !request.items.empty()) return openWithHandlers(request);
        if (row->role == Role::named)
            if (const auto application = applicationNamed(row->detail)) return openWith(*application, request);
    }
    throw ToolFailure{"there is no application '" + asked + "' here"};
}

// Shows items in the file manager, those of one folder together.
int reveal(const Request& request) {
    if (request.items.empty()) throw ToolFailure{"-R needs a file", statusWrongUsage};
    std::map<FilePath, std::vector<FilePath>> byFolder;
    for (const std::string& item : request.items) {
        if (!item.starts_with('/')) throw ToolFailure{"only files can be shown in the file manager"};
        byFolder[FilePath(item).parent()].emplace_back(item);
    }
    int status = 0;
    const auto presenter = openFilePresenter(processEnvironment(), [&](const std::string& sentence) {
        complain("open", sentence);
        status = 1;
    });
    for (const auto& [folder, items] : byFolder) presenter->selectInFileManager(items);
    return status;
}

int open(const std::vector<std::string>& words) {
    const auto own = std::find(words.begin(), words.end(), "--args");
    const CommandLine line = readCommandLine({words.begin(), own}, openOptions);
    Request request{.items = {}, .arguments = {}, .waits = line.has("-W")};
    if (own != words.end()) request.arguments.assign(own + 1, words.end());
    for (const std::string& word : line.operands) request.items.push_back(itemFor(word));
    for (const std::string& address : line.values("-u")) request.items.push_back(address);
    const auto asked = line.value("-a");
    const bool edits = line.has("-e") || line.has("-t");
    if (!request.arguments.empty() && !asked) throw ToolFailure{"--args needs -a APPLICATION", statusWrongUsage};
    if (request.items.empty() && !asked && !edits) throw ToolFailure{std::string(openUsage), statusWrongUsage};
    needDesktop();
    if (line.has("-R")) return reveal(request);
    if (asked) return openWithNamed(*asked, request);
    return edits ? openWithHandlerOf("text/plain", request) : openWithHandlers(request);
}

}  // namespace

}  // namespace brindlet::tools

int main(int count, char** words) {
    return brindlet::tools::toolMain("open", count, words, brindlet::tools::open);
}
