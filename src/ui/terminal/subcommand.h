// One subcommand of the program: it declares its words and options, and runs once they have been read.
#pragma once

#include <CLI/CLI.hpp>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "platform/result.h"
#include "ui/terminal/command_line_context.h"
#include "ui/terminal/console.h"

namespace brindlet {

class Subcommand {
  public:
    virtual ~Subcommand() = default;
    // The exit code. The caller flushes `output`.
    virtual int run(CommandLineContext& context, StandardOutput& output) = 0;
};

struct SubcommandRow {
    std::string_view name;
    std::string_view summary;
    std::string_view example;
    // Adds the subcommand's words and options to `app`, which outlives what comes back.
    std::unique_ptr<Subcommand> (*make)(CLI::App& app);
};

// A word behind a subcommand's own, such as "list", which outlives what it is asked of. The example is shown without
// the names in front of it: "remove 3".
CLI::App& addAction(CLI::App& subcommand, const std::string& word, const std::string& summary,
                    const std::string& example);

// What is left to say of work that ends with this: its sentence, if any, on standard error, and the exit code.
int exitCodeFor(const std::optional<Failure>& failure);

std::unique_ptr<Subcommand> makePredictCommand(CLI::App& app);
std::unique_ptr<Subcommand> makeRunCommand(CLI::App& app);
std::unique_ptr<Subcommand> makeParseCommand(CLI::App& app);
std::unique_ptr<Subcommand> makeGlobCommand(CLI::App& app);
std::unique_ptr<Subcommand> makeAskCommand(CLI::App& app);
std::unique_ptr<Subcommand> makeActionCommand(CLI::App& app);
std::unique_ptr<Subcommand> makeBarCommand(CLI::App& app);
std::unique_ptr<Subcommand> makeSummarizeCommand(CLI::App& app);
std::unique_ptr<Subcommand> makeQuickCommand(CLI::App& app);
std::unique_ptr<Subcommand> makePromptCommand(CLI::App& app);
std::unique_ptr<Subcommand> makeModelsCommand(CLI::App& app);
std::unique_ptr<Subcommand> makeKeysCommand(CLI::App& app);
std::unique_ptr<Subcommand> makeSettingsCommand(CLI::App& app);
std::unique_ptr<Subcommand> makeToolsCommand(CLI::App& app);
std::unique_ptr<Subcommand> makeHistoryCommand(CLI::App& app);
std::unique_ptr<Subcommand> makeLogCommand(CLI::App& app);

}  // namespace brindlet
