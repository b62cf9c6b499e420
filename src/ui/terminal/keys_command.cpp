#include <fmt/format.h>

#include <algorithm>
#include <optional>
#include <string>
#include <vector>

#include "text/characters.h"
#include "text/strings.h"
#include "ui/json.h"
#include "ui/terminal/arguments.h"
#include "ui/terminal/exit_code.h"
#include "ui/terminal/secret_input.h"
#include "ui/terminal/shown_text.h"
#include "ui/terminal/subcommand.h"

namespace brindlet {

namespace {

// Requests to it go through a service that is a matter of configuration, and the key of a user's own stays behind.
constexpr AIModelProvider providerWithoutUseOfKey = AIModelProvider::inception;
constexpr std::string_view unusedKeyNote = "kept, but no request is sent with it";

std::string_view nameOf(KeyOrigin origin) {
    constexpr std::string_view names[] = {"none", "stored", "environment"};
    return names[static_cast<std::size_t>(origin)];
}

AIModelProvider providerNamed(const std::string& typed) {
    std::vector<std::string> known;
    for (const AIModelProvider provider : ProviderApiKeys::providers) {
        if (lowercased(rawValue(provider)) == lowercased(typed)) return provider;
        known.emplace_back(rawValue(provider));
    }
    throw UsageError{fmt::format("there is no provider '{}'; the providers are {}", typed, joined(known, ", "))};
}

struct KeyState {
    AIModelProvider provider;
    KeyOrigin origin;
    std::optional<std::string> place{};  // of a stored one
};

KeyState stateOf(CommandLineContext& context, AIModelProvider provider) {
    KeyState state{provider, context.apiKeys().origin(provider)};
    if (state.origin == KeyOrigin::stored) state.place = context.secrets().placeOf(keyAccount(provider));
    return state;
}

bool isUsed(const KeyState& state) {
    return state.origin != KeyOrigin::none && state.provider != providerWithoutUseOfKey;
}

Json toJson(const KeyState& state) {
    const std::string_view variable = ProviderApiKeys::environmentVariable(state.provider);
    return recordJson({{"provider", rawValue(state.provider)},
                       {"origin", nameOf(state.origin)},
                       {"place", optionalJson(state.place)},
                       {"variable", variable.empty() ? Json() : Json(variable)},
                       {"used", isUsed(state)}});
}

std::string originText(const KeyState& state) {
    switch (state.origin) {
        case KeyOrigin::none:
            return "none";
        case KeyOrigin::environment:
            return fmt::format("from the variable {}", ProviderApiKeys::environmentVariable(state.provider));
        case KeyOrigin::stored:
            return fmt::format("stored in {}{}{}", shownText(*state.place), isUsed(state) ? "" : ", ",
                               isUsed(state) ? "" : unusedKeyNote);
    }
    return "";
}

class KeysCommand final : public Subcommand {
  public:
    explicit KeysCommand(CLI::App& app)
        : list_(addAction(app, "list", "Shows which providers have a key and where it comes from", "list")),
          set_(addAction(app, "set", "Stores a key, read from standard input; a blank one removes it",
                         "set OpenAI < key.txt")),
          remove_(addAction(app, "remove", "Removes a stored key", "remove OpenAI")),
          providerToSet_(*addProvider(set_)),
          providerToRemove_(*addProvider(remove_)) {
        app.require_subcommand(1);
        list_.add_flag("--json", wantsJson_, "Prints one JSON object");
        set_.allow_extras();  // to be refused without being shown: one may be a key
    }

    int run(CommandLineContext& context, StandardOutput& output) override {
        if (list_.parsed()) return list(context, output);
        if (remove_.parsed()) return store(context, providerNamed(requiredWord(providerToRemove_)), "", output);
        if (set_.remaining_size() > 0)
            throw UsageError{"a key is never an argument, where other programs see it: it is read from standard input"};
        return set(context, providerNamed(requiredWord(providerToSet_)), output);
    }

  private:
    static const CLI::Option* addProvider(CLI::App& action) {
        return addWord(action, "PROVIDER", "OpenAI, Anthropic, Google, Mistral or Inception");
    }

    int list(CommandLineContext& context, StandardOutput& output) const {
        std::vector<KeyState> states;
        for (const AIModelProvider provider : ProviderApiKeys::providers) states.push_back(stateOf(context, provider));
        if (wantsJson_) {
            output.write(jsonText(recordJson({{"keys", jsonList(states)}})) + "\n");
            return exitDone;
        }
        for (const KeyState& state : states)
            output.write(fmt::format("{:<10} {}\n", rawValue(state.provider), originText(state)));
        return exitDone;
    }

    static int set(CommandLineContext& context, AIModelProvider provider, StandardOutput& output) {
        std::optional<std::string> key;
        {
            const Interruption interruption;
            key = readSecret(fmt::format("Key for {} (not shown; an empty one removes it): ", rawValue(provider)),
                             interruption);
        }
        if (!key) return exitCancelled;
        const int exitCode = store(context, provider, *key, output);
        wipe(*key);
        return exitCode;
    }

    static int store(CommandLineContext& context, AIModelProvider provider, std::string_view key,
                     StandardOutput& output) {
        if (const auto failure = context.apiKeys().setKey(provider, key)) return exitCodeFor(failure);
        const KeyState state = stateOf(context, provider);
        output.write(key.empty() ? fmt::format("The key for {} is removed\n", rawValue(provider))
                                 : fmt::format("The key for {}: {}\n", rawValue(provider), originText(state)));
        if (key.empty() && state.origin == KeyOrigin::environment)
            output.write(fmt::format("The one {} is used now\n", originText(state)));
        return exitDone;
    }

    CLI::App& list_;
    CLI::App& set_;
    CLI::App& remove_;
    const CLI::Option& providerToSet_;
    const CLI::Option& providerToRemove_;
    bool wantsJson_ = false;
};

}  // namespace

std::unique_ptr<Subcommand> makeKeysCommand(CLI::App& app) {
    return std::make_unique<KeysCommand>(app);
}

}  // namespace brindlet
