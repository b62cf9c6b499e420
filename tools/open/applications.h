// The desktop's applications, by the desktop entries of freedesktop.org, version 1.5.
//
//     if (const auto editor = applicationNamed("Text Editor")) words = commandWords(*editor, {"/w/a.txt"});
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace brindlet::tools {

struct Application {
    std::string id{};           // "org.gnome.gedit.desktop"
    std::string file{};         // the desktop file
    std::string name{};         // "Text Editor"
    std::string genericName{};  // what kind it is
    std::string command{};      // Exec as it stands, with its field codes
    std::string icon{};
    std::string folder{};  // where it is to start; "" where that doesn't matter
    bool needsTerminal = false;
    bool isHidden = false;  // the user has removed it
};

// By its name, its id, its program or the beginning of its name, in any case, the best match first; "Safari.app" and
// "/Applications/Safari.app" are "Safari".
std::optional<Application> applicationNamed(std::string_view asked);

// By the id of its desktop file.
std::optional<Application> applicationWithId(std::string_view id);

// The words that start it with these files: one command for all, or one for each where it takes one at a time. Empty
// where its command is none.
std::vector<std::vector<std::string>> commandWords(const Application& application,
                                                   const std::vector<std::string>& files);

}  // namespace brindlet::tools
