// Mistral's chat completions.

#include "ai/wire/wire_format.h"
#include "platform/log.h"

namespace brindlet {

namespace {

BodyJson mistralBody(const Conversation& conversation, const AIModel& model) {
    BodyJson body = BodyJson::object();
    body["messages"] = chatMessages(conversation.all);
    body["model"] = model.name;
    body["stream"] = false;
    return body;
}

Result<std::string> mistralAnswer(const AnswerJson& answer) {
    if (const AnswerJson* usage = memberOf(answer, "usage"); usage != nullptr && usage->is_object())
        logInfo("Used:\n    " + countOf(*usage, "prompt_tokens") + " prompt tokens\n    " +
                countOf(*usage, "completion_tokens") + " completion tokens\n    " + countOf(*usage, "total_tokens") +
                " total tokens");
    return firstChoice(answer).value_or("");
}

}  // namespace

const WireFormat mistralWire = {
    .provider = AIModelProvider::mistral,
    .host = "https://api.mistral.ai",
    .baseUrlVariable = "BRINDLET_MISTRAL_BASE_URL",
    .key = {"Authorization", "Bearer "},
    .timeout = std::chrono::seconds(60),
    .headers = {},
    .path = [](const AIModel&) -> std::string { return "/v1/chat/completions"; },
    .body = &mistralBody,
    .answer = &mistralAnswer,
};

}  // namespace brindlet
