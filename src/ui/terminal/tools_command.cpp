#include <fmt/format.h>

#include <algorithm>
#include <optional>

#include "exec/packages.h"
#include "platform/log.h"
#include "text/characters.h"
#include "text/strings.h"
#include "ui/json.h"
#include "ui/terminal/arguments.h"
#include "ui/terminal/exit_code.h"
#include "ui/terminal/installation_display.h"
#include "ui/terminal/interruption.h"
#include "ui/terminal/shown_text.h"
#include "ui/terminal/subcommand.h"

namespace brindlet {

namespace {

std::string_view sourceName(PackageSource source) {
    constexpr std::string_view names[] = {"homebrew", "fenwold", "bundled"};
    return names[static_cast<std::size_t>(source)];
}

// What stands in the list: a tool may be there without having been installed from here.
struct ToolState {
    const PackageInfo& package;
    bool isInstalled = false;
    std::vector<std::optional<FilePath>> places{};  // of its binaries, in order

    bool isAvailable() const {
        return std::ranges::all_of(places, [](const auto& place) { return place.has_value(); });
    }
};

std::vector<ToolState> toolStates(CommandLineContext& context) {
    PackageManager& packages = context.packages();
    packages.refresh();
    std::vector<ToolState> states;
    for (const PackageInfo& package : packages.availablePackages()) {
        ToolState state{.package = package, .isInstalled = packages.isInstalled(package.name)};
        for (const std::string_view binary : package.binaries)
            state.places.push_back(context.searchPath().find(binary));
        states.push_back(std::move(state));
    }
    return states;
}

Json toJson(const ToolState& state) {
    const PackageInfo& package = state.package;
    Json binaries = Json::object();
    for (std::size_t at = 0; at < package.binaries.size(); ++at)
        binaries[std::string(package.binaries[at])] = state.places[at] ? Json(state.places[at]->text()) : Json();
    return recordJson({{"name", package.name},
                       {"source", sourceName(package.source)},
                       {"homebrewPackageName", optionalJson(package.homebrewPackageName)},
                       {"binaries", std::move(binaries)},
                       {"description", package.description},
                       {"requiresInstallForPrediction", package.requiresInstallForPrediction},
                       {"licenseName", package.licenseName},
                       {"licenseURL", package.licenseURL},
                       {"sourceURL", package.sourceURL},
                       {"installed", state.isInstalled},
                       {"available", state.isAvailable()}});
}

std::string stateText(const ToolState& state) {
    if (state.isInstalled)
        return state.package.source == PackageSource::homebrew ? "installed with Homebrew" : "installed by Brindlet";
    if (state.isAvailable()) return "found in " + shownText(state.places.front()->parent().text());
    return "not installed";
}

// One of the words behind `tools`.
struct ToolsAction {
    CLI::App& app;
    const CLI::Option* name = nullptr;

    ToolsAction(CLI::App& parent, const std::string& word, const std::string& summary, const std::string& example)
        : app(*parent.add_subcommand(word, summary)) {
        app.footer("Example:\n  brindlet tools " + example);
    }
};

class ToolsCommand final : public Subcommand {
  public:
    explicit ToolsCommand(CLI::App& app)
        : list_(app, "list", "Shows the tools, and which of them are there", "list"),
          install_(app, "install", "Installs a tool", "install FFmpeg"),
          uninstall_(app, "uninstall", "Removes a tool that was installed", "uninstall FFmpeg") {
        app.require_subcommand(1);
        list_.app.add_flag("--json", wantsJson_, "Prints one JSON object");
        for (ToolsAction* action : {&install_, &uninstall_})
            action->name = addWord(action->app, "NAME", "The tool's name, as the list shows it");
    }

    int run(CommandLineContext& context, StandardOutput& output) override {
        if (list_.app.parsed()) return list(context, output);
        context.startLogging();
        return install_.app.parsed() ? install(context, output) : uninstall(context, output);
    }

  private:
    int list(CommandLineContext& context, StandardOutput& output) const {
        const std::vector<ToolState> states = toolStates(context);
        if (wantsJson_) {
            Json tools = Json::array();
            for (const ToolState& state : states) tools.push_back(toJson(state));
            output.write(jsonText(recordJson({{"homebrew", optionalJson(context.packages().brewPath())},
                                              {"tools", std::move(tools)}})) +
                         "\n");
            return exitDone;
        }
        std::size_t width = 0;
        for (const ToolState& state : states) width = std::max(width, stateText(state).size());
        for (const ToolState& state : states)
            output.write(fmt::format("{:<12} {:<{}}  {}\n", state.package.name, stateText(state), width,
                                     state.package.description));
        return exitDone;
    }

    int install(CommandLineContext& context, StandardOutput& output) const {
        PackageManager& packages = context.packages();
        const std::string name = packageName(packages, *install_.name);
        const Interruption interruption;
        packages.refresh(interruption.token());
        const bool wasInstalled = packages.isInstalled(name);
        const auto failure =
            shownInstallation(packages, [&] { return packages.install(name, nullptr, interruption.token()); });
        return tell(failure, interruption, output,
                    wasInstalled ? name + " was installed already" : name + " is installed");
    }

    int uninstall(CommandLineContext& context, StandardOutput& output) const {
        PackageManager& packages = context.packages();
        const std::string name = packageName(packages, *uninstall_.name);
        const Interruption interruption;
        const auto failure =
            shownInstallation(packages, [&] { return packages.uninstall(name, interruption.token()); });
        return tell(failure, interruption, output, name + " is removed");
    }

    // A name of the table in any case; else as it was typed.
    static std::string packageName(const PackageManager& packages, const CLI::Option& option) {
        const std::string typed = requiredWord(option);
        for (const PackageInfo& package : packages.availablePackages())
            if (lowercased(package.name) == lowercased(typed)) return std::string(package.name);
        return typed;
    }

    static int tell(const std::optional<Failure>& failure, const Interruption& interruption, StandardOutput& output,
                    const std::string& success) {
        if (!failure) {
            output.write(success + "\n");
            return exitDone;
        }
        logError(failure->description);
        reportProblem(failure->description);
        return interruption.requested() ? exitCancelled : exitFailed;
    }

    ToolsAction list_, install_, uninstall_;
    bool wantsJson_ = false;
};

}  // namespace

std::unique_ptr<Subcommand> makeToolsCommand(CLI::App& app) {
    return std::make_unique<ToolsCommand>(app);
}

}  // namespace brindlet
