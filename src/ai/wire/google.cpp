// Google's generateContent. The model's name is part of the path.

#include "ai/wire/wire_format.h"
#include "platform/log.h"

namespace brindlet {

namespace {

constexpr int mostGoogleTokens = 2048;
constexpr std::string_view inlineDataText = "<GEMINI UNEXPECTEDLY GENERATED INLINE DATA>";

BodyJson googleParts(std::string_view text) {
    return BodyJson::array({BodyJson{{"text", text}}});
}

BodyJson googleBody(const Conversation& conversation, const AIModel&) {
    BodyJson body = BodyJson::object();
    BodyJson& contents = body["contents"] = BodyJson::array();
    for (const AIMessage& message : conversation.rest)
        contents.push_back({{"parts", googleParts(message.text)}, {"role", turnRole(message.role, "model")}});
    body["generationConfig"] = {{"maxOutputTokens", mostGoogleTokens}};
    body["systemInstruction"] = {{"role", "system"}, {"parts", googleParts(conversation.systemText)}};
    return body;
}

void logGoogleUsage(const AnswerJson& answer) {
    const AnswerJson* usage = memberOf(answer, "usageMetadata");
    if (usage == nullptr || !usage->is_object()) return;
    logInfo("Used:\n    " + countOf(*usage, "promptTokenCount") + " prompt tokens\n    " +
            countOf(*usage, "cachedContentTokenCount") + " cached tokens\n    " +
            countOf(*usage, "candidatesTokenCount") + " candidate tokens\n    " + countOf(*usage, "totalTokenCount") +
            " total tokens");
}

Result<std::string> googleAnswer(const AnswerJson& answer) {
    logGoogleUsage(answer);
    std::string text;
    const AnswerJson& candidates = arrayOf(answer, "candidates");
    const AnswerJson* content = candidates.empty() ? nullptr : memberOf(candidates.front(), "content");
    if (content == nullptr) return text;
    for (const AnswerJson& part : arrayOf(*content, "parts")) {
        text += textOf(part, "text").value_or("");
        if (memberOf(part, "inlineData")) text += inlineDataText;
        if (const AnswerJson* call = memberOf(part, "functionCall"))
            return Failure{"Gemini unexpectedly tried to call function: " + textOf(*call, "name").value_or("")};
    }
    return text;
}

}  // namespace

const WireFormat googleWire = {
    .provider = AIModelProvider::google,
    .host = "https://generativelanguage.googleapis.com",
    .baseUrlVariable = "BRINDLET_GOOGLE_BASE_URL",
    .key = {"X-Goog-Api-Key", ""},
    .timeout = std::chrono::seconds(30),
    .headers = {},
    .path = [](const AIModel& model) { return "/v1beta/models/" + model.name + ":generateContent"; },
    .body = &googleBody,
    .answer = &googleAnswer,
};

}  // namespace brindlet
