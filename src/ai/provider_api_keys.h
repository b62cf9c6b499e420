// The user's own keys for the public providers.
//
//     ProviderApiKeys keys(secrets, environment);
//     if (!keys.key(AIModelProvider::openAI).empty()) ...
#pragma once

#include <array>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "ai/ai_model.h"
#include "platform/environment.h"
#include "platform/result.h"
#include "platform/secret_store.h"

namespace brindlet {

enum class KeyOrigin { none, stored, environment };

// Any thread may call it.
class ProviderApiKeys {
  public:
    // The providers that take a key, in order; all but `custom`.
    static constexpr std::array<AIModelProvider, 5> providers = {AIModelProvider::openAI, AIModelProvider::anthropic,
                                                                 AIModelProvider::google, AIModelProvider::mistral,
                                                                 AIModelProvider::inception};

    // Reads each stored key when it is first asked for. Where none is stored, a variable of the environment stands in
    // for it: OPENAI_API_KEY, ANTHROPIC_API_KEY, GEMINI_API_KEY, MISTRAL_API_KEY. Both outlive it.
    ProviderApiKeys(SecretStore& secrets, const Environment& environment);
    ~ProviderApiKeys();  // wipes what it holds

    // Trimmed; "" where there is none, and for `custom`.
    std::string key(AIModelProvider provider);
    KeyOrigin origin(AIModelProvider provider);
    // Empty where no variable serves the provider.
    static std::string_view environmentVariable(AIModelProvider provider);
    // Those with a key, in order.
    std::vector<AIModelProvider> configuredProviders();
    // Forgets what was read, as another program may have changed it.
    void reload();
    // Stores the trimmed text; one that trims to nothing removes the item.
    std::optional<Failure> setKey(AIModelProvider provider, std::string_view value);

  private:
    struct Held {
        std::string text;
        KeyOrigin origin = KeyOrigin::none;
    };
    Held held(AIModelProvider provider);

    SecretStore& secrets_;
    const Environment& environment_;
    std::mutex guard_;
    std::array<std::optional<Held>, providers.size()> held_;
};

// "Brindlet OpenAI API Key": the name under which a provider's key is stored.
std::string keyAccount(AIModelProvider provider);

}  // namespace brindlet
