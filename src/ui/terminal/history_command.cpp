#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <fmt/format.h>

#include "exec/command_history.h"
#include "text/strings.h"
#include "ui/terminal/arguments.h"
#include "ui/terminal/exit_code.h"
#include "ui/terminal/question.h"
#include "ui/terminal/shown_text.h"
#include "ui/terminal/subcommand.h"

namespace brindlet {

namespace {

constexpr std::string_view clearQuestion =
    "Are you sure you want to clear your command history? This action cannot be undone.\n"
    "[Enter/y] clears, [n/Escape] keeps it ";

// Where the list has the entry with the number as typed, 1 for the newest. None, with the problem told, where the
// history has no such entry.
std::optional<std::size_t> placeOf(const std::string& word, const std::vector<AICommand>& commands) {
    const auto number = parsedInteger(word);
    if (!number || *number < 1)
        throw UsageError{
            fmt::format("'{}' is no number of an entry: 1 is the newest, see 'brindlet history list'", word)};
    const auto count = static_cast<std::int64_t>(commands.size());
    if (*number <= count) return static_cast<std::size_t>(count - *number);
    reportProblem(fmt::format("there is no entry {}: the history has {}", *number, count));
    return std::nullopt;
}

// The request, and below it the command where there is one that says more.
void printHistoryRow(std::size_t number, const AICommand& command, StandardOutput& output) {
    output.write(fmt::format("{:>4}  {}\n", number, shownText(command.prompt)));
    if (!command.bashCommand.empty() && command.bashCommand != command.prompt)
        output.write(fmt::format("      $ {}\n", shownText(command.bashCommand)));
}

void printHistoryEntry(const AICommand& command, StandardOutput& output) {
    output.write(fmt::format("Request: {}\n", shownText(command.prompt)));
    if (!command.bashCommand.empty()) output.write(fmt::format("Command: {}\n", shownText(command.bashCommand)));
    if (command.requiredPackages.empty()) return;
    const std::vector<std::string> packages(command.requiredPackages.begin(), command.requiredPackages.end());
    output.write(fmt::format("Needs: {}\n", shownText(joined(packages, ", "))));
}

class HistoryCommand final : public Subcommand {
  public:
    explicit HistoryCommand(CLI::App& app)
        : list_(added(app, "list", "Shows the requests so far, the newest last", "list")),
          show_(added(app, "show", "Shows one request with its command", "show 1")),
          remove_(added(app, "remove", "Takes one request out of the history", "remove 3")),
          clear_(added(app, "clear", "Empties the history", "clear --yes")),
          shownNumber_(*addWord(show_, "N", "Its number, 1 for the newest")),
          removedNumber_(*addWord(remove_, "N", "Its number, 1 for the newest")) {
        app.require_subcommand(1);
        list_.add_flag("--json", wantsJson_, "Prints the stored commands as a JSON array, the newest last");
        clear_.add_flag("--yes", isConfirmed_, "Clears without asking");
    }

    int run(CommandLineContext& context, StandardOutput& output) override {
        if (clear_.parsed() && !isConfirmed_) {
            if (const auto exitCode = refusalToClear()) return *exitCode;
        }
        CommandHistoryStore history(dataFolder(), context.settings());
        history.loadOrMigrateHistory();
        if (list_.parsed()) return list(history.commandHistory(), output);
        if (clear_.parsed()) return history.saveHistory({}) ? exitDone : exitFailed;

        std::vector<AICommand> commands = history.commandHistory();
        const auto place = placeOf(requiredWord(show_.parsed() ? shownNumber_ : removedNumber_), commands);
        if (!place) return exitFailed;
        if (show_.parsed()) {
            printHistoryEntry(commands[*place], output);
            return exitDone;
        }
        commands.erase(commands.begin() + static_cast<std::ptrdiff_t>(*place));
        return history.saveHistory(std::move(commands)) ? exitDone : exitFailed;
    }

  private:
    static CLI::App& added(CLI::App& app, const std::string& name, const std::string& summary,
                           const std::string& example) {
        CLI::App& action = *app.add_subcommand(name, summary);
        action.footer("Example:\n  brindlet history " + example);
        return action;
    }

    // Asked before the history is read, so that what others add while the question stands is cleared too.
    static std::optional<int> refusalToClear() {
        if (!canAsk()) {
            reportProblem("clearing the history can't be undone and nobody can be asked: --yes clears it");
            return exitFailed;
        }
        const Interruption interruption;
        return ask(clearQuestion, interruption) == Answer::yes ? std::nullopt : std::optional<int>(exitCancelled);
    }

    int list(const std::vector<AICommand>& commands, StandardOutput& output) const {
        if (wantsJson_) {
            output.write(historyText(commands));
            return exitDone;
        }
        if (commands.empty()) output.write("Nothing in history\n");
        for (std::size_t at = 0; at < commands.size(); ++at)
            printHistoryRow(commands.size() - at, commands[at], output);
        return exitDone;
    }

    CLI::App& list_;
    CLI::App& show_;
    CLI::App& remove_;
    CLI::App& clear_;
    const CLI::Option& shownNumber_;
    const CLI::Option& removedNumber_;
    bool wantsJson_ = false;
    bool isConfirmed_ = false;
};

}  // namespace

std::unique_ptr<Subcommand> makeHistoryCommand(CLI::App& app) {
    return std::make_unique<HistoryCommand>(app);
}

}  // namespace brindlet
