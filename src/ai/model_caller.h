// Asks a language model: one request, one answer.
//
//     ModelCaller caller({keys, customModels, http, environment, managed});
//     auto text = caller.callModel({{AIRole::user, "hi"}}, model, stop);
//     if (!text) show(text.failure().description);
#pragma once

#include <stop_token>
#include <string>
#include <string_view>
#include <vector>

#include "ai/ai_command.h"
#include "ai/ai_model.h"
#include "ai/custom_model.h"
#include "ai/provider_api_keys.h"
#include "ai/wire/managed_road.h"
#include "platform/environment.h"
#include "platform/http_client.h"
#include "platform/result.h"

namespace brindlet {

// What stands behind the generation of commands and the summaries; tests put a stand-in here.
struct ModelCalling {
    virtual ~ModelCalling() = default;
    // Blocks until the whole answer is there; reasoning in front of it is taken away. A failure carries a message for
    // the user and a code: the status that a provider answered with, else -1. Nothing is tried twice.
    virtual Result<std::string> callModel(const std::vector<AIMessage>& messages, const AIModel& model,
                                          const std::stop_token& stop) = 0;
    // Where a request can't go anywhere, the sentence that says what to do about it; none where it can. Looks at keys
    // and settings only.
    virtual std::optional<std::string> whyUnusable(const AIModel& model) = 0;

    // The same with a line in the log that says how long it took.
    Result<std::string> timedCall(std::string_view label, const std::vector<AIMessage>& messages, const AIModel& model,
                                  const std::stop_token& stop);
};

struct ModelCallerSetup {
    ProviderApiKeys& keys;
    CustomModelList& customModels;
    HttpClient& http;
    const Environment& environment;  // BRINDLET_OPENAI_BASE_URL and its like
    ManagedRoad managed;             // none in the shipped configuration
};

class ModelCaller final : public ModelCalling {
  public:
    explicit ModelCaller(ModelCallerSetup setup) : setup_(std::move(setup)) {}
    Result<std::string> callModel(const std::vector<AIMessage>& messages, const AIModel& model,
                                  const std::stop_token& stop) override;
    std::optional<std::string> whyUnusable(const AIModel& model) override;

  private:
    ModelCallerSetup setup_;
};

// The text without reasoning in front of it: "<think>hmm</think>\nls" is "ls". What went is logged.
std::string withoutReasoning(std::string_view text);

// "280ms" or "1.24s".
std::string elapsedText(std::chrono::milliseconds elapsed);

}  // namespace brindlet
