// One subcommand of the program: it declares its words and options, and runs once they have been read.
#pragma once

#include <CLI/CLI.hpp>
#include <memory>
#include <string_view>

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

std::unique_ptr<Subcommand> makePredictCommand(CLI::App& app);
std::unique_ptr<Subcommand> makeRunCommand(CLI::App& app);
std::unique_ptr<Subcommand> makeParseCommand(CLI::App& app);
std::unique_ptr<Subcommand> makeGlobCommand(CLI::App& app);
std::unique_ptr<Subcommand> makeAskCommand(CLI::App& app);
std::unique_ptr<Subcommand> makeSummarizeCommand(CLI::App& app);
std::unique_ptr<Subcommand> makeQuickCommand(CLI::App& app);
std::unique_ptr<Subcommand> makePromptCommand(CLI::App& app);
std::unique_ptr<Subcommand> makeSettingsCommand(CLI::App& app);
std::unique_ptr<Subcommand> makeToolsCommand(CLI::App& app);
std::unique_ptr<Subcommand> makeHistoryCommand(CLI::App& app);
std::unique_ptr<Subcommand> makeLogCommand(CLI::App& app);

}  // namespace brindlet
