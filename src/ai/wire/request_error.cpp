#include "ai/wire/request_error.h"

#include <optional>

#include <fmt/format.h>

#include "ai/wire/wire_format.h"
#include "text/overloaded.h"
#include "text/strings.h"

namespace brindlet {

namespace {

constexpr std::string_view openAIDomain = "openai.com";
constexpr std::string_view apiErrorPrefix = "API error:";

// What a provider's message must contain; the first row that fits is shown.
struct FriendlyRow {
    std::string_view part;
    std::string_view domain;
    std::string_view withOwnKey;
    std::string_view withoutKey;
};
constexpr std::string_view tooManyRequests =
    "Too many requests have been made in a short space of time 🫨 try again later";
constexpr FriendlyRow friendlyRows[] = {
    {"Incorrect API key provided", openAIDomain, "Your API key isn't valid 🤦♂️",
     "An AI request error occurred: the API key isn't set up correctly at our end 🤦♂️"},
    {"You exceeded your current quota", openAIDomain,
     "💰 OpenAI quota exceeded, you may need to add funds to your OpenAI account.",
     "An AI request error occurred: We exceeded our OpenAI quota 😵"},
    {"Rate limited", "", tooManyRequests, tooManyRequests},
};

struct ProviderMessage {
    std::string text;
    std::optional<std::string> type;
};

// {"error": {"message": "...", "type": "..."}}
std::optional<ProviderMessage> providerMessage(std::string_view json) {
    const std::optional<AnswerJson> answer = parsedAnswer(json);
    const auto textIn = [](const AnswerJson& object, const char* key) -> std::optional<std::string> {
        const auto found = object.find(key);
        if (found == object.end() || !found->is_string()) return std::nullopt;
        return found->get_ref<const std::string&>();
    };
    if (!answer || !answer->is_object()) return std::nullopt;
    const auto error = answer->find("error");
    if (error == answer->end() || !error->is_object()) return std::nullopt;
    auto text = textIn(*error, "message");
    if (!text) return std::nullopt;
    return ProviderMessage{*text, textIn(*error, "type")};
}

std::string friendlyMessage(const ProviderMessage& message, bool hasOwnKey) {
    const std::string sorry = "Sorry 😞 ";
    for (const FriendlyRow& row : friendlyRows)
        if (contains(message.text, row.part) && contains(message.text, row.domain))
            return sorry + std::string(hasOwnKey ? row.withOwnKey : row.withoutKey);
    const std::string type = message.type ? " (" + *message.type + ")" : "";
    return sorry + "An AI request error occurred: " + message.text + type;
}

std::string describedProxyError(const AIProxyError& error) {
    return std::visit(
        Overloaded{[](const Assertion& assertion) {
                       return "AIProxy - A library precondition was not met: " + assertion.text;
                   },
                   [](const UnsuccessfulRequest& request) {
                       return fmt::format(
                           "AIProxy - the request resulted in a status code of {} with response body: {}.",
                           request.statusCode, request.responseBody);
                   },
                   [](const DeviceCheckIsUnavailable&) -> std::string {
                       return "AIProxy - Apple's DeviceCheck is not available on this device. Please make sure you are "
                              "connected to the internet and your system clock is accurately set.";
                   }},
        static_cast<const AIProxyError::variant&>(error));
}

Failure friendlyProxyFailure(const AIProxyError& error, bool hasOwnKey) {
    if (const auto* assertion = std::get_if<Assertion>(&error))
        return Failure{"Critical AIProxy error: " + assertion->text};
    if (const auto* request = std::get_if<UnsuccessfulRequest>(&error))
        if (const auto message = providerMessage(request->responseBody))
            return Failure{friendlyMessage(*message, hasOwnKey), request->statusCode};
    return Failure{describedProxyError(error)};
}

// A custom model's server may put words around its JSON.
Failure friendlyApiFailure(const Failure& failure, bool hasOwnKey) {
    const std::string& text = failure.description;
    if (!text.starts_with(apiErrorPrefix)) return failure;
    const std::size_t begin = text.find('{'), last = text.rfind('}');
    if (begin == std::string::npos || last == std::string::npos || last < begin) return failure;
    const auto message = providerMessage(std::string_view(text).substr(begin, last - begin + 1));
    return message ? Failure{friendlyMessage(*message, hasOwnKey), failure.code} : failure;
}

}  // namespace

std::string descriptionOf(const RequestError& error) {
    return std::visit(Overloaded{[](const AIProxyError& proxyError) { return describedProxyError(proxyError); },
                                 [](const Failure& failure) { return failure.description; }},
                      error);
}

Failure friendlyFailure(const RequestError& error, bool hasOwnKey) {
    return std::visit(
        Overloaded{[&](const AIProxyError& proxyError) { return friendlyProxyFailure(proxyError, hasOwnKey); },
                   [&](const Failure& failure) { return friendlyApiFailure(failure, hasOwnKey); }},
        error);
}

}  // namespace brindlet
