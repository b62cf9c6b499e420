#include <fmt/format.h>
#include <unistd.h>

#include <algorithm>

#include "prompts/quick_commands.h"
#include "ui/prediction_rows.h"
#include "ui/terminal/arguments.h"
#include "ui/terminal/command_road.h"
#include "ui/terminal/prediction.h"
#include "ui/terminal/question.h"
#include "ui/terminal/shown_text.h"
#include "ui/terminal/subcommand.h"

namespace brindlet {

namespace {

constexpr std::size_t mostOffered = 3;
constexpr long categoriesLookedAt = 6;

// The worked examples nearest to the request that fit the selection, the best
// first.
std::vector<const PromptSimilarityOutputExample*> nearestExamples(const std::string& request,
                                                                  const std::vector<FilePath>& files,
                                                                  const PromptSimilaritySearch& search) {
    std::vector<const PromptSimilarityOutputExample*> nearest;
    for (const auto& [category, score] : search.similarCategories(request, files, categoriesLookedAt)) {
        const auto fits = [&](const PromptSimilarityOutputExample& example) {
            return fitsSelection(example.singleMultiple, files.size());
        };
        const auto& examples = category->outputExamples;
        const auto example = std::find_if(examples.begin(), examples.end(), fits);
        if (example != examples.end()) nearest.push_back(&*example);
        if (nearest.size() == mostOffered) break;
    }
    return nearest;
}

// "Renames a.txt to b.txt, and 2 more"
std::string summaryLine(const PredictReport& report) {
    const auto rows = predictionRows(report.result, report.folder, report.home, report.predictionNeedsInstall);
    if (rows.empty()) return "";
    std::string line = rows.front().text;
    if (rows.front().subtitle) line += ": " + *rows.front().subtitle;
    if (rows.size() > 1) line += fmt::format(", and {} more", rows.size() - 1);
    return shownText(line);
}

class AskCommand final : public Subcommand {
  public:
    explicit AskCommand(CLI::App& app)
        : words_(app, "REQUEST", "What is asked for, in quotes"), model_(*addModelOption(app)) {
        app.add_flag("--yes", options_.isConfirmed, "Runs without asking");
        app.add_flag("--dry-run", options_.isDryRun, "Stops after the prediction");
        app.add_flag("--json", options_.wantsJson, "Prints what happened as one JSON object");
        options_.showsOutput = false;  // the summary stands for it
        options_.remembers = true;
        options_.summarizes = true;
    }

    int run(CommandLineContext& context, StandardOutput& output) override {
        const std::string request = words_.text();
        const std::vector<FilePath> files = words_.existingFiles(context);
        options_.model = modelOf(model_, context);
        context.startLogging();

        CommandRoad road(context, files, options_, output);
        road.flow().appear();
        road.flow().setPrompt(request);
        const AIModel model = road.flow().view().selectedModel;
        const auto problem = road.terminal().models().models().whyUnusable(model);
        if (problem && canAsk() && !options_.wantsJson && !quickCommand(request, files)) {
            offerExamples(road, *problem, request, files, context);
        } else {
            road.flow().submit();
        }
        return road.goToTheEnd();
    }

  private:
    // What the catalogue knows, for somebody who has no model to ask.
    static void offerExamples(CommandRoad& road, const std::string& problem, const std::string& request,
                              const std::vector<FilePath>& files, CommandLineContext& context) {
        const auto examples = nearestExamples(request, files, road.terminal().models().search());
        if (examples.empty()) return road.flow().submit();
        std::string offer = shownText(problem) + "\n\nWithout a model these come nearest:\n";
        std::vector<std::string> lines;
        for (const PromptSimilarityOutputExample* example : examples) {
            lines.push_back(finishedCommand(example->expectedCommand, {}, request).bashCommand);
            const PredictReport report = predictCommand(lines.back(), files, context);
            offer += fmt::format("  {}. {}\n     {}\n     {}\n", lines.size(), example->prompt, shownText(lines.back()),
                                 summaryLine(report));
        }
        writeTo(STDERR_FILENO, offer);
        const auto number =
            askNumber(fmt::format("Which one? [1-{}] shows what it would do, [n/Escape] stops ", lines.size()),
                      lines.size(), road.interruption());
        if (!number) return road.stop();
        road.askInAnyCase();
        road.flow().submitCommand(finishedCommand(lines[*number - 1], {{AIRole::user, request}}, request),
                                  /*asksFirst=*/true);
    }

    RequestWords words_;
    const CLI::Option& model_;
    CommandRoad::Options options_;
};

}  // namespace

std::unique_ptr<Subcommand> makeAskCommand(CLI::App& app) {
    return std::make_unique<AskCommand>(app);
}

}  // namespace brindlet
