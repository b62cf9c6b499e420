// A command that was made of a request, with the conversation that led to it, and the JSON form in which the history
// keeps both.
//
//     AICommand command{.id = newUuid(), .bashCommand = "ls", .prompt = "list", .messages = {{AIRole::user, "list"}}};
//     auto stored = toJson(command);  // {"id":"6F9619FF-...","bashCommand":"ls","prompt":"list",...
//     if (auto again = aiCommandFromJson(stored)) use(*again);
#pragma once

#include <cstdint>
#include <nlohmann/json_fwd.hpp>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "platform/result.h"

namespace brindlet {

enum class AIRole { system, user, assistant };

// One turn of a conversation. Each of the cases holds one text, so the case is a field rather than a type of its own.
struct AIMessage {
    AIRole role = AIRole::user;
    std::string text;

    bool operator==(const AIMessage&) const = default;
};

// Never changed once made: a change makes a new one with a new id.
struct AICommand {
    std::string id{};           // a UUID as text
    std::string bashCommand{};  // one line; empty for a request that was kept without its command
    std::string prompt{};
    std::string riskDescription{};
    std::int64_t riskValue = -1;
    std::vector<AIMessage> messages{};
    std::set<std::string> requiredPackages{};

    bool operator==(const AICommand&) const = default;
};

// A random UUID (RFC 9562, version 4) in upper case.
std::string newUuid();

// "system", "user" or "assistant".
std::string_view nameOf(AIRole role);

// {"user":{"_0":"the text"}}
nlohmann::ordered_json toJson(const AIMessage& message);
// An object of the fields in order; the packages are sorted.
nlohmann::ordered_json toJson(const AICommand& command);

// The failure says which part is not as it should be. A message has exactly one key; a command has all seven, and
// others beside them are passed over.
Result<AIMessage> aiMessageFromJson(const nlohmann::ordered_json& json);
Result<AICommand> aiCommandFromJson(const nlohmann::ordered_json& json);

}  // namespace brindlet
