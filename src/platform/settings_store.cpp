#include "platform/settings_store.h"

#include <cstdio>
#include <nlohmann/json.hpp>
#include <utility>

#include "platform/atomic_file.h"
#include "platform/file_lock.h"
#include "platform/file_system.h"

namespace brindlet {

namespace {

using Json = nlohmann::ordered_json;

// Settings are a few kilobytes. What is larger, or nested deeper, was not written by this program, and the library
// recurses when it prints.
constexpr std::size_t largestFile = 4 * 1024 * 1024;
constexpr int deepestNesting = 100;

struct SettingsContent {
    Json values = Json::object();
    bool isReadable = true;  // false: something stands there that is no settings file
};

SettingsContent unreadable() {
    return {.values = Json::object(), .isReadable = false};
}

SettingsContent readSettings(const FilePath& file) {
    const std::unique_ptr<FileSystem> files = openFileSystem();
    if (files->look(file) == ItemKind::missing) return {};
    const Result<std::string> text = files->readFile(file, largestFile);
    if (!text) return unreadable();
    if (text->empty()) return {};

    bool isTooDeep = false;
    const auto watchDepth = [&](int depth, Json::parse_event_t, Json&) {
        isTooDeep = isTooDeep || depth > deepestNesting;
        return !isTooDeep;
    };
    Json values = Json::parse(*text, watchDepth, /*allow_exceptions=*/false);
    if (isTooDeep || !values.is_object()) return unreadable();
    return {.values = std::move(values)};
}

// The value under the key where it is there and of the kind that `isWanted` asks for.
template <class IsWanted>
std::optional<Json> lookUp(const FilePath& file, std::string_view key, IsWanted isWanted) {
    const SettingsContent content = readSettings(file);
    const auto found = content.values.find(key);
    if (found == content.values.end() || !isWanted(*found)) return std::nullopt;
    return *found;
}

bool isInteger(const Json& value) {
    if (!value.is_number_integer()) return false;
    return !value.is_number_unsigned() || std::in_range<std::int64_t>(value.get<std::uint64_t>());
}

std::optional<Failure> setAside(const FilePath& file) {
    const std::string aside = file.text() + ".unreadable";
    if (std::rename(file.text().c_str(), aside.c_str()) == 0) return std::nullopt;
    return Failure{"Can't set the unreadable file '" + file.text() + "' aside"};
}

template <class Change>
std::optional<Failure> changeSettings(const FilePath& file, Change change) {
    if (auto failure = makeFolders(file.parent())) return failure;
    const Result<FileLock> lock = FileLock::take(FilePath(file.text() + ".lock"));
    if (!lock) return lock.failure();
    SettingsContent content = readSettings(file);
    if (!content.isReadable) {
        if (auto failure = setAside(file)) return failure;
    }
    change(content.values);
    // A value that is no UTF-8 can't stand in JSON; its bad bytes are replaced rather than the rest lost.
    const std::string text = content.values.dump(4, ' ', false, Json::error_handler_t::replace);
    return writeFileAtomically(file, text + "\n");
}

}  // namespace

SettingsStore::SettingsStore(FilePath file) : file_(std::move(file)) {}

std::optional<std::string> SettingsStore::text(std::string_view key) const {
    const auto value = lookUp(file_, key, [](const Json& found) { return found.is_string(); });
    return value ? std::optional(value->get<std::string>()) : std::nullopt;
}

std::optional<std::int64_t> SettingsStore::integer(std::string_view key) const {
    const auto value = lookUp(file_, key, isInteger);
    return value ? std::optional(value->get<std::int64_t>()) : std::nullopt;
}

std::optional<bool> SettingsStore::boolean(std::string_view key) const {
    const auto value = lookUp(file_, key, [](const Json& found) { return found.is_boolean(); });
    return value ? std::optional(value->get<bool>()) : std::nullopt;
}

std::vector<std::string> SettingsStore::keys() const {
    std::vector<std::string> found;
    const SettingsContent content = readSettings(file_);
    for (const auto& item : content.values.items()) found.push_back(item.key());
    return found;
}

std::optional<Failure> SettingsStore::setText(std::string_view key, std::string_view value) {
    return changeSettings(file_, [&](Json& values) { values[std::string(key)] = std::string(value); });
}

std::optional<Failure> SettingsStore::setInteger(std::string_view key, std::int64_t value) {
    return changeSettings(file_, [&](Json& values) { values[std::string(key)] = value; });
}

std::optional<Failure> SettingsStore::setBoolean(std::string_view key, bool value) {
    return changeSettings(file_, [&](Json& values) { values[std::string(key)] = value; });
}

std::optional<Failure> SettingsStore::unset(std::string_view key) {
    return changeSettings(file_, [&](Json& values) { values.erase(std::string(key)); });
}

}  // namespace brindlet
