#include "ui/terminal/exit_code.h"
#include "ui/terminal/subcommand.h"

namespace brindlet {

namespace {

constexpr std::size_t longestLogBytes = 256 * 1024 * 1024;

class LogCommand final : public Subcommand {
  public:
    explicit LogCommand(CLI::App& app)
        : path_(added(app, "path", "Prints where the newest log file is", "less \"$(brindlet log path)\"")) {
        added(app, "show", "Prints the newest log file", "brindlet log show");
        app.require_subcommand(1);
    }

    int run(CommandLineContext& context, StandardOutput& output) override {
        const FilePath file = context.log().latestLogFile();
        if (path_.parsed()) {
            output.write(file.text() + "\n");
            return exitDone;
        }
        if (file == context.log().folder()) {
            reportProblem("there is no log yet");
            return exitFailed;
        }
        const auto content = context.files().readFile(file, longestLogBytes);
        if (!content) {
            reportProblem(content.failure().description);
            return exitFailed;
        }
        output.write(*content);
        return exitDone;
    }

  private:
    static const CLI::App& added(CLI::App& app, const std::string& name, const std::string& summary,
                                 const std::string& example) {
        return *app.add_subcommand(name, summary)->footer("Example:\n  " + example);
    }

    const CLI::App& path_;
};

}  // namespace

std::unique_ptr<Subcommand> makeLogCommand(CLI::App& app) {
    return std::make_unique<LogCommand>(app);
}

}  // namespace brindlet
