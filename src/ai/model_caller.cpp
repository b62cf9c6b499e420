#include "ai/model_caller.h"

#include <chrono>
#include <utility>
#include <variant>

#include <fmt/format.h>

#include "ai/wire/request_error.h"
#include "ai/wire/wire_format.h"
#include "platform/log.h"
#include "text/characters.h"
#include "text/overloaded.h"
#include "text/strings.h"
#include "text/utf8.h"

namespace brindlet {

namespace {

// In a message: a shorter one is no key, and might be part of a word.
constexpr std::size_t shortestSecret = 8;
// Of a server's own words that are shown; an error's body may be as long as any.
constexpr std::size_t longestFailure = 10'000;

constexpr std::string_view thinkBegin = "<think>", thinkEnd = "</think>";

// What is to be sent, and what of it no message may repeat, though a server may.
struct OutgoingRequest {
    HttpRequest http;
    std::vector<std::string> secrets;

    ~OutgoingRequest() {
        for (std::string& secret : secrets) wipe(secret);
        for (HttpHeader& header : http.headers) wipe(header.value);
    }
    OutgoingRequest() = default;
    OutgoingRequest(OutgoingRequest&&) = default;
    OutgoingRequest& operator=(OutgoingRequest&&) = default;
};

Failure withoutSecrets(Failure failure, const std::vector<std::string>& secrets) {
    for (const std::string& secret : secrets)
        if (secret.size() >= shortestSecret) failure.description = replacedAll(failure.description, secret, "***");
    if (failure.description.size() > longestFailure)
        failure.description = toValidUtf8(failure.description.substr(0, longestFailure)) + "…";
    return failure;
}

// A key of the user's own leads to the provider, if there is a public API.
bool hasDirectRoad(const WireFormat& wire, ProviderApiKeys& keys) {
    return !wire.host.empty() && !keys.key(wire.provider).empty();
}

Result<std::string> baseUrl(const WireFormat& wire, const Environment& environment) {
    const auto found = environment.find(wire.baseUrlVariable);
    std::string_view base = found == environment.end() ? "" : trimmed(found->second);
    if (base.empty()) return std::string(wire.host);
    if (!isEncryptedOrLocalUrl(std::string(base)))
        return Failure{
            fmt::format("{} must be an https address, or a plain one of this machine, such as "
                        "http://localhost:8080",
                        wire.baseUrlVariable)};
    while (base.ends_with('/')) base.remove_suffix(1);
    return std::string(base);
}

// With the path alone as its URL.
HttpRequest providerRequest(const WireFormat& wire, const Conversation& conversation, const AIModel& model) {
    HttpRequest request{.url = wire.path(model),
                        .headers = {{"Content-Type", "application/json"}},
                        .body = bodyText(wire.body(conversation, model)),
                        .timeout = wire.timeout};
    for (const WireHeader& header : wire.headers)
        request.headers.push_back({std::string(header.name), std::string(header.value)});
    return request;
}

std::optional<RequestError> takeDirectRoad(const ModelCallerSetup& setup, const WireFormat& wire,
                                           OutgoingRequest& outgoing) {
    const Result<std::string> base = baseUrl(wire, setup.environment);
    if (!base) return base.failure();
    HttpRequest& request = outgoing.http;
    request.url = *base + request.url;
    if (!isUsableUrl(request.url)) return AIProxyError(Assertion{"Could not create a request URL"});
    std::string key = setup.keys.key(wire.provider);
    request.headers.insert(request.headers.begin(), {std::string(wire.key.name), std::string(wire.key.value) + key});
    outgoing.secrets.push_back(std::move(key));
    return std::nullopt;
}

std::optional<RequestError> takeManagedRoad(const ModelCallerSetup& setup, const ManagedService& service,
                                            OutgoingRequest& outgoing) {
    auto managed = managedRequest(setup.managed, service, std::move(outgoing.http));
    if (auto* error = std::get_if<AIProxyError>(&managed)) return std::move(*error);
    outgoing.http = std::get<HttpRequest>(std::move(managed));
    outgoing.secrets.push_back(service.partialKey);
    return std::nullopt;
}

// Inception has no road but the managed one, and a key of the user's own doesn't change that.
std::string noRoadSentence(const WireFormat& wire, ProviderApiKeys& keys) {
    const std::string_view provider = rawValue(wire.provider);
    if (!keys.key(wire.provider).empty())
        return fmt::format(
            "{} can't be reached with a key of your own. Choose another model, or add one on your own "
            "machine with `brindlet models add`.",
            provider);
    return fmt::format(
        "No key for {0}. Add one in the settings or with `brindlet keys set {0}`, or choose a model on your own "
        "machine with `brindlet models add`.",
        provider);
}

using TextOrError = std::variant<std::string, RequestError>;

TextOrError textOrError(Result<std::string> result) {
    if (!result) return RequestError(result.failure());
    return std::move(*result);
}

TextOrError providerText(const WireFormat& wire, const HttpResponse& response) {
    if (response.status == 0) return RequestError(AIProxyError(Assertion{"Network response is not an http response"}));
    if (response.status >= 300)
        return RequestError(AIProxyError(
            UnsuccessfulRequest{response.status, isValidUtf8(response.body) ? response.body : std::string()}));
    return textOrError(readAnswer(wire, response.body));
}

TextOrError askProvider(const ModelCallerSetup& setup, const WireFormat& wire, const Conversation& conversation,
                        const AIModel& model, OutgoingRequest& outgoing, const std::stop_token& stop) {
    const bool isDirect = hasDirectRoad(wire, setup.keys);
    const ManagedService* service = isDirect ? nullptr : managedService(setup.managed, wire.provider);
    if (!isDirect && service == nullptr) return RequestError(Failure{noRoadSentence(wire, setup.keys)});
    outgoing.http = providerRequest(wire, conversation, model);
    auto error = isDirect ? takeDirectRoad(setup, wire, outgoing) : takeManagedRoad(setup, *service, outgoing);
    if (error) return std::move(*error);
    const Result<HttpResponse> response = setup.http.post(outgoing.http, stop);
    if (!response) return RequestError(response.failure());
    return providerText(wire, *response);
}

TextOrError askCustom(const ModelCallerSetup& setup, const Conversation& conversation, const AIModel& model,
                      OutgoingRequest& outgoing, const std::stop_token& stop) {
    const auto custom = setup.customModels.withId(model.id);
    if (!custom) return RequestError(Failure{"Custom model not found"});
    std::optional<std::string> key = setup.customModels.apiKey(custom->id);
    Result<HttpRequest> request = customRequest(*custom, key, conversation);
    if (key) outgoing.secrets.push_back(std::move(*key));
    if (!request) return RequestError(request.failure());
    outgoing.http = std::move(*request);
    const Result<HttpResponse> response = setup.http.post(outgoing.http, stop);
    if (!response) return RequestError(response.failure());
    return textOrError(customAnswer(*response));
}

bool hasOwnKey(const ModelCallerSetup& setup, const AIModel& model) {
    if (model.provider != AIModelProvider::custom) return !setup.keys.key(model.provider).empty();
    if (!setup.customModels.withId(model.id)) return false;
    std::optional<std::string> key = setup.customModels.apiKey(model.id);
    const bool hasKey = key && !key->empty();
    if (key) wipe(*key);
    return hasKey;
}

}  // namespace

Result<std::string> ModelCalling::timedCall(std::string_view label, const std::vector<AIMessage>& messages,
                                            const AIModel& model, const std::stop_token& stop) {
    const auto begin = std::chrono::steady_clock::now();
    Result<std::string> text = callModel(messages, model, stop);
    const auto elapsed = std::chrono::steady_clock::now() - begin;
    if (text)
        logInfo(
            fmt::format("{}: {}", label, elapsedText(std::chrono::duration_cast<std::chrono::milliseconds>(elapsed))));
    return text;
}

Result<std::string> ModelCaller::callModel(const std::vector<AIMessage>& messages, const AIModel& model,
                                           const std::stop_token& stop) {
    const bool isOwnKey = hasOwnKey(setup_, model);
    const Conversation conversation = conversationOf(messages);
    const WireFormat* wire = wireFormatOf(model.provider);
    OutgoingRequest outgoing;
    const TextOrError answer = wire != nullptr ? askProvider(setup_, *wire, conversation, model, outgoing, stop)
                                               : askCustom(setup_, conversation, model, outgoing, stop);
    if (const auto* text = std::get_if<std::string>(&answer)) return withoutReasoning(*text);
    const auto& error = std::get<RequestError>(answer);
    logError("AI request error: " + withoutSecrets(Failure{descriptionOf(error)}, outgoing.secrets).description);
    return withoutSecrets(friendlyFailure(error, isOwnKey), outgoing.secrets);
}

std::optional<std::string> ModelCaller::whyUnusable(const AIModel& model) {
    const WireFormat* wire = wireFormatOf(model.provider);
    if (wire == nullptr || hasDirectRoad(*wire, setup_.keys) || managedService(setup_.managed, model.provider))
        return std::nullopt;
    return noRoadSentence(*wire, setup_.keys);
}

std::string withoutReasoning(std::string_view text) {
    const std::string_view begun = trimmed(text);
    const std::size_t close = begun.starts_with(thinkBegin) ? begun.find(thinkEnd) : std::string_view::npos;
    if (close == std::string_view::npos) return std::string(text);
    const std::string_view behind =
        text.substr(static_cast<std::size_t>(begun.data() - text.data()) + close + thinkEnd.size());
    const std::string_view kept = trimmed(behind);
    const std::string result(kept.empty() ? kept
                                          : behind.substr(static_cast<std::size_t>(kept.data() - behind.data())));
    const std::size_t whole = characterCount(text);
    logInfo(fmt::format("Removed {}/{} characters of <think> content", whole - characterCount(result), whole));
    return result;
}

std::string elapsedText(std::chrono::milliseconds elapsed) {
    if (elapsed < std::chrono::milliseconds(500)) return fmt::format("{}ms", elapsed.count());
    return fmt::format("{:.2f}s", std::chrono::duration<double>(elapsed).count());
}

}  // namespace brindlet
