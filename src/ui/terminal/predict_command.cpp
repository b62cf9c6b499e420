#include <unistd.h>

#include "ui/json.h"
#include "ui/terminal/arguments.h"
#include "ui/terminal/batch.h"
#include "ui/terminal/exit_code.h"
#include "ui/terminal/prediction.h"
#include "ui/terminal/subcommand.h"

namespace brindlet {

namespace {

class PredictCommand final : public Subcommand {
  public:
    explicit PredictCommand(CLI::App& app)
        : command_(*addWord(app, "COMMAND", "The line of bash, in quotes")),
          files_(*addWords(app, "FILE", "The selected files, for FILE_NAME and its like")),
          folder_(*addFolderOption(app)) {
        app.add_flag("--json", wantsJson_, "Prints the prediction as one JSON object");
        app.add_flag("--batch", isBatch_,
                     "Reads one JSON string a line from standard input; goes with --json, and all words are FILEs");
    }

    int run(CommandLineContext& context, StandardOutput& output) override {
        if (folder_.count() > 0) context.useFolder(requiredWord(folder_));
        if (isBatch_) return runBatch(context, output);
        const std::string command = requiredWord(command_);
        const PredictReport report = predictCommand(command, context.existingFiles(wordsOf(files_)), context);
        output.write(wantsJson_ ? jsonText(toJson(report)) + "\n" : predictionText(report, styleFor(STDOUT_FILENO)));
        return exitDone;
    }

  private:
    int runBatch(CommandLineContext& context, StandardOutput& output) const {
        if (!wantsJson_) throw UsageError{"--batch goes with --json"};
        std::vector<std::string> names = wordsOf(command_);
        const std::vector<std::string> others = wordsOf(files_);
        names.insert(names.end(), others.begin(), others.end());
        const std::vector<FilePath> files = context.existingFiles(names);
        context.folder();  // a folder that has gone is wrong usage, not the first line's fault
        answerBatch(output,
                    [&](const std::string& command) { return toJson(predictCommand(command, files, context)); });
        return exitDone;
    }

    const CLI::Option& command_;
    const CLI::Option& files_;
    const CLI::Option& folder_;
    bool wantsJson_ = false;
    bool isBatch_ = false;
};

}  // namespace

std::unique_ptr<Subcommand> makePredictCommand(CLI::App& app) {
    return std::make_unique<PredictCommand>(app);
}

}  // namespace brindlet
