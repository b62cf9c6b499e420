#include "ai/answer_cleaning.h"
#include "exec/command_history.h"
#include "platform/environment.h"
#include "platform/log.h"
#include "prompts/quick_commands.h"
#include "text/characters.h"
#include "text/strings.h"
#include "ui/terminal/arguments.h"
#include "ui/terminal/command_road.h"
#include "ui/terminal/exit_code.h"
#include "ui/terminal/subcommand.h"

namespace brindlet {

namespace {

constexpr std::string_view noModelText =
    "No quick rule answers this request, and no model can be asked yet: say it as 'to png', 'zip' or 'size', or run a "
    "line of bash with 'brindlet run'";

constexpr std::size_t tooManyCharacters = 250;
constexpr std::string_view tooLongText = "Sorry, please keep keep your request shorter";

class AskCommand final : public Subcommand {
  public:
    explicit AskCommand(CLI::App& app)
        : request_(*addWord(app, "REQUEST", "What is asked for, in quotes")),
          files_(*addWords(app, "FILE", "The selected files")),
          folder_(*addFolderOption(app)) {
        app.add_flag("--yes", options_.isConfirmed, "Runs without asking");
        app.add_flag("--dry-run", options_.isDryRun, "Stops after the prediction");
        app.add_flag("--json", options_.wantsJson, "Prints what happened as one JSON object");
        options_.showsOutput = false;  // the summary stands for it
    }

    int run(CommandLineContext& context, StandardOutput& output) override {
        if (folder_.count() > 0) context.useFolder(requiredWord(folder_));
        const std::string request = requiredWord(request_);
        if (trimmed(request).empty()) throw UsageError{"REQUEST is empty"};
        const std::vector<FilePath> files = context.existingFiles(wordsOf(files_));
        context.folder();
        context.startLogging();

        const CommandRoad road(options_);
        const std::optional<QuickCommand> quick = quickCommand(request, files);
        RoadReport report;
        if (characterCount(request) >= tooManyCharacters) {
            report.present(std::string(tooLongText));
        } else if (quick) {
            logInfo("MANUALLY PARSED COMMAND, GENERATED: " + quick->command);
            const std::string line = cleanedAnswer(quick->command);
            report = CommandRoad::predicted(line, files, context);
            if (!options_.isDryRun) enterInHistory(request, line, report, context);
            road.decide(report, files, context, output);
            if (report.ran() && !report.wasStopped) summarize(*quick, request, files, report);
        } else {
            report.present(std::string(noModelText));
        }
        road.tell(report, output);
        if (report.ran() && !report.summary && !options_.wantsJson) output.write(report.runs.output + "\n");
        return CommandRoad::exitCodeOf(report);
    }

  private:
    static void enterInHistory(const std::string& request, const std::string& line, const RoadReport& report,
                               CommandLineContext& context) {
        CommandHistoryStore history(dataFolder(), context.settings());
        history.loadOrMigrateHistory();
        history.saveHistory(
            withEntered(history.commandHistory(), {.id = newUuid(),
                                                   .bashCommand = report.command,
                                                   .prompt = request,
                                                   .messages = {{AIRole::user, request}, {AIRole::assistant, line}},
                                                   .requiredPackages = report.prediction->result.requiredPackages}));
    }

    static void summarize(const QuickCommand& quick, const std::string& request, const std::vector<FilePath>& files,
                          RoadReport& report) {
        report.summary = quick.summarize({request, report.command, files, std::string(trimmed(report.runs.output)),
                                          joined(report.runs.failureMessages, "\n"), report.runs.exitCode == 0});
    }

    const CLI::Option& request_;
    const CLI::Option& files_;
    const CLI::Option& folder_;
    CommandRoad::Options options_;
};

}  // namespace

std::unique_ptr<Subcommand> makeAskCommand(CLI::App& app) {
    return std::make_unique<AskCommand>(app);
}

}  // namespace brindlet
