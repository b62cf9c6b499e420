#include "ai/ai_command.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <iterator>
#include <nlohmann/json.hpp>
#include <optional>
#include <random>
#include <utility>

#include <fmt/format.h>

#include "text/enum_rows.h"

namespace brindlet {

namespace {

using Json = nlohmann::ordered_json;

struct RoleRow {
    AIRole key;
    std::string_view name;
};
constexpr RoleRow roleRows[] = {{AIRole::system, "system"}, {AIRole::user, "user"}, {AIRole::assistant, "assistant"}};
static_assert(rowsCover(roleRows, AIRole::assistant));

constexpr const char* messageTextKey = "_0";

// The dashes of a UUID's text stand at 8, 13, 18 and 23.
constexpr std::string_view uuidShape = "xxxxxxxx-xxxx-xxxx-xxxx-xxxxxxxxxxxx";

bool isHexDigit(char byte) {
    return (byte >= '0' && byte <= '9') || (byte >= 'a' && byte <= 'f') || (byte >= 'A' && byte <= 'F');
}

bool isUuid(std::string_view text) {
    return std::ranges::equal(text, uuidShape,
                              [](char byte, char shape) { return shape == '-' ? byte == '-' : isHexDigit(byte); });
}

// None where the key is missing or holds no text.
std::optional<std::string> textAt(const Json& object, const char* key) {
    const auto found = object.find(key);
    if (found == object.end() || !found->is_string()) return std::nullopt;
    return found->get_ref<const std::string&>();
}

std::optional<std::string> uuidAt(const Json& object, const char* key) {
    auto text = textAt(object, key);
    return text && isUuid(*text) ? text : std::nullopt;
}

// JSON has only one kind of number: 1.0 is a whole one too.
std::optional<std::int64_t> wholeNumberAt(const Json& object, const char* key) {
    const auto found = object.find(key);
    if (found == object.end() || !found->is_number()) return std::nullopt;
    if (found->is_number_float()) {
        constexpr double limit = 9223372036854775808.0;  // 2 to the 63rd, which no longer fits
        const auto number = found->get<double>();
        if (std::trunc(number) != number || number < -limit || number >= limit) return std::nullopt;
        return static_cast<std::int64_t>(number);
    }
    if (found->is_number_unsigned() && !std::in_range<std::int64_t>(found->get<std::uint64_t>())) return std::nullopt;
    return found->get<std::int64_t>();
}

std::optional<std::vector<AIMessage>> messagesAt(const Json& object, const char* key) {
    const auto found = object.find(key);
    if (found == object.end() || !found->is_array()) return std::nullopt;
    std::vector<AIMessage> messages;
    for (const Json& each : *found) {
        auto message = aiMessageFromJson(each);
        if (!message) return std::nullopt;
        messages.push_back(std::move(*message));
    }
    return messages;
}

std::optional<std::set<std::string>> textsAt(const Json& object, const char* key) {
    const auto found = object.find(key);
    if (found == object.end() || !found->is_array()) return std::nullopt;
    std::set<std::string> texts;
    for (const Json& each : *found) {
        if (!each.is_string()) return std::nullopt;
        texts.insert(each.get_ref<const std::string&>());
    }
    return texts;
}

// Reads one field; at the first that can't be read its name stays in `badKey`.
template <class Value>
void readField(const Json& object, const char* key, std::optional<Value> (*read)(const Json&, const char*),
               Value& field, const char*& badKey) {
    if (badKey) return;
    auto value = read(object, key);
    if (!value) {
        badKey = key;
        return;
    }
    field = std::move(*value);
}

}  // namespace

std::string newUuid() {
    std::random_device device;
    std::array<std::uint32_t, 4> words{};
    for (std::uint32_t& word : words) word = device();
    words[1] = (words[1] & 0xFFFF0FFFU) | 0x00004000U;  // version 4: random
    words[2] = (words[2] & 0x3FFFFFFFU) | 0x80000000U;  // the RFC's own variant
    return fmt::format("{:08X}-{:04X}-{:04X}-{:04X}-{:04X}{:08X}", words[0], words[1] >> 16, words[1] & 0xFFFFU,
                       words[2] >> 16, words[2] & 0xFFFFU, words[3]);
}

std::string_view nameOf(AIRole role) {
    return rowOf(roleRows, role).name;
}

Json toJson(const AIMessage& message) {
    Json json = Json::object();
    json[std::string(nameOf(message.role))][messageTextKey] = message.text;
    return json;
}

Json toJson(const AICommand& command) {
    Json json = Json::object();
    json["id"] = command.id;
    json["bashCommand"] = command.bashCommand;
    json["prompt"] = command.prompt;
    json["riskDescription"] = command.riskDescription;
    json["riskValue"] = command.riskValue;
    Json& messages = json["messages"] = Json::array();
    for (const AIMessage& message : command.messages) messages.push_back(toJson(message));
    json["requiredPackages"] = command.requiredPackages;
    return json;
}

Result<AIMessage> aiMessageFromJson(const Json& json) {
    if (!json.is_object() || json.size() != 1) return Failure{"A message is no object with one key"};
    const std::string& name = json.begin().key();
    const auto* row = std::ranges::find(roleRows, name, &RoleRow::name);
    if (row == std::end(roleRows)) return Failure{"There is no kind of message '" + name + "'"};
    const Json& payload = json.begin().value();
    auto text = payload.is_object() ? textAt(payload, messageTextKey) : std::nullopt;
    if (!text) return Failure{"A message has no text"};
    return AIMessage{row->key, std::move(*text)};
}

Result<AICommand> aiCommandFromJson(const Json& json) {
    if (!json.is_object()) return Failure{"A command is no object"};
    AICommand command;
    const char* badKey = nullptr;
    readField(json, "id", uuidAt, command.id, badKey);
    readField(json, "bashCommand", textAt, command.bashCommand, badKey);
    readField(json, "prompt", textAt, command.prompt, badKey);
    readField(json, "riskDescription", textAt, command.riskDescription, badKey);
    readField(json, "riskValue", wholeNumberAt, command.riskValue, badKey);
    readField(json, "messages", messagesAt, command.messages, badKey);
    readField(json, "requiredPackages", textsAt, command.requiredPackages, badKey);
    if (badKey) return Failure{fmt::format("A command's \"{}\" is missing or of the wrong kind", badKey)};
    return command;
}

}  // namespace brindlet
