#include <fmt/format.h>

#include <algorithm>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "ai/wire/wire_format.h"
#include "text/characters.h"
#include "text/strings.h"
#include "ui/json.h"
#include "ui/terminal/arguments.h"
#include "ui/terminal/exit_code.h"
#include "ui/terminal/model_services.h"
#include "ui/terminal/question.h"
#include "ui/terminal/secret_input.h"
#include "ui/terminal/shown_text.h"
#include "ui/terminal/subcommand.h"

namespace brindlet {

namespace {

struct ModelState {
    AIModel model;
    bool isEnabled = false;  // offered in the menu
    bool isUsable = false;   // a request could go somewhere
};

struct ModelOverview {
    AIModel selected;
    AIModel summarization;
    std::vector<ModelState> models;  // the user's own first
};

ModelOverview modelOverview(CommandLineContext& context) {
    ModelServices services(context);
    const auto isUsable = [&](const AIModel& model) { return !services.models().whyUnusable(model); };
    const AIModelList& list = context.models();
    ModelOverview overview{list.selected(), list.summarizationModel(), {}};
    const std::vector<CustomModel> valid = context.customModels().validModels();
    for (const CustomModel& custom : context.customModels().all()) {
        const AIModel model = custom.aiModel();
        const bool isValid = std::ranges::find(valid, custom.id, &CustomModel::id) != valid.end();
        overview.models.push_back({model, custom.enabled, isValid && isUsable(model)});
    }
    const auto builtIn = AIModelList::all();
    const std::vector<AIModel> offered = list.enabledModels({builtIn.begin(), builtIn.end()});
    for (const AIModel& model : builtIn)
        overview.models.push_back({model, std::ranges::count(offered, model) > 0, isUsable(model)});
    return overview;
}

Json toJson(const ModelState& state) {
    const AIModel& model = state.model;
    return recordJson({{"id", model.id},
                       {"provider", rawValue(model.provider)},
                       {"name", model.name},
                       {"friendlyName", model.friendlyName},
                       {"usageDescription", model.usageDescription},
                       {"modelType", rawValue(model.modelType)},
                       {"enabled", state.isEnabled},
                       {"usable", state.isUsable}});
}

// Rows of cells, each column as wide as its widest cell; nothing behind the last one.
std::string tableText(const std::vector<std::vector<std::string>>& rows) {
    std::vector<std::size_t> widths(rows.front().size());
    for (const auto& row : rows)
        for (std::size_t at = 0; at < row.size(); ++at) widths[at] = std::max(widths[at], characterCount(row[at]));
    std::string text;
    for (const auto& row : rows) {
        std::string line;
        for (std::size_t at = 0; at < row.size(); ++at)
            line += row[at] + std::string(widths[at] - characterCount(row[at]) + 2, ' ');
        text += line.substr(0, line.find_last_not_of(' ') + 1) + "\n";
    }
    return text;
}

std::string modelTable(const ModelOverview& overview) {
    std::vector<std::vector<std::string>> rows = {{"NAME", "FRIENDLY NAME", "PROVIDER", "IN MENU", "USABLE", "CHOSEN"}};
    for (const auto& [model, isEnabled, isUsable] : overview.models) {
        std::vector<std::string> uses;
        if (model.id == overview.selected.id) uses.emplace_back("for commands");
        if (model.id == overview.summarization.id) uses.emplace_back("for summaries");
        rows.push_back({shownText(model.name), shownText(model.friendlyName), std::string(rawValue(model.provider)),
                        isEnabled ? "yes" : "-", isUsable ? "yes" : "-", joined(uses, ", ")});
    }
    return tableText(rows);
}

// The user's own model of that name, else of that id.
std::optional<CustomModel> customModelNamed(CustomModelList& list, std::string_view name) {
    const std::vector<CustomModel> all = list.all();
    const auto found = std::ranges::find(all, name, &CustomModel::modelName);
    return found != all.end() ? *found : list.withId(name);
}

int noSuchModel(std::string_view name) {
    reportProblem(fmt::format("there is no model '{}': 'brindlet models list' shows them", name));
    return exitFailed;
}

// Hosts that are by their looks on this machine or in a network of one's own.
constexpr std::string_view privateHostEndings[] = {".local", ".localhost", ".lan", ".home", ".internal", ".home.arpa"};
constexpr std::string_view privateHostBegins[] = {"10.",     "127.",    "169.254.", "192.168.", "172.16.", "172.17.",
                                                  "172.18.", "172.19.", "172.20.",  "172.21.",  "172.22.", "172.23.",
                                                  "172.24.", "172.25.", "172.26.",  "172.27.",  "172.28.", "172.29.",
                                                  "172.30.", "172.31.", "[::1]",    "[fc",      "[fd",     "[fe80:"};

// Only for saying so early: a request looks at the address that it is connected to.
bool isPublicPlainHttp(std::string_view url) {
    constexpr std::string_view scheme = "http://";
    std::string host = lowercased(url);
    if (!host.starts_with(scheme)) return false;
    host = host.substr(scheme.size(), host.find_first_of("/?#", scheme.size()) - scheme.size());
    host = host.substr(host.rfind('@') + 1);
    host = host.substr(0, host.starts_with('[') ? host.find(']') + 1 : host.find(':'));
    const bool isOneWord = host.find_first_of(".[") == std::string::npos;
    return !isOneWord &&
           std::ranges::none_of(privateHostEndings, [&](auto ending) { return host.ends_with(ending); }) &&
           std::ranges::none_of(privateHostBegins, [&](auto begin) { return host.starts_with(begin); });
}

void checkUrl(const CustomModel& model) {
    const Result<HttpRequest> request = customRequest(model, std::nullopt, {});
    if (!request) throw UsageError{request.failure().description};
    if (isPublicPlainHttp(request->url))
        throw UsageError{
            fmt::format("'{}' is not encrypted and leads out of your network: begin it with https://", model.baseURL)};
}

struct NewModelOptions {
    const CLI::Option& name;
    const CLI::Option& url;
    const CLI::Option& friendlyName;
    bool hasNoTemperature = false;
    bool isSlow = false;
    bool hasKey = false;

    explicit NewModelOptions(CLI::App& action)
        : name(*addWord(action, "--name", "What the server calls the model")->option_text("NAME")),
          url(*addWord(action, "--url", "OpenAI API compatible base URL, or full URL to the /chat/completions endpoint")
                   ->option_text("URL")),
          friendlyName(*addWord(action, "--friendly-name", "What is shown in its place")->option_text("TEXT")) {
        action.add_flag("--no-temperature", hasNoTemperature, "Leaves the temperature to the server");
        action.add_flag("--slow", isSlow, "Turns fast mode off: the model is told more, and takes longer");
        action.add_flag("--key", hasKey, "Reads the server's key from standard input");
    }

    // UsageError for what no request could be made with.
    CustomModel model() const {
        CustomModel made = CustomModel::fresh();
        made.modelName = trimmed(requiredWord(name));
        if (made.modelName.empty())
            throw UsageError{"the model's name is empty: say with --name what the server calls it"};
        made.baseURL = trimmed(requiredWord(url));
        if (made.baseURL.empty()) throw UsageError{"the URL is empty: say with --url where the server is"};
        if (friendlyName.count() > 0) made.friendlyName = trimmed(requiredWord(friendlyName));
        if (made.friendlyName == "") made.friendlyName.reset();
        made.setTemperature = !hasNoTemperature;
        if (isSlow) made.fastMode = false;
        checkUrl(made);
        return made;
    }
};

class ModelsCommand final : public Subcommand {
  public:
    explicit ModelsCommand(CLI::App& app)
        : list_(addAction(app, "list", "Shows the models, your own first", "list")),
          select_(addAction(app, "select", "Chooses the model that makes commands", "select gpt-4.1")),
          enable_(addAction(app, "enable", "Offers a model in the menu", "enable gemini-2.5-flash")),
          disable_(addAction(app, "disable", "Takes a model out of the menu", "disable claude-haiku-4-5")),
          add_(addAction(app, "add", "Adds a model of your own", "add --name llama3.1 --url http://localhost:11434")),
          remove_(addAction(app, "remove", "Removes a model of your own", "remove llama3.1")),
          newModel_(add_) {
        app.require_subcommand(1);
        list_.add_flag("--json", wantsJson_, "Prints one JSON object");
        for (CLI::App* action : {&select_, &enable_, &disable_})
            addWord(*action, "NAME", "The model's name, as the list shows it");
        addWord(remove_, "NAME", "The model's name or id");
    }

    int run(CommandLineContext& context, StandardOutput& output) override {
        if (list_.parsed()) return list(context, output);
        context.startLogging();
        if (add_.parsed()) return add(context, output);
        if (select_.parsed()) return select(context, nameFor(select_), output);
        if (remove_.parsed()) return remove(context, nameFor(remove_), output);
        return setEnabled(context, nameFor(enable_.parsed() ? enable_ : disable_), enable_.parsed(), output);
    }

  private:
    static std::string nameFor(const CLI::App& action) { return requiredWord(*action.get_option("NAME")); }

    int list(CommandLineContext& context, StandardOutput& output) const {
        const ModelOverview overview = modelOverview(context);
        if (wantsJson_) {
            output.write(jsonText(recordJson({{"selected", overview.selected.name},
                                              {"summarization", overview.summarization.name},
                                              {"models", jsonList(overview.models)}})) +
                         "\n");
            return exitDone;
        }
        output.write(modelTable(overview));
        if (std::ranges::none_of(overview.models, &ModelState::isUsable))
            output.write(
                "None of them can be asked yet: 'brindlet keys set OpenAI' stores a key, 'brindlet models add' adds a "
                "model on a machine of your own.\n");
        return exitDone;
    }

    static int select(CommandLineContext& context, const std::string& name, StandardOutput& output) {
        const auto custom = context.customModels().withId(name);
        const auto model = context.models().named(custom ? custom->modelName : name);
        if (!model) return noSuchModel(name);
        if (const auto failure = context.settings().setText(AIModelList::selectedModelNameKey, model->name))
            return exitCodeFor(failure);
        output.write(fmt::format("{} is chosen\n", shownText(model->name)));
        if (const auto problem = ModelServices(context).models().whyUnusable(*model))
            output.write(shownText(*problem) + "\n");
        return exitDone;
    }

    static int setEnabled(CommandLineContext& context, const std::string& name, bool isEnabled,
                          StandardOutput& output) {
        std::optional<Failure> failure;
        std::string shownName = name;
        if (const auto custom = customModelNamed(context.customModels(), name)) {
            CustomModel changed = *custom;
            changed.enabled = isEnabled;
            shownName = changed.modelName;
            failure = context.customModels().update(changed);
        } else if (const auto model = context.models().named(name)) {
            shownName = model->name;
            failure = context.models().setEnabled(*model, isEnabled);
        } else {
            return noSuchModel(name);
        }
        if (!failure)
            output.write(fmt::format("{} is {} in the menu\n", shownText(shownName), isEnabled ? "offered" : "not"));
        return exitCodeFor(failure);
    }

    int add(CommandLineContext& context, StandardOutput& output) const {
        const CustomModel model = newModel_.model();
        if (std::ranges::count(context.customModels().all(), model.modelName, &CustomModel::modelName) > 0) {
            reportProblem(fmt::format("there is a model '{0}' already: 'brindlet models remove {0}' makes room for it",
                                      model.modelName));
            return exitFailed;
        }
        std::optional<std::string> key;
        if (newModel_.hasKey) {
            const Interruption interruption;
            key = readSecret(fmt::format("Key for {} (not shown): ", shownText(model.modelName)), interruption);
            if (!key) return exitCancelled;
            if (key->empty()) throw UsageError{"--key wants the key on standard input, and nothing came"};
        }
        auto failure = context.customModels().add(model);
        if (!failure && key) failure = context.customModels().setApiKey(model.id, *key);
        if (key) wipe(*key);
        if (!failure) output.write(shownText(model.modelName) + "\n");
        return exitCodeFor(failure);
    }

    static int remove(CommandLineContext& context, const std::string& name, StandardOutput& output) {
        const auto model = customModelNamed(context.customModels(), name);
        if (!model) {
            if (!context.models().named(name)) return noSuchModel(name);
            reportProblem(
                fmt::format("'{0}' comes with the program: 'brindlet models disable {0}' takes it out of "
                            "the menu",
                            name));
            return exitFailed;
        }
        const std::string shownName = shownText(model->modelName);
        if (canAsk()) {
            const Interruption interruption;
            const std::string question =
                fmt::format("Remove the model {}?\n[Enter/y] removes, [n/Escape] keeps it ", shownName);
            if (ask(question, interruption) == Answer::no) return exitCancelled;
        }
        if (const auto failure = context.customModels().remove(model->id)) return exitCodeFor(failure);
        output.write(shownName + " is removed\n");
        return exitDone;
    }

    CLI::App& list_;
    CLI::App& select_;
    CLI::App& enable_;
    CLI::App& disable_;
    CLI::App& add_;
    CLI::App& remove_;
    NewModelOptions newModel_;
    bool wantsJson_ = false;
};

}  // namespace

std::unique_ptr<Subcommand> makeModelsCommand(CLI::App& app) {
    return std::make_unique<ModelsCommand>(app);
}

}  // namespace brindlet
