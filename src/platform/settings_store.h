// The user's settings: a small store of values by key, in one JSON file that people may read and edit.
//
//     SettingsStore settings(configFolder().child("settings.json"));
//     settings.setText("selectedModelName", "gpt-4.1-mini");
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/file_path.h"
#include "platform/result.h"

namespace brindlet {

class SettingsStore {
  public:
    // Reads nothing yet. A file that is missing counts as empty. One that is no JSON object counts as empty too, and is
    // set aside under "settings.json.unreadable" before the first write.
    explicit SettingsStore(FilePath file);

    // None where the key is unset or holds another kind of value.
    std::optional<std::string> text(std::string_view key) const;
    std::optional<std::int64_t> integer(std::string_view key) const;
    std::optional<bool> boolean(std::string_view key) const;
    std::vector<std::string> keys() const;

    // Each write re-reads the file under a lock, changes the one key and replaces the file atomically, so that two
    // programs at once lose nothing of each other's. The failure's sentence names the file.
    std::optional<Failure> setText(std::string_view key, std::string_view value);
    std::optional<Failure> setInteger(std::string_view key, std::int64_t value);
    std::optional<Failure> setBoolean(std::string_view key, bool value);
    std::optional<Failure> unset(std::string_view key);

  private:
    FilePath file_;
};

}  // namespace brindlet
