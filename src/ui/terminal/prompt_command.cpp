#include "prompts/quick_commands.h"
#include "prompts/system_prompt.h"
#include "text/strings.h"
#include "ui/json.h"
#include "ui/terminal/arguments.h"
#include "ui/terminal/exit_code.h"
#include "ui/terminal/subcommand.h"

namespace brindlet {

namespace {

// How the request itself goes over the wire.
constexpr std::string_view userPromptPrefix = "USER PROMPT: ";

class PromptSubcommand final : public Subcommand {
  public:
    explicit PromptSubcommand(CLI::App& app)
        : request_(*addWord(app, "REQUEST", "What is asked for, in quotes")),
          files_(*addWords(app, "FILE", "The selected files, which need not exist")),
          folder_(*addFolderOption(app)) {
        app.add_flag("--model-anyway", isForced_, "Shows the messages also where a quick rule answers");
        app.add_flag("--json", wantsJson_, "Prints one JSON object");
    }

    int run(CommandLineContext& context, StandardOutput& output) override {
        const std::string request = requiredWord(request_);
        if (trimmed(request).empty()) throw UsageError{"REQUEST is empty"};
        const std::vector<FilePath> files = context.namedFiles(wordsOf(files_));
        if (folder_.count() > 0) context.useFolder(requiredWord(folder_));

        const std::optional<QuickCommand> quick = quickCommand(request, files);
        PromptSimilaritySearch search;
        search.buildIndex();
        const ModelPace pace = ModelPace::normal;
        const auto categories = search.similarCategories(request, files, categoryLimit(pace));
        std::optional<std::string> system;
        if (!quick || isForced_) {
            const std::set<std::string> commands = context.packages().availableCommands();
            system = composeSystemPrompt(request, pace, files,
                                         {search, context.files(), {commands.begin(), commands.end()}}, categories);
        }
        const std::string user = std::string(userPromptPrefix) + request;
        if (wantsJson_)
            output.write(jsonText(report(quick, categories, system, user)) + "\n");
        else if (system)
            output.write(*system + "\n\n" + user + "\n");
        else
            output.write("A quick rule answers, so that nothing would be sent: " + quick->command + "\n");
        return exitDone;
    }

  private:
    static Json report(const std::optional<QuickCommand>& quick,
                       const std::vector<PromptSimilaritySearch::SearchResult>& found,
                       const std::optional<std::string>& system, const std::string& user) {
        Json categories = Json::array();
        for (const auto& [category, score] : found)
            categories.push_back(recordJson({{"id", category->id}, {"score", score}}));
        Json messages = Json::array();
        if (system) {
            messages.push_back(taggedJson("system", *system));
            messages.push_back(taggedJson("user", user));
        }
        return recordJson({{"quickCommand", quick ? Json(quick->command) : Json()},
                           {"categories", std::move(categories)},
                           {"messages", std::move(messages)}});
    }

    const CLI::Option& request_;
    const CLI::Option& files_;
    const CLI::Option& folder_;
    bool isForced_ = false;
    bool wantsJson_ = false;
};

}  // namespace

std::unique_ptr<Subcommand> makePromptCommand(CLI::App& app) {
    return std::make_unique<PromptSubcommand>(app);
}

}  // namespace brindlet
