#include "platform/environment.h"

#include <pwd.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <system_error>
#include <vector>

namespace brindlet {

namespace {

constexpr std::size_t largestUserRecord = 1024 * 1024;

// Asks the user database by `ask(record, buffer, size, found)`, one of getpwnam_r and getpwuid_r, with as much room as
// the answer needs.
template <class Ask>
std::optional<FilePath> homeFromDatabase(Ask ask) {
    for (std::size_t size = 1024; size <= largestUserRecord; size *= 4) {
        std::vector<char> buffer(size);
        passwd record{};
        passwd* found = nullptr;
        const int error = ask(&record, buffer.data(), buffer.size(), &found);
        if (error == ERANGE) continue;
        if (error != 0 || !found || !found->pw_dir || found->pw_dir[0] != '/') return std::nullopt;
        return FilePath(found->pw_dir);
    }
    return std::nullopt;
}

std::string variable(const char* name) {
    const char* value = std::getenv(name);
    return value ? value : "";
}

FilePath ownFolder(const char* override, const char* base, std::string_view defaultBase) {
    if (const std::string folder = variable(override); !folder.empty()) {
        std::error_code ignored;
        return FilePath::resolve(folder, FilePath(std::filesystem::current_path(ignored).string()));
    }
    // XDG base directories, version 0.8: a path that is not absolute is invalid and to be ignored.
    const std::string folder = variable(base);
    const FilePath root = folder.starts_with('/') ? FilePath(folder) : FilePath::resolve(defaultBase, homeFolder());
    return root.child("Brindlet");
}

}  // namespace

Environment processEnvironment() {
    Environment variables;
    for (char** entry = environ; entry && *entry; ++entry) {
        const std::string_view text = *entry;
        const std::size_t sign = text.find('=');
        if (sign == std::string_view::npos || sign == 0) continue;
        // Of two entries with one name the first counts, as for getenv.
        variables.try_emplace(std::string(text.substr(0, sign)), text.substr(sign + 1));
    }
    return variables;
}

FilePath homeFolder() {
    if (const std::string home = variable("HOME"); home.starts_with('/')) return FilePath(home);
    const auto home = homeFromDatabase([](passwd* record, char* buffer, std::size_t size, passwd** found) {
        return getpwuid_r(getuid(), record, buffer, size, found);
    });
    return home.value_or(FilePath());
}

std::optional<FilePath> homeFolderOf(std::string_view user) {
    if (user.empty() || user.find('\0') != std::string_view::npos) return std::nullopt;
    return homeFromDatabase([name = std::string(user)](passwd* record, char* buffer, std::size_t size, passwd** found) {
        return getpwnam_r(name.c_str(), record, buffer, size, found);
    });
}

FilePath dataFolder() {
    return ownFolder("BRINDLET_DATA_HOME", "XDG_DATA_HOME", ".local/share");
}
FilePath configFolder() {
    return ownFolder("BRINDLET_CONFIG_HOME", "XDG_CONFIG_HOME", ".config");
}

}  // namespace brindlet
