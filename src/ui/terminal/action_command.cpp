#include <filesystem>
#include <string>
#include <system_error>

#include "ui/terminal/arguments.h"
#include "ui/terminal/command_road.h"
#include "ui/terminal/subcommand.h"

namespace brindlet {

namespace {

constexpr std::size_t mostFiles = 20;
constexpr std::string_view tooManyText =
    "Sorry, Brindlet currently only supports up to 20 files at once. We're "
    "working on it though!";

std::string temporaryFolder() {
    std::error_code error;
    const std::filesystem::path folder = std::filesystem::temp_directory_path(error);
    return error ? "/tmp" : folder.string();  // TMPDIR may name what isn't there
}

class ActionCommand final : public Subcommand {
  public:
    explicit ActionCommand(CLI::App& app) : words_(app, "REQUEST", "What is asked for, in quotes") {
        app.add_flag("--yes", options_.isConfirmed, "Answers the question with yes");
        app.add_flag("--json", options_.wantsJson, "Prints what happened as one JSON object");
        options_.showsOutput = false;
        options_.summarizes = true;
        options_.isAction = true;
    }

    int run(CommandLineContext& context, StandardOutput& output) override {
        const std::string request = words_.text();
        const std::vector<FilePath> files = words_.existingFiles(context);
        if (!words_.namesFolder()) context.useFolder(files.empty() ? temporaryFolder() : files.front().parent().text());
        context.startLogging();
        CommandRoad road(context, files, options_, output);
        if (files.size() > mostFiles) {
            road.flow().presentError(std::string(tooManyText));
        } else {
            road.flow().setPrompt(request);
            road.flow().submit();
        }
        return road.goToTheEnd();
    }

  private:
    RequestWords words_;
    CommandRoad::Options options_;
};

}  // namespace

std::unique_ptr<Subcommand> makeActionCommand(CLI::App& app) {
    return std::make_unique<ActionCommand>(app);
}

}  // namespace brindlet
