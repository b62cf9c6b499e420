#include "ui/terminal/arguments.h"
#include "ui/terminal/command_road.h"
#include "ui/terminal/subcommand.h"

namespace brindlet {

namespace {

class RunCommand final : public Subcommand {
  public:
    explicit RunCommand(CLI::App& app) : words_(app, "COMMAND", "The line of bash, in quotes") {
        app.add_flag("--yes", options_.isConfirmed, "Runs without asking");
        app.add_flag("--json", options_.wantsJson, "Prints what happened as one JSON object");
    }

    int run(CommandLineContext& context, StandardOutput& output) override {
        const std::string line = words_.text();
        const std::vector<FilePath> files = words_.existingFiles(context);
        context.startLogging();
        CommandRoad road(context, files, options_, output);
        road.flow().submitCommand({.id = newUuid(), .bashCommand = line});
        return road.goToTheEnd();
    }

  private:
    RequestWords words_;
    CommandRoad::Options options_;
};

}  // namespace

std::unique_ptr<Subcommand> makeRunCommand(CLI::App& app) {
    return std::make_unique<RunCommand>(app);
}

}  // namespace brindlet
