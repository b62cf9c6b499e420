#include "ui/settings_panes.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstdlib>
#include <iterator>
#include <utility>

#include "ai/wire/wire_format.h"
#include "text/strings.h"

namespace brindlet {

namespace {

constexpr SettingsTab tabRows[] = {{"General", "gear"},
                                   {"Auto-run", "hare"},
                                   {"AI Models", "brain"},
                                   {"Extra tools", "hammer.circle"},
                                   {"About", "info.circle"}};

constexpr Link linkRows[] = {
    {"releaseNotes", "Release Notes", "https://brindlet.example/release-notes"},
    {"maker", "Fenwold", "https://fenwold.example"},
    {"features", "Features & Suggestions", "https://brindlet.example/features"},
    {"discord", "Discord", "https://brindlet.example/discord"},
    {"privacy", "Read more about how we access and use data", "https://brindlet.example/privacy"},
    {"homebrew", "Learn More", "https://brew.sh"},
};
constexpr std::size_t aboutLinkCount = 4;

constexpr CommandEffect effectsInRed[] = {
    CommandEffect::deleteOrOverwriteFiles,
    CommandEffect::runUnknownScriptsOrCommands,
    CommandEffect::haveSignificantSideEffects,
    CommandEffect::moveToTrash,
    CommandEffect::commandHasError,
};

constexpr std::string_view minorHelp[] = {"Minor side effects include:", "• Opening an app or file", "• Network access",
                                          "• Reading from clipboard", "• Long running commands"};
constexpr std::string_view significantHelp[] = {"Significant side effects include:", "• Modifying system settings",
                                                "• Force-quitting an app", "• Shutting down your Mac",
                                                "• Indefinite running commands"};

struct PackageSectionRow {
    PackageSource source;
    std::string_view title;
    std::string_view text;
};
constexpr PackageSectionRow packageSectionRows[] = {
    {PackageSource::fenwold, "Available direct download packages", ""},
    {PackageSource::homebrew, "Homebrew packages",
     "Homebrew lets you easily add powerful tools to your Mac. Brindlet works with it to unlock even more features "
     "such "
     "as manipulating PDFs with Ghostscript and more."},
};

std::vector<AIModel> customChoices(const ModelChoice& choice) {
    std::vector<AIModel> models;
    for (const CustomModel& model : choice.customModels)
        if (choice.mode != ModelPopupMode::userEnabledModels || model.enabled) models.push_back(model.aiModel());
    return models;
}

std::vector<AIModel> builtInChoices(const ModelChoice& choice, std::vector<AIModel> models) {
    return choice.mode == ModelPopupMode::userEnabledModels ? choice.list.enabledModels(models) : models;
}

}  // namespace

std::span<const SettingsTab> settingsTabs() {
    return tabRows;
}

std::optional<std::size_t> settingsTabNamed(std::string_view label) {
    const auto* row = std::ranges::find(tabRows, label, &SettingsTab::label);
    return row == std::end(tabRows) ? std::nullopt
                                    : std::optional(static_cast<std::size_t>(std::distance(tabRows, row)));
}

std::span<const Link> aboutLinks() {
    return std::span(linkRows).first(aboutLinkCount);
}

const Link& linkNamed(std::string_view name) {
    const auto* row = std::ranges::find(linkRows, name, &Link::name);
    if (row == std::end(linkRows)) std::abort();
    return *row;
}

std::vector<AutoRunSwitch> autoRunSwitches(const std::set<CommandEffect>& allowed) {
    const bool runsAnything = allowed.contains(CommandEffect::harmless);
    std::vector<AutoRunSwitch> switches;
    for (int at = 0; at < commandEffectCount; ++at) {
        const auto effect = static_cast<CommandEffect>(at);
        const bool isOn = runsAnything && allowed.contains(effect);
        switches.push_back({.effect = effect,
                            .title = rawValue(effect),
                            .isOn = isOn,
                            .isEnabled = runsAnything || effect == CommandEffect::harmless,
                            .isRed = isOn && std::ranges::count(effectsInRed, effect) > 0});
    }
    return switches;
}

std::span<const std::string_view> helpLines(CommandEffect effect) {
    if (effect == CommandEffect::haveMinorSideEffects) return minorHelp;
    if (effect == CommandEffect::haveSignificantSideEffects) return significantHelp;
    return {};
}

std::vector<ModelSection> modelSections(const ModelChoice& choice) {
    std::vector<ModelSection> sections = {
        {"Custom models", customChoices(choice)},
        {"Small models", builtInChoices(choice, AIModelList::allSmallModels())},
        {"Large models", builtInChoices(choice, AIModelList::allLargeModels())},
    };
    for (ModelSection& section : sections)
        if (choice.mode == ModelPopupMode::allAvailable && choice.isUsable)
            std::erase_if(section.models, [&](const AIModel& model) { return !choice.isUsable(model); });
    std::erase_if(sections, [](const ModelSection& section) { return section.models.empty(); });
    return sections;
}

bool offers(const std::vector<ModelSection>& sections, const AIModel& model) {
    return std::ranges::any_of(sections, [&](const ModelSection& section) {
        return std::ranges::count(section.models, model.id, &AIModel::id) > 0;
    });
}

std::string titleOf(const CustomModel& model) {
    const std::string title = model.aiModel().friendlyName;
    return trimmed(title).empty() ? "New custom model" : title;
}

std::string problemOf(const CustomModel& model) {
    if (trimmedBlanks(model.modelName).empty()) return "Give the model the name by which its server knows it.";
    if (trimmedBlanks(model.baseURL).empty()) return "Say at which URL its server is.";
    const Result<HttpRequest> request = customRequest(model, std::nullopt, {});
    return request ? "" : request.failure().description;
}

std::string keyPlaceholder(AIModelProvider provider, KeyOrigin origin) {
    if (origin == KeyOrigin::environment)
        return fmt::format("From the variable {}", ProviderApiKeys::environmentVariable(provider));
    return "API key";
}

std::vector<PackageSection> packageSections(const PackageManager& packages) {
    const auto active = packages.activeInstallations();
    std::vector<PackageSection> sections;
    for (const PackageSectionRow& row : packageSectionRows) {
        PackageSection section{.title = row.title, .text = row.text, .rows = {}};
        for (const PackageInfo& package : packages.availablePackages()) {
            if (package.source != row.source) continue;
            const auto running = active.find(std::string(package.name));
            section.rows.push_back({.package = &package,
                                    .isInstalled = packages.isInstalled(package.name),
                                    .active = running == active.end() ? std::nullopt : std::optional(running->second)});
        }
        sections.push_back(std::move(section));
    }
    return sections;
}

std::string percentText(double progress) {
    const double inRange = progress > 0 ? std::min(progress, 1.0) : 0;
    return fmt::format("{}%", static_cast<int>(inRange * 100));
}

}  // namespace brindlet
