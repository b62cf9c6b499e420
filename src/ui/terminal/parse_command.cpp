#include "shell/basher.h"
#include "shell/printing.h"
#include "ui/json.h"
#include "ui/terminal/arguments.h"
#include "ui/terminal/batch.h"
#include "ui/terminal/exit_code.h"
#include "ui/terminal/subcommand.h"

namespace brindlet {

namespace {

Json parsedJson(Basher& basher) {
    const BashStatementList tree = basher.parse();
    const std::string unparsed(basher.unparsedRemainder());
    return {{"tree", toJson(tree)}, {"printed", print(tree)}, {"unparsed", unparsed.empty() ? Json() : Json(unparsed)}};
}

Json refusalJson(const BasherError& error) {
    return {{"error", toJson(error)}, {"description", error.description()}};
}

class ParseCommand final : public Subcommand {
  public:
    explicit ParseCommand(CLI::App& app) : command_(*addWord(app, "COMMAND", "The line of bash")) {
        app.add_flag("--json", wantsJson_, "Prints the tree as one JSON object");
        app.add_flag("--batch", isBatch_, "Reads one JSON string a line from standard input; goes with --json");
    }

    int run(CommandLineContext&, StandardOutput& output) override {
        if (isBatch_) return runBatch(output);
        Basher basher(requiredWord(command_));
        try {
            if (wantsJson_) {
                output.write(jsonText(parsedJson(basher)) + "\n");
                return exitDone;
            }
            output.write(print(basher.parse()) + "\n");
        } catch (const BasherError& error) {
            if (wantsJson_) {
                output.write(jsonText(refusalJson(error)) + "\n");
            } else {
                reportProblem(error.description());
            }
            return exitFailed;
        }
        if (!basher.unparsedRemainder().empty())
            reportProblem("the rest of the line is left out: " + std::string(basher.unparsedRemainder()));
        return exitDone;
    }

  private:
    int runBatch(StandardOutput& output) const {
        if (!wantsJson_) throw UsageError{"--batch goes with --json"};
        if (command_.count() > 0) throw UsageError{"--batch reads its lines from standard input: leave COMMAND out"};
        answerBatch(output, [](const std::string& command) {
            Basher basher(command);
            try {
                return parsedJson(basher);
            } catch (const BasherError& error) {
                return refusalJson(error);
            }
        });
        return exitDone;
    }

    const CLI::Option& command_;
    bool wantsJson_ = false;
    bool isBatch_ = false;
};

}  // namespace

std::unique_ptr<Subcommand> makeParseCommand(CLI::App& app) {
    return std::make_unique<ParseCommand>(app);
}

}  // namespace brindlet
