#include <fmt/format.h>

#include <algorithm>
#include <iterator>
#include <optional>

#include "analysis/risk.h"
#include "text/characters.h"
#include "text/strings.h"
#include "ui/json.h"
#include "ui/terminal/arguments.h"
#include "ui/terminal/exit_code.h"
#include "ui/terminal/shown_text.h"
#include "ui/terminal/subcommand.h"

namespace brindlet {

namespace {

enum class ValueKind { text, integer, boolean };

struct KeyRow {
    std::string_view key;
    ValueKind kind;
};

// What is kept. A list is kept as the JSON text of an array.
constexpr KeyRow keyRows[] = {
    {"analysisConfirmationToggles", ValueKind::text},
    {"AppleEventsPermissionState", ValueKind::text},
    {"autoRunRiskLevel", ValueKind::integer},
    {"explicitlyDisabledAIModels", ValueKind::text},
    {"explicitlyEnabledAIModels", ValueKind::text},
    {"finalSummarizationModelName", ValueKind::text},
    {"HasAttemptedToAutomaticallyEnableLaunchAtLogin", ValueKind::boolean},
    {"hasShownMenuBarTutorialState", ValueKind::text},
    {"promptHistory", ValueKind::text},
    {"selectedModelName", ValueKind::text},
    {"shownOnboarding", ValueKind::boolean},
    {"translucentPromptWindow", ValueKind::boolean},
    {"wantsToBeActive", ValueKind::boolean},
};

struct SwitchWord {
    std::string_view word;
    bool isOn;
};
constexpr SwitchWord switchWords[] = {{"true", true}, {"false", false}, {"on", true}, {"off", false},
                                      {"yes", true},  {"no", false},    {"1", true},  {"0", false}};

std::optional<bool> switchValue(std::string_view word) {
    const auto* row = std::ranges::find(switchWords, lowercased(word), &SwitchWord::word);
    return row == std::end(switchWords) ? std::nullopt : std::optional(row->isOn);
}

const KeyRow& rowOfKey(std::string_view key) {
    const auto* row = std::ranges::find(keyRows, key, &KeyRow::key);
    if (row != std::end(keyRows)) return *row;
    std::vector<std::string> known;
    for (const KeyRow& each : keyRows) known.emplace_back(each.key);
    throw UsageError{fmt::format("there is no setting '{}'; the settings are {}", key, joined(known, ", "))};
}

Json storedValue(const SettingsStore& settings, const KeyRow& row) {
    const auto orNull = [](const auto& value) { return value ? Json(*value) : Json(); };
    switch (row.kind) {
        case ValueKind::text:
            return orNull(settings.text(row.key));
        case ValueKind::integer:
            return orNull(settings.integer(row.key));
        case ValueKind::boolean:
            return orNull(settings.boolean(row.key));
    }
    return {};
}

std::string plainText(const Json& value) {
    return value.is_string() ? value.get<std::string>() : jsonText(value);
}

std::optional<Failure> store(SettingsStore& settings, const KeyRow& row, const std::string& value) {
    switch (row.kind) {
        case ValueKind::text:
            return settings.setText(row.key, value);
        case ValueKind::integer:
            if (const auto number = parsedInteger(value)) return settings.setInteger(row.key, *number);
            throw UsageError{fmt::format("'{}' is no whole number, which {} wants", value, row.key)};
        case ValueKind::boolean:
            if (const auto isOn = switchValue(value)) return settings.setBoolean(row.key, *isOn);
            throw UsageError{fmt::format("'{}' is neither true nor false, and {} wants one of them", value, row.key)};
    }
    return std::nullopt;
}

CommandEffect effectOfTitle(const std::string& title) {
    std::vector<std::string> titles;
    for (int at = 0; at < commandEffectCount; ++at) {
        const auto effect = static_cast<CommandEffect>(at);
        if (lowercased(rawValue(effect)) == lowercased(title)) return effect;
        titles.emplace_back(rawValue(effect));
    }
    throw UsageError{fmt::format("there is no effect '{}'; the effects are {}", title, joined(titles, ", "))};
}

// One of the words behind `settings`.
struct SettingsAction {
    CLI::App& app;
    const CLI::Option* first = nullptr;
    const CLI::Option* second = nullptr;
};

class SettingsCommand final : public Subcommand {
  public:
    explicit SettingsCommand(CLI::App& app)
        : list_{addAction(app, "list", "Shows all settings", "list")},
          get_{addAction(app, "get", "Prints one setting; nothing where it is unset", "get autoRunRiskLevel")},
          set_{addAction(app, "set", "Changes one setting", "set translucentPromptWindow false")},
          unset_{addAction(app, "unset", "Takes a setting back to what it was at first", "unset selectedModelName")},
          allow_{addAction(app, "allow", "Says what may run without asking", "allow 'Rename files' on")} {
        app.require_subcommand(1);
        list_.app.add_flag("--json", wantsJson_, "Prints one JSON object");
        for (SettingsAction* action : {&get_, &set_, &unset_})
            action->first = addWord(action->app, "KEY", "The setting's name");
        set_.second = addWord(set_.app, "VALUE", "What it becomes");
        allow_.first = addWord(allow_.app, "EFFECT", "What a command would do, such as 'Rename files'");
        allow_.second = addWord(allow_.app, "SWITCH", "on or off");
    }

    int run(CommandLineContext& context, StandardOutput& output) override {
        SettingsStore& settings = context.settings();
        if (list_.app.parsed()) return list(settings, output);
        if (allow_.app.parsed()) return allow(settings, output);
        if (get_.app.parsed()) {
            const Json value = storedValue(settings, rowOfKey(requiredWord(*get_.first)));
            if (!value.is_null()) output.write(plainText(value) + "\n");
            return exitDone;
        }
        if (unset_.app.parsed()) return exitCodeFor(settings.unset(rowOfKey(requiredWord(*unset_.first)).key));
        const KeyRow& row = rowOfKey(requiredWord(*set_.first));
        return exitCodeFor(store(settings, row, requiredWord(*set_.second)));
    }

  private:
    int list(const SettingsStore& settings, StandardOutput& output) const {
        Json all = Json::object();
        for (const KeyRow& row : keyRows) all[std::string(row.key)] = storedValue(settings, row);
        if (wantsJson_) {
            output.write(jsonText(all) + "\n");
            return exitDone;
        }
        for (const auto& [key, value] : all.items())
            output.write(fmt::format("{}: {}\n", key, value.is_null() ? "not set" : shownText(plainText(value))));
        return exitDone;
    }

    int allow(SettingsStore& settings, StandardOutput& output) const {
        const CommandEffect effect = effectOfTitle(requiredWord(*allow_.first));
        const std::string word = requiredWord(*allow_.second);
        const auto isOn = switchValue(word);
        if (!isOn) throw UsageError{fmt::format("'{}' is neither on nor off", word)};
        AnalysisConfirmationToggleList(settings).set(effect, *isOn);
        // Saving tells nothing, so look whether it took.
        const std::set<CommandEffect> saved = AnalysisConfirmationToggleList(settings).toggles();
        if (saved.contains(effect) != *isOn) {
            reportProblem("the settings could not be saved in " + configFolder().text());
            return exitFailed;
        }
        output.write(fmt::format("{}: {}\n", rawValue(effect), *isOn ? "may run without asking" : "asks first"));
        if (*isOn && !saved.contains(CommandEffect::harmless))
            output.write("As long as 'Harmless commands' is off, every command asks first.\n");
        return exitDone;
    }

    SettingsAction list_, get_, set_, unset_, allow_;
    bool wantsJson_ = false;
};

}  // namespace

std::unique_ptr<Subcommand> makeSettingsCommand(CLI::App& app) {
    return std::make_unique<SettingsCommand>(app);
}

}  // namespace brindlet
