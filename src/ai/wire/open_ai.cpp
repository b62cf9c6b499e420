// OpenAI's Responses.

#include "ai/wire/wire_format.h"

namespace brindlet {

namespace {

BodyJson openAIBody(const Conversation& conversation, const AIModel& model) {
    BodyJson body = BodyJson::object();
    BodyJson& input = body["input"] = BodyJson::array();
    for (const AIMessage& message : conversation.all)
        input.push_back({{"type", "message"}, {"role", nameOf(message.role)}, {"content", message.text}});
    body["model"] = model.name;
    if (model.reasoning) body["reasoning"] = {{"effort", "low"}};
    if (model.supportsTemperature) body["temperature"] = 0;
    body["text"] = {{"format", {{"type", "text"}}}};
    return body;
}

// What the model thought stands beside its message in the list.
Result<std::string> openAIAnswer(const AnswerJson& answer) {
    std::string text;
    for (const AnswerJson& item : arrayOf(answer, "output")) {
        if (textOf(item, "type") != "message") continue;
        for (const AnswerJson& part : arrayOf(item, "content"))
            if (textOf(part, "type") == "output_text") text += textOf(part, "text").value_or("");
    }
    if (text.empty()) return Failure{std::string(noContent)};
    return text;
}

}  // namespace

const WireFormat openAIWire = {
    .provider = AIModelProvider::openAI,
    .host = "https://api.openai.com",
    .baseUrlVariable = "BRINDLET_OPENAI_BASE_URL",
    .key = {"Authorization", "Bearer "},
    .timeout = std::chrono::seconds(60),
    .headers = {},
    .path = [](const AIModel&) -> std::string { return "/v1/responses"; },
    .body = &openAIBody,
    .answer = &openAIAnswer,
};

}  // namespace brindlet
