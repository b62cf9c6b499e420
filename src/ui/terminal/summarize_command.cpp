#include <unistd.h>

#include <cerrno>

#include "ai/output_summary.h"
#include "text/strings.h"
#include "ui/json.h"
#include "ui/terminal/arguments.h"
#include "ui/terminal/exit_code.h"
#include "ui/terminal/interruption.h"
#include "ui/terminal/model_services.h"
#include "ui/terminal/subcommand.h"

namespace brindlet {

namespace {

constexpr std::size_t longestSummarizedInput = 256 * 1024 * 1024;

std::string allOfStandardInput() {
    std::string text;
    char piece[65536];
    for (;;) {
        const auto got = ::read(STDIN_FILENO, piece, sizeof piece);
        if (got < 0 && errno == EINTR) continue;
        if (got <= 0) return text;
        text.append(piece, static_cast<std::size_t>(got));
        if (text.size() > longestSummarizedInput) throw UsageError{"the output on standard input is too long"};
    }
}

class SummarizeCommand final : public Subcommand {
  public:
    explicit SummarizeCommand(CLI::App& app)
        : files_(*addWords(app, "FILE", "The files that were selected")), folder_(*addFolderOption(app)) {
        app.add_option("--command", command_, "The line that ran")->required();
        app.add_option("--request", request_, "What was asked for")->required();
        app.add_flag("--failed", hasFailed_, "A run failed");
        app.add_flag("--json", wantsJson_, "Prints the summary as one JSON object");
    }

    int run(CommandLineContext& context, StandardOutput& output) override {
        if (trimmed(request_).empty()) throw UsageError{"the request is empty: name it with --request"};
        const std::vector<FilePath> files = context.namedFiles(wordsOf(files_));
        if (folder_.count() > 0) context.useFolder(requiredWord(folder_));
        const std::string text = allOfStandardInput();
        const RunToSummarize run{.prompt = request_,
                                 .command = command_,
                                 .files = files,
                                 .output = std::string(trimmed(text)),
                                 .allSuccess = !hasFailed_};
        context.startLogging();
        const Interruption interruption;
        ModelServices services(context);
        const auto summary =
            summarizeOutput(services.models(), context.models().summarizationModel(), run, interruption.token());
        if (interruption.requested()) return exitCancelled;
        if (!summary) {
            reportProblem(summary.failure().description);
            return exitFailed;
        }
        if (wantsJson_)
            output.write(
                jsonText(recordJson({{"summary", summary->text}, {"from", summary->isQuick ? "quick" : "model"}})) +
                "\n");
        else
            output.write(summary->text + "\n");
        return exitDone;
    }

  private:
    const CLI::Option& files_;
    const CLI::Option& folder_;
    std::string command_;
    std::string request_;
    bool hasFailed_ = false;
    bool wantsJson_ = false;
};

}  // namespace

std::unique_ptr<Subcommand> makeSummarizeCommand(CLI::App& app) {
    return std::make_unique<SummarizeCommand>(app);
}

}  // namespace brindlet
