// A server of the user's own that speaks OpenAI's chat completions, reached at the URL that the user typed.

#include "ai/wire/wire_format.h"
#include "text/strings.h"
#include "text/utf8.h"

namespace brindlet {

namespace {

constexpr std::chrono::seconds customTimeout(60);
constexpr std::string_view completionsPath = "/chat/completions";
constexpr const char* unparsableText = "Failed to parse response";

Result<std::string> completionsUrl(std::string_view baseURL) {
    std::string_view base = trimmed(baseURL);
    if (base.ends_with('/')) base.remove_suffix(1);
    std::string url(base);
    if (!base.ends_with(completionsPath)) url += "/v1/chat/completions";
    if (!isUsableUrl(url))
        return Failure{"URL '" + std::string(base) + "' is not valid. Please double check your settings!"};
    return url;
}

// A conversation of several turns arrives as one message.
BodyJson customBody(const CustomModel& model, const Conversation& conversation) {
    std::vector<std::string> turns;
    for (const AIMessage& message : conversation.rest) turns.push_back(message.text);
    BodyJson body = BodyJson::object();
    body["model"] = model.modelName;
    body["messages"] = BodyJson::array({BodyJson{{"role", "system"}, {"content", conversation.systemText}},
                                        BodyJson{{"role", "user"}, {"content", joined(turns, "\n")}}});
    if (model.setTemperature) body["temperature"] = 0;
    return body;
}

}  // namespace

Result<HttpRequest> customRequest(const CustomModel& model, const std::optional<std::string>& key,
                                  const Conversation& conversation) {
    const Result<std::string> url = completionsUrl(model.baseURL);
    if (!url) return url.failure();
    HttpRequest request{.url = *url,
                        .headers = {{"Content-Type", "application/json"}},
                        .body = bodyText(customBody(model, conversation)),
                        .timeout = customTimeout,
                        .plainHttp = PlainHttp::privateNetworks};
    if (key && !key->empty()) request.headers.push_back({"Authorization", "Bearer " + *key});
    return request;
}

Result<std::string> customAnswer(const HttpResponse& response) {
    if (response.status == 0) return Failure{"Invalid response"};
    if (response.status != 200)
        return Failure{"API error: " + (isValidUtf8(response.body) ? response.body : "Unknown error"), response.status};
    try {
        const std::optional<AnswerJson> json = parsedAnswer(response.body);
        auto text = json ? firstChoice(*json) : std::nullopt;
        if (text) return *text;
    } catch (const std::exception&) {
        // Of another shape, which says the same as no choice at all.
    }
    return Failure{unparsableText};
}

}  // namespace brindlet
