#include "text/strings.h"
#include "ui/terminal/arguments.h"
#include "ui/terminal/command_road.h"
#include "ui/terminal/exit_code.h"
#include "ui/terminal/subcommand.h"

namespace brindlet {

namespace {

class RunCommand final : public Subcommand {
  public:
    explicit RunCommand(CLI::App& app)
        : command_(*addWord(app, "COMMAND", "The line of bash, in quotes")),
          files_(*addWords(app, "FILE", "The selected files, for FILE_NAME and its like")),
          folder_(*addFolderOption(app)) {
        app.add_flag("--yes", options_.isConfirmed, "Runs without asking");
        app.add_flag("--json", options_.wantsJson, "Prints what happened as one JSON object");
    }

    int run(CommandLineContext& context, StandardOutput& output) override {
        if (folder_.count() > 0) context.useFolder(requiredWord(folder_));
        const std::string line = requiredWord(command_);
        if (trimmed(line).empty()) throw UsageError{"COMMAND is empty"};
        const std::vector<FilePath> files = context.existingFiles(wordsOf(files_));
        context.folder();
        context.startLogging();

        const CommandRoad road(options_);
        RoadReport report = CommandRoad::predicted(line, files, context);
        road.decide(report, files, context, output);
        road.tell(report, output);
        return CommandRoad::exitCodeOf(report);
    }

  private:
    const CLI::Option& command_;
    const CLI::Option& files_;
    const CLI::Option& folder_;
    CommandRoad::Options options_;
};

}  // namespace

std::unique_ptr<Subcommand> makeRunCommand(CLI::App& app) {
    return std::make_unique<RunCommand>(app);
}

}  // namespace brindlet
