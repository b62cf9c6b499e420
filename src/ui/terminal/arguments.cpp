#include "ui/terminal/arguments.h"

#include <algorithm>

#include "text/strings.h"
#include "ui/terminal/command_line_context.h"
#include "ui/terminal/exit_code.h"

namespace brindlet {

namespace {

constexpr char guard = '\x01';

bool needsGuard(std::string_view word) {
    return word == "++" || word.starts_with(guard) || (word.starts_with('[') && word.ends_with(']'));
}

}  // namespace

std::vector<std::string> guardedArguments(std::span<const char* const> arguments) {
    std::vector<std::string> guarded;
    bool optionsHaveEnded = false;
    for (const std::string_view argument : arguments) {
        if (argument == "--" && !optionsHaveEnded) {
            optionsHaveEnded = true;
        } else if (optionsHaveEnded || needsGuard(argument)) {
            guarded.push_back(guard + std::string(argument));
        } else {
            guarded.emplace_back(argument);
        }
    }
    std::reverse(guarded.begin(), guarded.end());
    return guarded;
}

bool isGuarded(std::string_view argument) {
    return argument.starts_with(guard);
}

std::string withoutGuard(std::string_view argument) {
    return std::string(argument.substr(isGuarded(argument) ? 1 : 0));
}

CLI::Option* addWord(CLI::App& app, const std::string& name, const std::string& description) {
    return app.add_option(name, description);
}

CLI::Option* addWords(CLI::App& app, const std::string& name, const std::string& description) {
    return app.add_option(name, description)->expected(CLI::detail::expected_max_vector_size);
}

CLI::Option* addFolderOption(CLI::App& app) {
    return addWord(app, "--folder", "The open folder; without it the current one")->option_text("DIR");
}

CLI::Option* addModelOption(CLI::App& app) {
    return addWord(app, "--model", "The model to ask; without it the selected one")->option_text("NAME");
}

std::vector<std::string> wordsOf(const CLI::Option& option) {
    std::vector<std::string> words;
    for (const std::string& word : option.results()) words.push_back(withoutGuard(word));
    return words;
}

std::string requiredWord(const CLI::Option& option) {
    if (option.count() == 0) throw UsageError{option.get_name() + " is missing"};
    return withoutGuard(option.results().front());
}

AIModel modelOf(const CLI::Option& option, CommandLineContext& context) {
    if (option.count() == 0) return context.models().selected();
    const std::string name = requiredWord(option);
    if (auto model = context.models().named(name)) return *model;
    throw UsageError{"no model is called '" + name + "': 'brindlet models list' shows their names"};
}

RequestWords::RequestWords(CLI::App& app, std::string name, const std::string& description)
    : name_(std::move(name)),
      text_(*addWord(app, name_, description)),
      files_(*addWords(app, "FILE", "The selected files")),
      folder_(*addFolderOption(app)) {}

std::string RequestWords::text() const {
    std::string text = requiredWord(text_);
    if (trimmed(text).empty()) throw UsageError{name_ + " is empty"};
    return text;
}

std::vector<FilePath> RequestWords::existingFiles(CommandLineContext& context) const {
    openFolder(context);
    return context.existingFiles(wordsOf(files_));
}

std::vector<FilePath> RequestWords::namedFiles(CommandLineContext& context) const {
    openFolder(context);
    return context.namedFiles(wordsOf(files_));
}

void RequestWords::openFolder(CommandLineContext& context) const {
    if (folder_.count() > 0) context.useFolder(requiredWord(folder_));
    context.folder();  // one that has gone is wrong usage, before anything is done
}

}  // namespace brindlet
