// The words of the command line on their way through CLI11, which takes "[a,b]" for a list, "++" for the end of a
// subcommand, and drops words behind "--" once a subcommand has all it must have. A COMMAND or FILE may be any text, so
// such words travel behind a mark.
//
//     app.parse(guardedArguments({argv + 1, argv + argc}));
//     std::string command = requiredWord(*commandOption);
#pragma once

#include <CLI/CLI.hpp>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "ai/ai_model.h"
#include "platform/file_path.h"

namespace brindlet {

class CommandLineContext;

// In the order that CLI::App::parse wants: the last first. "--" itself is left out.
std::vector<std::string> guardedArguments(std::span<const char* const> arguments);

// A word as the user wrote it.
std::string withoutGuard(std::string_view argument);
bool isGuarded(std::string_view argument);

CLI::Option* addWord(CLI::App& app, const std::string& name, const std::string& description);
CLI::Option* addWords(CLI::App& app, const std::string& name, const std::string& description);
CLI::Option* addFolderOption(CLI::App& app);
// --model NAME, and the model that it names: UsageError for a name that no model has; the selected one without it.
CLI::Option* addModelOption(CLI::App& app);
AIModel modelOf(const CLI::Option& option, CommandLineContext& context);

std::vector<std::string> wordsOf(const CLI::Option& option);
// UsageError where the word is missing.
std::string requiredWord(const CLI::Option& option);

// What the subcommands of a request have in common: REQUEST (or COMMAND), FILE... and --folder.
class RequestWords {
  public:
    RequestWords(CLI::App& app, std::string name, const std::string& description);

    // UsageError where it is missing or blank.
    std::string text() const;
    // Opens the folder that was named, if any. The names of FILEs are taken against the current directory all the same;
    // UsageError for one that does not exist, or only for an empty one.
    std::vector<FilePath> existingFiles(CommandLineContext& context) const;
    std::vector<FilePath> namedFiles(CommandLineContext& context) const;
    bool namesFolder() const { return folder_.count() > 0; }

  private:
    void openFolder(CommandLineContext& context) const;

    std::string name_;
    const CLI::Option& text_;
    const CLI::Option& files_;
    const CLI::Option& folder_;
};

}  // namespace brindlet
