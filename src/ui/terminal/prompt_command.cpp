#include "prompts/quick_commands.h"
#include "prompts/system_prompt.h"
#include "text/strings.h"
#include "ui/json.h"
#include "ui/terminal/arguments.h"
#include "ui/terminal/exit_code.h"
#include "ui/terminal/model_services.h"
#include "ui/terminal/subcommand.h"

namespace brindlet {

namespace {

class PromptSubcommand final : public Subcommand {
  public:
    explicit PromptSubcommand(CLI::App& app)
        : words_(app, "REQUEST", "What is asked for, in quotes"), model_(*addModelOption(app)) {
        app.add_flag("--model-anyway", isForced_, "Shows the messages also where a quick rule answers");
        app.add_flag("--json", wantsJson_, "Prints one JSON object");
    }

    int run(CommandLineContext& context, StandardOutput& output) override {
        context.startLogging();
        const std::string request = words_.text();
        const std::vector<FilePath> files = words_.namedFiles(context);
        const AIModel model = modelOf(model_, context);
        ModelServices services(context);

        const std::optional<QuickCommand> quick = quickCommand(request, files);
        const ModelPace pace = services.generator().paceOf(model);
        const auto categories = services.search().similarCategories(request, files, categoryLimit(pace));
        std::vector<AIMessage> messages;
        if (!quick || isForced_)
            messages = AICommandGenerator::requestMessages(
                composeSystemPrompt(request, pace, files, services.promptSources(), categories), request);
        if (wantsJson_) {
            output.write(jsonText(report(quick, categories, messages)) + "\n");
        } else if (messages.empty()) {
            output.write("A quick rule answers, so that nothing would be sent: " + quick->command + "\n");
        } else {
            std::vector<std::string> texts;
            for (const AIMessage& message : messages) texts.push_back(message.text);
            output.write(joined(texts, "\n\n") + "\n");
        }
        return exitDone;
    }

  private:
    static Json report(const std::optional<QuickCommand>& quick,
                       const std::vector<PromptSimilaritySearch::SearchResult>& found,
                       const std::vector<AIMessage>& messages) {
        Json categories = Json::array();
        for (const auto& [category, score] : found)
            categories.push_back(recordJson({{"id", category->id}, {"score", score}}));
        Json sent = Json::array();
        for (const AIMessage& message : messages) sent.push_back(taggedJson(nameOf(message.role), message.text));
        return recordJson({{"quickCommand", quick ? Json(quick->command) : Json()},
                           {"categories", std::move(categories)},
                           {"messages", std::move(sent)}});
    }

    RequestWords words_;
    const CLI::Option& model_;
    bool isForced_ = false;
    bool wantsJson_ = false;
};

}  // namespace

std::unique_ptr<Subcommand> makePromptCommand(CLI::App& app) {
    return std::make_unique<PromptSubcommand>(app);
}

}  // namespace brindlet
