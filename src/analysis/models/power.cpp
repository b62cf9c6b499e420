#include <algorithm>

#include <fmt/format.h>

#include "analysis/models/model_support.h"
#include "analysis/models/system_commands.h"

namespace brindlet {

namespace {

// --- pmset ---

constexpr std::string_view endlessReports[] = {"pslog",      "rawlog",  "thermlog",     "assertionslog",
                                               "sysloadlog", "uuidlog", "powerstatelog"};
constexpr std::string_view longReports[] = {"everything", "log", "history", "historydetailed"};
constexpr std::string_view reports[] = {"live", "custom",     "cap",        "sched",      "ups", "ps",
                                        "batt", "therm",      "assertions", "sysload",    "ac",  "adapter",
                                        "uuid", "powerstate", "stats",      "systemstate"};

struct ActionRow {
    std::string_view word;
    SideEffectType effect;
    std::string_view description;
};
constexpr auto systemSetting = PlainSideEffect::modifiesSystemSetting;
const ActionRow actionRows[] = {
    {"sleepnow", PowerAction::sleep, "Puts computer to sleep"},
    {"displaysleepnow", PowerAction::sleep, "Turns display off (display sleep)"},
    {"noidle", PowerAction::preventSleep, "Prevents idle sleep"},
    {"restoredefaults", systemSetting, "Restores default power settings"},
    {"resetdisplayambientparams", systemSetting, "Resets display ambient light parameters"},
};
constexpr std::string_view silentActions[] = {"touch", "boot"};
constexpr std::string_view schedulingActions[] = {"schedule", "repeat", "relative"};
constexpr std::string_view sourceFlags[] = {"-a", "-b", "-c", "-u"};

std::optional<SideEffect> effectOfReport(const Words& words) {
    if (words.size() < 2 || words[1].starts_with('-')) return std::nullopt;
    const std::string& name = words[1];
    if (isAmong(name, endlessReports))
        return SideEffect{PlainSideEffect::indefinite, "Won't work in Brindlet: it never finishes"};
    if (isAmong(name, longReports)) return SideEffect{PlainSideEffect::longRunning, std::nullopt};
    if (isAmong(name, reports)) return std::nullopt;
    return SideEffect{PlainSideEffect::partialSupport,
                      fmt::format("'pmset -g {}' partially supported, output unpredictable", name)};
}

void addEffectsOfAction(BasherAnalysis& analysis, const Words& words) {
    const std::string& word = words.front();
    const auto row =
        std::find_if(std::begin(actionRows), std::end(actionRows), [&](const auto& each) { return each.word == word; });
    if (row != std::end(actionRows)) return analysis.addSideEffect({row->effect, std::string(row->description)});
    if (isAmong(word, silentActions)) return;
    if (isAmong(word, schedulingActions)) {
        analysis.addSideEffect({systemSetting, "Schedules power event"});
        analysis.addSideEffect({PlainSideEffect::partialSupport,
                                fmt::format("'pmset {}' partially supported, full effects unpredictable", word)});
    } else if (words.size() > 1 || isAmong(word, sourceFlags)) {
        analysis.addSideEffect({systemSetting, "Changes power management settings"});
    } else {
        analysis.addSideEffect(
            {PlainSideEffect::partialSupport, "'pmset' partially supported, full effects unpredictable"});
    }
}

// --- caffeinate ---

constexpr std::string_view valueLetters = "tw";

// How many words in front are options; what stands behind them is a command with options of its own.
std::size_t countOptions(const Words& words) {
    std::size_t at = 0;
    while (at < words.size() && words[at].starts_with('-') && words[at].size() > 1 && words[at] != "--") {
        const bool takesValue =
            isFlagCluster(words[at]) && valueLetters.find(words[at].back()) != std::string_view::npos;
        ++at;
        if (takesValue && at < words.size() && !words[at].starts_with('-')) ++at;
    }
    if (at < words.size() && words[at] == "--") ++at;
    return at;
}

}  // namespace

CommandResult managePower(BasherAnalysis& analysis, const ModelInput& input) {
    if (input.args.empty()) return CommandResult::success();
    if (input.args.front() == "-g") {
        if (auto effect = effectOfReport(input.args)) analysis.addSideEffect(std::move(*effect));
        return {0, SimString::unknown()};
    }
    addEffectsOfAction(analysis, input.args);
    return CommandResult::success();
}

CommandResult keepAwake(BasherAnalysis& analysis, const ModelInput& input) {
    Words words = input.args;
    words.erase(words.begin(), words.begin() + static_cast<std::ptrdiff_t>(countOptions(words)));
    if (words.empty()) {
        analysis.addSideEffect({PowerAction::preventSleep, "Preventing system sleep"});
        return CommandResult::success();
    }
    const std::string name = words.front();
    words.erase(words.begin());
    analysis.addSideEffect(
        {PowerAction::preventSleep, fmt::format("Preventing system sleep while running '{}'", name)});
    return analysis.runCarriedCommand(name, std::move(words), input.standardInput, input.command);
}

}  // namespace brindlet
