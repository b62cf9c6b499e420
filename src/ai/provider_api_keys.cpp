#include "ai/provider_api_keys.h"

#include <fmt/format.h>

#include "text/enum_rows.h"
#include "text/strings.h"

namespace brindlet {

namespace {

struct KeyVariableRow {
    AIModelProvider key;
    std::string_view variable;
};
constexpr KeyVariableRow keyVariableRows[] = {
    {AIModelProvider::openAI, "OPENAI_API_KEY"},
    {AIModelProvider::anthropic, "ANTHROPIC_API_KEY"},
    {AIModelProvider::google, "GEMINI_API_KEY"},
    {AIModelProvider::mistral, "MISTRAL_API_KEY"},
    {AIModelProvider::inception, ""},
    {AIModelProvider::custom, ""},
};
static_assert(rowsCover(keyVariableRows, AIModelProvider::custom));

std::string keyInEnvironment(const Environment& environment, AIModelProvider provider) {
    const auto found = environment.find(ProviderApiKeys::environmentVariable(provider));
    return found == environment.end() ? "" : std::string(trimmed(found->second));
}

}  // namespace

ProviderApiKeys::ProviderApiKeys(SecretStore& secrets, const Environment& environment)
    : secrets_(secrets), environment_(environment) {}

ProviderApiKeys::~ProviderApiKeys() {
    for (auto& held : held_)
        if (held) wipe(held->text);
}

ProviderApiKeys::Held ProviderApiKeys::held(AIModelProvider provider) {
    const auto index = static_cast<std::size_t>(provider);
    if (index >= held_.size()) return {};
    const std::lock_guard lock(guard_);
    std::optional<Held>& held = held_[index];
    if (held) return *held;
    held.emplace(Held{});
    if (auto stored = secrets_.read(keyAccount(provider))) {
        held->text = trimmed(*stored);
        held->origin = KeyOrigin::stored;
        wipe(*stored);
    }
    if (held->text.empty()) {
        held->text = keyInEnvironment(environment_, provider);
        held->origin = held->text.empty() ? KeyOrigin::none : KeyOrigin::environment;
    }
    return *held;
}

std::string ProviderApiKeys::key(AIModelProvider provider) {
    return held(provider).text;
}

KeyOrigin ProviderApiKeys::origin(AIModelProvider provider) {
    return held(provider).origin;
}

std::string_view ProviderApiKeys::environmentVariable(AIModelProvider provider) {
    return rowOf(keyVariableRows, provider).variable;
}

std::vector<AIModelProvider> ProviderApiKeys::configuredProviders() {
    std::vector<AIModelProvider> configured;
    for (const AIModelProvider provider : providers)
        if (!key(provider).empty()) configured.push_back(provider);
    return configured;
}

void ProviderApiKeys::reload() {
    const std::lock_guard lock(guard_);
    for (auto& held : held_) {
        if (held) wipe(held->text);
        held.reset();
    }
}

std::optional<Failure> ProviderApiKeys::setKey(AIModelProvider provider, std::string_view value) {
    const auto index = static_cast<std::size_t>(provider);
    if (index >= held_.size()) return Failure{"A custom model's key is stored with the model"};
    // `value` may be the key that is held. What holds from here on, the next question finds out.
    const std::string_view text = trimmed(value);
    const std::lock_guard lock(guard_);
    auto failure = text.empty() ? secrets_.remove(keyAccount(provider)) : secrets_.write(keyAccount(provider), text);
    if (held_[index]) wipe(held_[index]->text);
    held_[index].reset();
    return failure;
}

std::string keyAccount(AIModelProvider provider) {
    return fmt::format("Brindlet {} API Key", rawValue(provider));
}

}  // namespace brindlet
