// Inception, which speaks OpenAI's chat completions. Its requests go through a service even where the user has a key.

#include "ai/wire/wire_format.h"

namespace brindlet {

namespace {

BodyJson inceptionBody(const Conversation& conversation, const AIModel& model) {
    BodyJson body = BodyJson::object();
    body["model"] = model.name;
    body["messages"] = chatMessages(conversation.all);
    body["stream"] = false;
    body["temperature"] = 0;
    return body;
}

Result<std::string> inceptionAnswer(const AnswerJson& answer) {
    auto text = firstChoice(answer);
    if (!text) return Failure{std::string(noContent)};
    return *text;
}

}  // namespace

const WireFormat inceptionWire = {
    .provider = AIModelProvider::inception,
    .host = "",
    .baseUrlVariable = "",
    .key = {},
    .timeout = std::chrono::seconds(60),
    .headers = {},
    .path = [](const AIModel&) -> std::string { return "/v1/chat/completions"; },
    .body = &inceptionBody,
    .answer = &inceptionAnswer,
};

}  // namespace brindlet
