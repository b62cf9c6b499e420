#include "prompts/quick_commands.h"
#include "text/strings.h"
#include "ui/json.h"
#include "ui/terminal/arguments.h"
#include "ui/terminal/exit_code.h"
#include "ui/terminal/subcommand.h"

namespace brindlet {

namespace {

class QuickSubcommand final : public Subcommand {
  public:
    explicit QuickSubcommand(CLI::App& app)
        : request_(*addWord(app, "REQUEST", "What is asked for, in quotes")),
          files_(*addWords(app, "FILE", "The selected files, which need not exist")),
          folder_(*addFolderOption(app)) {
        app.add_flag("--json", wantsJson_, "Prints the command as one JSON object");
    }

    int run(CommandLineContext& context, StandardOutput& output) override {
        const std::string request = requiredWord(request_);
        if (trimmed(request).empty()) throw UsageError{"REQUEST is empty"};
        // The names are taken against the current directory, not against the open folder.
        const std::vector<FilePath> files = context.namedFiles(wordsOf(files_));
        if (folder_.count() > 0) context.useFolder(requiredWord(folder_));

        const std::optional<QuickCommand> answer = quickCommand(request, files);
        if (wantsJson_) {
            output.write(jsonText({{"command", answer ? Json(answer->command) : Json()}}) + "\n");
        } else if (answer) {
            output.write(answer->command + "\n");
        } else {
            reportProblem("no quick rule answers this request: a model would be asked");
        }
        return answer ? exitDone : exitFailed;
    }

  private:
    const CLI::Option& request_;
    const CLI::Option& files_;
    const CLI::Option& folder_;
    bool wantsJson_ = false;
};

}  // namespace

std::unique_ptr<Subcommand> makeQuickCommand(CLI::App& app) {
    return std::make_unique<QuickSubcommand>(app);
}

}  // namespace brindlet
