// Anthropic's Messages.

#include "ai/wire/wire_format.h"

namespace brindlet {

namespace {

constexpr int mostAnthropicTokens = 1024;
constexpr WireHeader anthropicHeaders[] = {{"anthropic-version", "2023-06-01"}};

BodyJson anthropicBody(const Conversation& conversation, const AIModel& model) {
    BodyJson body = BodyJson::object();
    body["max_tokens"] = mostAnthropicTokens;
    BodyJson& messages = body["messages"] = BodyJson::array();
    for (const AIMessage& message : conversation.rest) {
        BodyJson content = BodyJson::array({BodyJson{{"type", "text"}, {"text", message.text}}});
        messages.push_back({{"role", turnRole(message.role, "assistant")}, {"content", std::move(content)}});
    }
    body["model"] = model.name;
    body["stream"] = false;
    body["system"] = conversation.systemText;
    return body;
}

Result<std::string> anthropicAnswer(const AnswerJson& answer) {
    std::string text;
    for (const AnswerJson& block : arrayOf(answer, "content")) {
        const auto type = textOf(block, "type");
        if (type == "text") text += textOf(block, "text").value_or("");
        if (type == "tool_use")
            return Failure{"Claude unexpectedly tried to use tool: " + textOf(block, "name").value_or("")};
    }
    return text;
}

}  // namespace

const WireFormat anthropicWire = {
    .provider = AIModelProvider::anthropic,
    .host = "https://api.anthropic.com",
    .baseUrlVariable = "BRINDLET_ANTHROPIC_BASE_URL",
    .key = {"x-api-key", ""},
    .timeout = std::chrono::seconds(60),
    .headers = anthropicHeaders,
    .path = [](const AIModel&) -> std::string { return "/v1/messages"; },
    .body = &anthropicBody,
    .answer = &anthropicAnswer,
};

}  // namespace brindlet
