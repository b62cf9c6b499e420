#include "exec/command_history.h"

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <iterator>
#include <map>
#include <memory>
#include <nlohmann/json.hpp>
#include <system_error>
#include <utility>

#include <fmt/format.h>

#include "platform/atomic_file.h"
#include "platform/file_lock.h"
#include "platform/file_system.h"
#include "text/characters.h"
#include "text/strings.h"

namespace brindlet {

namespace {

using HistoryJson = nlohmann::ordered_json;

constexpr std::string_view olderHistoryKey = "promptHistory";

// A hundred conversations with their system prompts are a few megabytes. What is far larger, nested deeper, or has far
// more keys in one object was not written by this program, and reading it would take memory or time without end.
constexpr std::size_t largestHistoryFile = 32 * 1024 * 1024;
constexpr int deepestHistoryNesting = 32;
constexpr int mostHistoryKeys = 64;

// Follows the reading of a text from piece to piece and refuses all from the first that is beyond measure.
class HistoryTextWatch {
  public:
    bool accepts(int depth, HistoryJson::parse_event_t event) {
        if (event == HistoryJson::parse_event_t::object_start) keysAtDepth_[index(depth)] = 0;
        if (event == HistoryJson::parse_event_t::key && ++keysAtDepth_[index(depth - 1)] > mostHistoryKeys)
            isBeyond_ = true;
        isBeyond_ = isBeyond_ || depth > deepestHistoryNesting;
        return !isBeyond_;
    }
    bool isBeyond() const { return isBeyond_; }

  private:
    static std::size_t index(int depth) {
        return static_cast<std::size_t>(std::clamp(depth, 0, deepestHistoryNesting));
    }

    int keysAtDepth_[deepestHistoryNesting + 1] = {};
    bool isBeyond_ = false;
};

std::optional<std::vector<AICommand>> commandsOf(const std::string& text) {
    HistoryTextWatch watch;
    const auto accepts = [&](int depth, HistoryJson::parse_event_t event, HistoryJson&) {
        return watch.accepts(depth, event);
    };
    const HistoryJson list = HistoryJson::parse(text, accepts, /*allow_exceptions=*/false);
    if (watch.isBeyond() || !list.is_array()) return std::nullopt;
    std::vector<AICommand> commands;
    for (const HistoryJson& each : list) {
        auto command = aiCommandFromJson(each);
        if (!command) return std::nullopt;
        commands.push_back(std::move(*command));
    }
    return commands;
}

enum class HistoryFileState { missing, unreadable, invalid, valid };

struct HistoryFile {
    HistoryFileState state = HistoryFileState::missing;
    std::vector<AICommand> commands;
};

HistoryFile readHistory(const FilePath& file) {
    const std::unique_ptr<FileSystem> files = openFileSystem();
    if (files->look(file) == ItemKind::missing) return {};
    const Result<std::string> text = files->readFile(file, largestHistoryFile);
    if (!text) return {.state = HistoryFileState::unreadable, .commands = {}};
    auto commands = commandsOf(*text);
    if (!commands) return {.state = HistoryFileState::invalid, .commands = {}};
    return {.state = HistoryFileState::valid, .commands = std::move(*commands)};
}

bool isTaken(const std::string& path) {
    std::error_code error;
    return std::filesystem::exists(std::filesystem::symlink_status(path, error));
}

// Under the first name that is free, so that what was set aside earlier stays too.
std::optional<Failure> setHistoryAside(const FilePath& file) {
    const std::string plain = file.text() + ".unreadable";
    std::string aside = plain;
    for (int number = 2; isTaken(aside); ++number) aside = fmt::format("{}-{}", plain, number);
    if (std::rename(file.text().c_str(), aside.c_str()) == 0) return std::nullopt;
    return Failure{"Can't set the unreadable file '" + file.text() + "' aside"};
}

std::optional<Failure> replaceHistory(const FilePath& file, HistoryFileState earlier,
                                      const std::vector<AICommand>& commands) {
    if (earlier == HistoryFileState::unreadable || earlier == HistoryFileState::invalid) {
        if (auto failure = setHistoryAside(file)) return failure;
    }
    return writeFileAtomically(file, historyText(commands));
}

Result<FileLock> lockHistory(const FilePath& file) {
    if (auto failure = makeFolders(file.parent())) return *failure;
    return FileLock::take(FilePath(file.text() + ".lock"));
}

std::set<std::string> idsOf(const std::vector<AICommand>& commands) {
    std::set<std::string> ids;
    for (const AICommand& command : commands) ids.insert(command.id);
    return ids;
}

// `mine` and `stored` both come from a list with the ids `shared`: whatever one of them removed is gone, and what the
// other program added goes behind the entry that it followed there.
std::vector<AICommand> merged(const std::vector<AICommand>& mine, const std::vector<AICommand>& stored,
                              const std::set<std::string>& shared) {
    const std::set<std::string> myIds = idsOf(mine);
    const std::set<std::string> storedIds = idsOf(stored);
    const std::string front;                                  // no entry's id
    std::map<std::string, std::vector<AICommand>> additions;  // by the id of the entry before them
    const std::string* before = &front;
    for (const AICommand& command : stored) {
        if (myIds.contains(command.id)) {
            before = &command.id;
        } else if (!shared.contains(command.id)) {
            additions[*before].push_back(command);
        }
    }

    std::vector<AICommand> result = std::move(additions[front]);
    for (const AICommand& command : mine) {
        const bool wasRemoved = shared.contains(command.id) && !storedIds.contains(command.id);
        if (!wasRemoved) result.push_back(command);
        const auto added = additions.find(command.id);
        if (added == additions.end()) continue;
        std::ranges::move(added->second, std::back_inserter(result));
        additions.erase(added);
    }
    const std::size_t limit = std::max(maxHistoryOfPrompts, mine.size());
    if (result.size() > limit) result.erase(result.begin(), result.end() - static_cast<std::ptrdiff_t>(limit));
    return result;
}

std::vector<AICommand> commandsOfOlderForm(std::string_view prompts) {
    std::vector<AICommand> commands;
    for (std::string& line : splitNonEmpty(replacedAll(prompts, "\r", "\n"), "\n")) {
        AICommand command;
        command.id = newUuid();
        command.prompt = std::move(line);
        command.riskValue = 0;
        commands.push_back(std::move(command));
    }
    return commands;
}

void tellFailedSaving(const std::optional<Failure>& failure) {
    if (failure) std::fprintf(stderr, "Failed to save commandHistory: %s\n", failure->description.c_str());
}

}  // namespace

std::string historyText(const std::vector<AICommand>& commands) {
    HistoryJson list = HistoryJson::array();
    for (const AICommand& command : commands) list.push_back(toJson(command));
    // Bytes that are no UTF-8 can't stand in JSON; they are replaced rather than the rest lost.
    return list.dump(2, ' ', false, HistoryJson::error_handler_t::replace) + "\n";
}

std::vector<AICommand> withEntered(std::vector<AICommand> history, AICommand command) {
    const std::string prompt = lowercased(command.prompt), line = lowercased(command.bashCommand);
    std::erase_if(history, [&](const AICommand& other) {
        return lowercased(other.prompt) == prompt || lowercased(other.bashCommand) == line;
    });
    history.push_back(std::move(command));
    if (history.size() > maxHistoryOfPrompts)
        history.erase(history.begin(), history.end() - static_cast<std::ptrdiff_t>(maxHistoryOfPrompts));
    return history;
}

CommandHistoryStore::CommandHistoryStore(const FilePath& folder, SettingsStore& settings)
    : file_(folder.child("commandHistory.json")), settings_(&settings) {}

void CommandHistoryStore::adopt(std::vector<AICommand> commands) {
    commands_ = std::move(commands);
    sharedIds_ = idsOf(commands_);
}

bool CommandHistoryStore::loadHistory() {
    HistoryFile found = readHistory(file_);
    if (found.state == HistoryFileState::invalid)
        std::fputs("Failed to load commandHistory, JSON was invalid!\n", stderr);
    if (found.state != HistoryFileState::valid) return false;
    adopt(std::move(found.commands));
    return true;
}

void CommandHistoryStore::loadOrMigrateHistory() {
    if (loadHistory()) return;
    const std::string prompts = settings_->text(olderHistoryKey).value_or("");
    if (prompts.empty()) return;
    commands_ = commandsOfOlderForm(prompts);
    tellFailedSaving(migrate());
}

std::optional<Failure> CommandHistoryStore::migrate() {
    const Result<FileLock> lock = lockHistory(file_);
    if (!lock) return lock.failure();
    HistoryFile found = readHistory(file_);
    if (found.state == HistoryFileState::valid) {  // another program brought it over in the meantime
        adopt(std::move(found.commands));
        return std::nullopt;
    }
    if (auto failure = replaceHistory(file_, found.state, commands_)) return failure;
    adopt(std::move(commands_));
    // Only now, and it does no harm if it fails: once there is a file, nobody looks at the setting.
    return settings_->setText(olderHistoryKey, "");
}

bool CommandHistoryStore::saveHistory(std::vector<AICommand> commands) {
    commands_ = std::move(commands);
    const auto failure = mergeIntoFile();
    tellFailedSaving(failure);
    return !failure;
}

std::optional<Failure> CommandHistoryStore::mergeIntoFile() {
    const Result<FileLock> lock = lockHistory(file_);
    if (!lock) return lock.failure();
    const HistoryFile found = readHistory(file_);
    // A file that is gone or unreadable says nothing about what others removed.
    std::vector<AICommand> result =
        found.state == HistoryFileState::valid ? merged(commands_, found.commands, sharedIds_) : commands_;
    if (auto failure = replaceHistory(file_, found.state, result)) return failure;
    adopt(std::move(result));
    return std::nullopt;
}

}  // namespace brindlet
