#include "ai/wire/wire_format.h"

#include <algorithm>
#include <array>
#include <exception>

#include <fmt/format.h>

namespace brindlet {

namespace {

constexpr std::array<const WireFormat*, 5> wireFormats = {&openAIWire, &anthropicWire, &googleWire, &mistralWire,
                                                          &inceptionWire};

constexpr std::size_t deepestAnswerNesting = 200;
constexpr std::size_t mostAnswerValues = 1'000'000;  // small ones take a hundred times their text in memory

// Looked at before anything is built of it. What isn't JSON may pass.
bool isModest(std::string_view json) {
    std::size_t depth = 0, values = 0;
    bool isInText = false;
    for (std::size_t at = 0; at < json.size(); ++at) {
        const char byte = json[at];
        if (isInText) {
            if (byte == '\\') ++at;
            if (byte == '"') isInText = false;
            continue;
        }
        if (byte == '"') isInText = true;
        if (byte == '[' || byte == '{' || byte == ',') ++values;
        if (byte == '[' || byte == '{') ++depth;
        if ((byte == ']' || byte == '}') && depth > 0) --depth;
        if (depth > deepestAnswerNesting || values > mostAnswerValues) return false;
    }
    return true;
}

}  // namespace

Conversation conversationOf(const std::vector<AIMessage>& messages) {
    Conversation conversation{.all = messages, .rest = messages, .systemText = ""};
    const auto system = std::ranges::find(messages, AIRole::system, &AIMessage::role);
    if (system != messages.end()) conversation.systemText = system->text;
    if (!messages.empty() && system == messages.begin()) conversation.rest = conversation.all.subspan(1);
    return conversation;
}

const WireFormat* wireFormatOf(AIModelProvider provider) {
    const auto found = std::ranges::find_if(wireFormats, [&](const auto* wire) { return wire->provider == provider; });
    return found == wireFormats.end() ? nullptr : *found;
}

std::string bodyText(const BodyJson& body) {
    return body.dump(-1, ' ', false, BodyJson::error_handler_t::replace);
}

BodyJson chatMessages(std::span<const AIMessage> messages) {
    BodyJson list = BodyJson::array();
    for (const AIMessage& message : messages)
        list.push_back({{"role", nameOf(message.role)}, {"content", message.text}});
    return list;
}

std::string_view turnRole(AIRole role, std::string_view nameOfAssistant) {
    return role == AIRole::assistant ? nameOfAssistant : nameOf(AIRole::user);
}

Result<std::string> readAnswer(const WireFormat& wire, std::string_view body) {
    const auto unreadable = [&](std::string_view why) {
        return Failure{fmt::format("The answer of {} can't be read: {}", rawValue(wire.provider), why)};
    };
    try {
        const std::optional<AnswerJson> json = parsedAnswer(body);
        if (!json) return unreadable("it is no JSON");
        return wire.answer(*json);
    } catch (const WrongShape& wrong) {
        return unreadable(wrong.what());
    } catch (const std::exception&) {
        return unreadable("it is like nothing that was expected");
    }
}

std::optional<AnswerJson> parsedAnswer(std::string_view body) {
    if (!isModest(body)) return std::nullopt;
    AnswerJson json = AnswerJson::parse(body, nullptr, false);
    if (json.is_discarded()) return std::nullopt;
    return json;
}

const AnswerJson* memberOf(const AnswerJson& object, const char* key) {
    if (!object.is_object()) throw WrongShape(fmt::format("there is no object where \"{}\" is looked for", key));
    const auto found = object.find(key);
    return found == object.end() || found->is_null() ? nullptr : &*found;
}

std::optional<std::string> textOf(const AnswerJson& object, const char* key) {
    const AnswerJson* member = memberOf(object, key);
    if (member == nullptr) return std::nullopt;
    if (!member->is_string()) throw WrongShape(fmt::format("\"{}\" is no text", key));
    return member->get_ref<const std::string&>();
}

const AnswerJson& arrayOf(const AnswerJson& object, const char* key) {
    static const AnswerJson empty = AnswerJson::array();
    const AnswerJson* member = memberOf(object, key);
    if (member == nullptr) return empty;
    if (!member->is_array()) throw WrongShape(fmt::format("\"{}\" is no list", key));
    return *member;
}

std::optional<std::string> firstChoice(const AnswerJson& answer) {
    const AnswerJson& choices = arrayOf(answer, "choices");
    const AnswerJson* message = choices.empty() ? nullptr : memberOf(choices.front(), "message");
    return message == nullptr ? std::nullopt : textOf(*message, "content");
}

std::string countOf(const AnswerJson& object, const char* key) {
    const auto found = object.find(key);
    return found != object.end() && found->is_number_integer() ? found->dump() : "0";
}

}  // namespace brindlet
