#include "ui/terminal/command_line.h"

#include <cerrno>
#include <exception>
#include <map>
#include <memory>
#include <system_error>

#include <fmt/format.h>

#include "platform/read_only_launcher.h"
#include "text/strings.h"
#include "ui/terminal/arguments.h"
#include "ui/terminal/bar_program.h"
#include "ui/terminal/exit_code.h"
#include "ui/terminal/subcommand.h"

namespace brindlet {

namespace {

constexpr SubcommandRow subcommandRows[] = {
    {"predict", "Says what a line of bash would do, and changes nothing",
     R"(brindlet predict 'for f in *.txt; do mv "$f" "${f%.txt}.md"; done')", makePredictCommand},
    {"run", "Predicts a line of bash, asks where that is wanted, and runs it",
     "brindlet run 'mkdir -p sorted && mv *.jpg sorted/'", makeRunCommand},
    {"parse", "Prints a line of bash as it is understood", "brindlet parse 'ls|wc -l'", makeParseCommand},
    {"glob", "Prints the names that match a file-name pattern", "brindlet glob '@(a|b)*.txt' a1.txt c1.txt",
     makeGlobCommand},
    {"ask", "Makes a command of a request, shows what it will do, and runs it", "brindlet ask 'zip' a.txt b.txt",
     makeAskCommand},
    {"summarize", "Says in a few words what output means",
     "du -sh . | brindlet summarize --command 'du -sh .' --request 'size' .", makeSummarizeCommand},
    {"quick", "Prints the command of a request that needs no model", "brindlet quick 'convert to png' photo.jpeg",
     makeQuickCommand},
    {"prompt", "Prints what a model would be sent, and sends nothing",
     "brindlet prompt 'make this 300px wide' photo.jpg", makePromptCommand},
    {"action", "Asks, predicts and runs once, for scripts", "brindlet action --yes 'zip' a.txt b.txt",
     makeActionCommand},
    {"bar", "Opens the bar on the desktop", "brindlet bar --folder ~/Pictures a.jpg b.jpg", makeBarCommand},
    {"models", "Shows the models, chooses one, adds ones of your own",
     "brindlet models add --name llama3.1 --url http://localhost:11434", makeModelsCommand},
    {"keys", "Shows, stores and removes your keys for the providers", "brindlet keys set OpenAI < key.txt",
     makeKeysCommand},
    {"settings", "Shows and changes the settings", "brindlet settings allow 'Rename files' on", makeSettingsCommand},
    {"tools", "Shows the tools that can be installed, installs and removes them", "brindlet tools install FFmpeg",
     makeToolsCommand},
    {"history", "Shows the requests so far, and takes some or all away", "brindlet history list", makeHistoryCommand},
    {"log", "Shows the log, or says where it is", "brindlet log show", makeLogCommand},
};

class CommandLine {
  public:
    CommandLine() : app_("Says what a line of bash will do, and runs it when you agree.", "brindlet") {
        app_.require_subcommand(0, 1);  // none is fine: then the bar is meant
        files_ = addWords(app_, "FILE", "The items to begin with, where no subcommand is named");
        folder_ = addFolderOption(app_);
        app_.add_flag("--version", wantsVersion_, "Says which version this is and what guards its predictions");
        app_.footer(
            "Example:\n  brindlet predict 'mv a.txt b.txt'\n\n"
            "Without a subcommand, in a terminal, the bar opens: type a request, see what it would do, confirm.\n"
            "'brindlet SUBCOMMAND --help' tells more. '--' ends the options.");
        for (const SubcommandRow& row : subcommandRows) {
            CLI::App* app = app_.add_subcommand(std::string(row.name), std::string(row.summary));
            app->footer(fmt::format("Example:\n  {}", row.example));
            subcommands_[app] = row.make(*app);
        }
    }

    int run(std::span<const char* const> arguments, const std::string& version, StandardOutput& output) {
        try {
            app_.parse(guardedArguments(arguments));
        } catch (const CLI::CallForHelp&) {
            output.write(app_.help());
            return exitDone;
        } catch (const CLI::ParseError& error) {
            throw UsageError{sentenceFor(error)};
        }
        if (wantsVersion_) {
            output.write(
                fmt::format("brindlet {}\nsandbox of predictions: {}\n", version, openReadOnlyLauncher()->layers()));
            return exitDone;
        }
        CommandLineContext context;
        if (app_.get_subcommands().empty()) return openBar(context);
        return subcommands_.at(app_.get_subcommands().front())->run(context, output);
    }

    // The subcommand that was reached, as typed: "brindlet settings set".
    std::string typedName() const {
        std::string name = app_.get_name();
        for (const CLI::App* app : typedPath()) name += " " + app->get_name();
        return name;
    }

  private:
    int openBar(CommandLineContext& context) const {
        if (folder_->count() > 0) context.useFolder(requiredWord(*folder_));
        const std::vector<std::string> names = wordsOf(*files_);
        const std::vector<FilePath> files = context.namedFiles(names);
        for (std::size_t at = 0; at < files.size(); ++at)
            if (context.files().look(files[at]) == ItemKind::missing)
                throw UsageError{unknownWordText(names[at], namesOf(app_))};
        if (!canOpenBar()) throw UsageError{"say what to do: " + namesOf(app_)};
        return runBar(context, files);
    }

    static std::string unknownWordText(const std::string& word, const std::string& known) {
        return fmt::format("there is no '{}'; choose from {}", word, known);
    }

    std::vector<const CLI::App*> typedPath() const {
        std::vector<const CLI::App*> path;
        for (const CLI::App* at = &app_; !at->get_subcommands().empty(); path.push_back(at))
            at = at->get_subcommands().front();
        return path;
    }

    static std::string namesOf(const CLI::App& app) {
        std::vector<std::string> names;
        for (const CLI::App* each : app.get_subcommands([](const CLI::App*) { return true; }))
            names.push_back(each->get_name());
        return joined(names, ", ");
    }

    std::string sentenceFor(const CLI::ParseError& error) const {
        const std::vector<const CLI::App*> path = typedPath();
        const CLI::App& reached = path.empty() ? app_ : *path.back();
        const std::string known = namesOf(reached);
        for (const std::string& word : app_.remaining(true)) {
            if (word.size() > 1 && word.front() == '-')
                return fmt::format("there is no option '{}'; a word that begins with '-' goes after '--'", word);
            return known.empty()
                       ? fmt::format("'{}' is one word too many; is a line with blanks in quotes?", withoutGuard(word))
                       : unknownWordText(withoutGuard(word), known);
        }
        return known.empty() ? error.what() : "say what to do: " + known;
    }

    bool wantsVersion_ = false;
    CLI::App app_;
    const CLI::Option* files_ = nullptr;
    const CLI::Option* folder_ = nullptr;
    std::map<const CLI::App*, std::unique_ptr<Subcommand>> subcommands_;
};

int runReporting(CommandLine& commandLine, std::span<const char* const> arguments, const std::string& version) {
    StandardOutput output;
    try {
        const int exitCode = commandLine.run(arguments, version, output);
        output.flush();
        return exitCode;
    } catch (const UsageError& error) {
        reportProblem(fmt::format("{} (see '{} --help')", error.sentence, commandLine.typedName()));
        return exitWrongUsage;
    } catch (const OutputError& failure) {
        if (failure.error != EPIPE)
            reportProblem("standard output can't be written: " + std::generic_category().message(failure.error));
        return exitFailed;
    }
}

}  // namespace

CLI::App& addAction(CLI::App& subcommand, const std::string& word, const std::string& summary,
                    const std::string& example) {
    CLI::App& action = *subcommand.add_subcommand(word, summary);
    action.footer(fmt::format("Example:\n  brindlet {} {}", subcommand.get_name(), example));
    return action;
}

int exitCodeFor(const std::optional<Failure>& failure) {
    if (!failure) return exitDone;
    reportProblem(failure->description);
    return exitFailed;
}

int runCommandLine(std::span<const char* const> arguments, const std::string& version) {
    try {
        prepareStandardStreams();
        CommandLine commandLine;
        return runReporting(commandLine, arguments, version);
    } catch (const std::exception& error) {
        reportProblem(fmt::format("something went wrong that shouldn't have: {}", error.what()));
        return exitFailed;
    } catch (...) {
        reportProblem("something went wrong that shouldn't have");
        return exitFailed;
    }
}

}  // namespace brindlet
