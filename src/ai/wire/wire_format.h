// What goes over the wire to each provider and what comes back. A provider is a row with a file of its own; the roads
// (direct, through a service, the user's own server) send what the row says.
//
//     const WireFormat& wire = *wireFormatOf(AIModelProvider::openAI);
//     auto body = bodyText(wire.body(conversationOf(messages), model));  // {"input":[...],"model":"..."}
//     auto text = readAnswer(wire, response.body);
#pragma once

#include <chrono>
#include <nlohmann/json.hpp>
#include <optional>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "ai/ai_command.h"
#include "ai/ai_model.h"
#include "ai/custom_model.h"
#include "platform/http_client.h"
#include "platform/result.h"

namespace brindlet {

using BodyJson = nlohmann::ordered_json;
using AnswerJson = nlohmann::json;  // not the ordered one: its look-ups are linear, and a stranger chooses the keys

// The messages of a request, which outlive it.
struct Conversation {
    std::span<const AIMessage> all;
    std::span<const AIMessage> rest;  // without a system message at the begin
    std::string_view systemText;      // of the first system message, wherever it is; else empty
};
Conversation conversationOf(const std::vector<AIMessage>& messages);

struct WireHeader {
    std::string_view name;
    std::string_view value;
};

struct WireFormat {
    AIModelProvider provider;
    std::string_view host;             // of the public API; empty: a key of the user's own leads nowhere
    std::string_view baseUrlVariable;  // of the environment, in place of the host
    WireHeader key;                    // the value is what stands before the key
    std::chrono::seconds timeout;
    std::span<const WireHeader> headers;  // further ones
    std::string (*path)(const AIModel& model);
    BodyJson (*body)(const Conversation& conversation, const AIModel& model);
    Result<std::string> (*answer)(const AnswerJson& answer);  // throws WrongShape
};

extern const WireFormat openAIWire, anthropicWire, googleWire, mistralWire, inceptionWire;
// None for custom models, whose row is in their own hands.
const WireFormat* wireFormatOf(AIModelProvider provider);

// One line; what is no UTF-8 in the texts is replaced by U+FFFD.
std::string bodyText(const BodyJson& body);
// One object per message: "role" and "content".
BodyJson chatMessages(std::span<const AIMessage> messages);
// "assistant" as `nameOfAssistant`, all others "user".
std::string_view turnRole(AIRole role, std::string_view nameOfAssistant);

// The text of a successful answer. A body that isn't of the provider's shape is a failure that says what is wrong.
Result<std::string> readAnswer(const WireFormat& wire, std::string_view body);

// None for what isn't JSON, and for what is nested or crowded as no answer is.
std::optional<AnswerJson> parsedAnswer(std::string_view body);

struct WrongShape : std::runtime_error {
    using std::runtime_error::runtime_error;
};
// The members of an answer's objects. One that is absent or null is none (an array: empty); of another kind, or a
// member of something that is no object: WrongShape.
const AnswerJson* memberOf(const AnswerJson& object, const char* key);
std::optional<std::string> textOf(const AnswerJson& object, const char* key);
const AnswerJson& arrayOf(const AnswerJson& object, const char* key);
// "choices", its first element, "message", "content".
std::optional<std::string> firstChoice(const AnswerJson& answer);
// A count as text; whatever is none is "0".
std::string countOf(const AnswerJson& object, const char* key);

inline constexpr std::string_view noContent = "No content in API response";

// The user's own server. The failure says what is wrong with the URL.
Result<HttpRequest> customRequest(const CustomModel& model, const std::optional<std::string>& key,
                                  const Conversation& conversation);
Result<std::string> customAnswer(const HttpResponse& response);

}  // namespace brindlet
