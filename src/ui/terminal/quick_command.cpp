#include "prompts/quick_commands.h"
#include "ui/json.h"
#include "ui/terminal/arguments.h"
#include "ui/terminal/exit_code.h"
#include "ui/terminal/subcommand.h"

namespace brindlet {

namespace {

class QuickSubcommand final : public Subcommand {
  public:
    explicit QuickSubcommand(CLI::App& app) : words_(app, "REQUEST", "What is asked for, in quotes") {
        app.add_flag("--json", wantsJson_, "Prints the command as one JSON object");
    }

    int run(CommandLineContext& context, StandardOutput& output) override {
        const std::string request = words_.text();
        const std::optional<QuickCommand> answer = quickCommand(request, words_.namedFiles(context));
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
    RequestWords words_;
    bool wantsJson_ = false;
};

}  // namespace

std::unique_ptr<Subcommand> makeQuickCommand(CLI::App& app) {
    return std::make_unique<QuickSubcommand>(app);
}

}  // namespace brindlet
