#include "desktop/linux/selection_reader.h"

#include <sys/stat.h>

#include <algorithm>
#include <utility>

#include "desktop/linux/session_bus.h"
#include "platform/environment.h"
#include "platform/linux/accessible_folder.h"
#include "text/strings.h"

namespace brindlet {

namespace {

using namespace std::chrono_literals;
using ReaderClock = std::chrono::steady_clock;

constexpr auto longestReading = 700ms;
constexpr auto longestLocations = 300ms;
// With connecting, and the last call before the limit.
constexpr auto longestAnswer = 1200ms;

constexpr std::string_view fieldEnd("\0", 1);
constexpr std::string_view knownSelection = "known";
constexpr std::string_view unknownSelection = "unknown";

bool isFolder(const std::string& path) {
    struct stat status {};
    return ::stat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode);
}

std::string decodedUri(std::string_view uri) {
    std::string path;
    for (std::size_t at = 0; at < uri.size(); ++at) {
        if (uri[at] != '%' || at + 2 >= uri.size()) {
            path += uri[at];
            continue;
        }
        unsigned value = 0;
        for (const char digit : uri.substr(at + 1, 2)) {
            const auto place = std::string_view("0123456789ABCDEF").find(static_cast<char>(digit & ~0x20));
            const auto number = digit >= '0' && digit <= '9' ? static_cast<std::size_t>(digit - '0') : place;
            if (number == std::string_view::npos) return "";
            value = value * 16 + static_cast<unsigned>(number);
        }
        path += static_cast<char>(value);
        at += 2;
    }
    return path;
}

// The worker's side: remembers the window that was asked for last.
class SelectionReader {
  public:
    std::optional<std::string> answer(const std::string& question) {
        auto fields = split(question, fieldEnd);
        if (fields.size() != 6) return "";
        FolderWindowDetails asked{.id = static_cast<WindowId>(parsedInteger(fields[0]).value_or(0))};
        asked.process = static_cast<pid_t>(parsedInteger(fields[1]).value_or(0));
        asked.identifier = fields[2];
        asked.title = fields[3];
        asked.objectPath = fields[4];
        if (!isConnected_ && !(isConnected_ = connectAccessibility())) return std::nullopt;
        const bool isFresh = fields[5] == "1" || asked.id != window_.id || asked.title != window_.title;
        return read(asked, isFresh);
    }

  private:
    // None: the window isn't among those that this process can see.
    std::optional<std::string> read(const FolderWindowDetails& asked, bool isFresh) {
        const TimeLimit limit = ReaderClock::now() + longestReading;
        // A search costs tens of milliseconds. What has no view that tells gets one with the next fresh look.
        const bool isSearched = isFresh || folder_.empty();
        if (isSearched && !find(asked, limit)) return std::nullopt;
        auto names = namesInView(limit);
        if (!names && content_.view && !isSearched) {
            if (!find(asked, limit)) return std::nullopt;
            names = namesInView(limit);
        }
        if (folder_.empty()) return "";
        std::string text = folder_;
        text.append(fieldEnd).append(names ? knownSelection : unknownSelection);
        for (const std::string& name : names.value_or(std::vector<std::string>())) text.append(fieldEnd).append(name);
        return text;
    }

    std::optional<std::vector<std::string>> namesInView(TimeLimit limit) {
        return content_.view ? selectedNames(content_.view, limit) : std::nullopt;
    }

    bool find(const FolderWindowDetails& asked, TimeLimit limit) {
        window_ = asked;
        content_ = {};
        folder_.clear();
        std::vector<Accessible> found = accessibleWindows(asked.process, limit);
        std::erase_if(found, [&](const Accessible& window) { return accessibleTitle(window) != asked.title; });
        if (found.empty()) return false;
        if (found.size() > 1) std::erase_if(found, [](const Accessible& window) { return !isActiveWindow(window); });
        if (found.size() != 1) return true;  // which of them is in front can't be told
        content_ = readFolderWindow(found.front(), homeFolder(), limit);
        folder_ = folderOf(asked);
        return true;
    }

    std::string folderOf(const FolderWindowDetails& asked) const {
        for (const std::string& path : pathsInTitle(asked.title))
            if (isFolder(path)) return path;
        if (!asked.objectPath.empty() && asked.identifier == "org.gnome.Nautilus")
            return folderInLocations(openLocations(asked.identifier), asked.objectPath, asked.title);
        std::vector<std::string> folders;
        for (const FilePath& folder : content_.folders)
            if (isFolder(folder.text())) folders.push_back(folder.text());
        // Several: a text that was typed but not gone to, say. The title begins with the right one's name.
        if (folders.size() > 1)
            std::erase_if(folders,
                          [&](const std::string& folder) { return !asked.title.starts_with(FilePath(folder).name()); });
        return folders.size() == 1 ? folders.front() : "";
    }

    static std::string openLocations(const std::string& busName) {
        return callSessionBus(processEnvironment(),
                              {.name = busName,
                               .object = "/org/freedesktop/FileManager1",
                               .method = "org.freedesktop.DBus.Properties.Get",
                               .arguments = {"string:org.freedesktop.FileManager1", "string:OpenWindowsWithLocations"}},
                              longestLocations)
            .value_or("");
    }

    bool isConnected_ = false;
    FolderWindowDetails window_;
    FolderWindow content_;
    std::string folder_;
};

}  // namespace

std::vector<std::string> pathsInTitle(const std::string& title) {
    constexpr std::string_view separator = " - ";
    std::vector<std::string> paths;
    if (title.starts_with('/')) {
        if (const auto end = title.rfind(separator); end != std::string::npos) paths.push_back(title.substr(0, end));
        paths.push_back(title);
    }
    // The name may have the separator in it, and so may the path: the first that has a path behind it is the one.
    if (const auto begin = title.find(" - /"); begin != std::string::npos)
        paths.push_back(title.substr(begin + separator.size()));
    return paths;
}

std::string folderInLocations(const std::string& reply, const std::string& objectPath, const std::string& title) {
    constexpr std::string_view opening = "string \"";
    constexpr std::string_view scheme = "file://";
    std::vector<std::string> folders;
    bool isOurs = false;
    for (const std::string& line : split(reply, "\n")) {
        std::string_view text = trimmed(line);
        if (!text.starts_with(opening) || !text.ends_with('"')) continue;
        text = text.substr(opening.size(), text.size() - opening.size() - 1);
        if (text.starts_with('/')) {
            isOurs = text == objectPath;
        } else if (isOurs && text.starts_with(scheme)) {
            folders.push_back(decodedUri(text.substr(scheme.size())));
        }
    }
    if (folders.size() > 1)
        std::erase_if(folders, [&](const std::string& folder) { return FilePath(folder).name() != title; });
    return folders.size() == 1 ? folders.front() : "";
}

AnsweringProcess::Answer selectionAnswer() {
    return [reader = std::make_shared<SelectionReader>()](const std::string& question) {
        return reader->answer(question);
    };
}

std::optional<FolderContent> readSelection(AnsweringProcess& helper, const FolderWindowDetails& window, bool isFresh) {
    std::string question;
    for (const std::string& field : {std::to_string(window.id), std::to_string(window.process), window.identifier,
                                     window.title, window.objectPath})
        question.append(field.c_str()).append(fieldEnd);  // up to a stray end within
    question += isFresh ? '1' : '0';
    auto answer = helper.ask(question, longestAnswer);
    // Nautilus 43 shows windows only to those who come after them: the next one to answer does.
    if (!answer && isFresh) answer = helper.ask(question, longestAnswer);
    if (!answer || answer->empty()) return std::nullopt;
    auto fields = split(*answer, fieldEnd);
    if (fields.size() < 2) return std::nullopt;
    FolderContent content{.folder = fields[0], .selectedNames = std::nullopt};
    if (fields[1] == knownSelection) content.selectedNames.emplace(fields.begin() + 2, fields.end());
    return content;
}

}  // namespace brindlet
