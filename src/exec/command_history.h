// The commands that were made so far, kept for stepping back to them. The bar and programs in terminals share one file.
//
//     CommandHistoryStore history(dataFolder(), settings);
//     history.loadOrMigrateHistory();
//     std::vector<AICommand> commands = history.commandHistory();
//     commands.push_back(command);
//     history.saveHistory(std::move(commands));
#pragma once

#include <cstddef>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "ai/ai_command.h"
#include "platform/file_path.h"
#include "platform/result.h"
#include "platform/settings_store.h"

namespace brindlet {

// Whoever enters a command drops the oldest beyond this.
constexpr std::size_t maxHistoryOfPrompts = 100;

// The file's text: a JSON array of the commands in their stored form, on lines for people to read.
std::string historyText(const std::vector<AICommand>& commands);

// The list with one more: earlier entries of the same request or the same line (whatever their case) give way to it,
// and so do the oldest beyond the limit.
std::vector<AICommand> withEntered(std::vector<AICommand> history, AICommand command);

// What can't be loaded or saved is told on standard error and stops nobody. For one thread.
class CommandHistoryStore {
  public:
    // Reads and makes nothing yet. The file is "commandHistory.json" in `folder`.
    CommandHistoryStore(const FilePath& folder, SettingsStore& settings);

    // The list in memory: oldest first, newest last.
    const std::vector<AICommand>& commandHistory() const { return commands_; }

    // Replaces the list by what the file holds. False, and the list stays, where there is no file or it can't be read.
    bool loadHistory();

    // The same; where nothing can be loaded, the prompts of the older form (the setting "promptHistory", one a line)
    // become the history. Writes nothing where there are none.
    void loadOrMigrateHistory();

    // Makes `commands` the list and writes it. What other programs added or removed since this list was loaded or saved
    // is added to it and removed from it, by id, so `commandHistory()` may differ from `commands` afterwards; it is the
    // list to go on with. False: it could not be written, and `commands` is the list all the same.
    bool saveHistory(std::vector<AICommand> commands);

  private:
    std::optional<Failure> mergeIntoFile();
    std::optional<Failure> migrate();
    void adopt(std::vector<AICommand> commands);

    FilePath file_;
    SettingsStore* settings_;
    std::vector<AICommand> commands_;
    std::set<std::string> sharedIds_;  // of the list as it was last loaded or saved
};

}  // namespace brindlet
