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

namespace brindlet {

// In the order that CLI::App::parse wants: the last first. "--" itself is left out.
std::vector<std::string> guardedArguments(std::span<const char* const> arguments);

// A word as the user wrote it.
std::string withoutGuard(std::string_view argument);
bool isGuarded(std::string_view argument);

CLI::Option* addWord(CLI::App& app, const std::string& name, const std::string& description);
CLI::Option* addWords(CLI::App& app, const std::string& name, const std::string& description);
CLI::Option* addFolderOption(CLI::App& app);

std::vector<std::string> wordsOf(const CLI::Option& option);
// UsageError where the word is missing.
std::string requiredWord(const CLI::Option& option);

}  // namespace brindlet
