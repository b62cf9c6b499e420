#include "applications.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <fstream>
#include <set>
#include <system_error>
#include <utility>

#include "platform/environment.h"
#include "text/characters.h"
#include "text/strings.h"

namespace brindlet::tools {

namespace {

namespace fs = std::filesystem;

constexpr std::string_view desktopEnding = ".desktop";
constexpr int deepestFolder = 4;  // kde/ and the like; nobody nests deeper

std::vector<fs::path> applicationFolders() {
    const Environment environment = processEnvironment();
    const auto valueOf = [&](std::string_view name, const std::string& otherwise) {
        const auto found = environment.find(name);
        return found == environment.end() || found->second.empty() ? otherwise : found->second;
    };
    std::vector<fs::path> folders{fs::path(valueOf("XDG_DATA_HOME", homeFolder().text() + "/.local/share"))};
    for (const std::string& folder : splitNonEmpty(valueOf("XDG_DATA_DIRS", "/usr/local/share:/usr/share"), ":"))
        folders.emplace_back(folder);
    for (fs::path& folder : folders) folder /= "applications";
    return folders;
}

// The escapes that any text of a desktop file may have.
std::string unescaped(std::string_view value) {
    constexpr std::string_view letters = "sntr\\", meanings = " \n\t\r\\";
    std::string text;
    for (std::size_t at = 0; at < value.size(); ++at) {
        const bool isEscape = value[at] == '\\' && at + 1 < value.size();
        const std::size_t which = isEscape ? letters.find(value[at + 1]) : std::string_view::npos;
        text += which == std::string_view::npos ? value[at] : meanings[which];
        if (which != std::string_view::npos) ++at;
    }
    return text;
}

struct TextKey {
    std::string_view name;
    std::string Application::*field;
};
constexpr TextKey textKeys[] = {
    {"Name", &Application::name},    {"GenericName", &Application::genericName},
    {"Exec", &Application::command}, {"Icon", &Application::icon},
    {"Path", &Application::folder},
};
struct FlagKey {
    std::string_view name;
    bool Application::*field;
};
constexpr FlagKey flagKeys[] = {{"Terminal", &Application::needsTerminal}, {"Hidden", &Application::isHidden}};

void takeLine(Application& application, std::string_view line) {
    const std::size_t equals = line.find('=');
    if (equals == std::string_view::npos) return;
    const std::string_view key = trimmedBlanks(line.substr(0, equals)), value = trimmedBlanks(line.substr(equals + 1));
    for (const TextKey& each : textKeys)
        if (each.name == key) application.*each.field = unescaped(value);
    for (const FlagKey& each : flagKeys)
        if (each.name == key) application.*each.field = value == "true";
}

Application readDesktopFile(const fs::path& file, const std::string& id) {
    Application application{.id = id, .file = file.string()};
    std::ifstream stream(file);
    bool isInEntry = false;
    for (std::string line; std::getline(stream, line);) {
        if (line.starts_with('[')) {
            isInEntry = trimmed(line) == "[Desktop Entry]";
        } else if (isInEntry && !line.starts_with('#')) {
            takeLine(application, line);
        }
    }
    return application;
}

// "kde/okular.desktop" has the id "kde-okular.desktop". The first of an id hides the later ones, also with Hidden.
std::vector<Application> allApplications() {
    std::vector<Application> applications;
    std::set<std::string> ids;
    for (const fs::path& folder : applicationFolders()) {
        std::error_code error;
        fs::recursive_directory_iterator at(folder, fs::directory_options::skip_permission_denied, error);
        for (; !error && at != fs::recursive_directory_iterator(); at.increment(error)) {
            if (at.depth() >= deepestFolder) at.disable_recursion_pending();
            const fs::path file = at->path();
            if (file.extension() != desktopEnding) continue;
            const std::string id = replacedAll(file.lexically_relative(folder).string(), "/", "-");
            if (ids.insert(id).second) applications.push_back(readDesktopFile(file, id));
        }
    }
    std::erase_if(applications, [](const Application& each) { return each.isHidden || each.command.empty(); });
    std::sort(applications.begin(), applications.end(),
              [](const Application& left, const Application& right) { return left.id < right.id; });
    return applications;
}

// The words of a command, by the rules for quoting in Exec.
std::vector<std::string> execWords(std::string_view command) {
    std::vector<std::string> words;
    std::string word;
    bool isQuoted = false, hasWord = false;
    for (std::size_t at = 0; at < command.size(); ++at) {
        const char byte = command[at];
        if (byte == '"') {
            isQuoted = !isQuoted;
            hasWord = true;
        } else if (isQuoted && byte == '\\' && at + 1 < command.size()) {
            word += command[++at];
        } else if (!isQuoted && (byte == ' ' || byte == '\t')) {
            if (hasWord) words.push_back(std::exchange(word, ""));
            hasWord = false;
        } else {
            word += byte;
            hasWord = true;
        }
    }
    if (hasWord) words.push_back(word);
    return words;
}

std::string programOf(const Application& application) {
    const std::vector<std::string> words = execWords(application.command);
    return words.empty() ? "" : fs::path(words.front()).filename().string();
}

std::string lowerStem(std::string_view id) {
    return lowercased(id.ends_with(desktopEnding) ? id.substr(0, id.size() - desktopEnding.size()) : id);
}

// How well an application answers to a name, 0 being best; none where it doesn't.
std::optional<std::size_t> rankOf(const Application& application, std::string_view asked) {
    const std::string id = lowerStem(application.id), name = lowercased(application.name);
    const std::string joinedAsked = replacedAll(asked, " ", "-");
    const std::array<bool, 7> answers{
        id == asked,
        name == asked,
        id.substr(id.rfind('.') + 1) == asked,
        lowercased(programOf(application)) == asked || lowercased(programOf(application)) == joinedAsked,
        id == joinedAsked,
        name.starts_with(std::string(asked) + ' '),
        lowercased(application.genericName) == asked,
    };
    const auto first = std::find(answers.begin(), answers.end(), true);
    if (first == answers.end()) return std::nullopt;
    return static_cast<std::size_t>(first - answers.begin());
}

// The words with their field codes filled in. `files` stand at the list codes or, if it holds one, at the single ones.
std::vector<std::string> filledIn(const Application& application, const std::vector<std::string>& words,
                                  const std::vector<std::string>& files) {
    std::vector<std::string> filled;
    for (const std::string& word : words) {
        if (word == "%F" || word == "%U" || word == "%f" || word == "%u") {
            filled.insert(filled.end(), files.begin(), files.end());
            continue;
        }
        if (word == "%i") {
            if (!application.icon.empty()) filled.insert(filled.end(), {"--icon", application.icon});
            continue;
        }
        std::string text;
        for (std::size_t at = 0; at < word.size(); ++at) {
            if (word[at] != '%' || at + 1 == word.size()) {
                text += word[at];
                continue;
            }
            switch (word[++at]) {
                case '%':
                    text += '%';
                    break;
                case 'c':
                    text += application.name;
                    break;
                case 'k':
                    text += application.file;
                    break;
                case 'f':
                case 'u':
                    text += files.empty() ? "" : files.front();
                    break;
                default:
                    break;  // the codes that were given up
            }
        }
        filled.push_back(text);
    }
    return filled;
}

}  // namespace

std::optional<Application> applicationNamed(std::string_view asked) {
    while (asked.size() > 1 && asked.ends_with('/')) asked.remove_suffix(1);
    asked = asked.substr(asked.rfind('/') + 1);
    std::string name = lowercased(asked);
    for (const std::string_view ending : {std::string_view(".app"), desktopEnding})
        if (name.ends_with(ending)) name.resize(name.size() - ending.size());
    std::optional<Application> best;
    std::size_t bestRank = 0;
    for (const Application& each : allApplications()) {
        const auto rank = rankOf(each, name);
        if (!rank || (best && *rank >= bestRank)) continue;
        best = each;
        bestRank = *rank;
    }
    return best;
}

std::optional<Application> applicationWithId(std::string_view id) {
    for (const Application& each : allApplications())
        if (each.id == id) return each;
    return std::nullopt;
}

std::vector<std::vector<std::string>> commandWords(const Application& application,
                                                   const std::vector<std::string>& files) {
    std::vector<std::string> words = execWords(application.command);
    if (words.empty()) return {};
    const auto holds = [&](std::initializer_list<std::string_view> codes) {
        return std::any_of(words.begin(), words.end(), [&](const std::string& word) {
            return std::any_of(codes.begin(), codes.end(), [&](std::string_view code) { return contains(word, code); });
        });
    };
    const bool takesOne = holds({"%f", "%u"}), takesAll = holds({"%F", "%U"});
    // A command without such a code would start without the files; most programs take them at their end.
    if (!takesOne && !takesAll) words.emplace_back("%F");
    if (!takesOne || takesAll || files.size() < 2) return {filledIn(application, words, files)};
    std::vector<std::vector<std::string>> commands;
    for (const std::string& file : files) commands.push_back(filledIn(application, words, {file}));
    return commands;
}

}  // namespace brindlet::tools
