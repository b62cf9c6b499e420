// The places and forms are those of Thunar 4.18, Nautilus 43, Caja 1.26, Nemo 5.6, PCManFM 1.3, PCManFM-Qt 1.2 (the
// last two: DES-EMA 0.15) and Dolphin 22.12 (KIO service menus).
#include "desktop/linux/context_menu_actions.h"

#include <fmt/format.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <iterator>
#include <string_view>
#include <utility>

#include "desktop/linux/thunar_actions.h"
#include "platform/atomic_file.h"
#include "platform/file_system.h"
#include "platform/linux/file_descriptor.h"
#include "text/strings.h"

namespace brindlet {

namespace {

constexpr std::size_t longestText = std::size_t{4} << 20;
constexpr unsigned programMode = 0755;
constexpr unsigned textMode = 0644;

// A file that an action consists of, or is one part of.
struct ActionFile {
    FilePath path;
    bool isProgram = false;
    std::string start{};  // its text where there is no such file
    // The text with the action in it, and the text without. None: it isn't in the form that it should have.
    std::function<std::optional<std::string>(const std::string&)> with;
    std::function<std::optional<std::string>(const std::string&)> without;
};

Result<std::string> textOf(const ActionFile& file) {
    const auto files = openFileSystem();
    return files->look(file.path) == ItemKind::missing ? Result<std::string>(file.start)
                                                       : files->readFile(file.path, longestText);
}

Failure unreadable(const ActionFile& file) {
    return {"'" + file.path.text() + "' isn't in the form that its file manager gives it, so that it was left alone."};
}

bool holdsAction(const ActionFile& file) {
    const auto files = openFileSystem();
    const auto text = files->readFile(file.path, longestText);
    return text && file.with(*text) == *text && (!file.isProgram || files->isExecutableFile(file.path));
}

std::optional<Failure> writeText(const ActionFile& file, const std::string& text) {
    struct stat status {};
    const bool isThere = ::stat(file.path.text().c_str(), &status) == 0;
    const unsigned mode = file.isProgram ? programMode : isThere ? status.st_mode & 07777U : textMode;
    if (auto failure = makeFolders(file.path.parent())) return failure;
    return writeFileAtomically(file.path, text, mode);
}

std::optional<Failure> putIn(const ActionFile& file) {
    if (holdsAction(file)) return std::nullopt;
    const auto text = textOf(file);
    if (!text) return text.failure();
    const auto changed = file.with(*text);
    return changed ? writeText(file, *changed) : unreadable(file);
}

std::optional<Failure> takeOut(const ActionFile& file) {
    if (openFileSystem()->look(file.path) == ItemKind::missing) return std::nullopt;
    const auto text = textOf(file);
    if (!text) return text.failure();
    const auto changed = file.without(*text);
    if (!changed) return unreadable(file);
    if (*changed == *text) return std::nullopt;
    if (*changed != file.start) return writeText(file, *changed);
    if (::unlink(file.path.text().c_str()) == 0 || errno == ENOENT) return std::nullopt;
    return systemFailure("Can't remove '" + file.path.text() + "'", errno);
}

// A file that holds nothing but the action.
ActionFile wholeFile(FilePath path, std::string_view content, bool isProgram) {
    return {.path = std::move(path),
            .isProgram = isProgram,
            .with = [content](const std::string&) { return std::string(content); },
            .without = [](const std::string&) { return ""; }};
}

// The user's own folders, and where programs are looked for.
class UserFolders {
  public:
    explicit UserFolders(const Environment& environment)
        : environment_(environment),
          home_(value("HOME").starts_with('/') ? FilePath(value("HOME")) : homeFolder()),
          config_(folder("XDG_CONFIG_HOME", ".config")),
          data_(folder("XDG_DATA_HOME", ".local/share")) {}

    const FilePath& config() const { return config_; }
    const FilePath& data() const { return data_; }

    bool hasProgram(std::string_view name) const {
        const auto files = openFileSystem();
        const auto places = splitNonEmpty(value("PATH"), ":");
        return std::any_of(places.begin(), places.end(), [&](const std::string& place) {
            return place.starts_with('/') && files->isExecutableFile(FilePath(place).child(name));
        });
    }

    // What a file of the user's takes the place of; empty where there is none.
    std::string systemText(std::string_view relative) const {
        const std::string set = value("XDG_CONFIG_DIRS");
        for (const std::string& place : splitNonEmpty(set.empty() ? "/etc/xdg" : set, ":"))
            if (place.starts_with('/'))
                if (auto text = openFileSystem()->readFile(FilePath::resolve(relative, FilePath(place)), longestText))
                    return *text;
        return "";
    }

  private:
    std::string value(std::string_view name) const {
        const auto found = environment_.find(name);
        return found == environment_.end() ? "" : found->second;
    }
    FilePath folder(std::string_view variable, std::string_view usual) const {
        const std::string set = value(variable);
        return set.starts_with('/') ? FilePath(set) : FilePath::resolve(usual, home_);
    }

    const Environment& environment_;
    FilePath home_;
    FilePath config_;
    FilePath data_;
};

constexpr std::string_view thunarId = "brindlet-ask";
constexpr std::string_view thunarKey = "<Primary><Shift>b";
constexpr std::string_view thunarAction = R"(<action>
	<icon>com.fenwold.Brindlet</icon>
	<name>Ask Brindlet</name>
	<unique-id>brindlet-ask</unique-id>
	<command>brindlet bar --folder %d -- %F</command>
	<description>Hand what is selected over to Brindlet</description>
	<patterns>*</patterns>
	<directories/>
	<audio-files/>
	<image-files/>
	<other-files/>
	<text-files/>
	<video-files/>
</action>)";

std::vector<ActionFile> thunarFiles(const UserFolders& folders) {
    const FilePath folder = folders.config().child("Thunar");
    return {{.path = folder.child("uca.xml"),
             .start = folders.systemText("Thunar/uca.xml"),
             .with =
                 [](const auto& text) {
                     return withThunarAction(text, {thunarId, std::string(thunarAction)});
                 },
             .without = [](const auto& text) { return withoutThunarAction(text, thunarId); }},
            {.path = folder.child("accels.scm"),
             .with = [](const auto& text) { return withThunarKey(text, thunarId, thunarKey); },
             .without = [](const auto& text) { return withoutThunarKey(text, thunarId, thunarKey); }}};
}

// Both pass the names of the selected items, and run it in their folder. In a folder that isn't on a disk they pass
// none, and run it anywhere.
constexpr std::string_view script = R"(#!/bin/sh
# Hands what is selected over to Brindlet.
case $NAUTILUS_SCRIPT_CURRENT_URI$CAJA_SCRIPT_CURRENT_URI in
    '' | file:*) exec brindlet bar --folder "$PWD" -- "$@" ;;
esac
)";
constexpr std::string_view scriptName = "Ask Brindlet";
constexpr std::string_view scriptKey = "F12";

std::string withScriptKey(const std::string& keys) {
    for (const std::string& line : split(keys, "\n"))
        if (line.starts_with(std::string(scriptKey) + " ") || line.ends_with(" " + std::string(scriptName)))
            return keys;
    return fmt::format("{} {}\n", scriptKey, scriptName) + keys;
}
std::string withoutScriptKey(const std::string& keys) {
    return replacedAll(keys, fmt::format("{} {}\n", scriptKey, scriptName), "");
}

std::vector<ActionFile> nautilusFiles(const UserFolders& folders) {
    return {wholeFile(FilePath::resolve("nautilus/scripts/Ask Brindlet", folders.data()), script, true),
            {.path = FilePath::resolve("nautilus/scripts-accels", folders.config()),
             .with = withScriptKey,
             .without = withoutScriptKey}};
}

std::vector<ActionFile> cajaFiles(const UserFolders& folders) {
    return {wholeFile(FilePath::resolve("caja/scripts/Ask Brindlet", folders.config()), script, true)};
}

constexpr std::string_view nemoAction = R"([Nemo Action]
Name=Ask Brindlet
Comment=Hand what is selected over to Brindlet
Icon-Name=com.fenwold.Brindlet
Exec=brindlet bar --folder %P -- %F
Selection=any
Extensions=any;
Quote=double
)";

std::vector<ActionFile> nemoFiles(const UserFolders& folders) {
    return {wholeFile(FilePath::resolve("nemo/actions/brindlet.nemo_action", folders.data()), nemoAction, false)};
}

constexpr std::string_view desktopAction = R"([Desktop Entry]
Type=Action
Name=Ask Brindlet
Tooltip=Hand what is selected over to Brindlet
Icon=com.fenwold.Brindlet
Profiles=selection;

[X-Action-Profile selection]
MimeTypes=all/all;
Exec=brindlet bar --folder %d -- %F
)";

std::vector<ActionFile> pcmanfmFiles(const UserFolders& folders) {
    return {
        wholeFile(FilePath::resolve("file-manager/actions/brindlet.desktop", folders.data()), desktopAction, false)};
}

// It doesn't tell the folder. The reverse solidi are escaped for the value, and once more for the quotes.
constexpr std::string_view serviceMenu = R"([Desktop Entry]
Type=Service
X-KDE-ServiceTypes=KonqPopupMenu/Plugin
MimeType=all/all;
Actions=askBrindlet;
X-KDE-Priority=TopLevel

[Desktop Action askBrindlet]
Name=Ask Brindlet
Icon=com.fenwold.Brindlet
Exec=sh -c "exec brindlet bar --folder \\"\\$(dirname -- \\"\\$1\\")\\" -- \\"\\$@\\"" sh %F
)";

std::vector<ActionFile> dolphinFiles(const UserFolders& folders) {
    return {wholeFile(FilePath::resolve("kio/servicemenus/brindlet.desktop", folders.data()), serviceMenu, true)};
}

struct ActionRow {
    std::string_view fileManager;
    std::vector<std::string_view> programs;
    std::string_view key;
    // The first of them decides whether the action is there; the others are its key.
    std::vector<ActionFile> (*files)(const UserFolders&);
};

const std::vector<ActionRow>& actionRows() {
    static const std::vector<ActionRow> rows = {
        {"Thunar", {"thunar"}, " (Ctrl+Shift+B)", thunarFiles},
        {"Nautilus", {"nautilus"}, " (F12)", nautilusFiles},
        {"Nemo", {"nemo"}, "", nemoFiles},
        {"Caja", {"caja"}, "", cajaFiles},
        {"PCManFM", {"pcmanfm", "pcmanfm-qt"}, "", pcmanfmFiles},
        {"Dolphin", {"dolphin"}, "", dolphinFiles},
    };
    return rows;
}

std::optional<Failure> onEach(const std::vector<ActionFile>& files,
                              std::optional<Failure> (*change)(const ActionFile&)) {
    std::optional<Failure> first;
    for (const ActionFile& file : files)
        if (auto failure = change(file); failure && !first) first = std::move(failure);
    return first;
}

}  // namespace

std::vector<ContextMenuAction> contextMenuActions(const Environment& environment) {
    const UserFolders folders(environment);
    std::vector<ContextMenuAction> actions;
    for (const ActionRow& row : actionRows()) {
        if (std::none_of(row.programs.begin(), row.programs.end(),
                         [&](std::string_view program) { return folders.hasProgram(program); }))
            continue;
        const auto files = row.files(folders);
        actions.push_back({.fileManager = std::string(row.fileManager),
                           .title = fmt::format("Ask Brindlet in the context menu of {}{}", row.fileManager, row.key),
                           .isInstalled = [file = files.front()] { return holdsAction(file); },
                           .install = [files] { return onEach(files, putIn); },
                           .remove = [files] { return onEach(files, takeOut); }});
    }
    return actions;
}

}  // namespace brindlet
