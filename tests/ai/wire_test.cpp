#include <gtest/gtest.h>

#include <thread>

#include "ai/model_caller.h"
#include "fakes/fake_secret_store.h"
#include "platform/log.h"
#include "support/asset_server.h"
#include "support/scratch_folder.h"
#include "support/tls_identity.h"
#include "text/strings.h"

namespace brindlet {
namespace wire_tests {

using enum AIModelProvider;

constexpr std::string_view ownKey = "sk-own-key-0123456789";

AIModel modelOf(AIModelProvider provider, const std::string& name = "m") {
    AIModel model;
    model.id = model.name = name;
    model.provider = provider;
    return model;
}

// A user with keys whose providers are all at one address.
struct User {
    explicit User(const std::string& url, bool hasKeys = true) {
        for (const auto provider : ProviderApiKeys::providers)
            if (hasKeys) secrets.secrets[keyAccount(provider)] = ownKey;
        for (const std::string name : {"OPENAI", "ANTHROPIC", "GOOGLE", "MISTRAL"})
            environment["BRINDLET_" + name + "_BASE_URL"] = url;
        installLogSink([this](LogLevel level, std::string_view line) {
            log += (level == LogLevel::error ? "! " : "") + std::string(line) + "\n";
        });
    }
    ~User() { installLogSink({}); }

    // A custom model in the list.
    AIModel custom(const std::string& baseURL, bool hasKey = true) {
        CustomModel model = CustomModel::fresh();
        model.modelName = "llama";
        model.baseURL = baseURL;
        model.setTemperature = hasKey;
        customModels.add(model);
        if (hasKey) customModels.setApiKey(model.id, ownKey);
        return model.aiModel();
    }
    // The text, or "code: message".
    std::string called(const AIModel& model, const std::vector<AIMessage>& messages = {{AIRole::user, "hi"}},
                       const std::stop_token& stop = {}) {
        ProviderApiKeys keys(secrets, environment);
        const auto http = openHttpClient({.certificateFile = certificateFile});
        ModelCaller caller({keys, customModels, *http, environment, managed});
        const auto text = caller.timedCall("call", messages, model, stop);
        return text ? *text : std::to_string(text.failure().code) + ": " + text.failure().description;
    }

    ScratchFolder scratch;
    FakeSecretStore secrets;
    Environment environment;
    CustomModelList customModels{FilePath(scratch.path()), secrets};
    ManagedRoad managed;
    std::string certificateFile;
    std::string log;
};

AIModelProvider providerAmong(const std::string& path) {
    return contains(path, "responses")  ? openAI
           : contains(path, "messages") ? anthropic
           : contains(path, "beta")     ? google
                                        : mistral;
}

TEST(Wire, RequestsByteForByte) {
    const std::vector<AIMessage> conversation = {{AIRole::system, "be brief"},
                                                 {AIRole::user, "\"a\"\n"},
                                                 {AIRole::assistant, "\xC3\xA9"},
                                                 {AIRole::user, "bad \xFF"}};
    AIModel small = modelOf(openAI, "gpt-a");
    small.supportsTemperature = true;
    AIModel thinking = modelOf(openAI, "gpt-b");
    thinking.reasoning = true;
    const std::string json = "Content-Type: application/json\r\n",
                      bearer = "Authorization: Bearer " + std::string(ownKey) + "\r\n";
    const std::string chat = R"([{"role":"system","content":"be brief"},{"role":"user","content":"\"a\"\n"},)"
                             R"({"role":"assistant","content":"é"},{"role":"user","content":"bad �"}])";
    const std::string typed = replacedAll(chat, R"({"role")", R"({"type":"message","role")");
    AssetServer server({});
    User user(server.url() + "/gate/");
    const struct {
        AIModel model;
        std::string path, headers, body;
    } rows[] = {
        {small, "/gate/v1/responses", bearer + json,
         R"({"input":)" + typed + R"(,"model":"gpt-a","temperature":0,"text":{"format":{"type":"text"}}})"},
        {thinking, "/gate/v1/responses", bearer + json,
         R"({"input":)" + typed +
             R"(,"model":"gpt-b","reasoning":{"effort":"low"},"text":{"format":{"type":"text"}}})"},
        {modelOf(anthropic), "/gate/v1/messages",
         "x-api-key: " + std::string(ownKey) + "\r\n" + json + "anthropic-version: 2023-06-01\r\n",
         R"({"max_tokens":1024,"messages":[{"role":"user","content":[{"type":"text","text":"\"a\"\n"}]},)"
         R"({"role":"assistant","content":[{"type":"text","text":"é"}]},)"
         R"({"role":"user","content":[{"type":"text","text":"bad �"}]}],"model":"m","stream":false,"system":"be brief"})"},
        {modelOf(google), "/gate/v1beta/models/m:generateContent",
         "X-Goog-Api-Key: " + std::string(ownKey) + "\r\n" + json,
         R"({"contents":[{"parts":[{"text":"\"a\"\n"}],"role":"user"},{"parts":[{"text":"é"}],"role":"model"},)"
         R"({"parts":[{"text":"bad �"}],"role":"user"}],"generationConfig":{"maxOutputTokens":2048},)"
         R"("systemInstruction":{"role":"system","parts":[{"text":"be brief"}]}})"},
        {modelOf(mistral), "/gate/v1/chat/completions", bearer + json,
         R"({"messages":)" + chat + R"(,"model":"m","stream":false})"},
        {user.custom(server.url()), "/v1/chat/completions", json + bearer,
         R"({"model":"llama","messages":[{"role":"system","content":"be brief"},)"
         R"({"role":"user","content":"\"a\"\n\né\nbad �"}],"temperature":0})"},
        {user.custom(" " + server.url() + "/x/chat/completions/\n", false), "/x/chat/completions", json,
         R"({"model":"llama","messages":[{"role":"system","content":"be brief"},)"
         R"({"role":"user","content":"\"a\"\n\né\nbad �"}]})"},
        {user.custom(server.url() + "/v1/chat/completions//", false), "/v1/chat/completions//v1/chat/completions", json,
         ""},
    };
    for (std::size_t index = 0; index < std::size(rows); ++index) {
        const auto& [model, path, headers, body] = rows[index];
        user.called(model, conversation);
        const std::string head = "POST " + path + " HTTP/1.1\r\nHost: " + server.url().substr(7) +
                                 "\r\nUser-Agent: Brindlet\r\nAccept: */*\r\n" + headers;
        const std::string request = server.request(index);
        EXPECT_EQ(request.substr(0, head.size()), head);
        EXPECT_TRUE(body.empty() || request.ends_with("\r\n\r\n" + body)) << request;
    }
    // A system message that isn't the first stays among the turns, too.
    user.called(modelOf(anthropic), {{AIRole::user, "a"}, {AIRole::system, "b"}});
    EXPECT_TRUE(
        contains(server.request(std::size(rows)), R"("text":"b"}]}],"model":"m","stream":false,"system":"b"})"));
    EXPECT_FALSE(contains(user.log, ownKey));
}

TEST(Wire, Answers) {
    const std::string unreadable = "-1: The answer of ";
    const struct {
        std::string path, body, outcome;
    } rows[] = {
        {"/v1/responses",
         R"({"output":[{"type":"reasoning","content":null},{"type":"message","content":[{"type":"output_text","text":"l"},)"
         R"({"type":"refusal"},{"type":"output_text","text":"s"}]},{"type":"message","content":[{"type":"output_text","text":" a"}]}]})",
         "ls a"},
        {"/v1/responses", R"({"output":[{"type":"reasoning"}]})", "-1: No content in API response"},
        {"/v1/responses", "{}", "-1: No content in API response"},
        {"/v1/responses", R"({"output":"ls"})", unreadable + "OpenAI can't be read: \"output\" is no list"},
        {"/v1/responses", R"({"output":[null]})",
         unreadable + "OpenAI can't be read: there is no object where \"type\" is looked for"},
        {"/v1/responses", R"({"output":[{"type":"message","content":[{"type":"output_text","text":1}]}]})",
         unreadable + "OpenAI can't be read: \"text\" is no text"},
        {"/v1/responses", "not JSON", unreadable + "OpenAI can't be read: it is no JSON"},
        {"/v1/responses", "", unreadable + "OpenAI can't be read: it is no JSON"},
        {"/v1/responses", "{\"output\":\"\xFF\"}", unreadable + "OpenAI can't be read: it is no JSON"},
        {"/v1/responses", R"({"output":1e999})", unreadable + "OpenAI can't be read: it is no JSON"},
        {"/v1/responses", std::string(10'000'000, '['), unreadable + "OpenAI can't be read: it is no JSON"},
        {"/v1/responses", "[" + replacedAll(std::string(5'000'000, 'x'), "x", "{},") + "{}]",
         unreadable + "OpenAI can't be read: it is no JSON"},
        {"/v1/messages", R"({"content":[{"type":"thinking"},{"type":"text","text":"l"},{"type":"text","text":"s"}]})",
         "ls"},
        {"/v1/messages", R"({"content":[]})", ""},
        {"/v1/messages", R"({"content":[{"type":"text","text":"l"},{"type":"tool_use","name":"sh"}]})",
         "-1: Claude unexpectedly tried to use tool: sh"},
        {"/v1/messages", "[]",
         unreadable + "Anthropic can't be read: there is no object where \"content\" is looked for"},
        {"/v1beta/models/m:generateContent",
         R"({"candidates":[{"content":{"parts":[{"text":"ls"},{"inlineData":{}}]}},{"content":1}]})",
         "ls<GEMINI UNEXPECTEDLY GENERATED INLINE DATA>"},
        {"/v1beta/models/m:generateContent",
         R"({"candidates":[{"content":{"parts":[{"text":"ls"},{"functionCall":{"name":"f"}}]}}]})",
         "-1: Gemini unexpectedly tried to call function: f"},
        {"/v1beta/models/m:generateContent", R"({"promptFeedback":{}})", ""},
        {"/v1beta/models/m:generateContent", R"({"candidates":[{"finishReason":"SAFETY"}]})", ""},
        {"/v1beta/models/m:generateContent", R"({"candidates":[7]})",
         unreadable + "Google can't be read: there is no object where \"content\" is looked for"},
        {"/v1/chat/completions", R"({"choices":[{"message":{"content":"ls"}},{"message":{"content":"no"}}]})", "ls"},
        {"/v1/chat/completions", R"({"choices":[]})", ""},
        {"/v1/chat/completions", R"({"choices":[{"message":{"content":[{}]}}]})",
         unreadable + "Mistral can't be read: \"content\" is no text"},
        {"/v1/chat/completions", R"({"choices":[{"message":{"content":" <think>a\nb</think>\n ls "}}]})", "ls "},
    };
    for (const auto& [path, body, outcome] : rows) {
        // Any status below 300 will do.
        AssetServer server({{path, {.status = 201, .body = body}}});
        EXPECT_EQ(User(server.url()).called(modelOf(providerAmong(path))), outcome)
            << path << ' ' << body.substr(0, 200);
    }
}

TEST(Wire, WhatIsLogged) {
    const std::string mistralPath = "/v1/chat/completions";
    AssetServer server(
        {{"/v1beta/models/m:generateContent",
          {.body = R"({"usageMetadata":{"promptTokenCount":12,"totalTokenCount":99999999999999999999999}})"}},
         {mistralPath,
          {.body =
               R"({"usage":{"prompt_tokens":1,"completion_tokens":2,"total_tokens":3},"choices":[{"message":{"content":"<think>é</think>ls"}}]})"}}});
    User user(server.url());
    user.called(modelOf(google));
    user.called(modelOf(mistral));
    const auto lines = split(user.log, "\n");
    ASSERT_EQ(lines.size(), 13u) << user.log;
    EXPECT_TRUE(user.log.starts_with(
        "Used:\n    12 prompt tokens\n    0 cached tokens\n    0 candidate tokens\n    0 total tokens\ncall: "))
        << user.log;
    EXPECT_TRUE(contains(user.log,
                         "\nUsed:\n    1 prompt tokens\n    2 completion tokens\n    3 total tokens\nRemoved 16/18 "
                         "characters of <think> content\ncall: "))
        << user.log;
    EXPECT_EQ(elapsedText(std::chrono::milliseconds(499)), "499ms");
    EXPECT_EQ(elapsedText(std::chrono::milliseconds(500)), "0.50s");
    EXPECT_EQ(elapsedText(std::chrono::milliseconds(61'239)), "61.24s");
    EXPECT_EQ(withoutReasoning("a <think>b</think>"), "a <think>b</think>");
    EXPECT_EQ(withoutReasoning("<think>a</think><think>b</think>"), "<think>b</think>");
    EXPECT_EQ(withoutReasoning("<think>a"), "<think>a");
}

TEST(Wire, FailuresAndTheirMessages) {
    const std::string
        sorry = "Sorry 😞 ",
        invalid =
            R"({"error":{"message":"Incorrect API key provided: x. See https://platform.openai.com/.","type":"t"}})";
    const auto raw = [](int status, const std::string& body) {
        return "AIProxy - the request resulted in a status code of " + std::to_string(status) +
               " with response body: " + body + ".";
    };
    const struct {
        int status;
        std::string body, onDirectRoad, onCustomRoad;  // the same where the latter is empty
    } rows[] = {
        {429, R"({"error":{"message":"Rate limited","type":1}})",
         "429: " + sorry + "Too many requests have been made in a short space of time 🫨 try again later", ""},
        {401, invalid, "401: " + sorry + "Your API key isn't valid 🤦♂️", ""},
        {429, R"({"error":{"message":"You exceeded your current quota, see openai.com"}})",
         "429: " + sorry + "💰 OpenAI quota exceeded, you may need to add funds to your OpenAI account.", ""},
        {400, R"({"error":{"message":"Incorrect API key provided","type":"bad"}})",
         "400: " + sorry + "An AI request error occurred: Incorrect API key provided (bad)", ""},
        // A server that tells the key that it was given.
        {403, R"({"error":{"message":"Not )" + std::string(ownKey) + R"("}})",
         "403: " + sorry + "An AI request error occurred: Not ***", ""},
        {500, "oh " + std::string(ownKey), "-1: " + raw(500, "oh ***"), "500: API error: oh ***"},
        {500, R"({"error":"oh"})", "-1: " + raw(500, R"({"error":"oh"})"), R"(500: API error: {"error":"oh"})"},
        {500, "\xFF", "-1: " + raw(500, ""), "500: API error: Unknown error"},
        {304, "", "-1: " + raw(304, ""), "304: API error: "},
        {502, R"(<p>{"error":{"message":"late"}}</p>)", "-1: " + raw(502, R"(<p>{"error":{"message":"late"}}</p>)"),
         "502: " + sorry + "An AI request error occurred: late"},
        {502, "}{", "-1: " + raw(502, "}{"), "502: API error: }{"},
        {0, "what?\r\n\r\n", "-1: Critical AIProxy error: Network response is not an http response",
         "-1: Invalid response"},
        {200, R"({"choices":[{"message":{"content":7}}]})",
         "-1: The answer of Mistral can't be read: \"content\" is no text", "-1: Failed to parse response"},
        {200, R"({"choices":[]})", "", "-1: Failed to parse response"},
        {201, R"({"choices":[{"message":{"content":"ls"}}]})", "ls",
         R"(201: API error: {"choices":[{"message":{"content":"ls"}}]})"},
        {200, R"({"choices":[{"message":{"content":"<think></think>ls"}}]})", "ls", "ls"},
    };
    for (const auto& [status, body, onDirectRoad, onCustomRoad] : rows) {
        SCOPED_TRACE(std::to_string(status) + " " + body);
        AssetServer server({{"/v1/chat/completions", {.status = status, .body = body}}});
        User user(server.url());
        EXPECT_EQ(user.called(modelOf(mistral)), onDirectRoad);
        EXPECT_EQ(user.called(user.custom(server.url())), onCustomRoad.empty() ? onDirectRoad : onCustomRoad);
        EXPECT_EQ(server.requestCount(), 2u);  // nothing is tried again
        EXPECT_FALSE(contains(user.log, ownKey)) << user.log;
    }
    AssetServer server({{"/v1/chat/completions", {.status = 401, .body = invalid}}});
    User user(server.url());
    EXPECT_EQ(
        user.called(user.custom(server.url(), false)),
        "401: " + sorry + "An AI request error occurred: the API key isn't set up correctly at our end 🤦♂️");
    EXPECT_TRUE(contains(user.log, "! AI request error: API error: {\"error\"")) << user.log;
}

TEST(Wire, RequestsThatGoNowhere) {
    AssetServer server({{"/v1/chat/completions", {.body = "begin", .announcedLength = 9, .hangs = true}}});
    User user(server.url());
    const std::string notValid = "' is not valid. Please double check your settings!";
    EXPECT_EQ(user.called(user.custom(" http://a b/ ")), "-1: URL 'http://a b" + notValid);
    EXPECT_EQ(user.called(user.custom("localhost:1")), "-1: URL 'localhost:1" + notValid);
    EXPECT_EQ(user.called(user.custom("")), "-1: URL '" + notValid);
    EXPECT_EQ(user.called(user.custom("http://192.0.2.1")),
              "-1: Plain http goes to this machine and private networks only, not to 192.0.2.1: please use https.");
    EXPECT_EQ(user.called(modelOf(AIModelProvider::custom)), "-1: Custom model not found");
    EXPECT_EQ(user.called(modelOf(inception)),
              "-1: Inception can't be reached with a key of your own. Choose another model, or add one on your own "
              "machine with `brindlet models add`.");
    user.environment["BRINDLET_GOOGLE_BASE_URL"] = "http://192.0.2.1";
    EXPECT_EQ(user.called(modelOf(google)),
              "-1: BRINDLET_GOOGLE_BASE_URL must be an https address, or a plain one of this machine, such as "
              "http://localhost:8080");

    std::stop_source stop;
    std::thread stopper([&] {
        server.request(0);
        stop.request_stop();
    });
    EXPECT_EQ(user.called(modelOf(mistral), {{AIRole::user, "hi"}}, stop.get_token()), "-1: Cancelled");
    stopper.join();

    user.secrets.secrets.clear();
    ProviderApiKeys keys(user.secrets, user.environment);
    const auto http = openHttpClient();
    ModelCaller caller({keys, user.customModels, *http, user.environment, {}});
    for (const auto provider : ProviderApiKeys::providers) {
        const std::string name(rawValue(provider));
        const std::string sentence = "No key for " + name + ". Add one in the settings or with `brindlet keys set " +
                                     name + "`, or choose a model on your own machine with `brindlet models add`.";
        EXPECT_EQ(caller.whyUnusable(modelOf(provider)), sentence);
        EXPECT_EQ(user.called(modelOf(provider)), "-1: " + sentence);
    }
    EXPECT_EQ(caller.whyUnusable(modelOf(AIModelProvider::custom)), std::nullopt);
    EXPECT_EQ(server.requestCount(), 1u);
}

TEST(Wire, TheManagedRoad) {
    ScratchFolder scratch;
    const TlsIdentity identity(scratch.path().text() + "/certificate.pem"), other(scratch.path().text() + "/other.pem");
    AssetServer server(
        {{"/1a2b3c4d/5e6f7a8b/v1/chat/completions", {.body = R"({"choices":[{"message":{"content":"ls"}}]})"}},
         {"/1a2b3c4d/5e6f7a8b/v1/messages", {.status = 401, .body = R"({"error":{"message":"no v2|ghi|jkl"}})"}}},
        identity.peerMaker());
    User user("https://unused.invalid", false);
    user.secrets.secrets[keyAccount(inception)] = ownKey;  // doesn't change the road
    const std::string service = "https" + server.url().substr(4) + "/1a2b3c4d/5e6f7a8b";
    int tokens = 0;
    user.managed = {.services = {{inception, "v2|abc|defgh", service}, {anthropic, "v2|ghi|jkl", service}},
                    .pinnedPublicKeys = {other.pin(), identity.pin()},
                    .client = {.clientId = "c",
                               .anonymousId = "anonymous",
                               .bundleIdentifier = "id",
                               .version = "1.2",
                               .systemVersion = "3.4.5",
                               .machineModel = "x"},
                    .deviceToken = [&] { return "token" + std::to_string(++tokens); },
                    .now = [] { return 1700000000LL; }};
    user.certificateFile = scratch.path().text() + "/certificate.pem";
    const std::string place = service.substr(8, service.find('/', 8) - 8);
    const std::string body =
        R"({"model":"mercury","messages":[{"role":"user","content":"hi"}],"stream":false,"temperature":0})";
    const auto size = std::to_string(body.size());
    EXPECT_EQ(user.called(modelOf(inception, "mercury")), "ls") << user.log;
    EXPECT_EQ(server.request(0), "POST /1a2b3c4d/5e6f7a8b/v1/chat/completions HTTP/1.1\r\nHost: " + place +
                                     "\r\nUser-Agent: Brindlet\r\nAccept: */*\r\naiproxy-partial-key: v2|abc|defgh\r\n"
                                     "aiproxy-client-id: anonymous\r\n"
                                     "aiproxy-metadata: v4|id|1.2|0.129.0|1700000000|macOS|3.4.5|x|" +
                                     size +
                                     "\r\n"
                                     "aiproxy-anonymous-id: anonymous\r\naiproxy-devicecheck: token1\r\n"
                                     "Content-Type: application/json\r\nContent-Length: " +
                                     size + "\r\n\r\n" + body);
    user.managed.client.anonymousId.reset();
    EXPECT_EQ(user.called(modelOf(anthropic)), "401: Sorry 😞 An AI request error occurred: no ***");
    EXPECT_TRUE(contains(server.request(1), "aiproxy-client-id: c\r\n") &&
                !contains(server.request(1), "anonymous-id"));
    EXPECT_TRUE(
        contains(server.request(1),
                 "aiproxy-devicecheck: token2\r\nContent-Type: application/json\r\nanthropic-version: 2023-06-01\r\n"));

    user.managed.pinnedPublicKeys = {other.pin()};
    EXPECT_EQ(user.called(modelOf(inception)),
              "-1: " + place + " can't be trusted: it shows another key than it should.");
    user.managed.pinnedPublicKeys = {identity.pin()};
    user.certificateFile = scratch.path().text() + "/other.pem";  // a right pin doesn't make up for it
    EXPECT_EQ(user.called(modelOf(inception)),
              "-1: " + place + " can't be trusted: its certificate doesn't prove who it is.");
    user.managed.deviceToken = [] { return std::nullopt; };
    EXPECT_TRUE(contains(user.called(modelOf(inception)), "-1: AIProxy - Apple's DeviceCheck is not available"));
    user.managed.services[0].serviceURL = "http" + service.substr(5);
    EXPECT_EQ(user.called(modelOf(inception)),
              "-1: Critical AIProxy error: Could not create urlComponents, please check the aiproxyEndpoint constant");
    user.managed.pinnedPublicKeys.clear();
    EXPECT_TRUE(contains(user.called(modelOf(anthropic)), "No key for Anthropic."));
    EXPECT_EQ(server.requestCount(), 2u);
}

}  // namespace wire_tests
}  // namespace brindlet
