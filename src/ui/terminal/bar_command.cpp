#include <unistd.h>

#include <filesystem>
#include <string>
#include <system_error>
#include <vector>

#include "ui/terminal/arguments.h"
#include "ui/terminal/exit_code.h"
#include "ui/terminal/subcommand.h"

namespace brindlet {

namespace {

constexpr const char* barProgramName = "brindlet-bar";

// Beside this program, or where an installed tree has what people don't call by hand.
std::string barProgram() {
    namespace fs = std::filesystem;
    std::error_code error;
    const fs::path folder = fs::read_symlink("/proc/self/exe", error).parent_path();
    for (const fs::path& place : {folder / barProgramName, folder.parent_path() / "libexec/brindlet" / barProgramName})
        if (::access(place.c_str(), X_OK) == 0) return place;
    return "";
}

// The bar is a program of its own, since it needs much that a terminal doesn't.
class BarCommand final : public Subcommand {
  public:
    explicit BarCommand(CLI::App& app)
        : files_(*addWords(app, "FILE", "The items to begin with")), folder_(*addFolderOption(app)) {
        for (const auto& [word, help] :
             {std::pair{"--toggle", "Bring the bar forward, or take it away"},
              std::pair{"--settings", "Open the settings"}, std::pair{"--quit", "End the bar"},
              std::pair{"--login", "As it was left, for the start of a session"}})
            modes_.push_back(app.add_flag(word, help));
        for (CLI::Option* mode : modes_)
            for (CLI::Option* other : modes_)
                if (mode != other) mode->excludes(other);
    }

    int run(CommandLineContext& context, StandardOutput&) override {
        std::vector<std::string> words = {barProgram()};
        for (const CLI::Option* mode : modes_)
            if (mode->count() > 0) words.push_back("--" + mode->get_single_name());
        if (folder_.count() > 0) context.useFolder(requiredWord(folder_));
        const std::vector<FilePath> files = context.existingFiles(wordsOf(files_));
        if (folder_.count() > 0 || !files.empty()) {
            words.insert(words.end(), {"--folder", context.folder().text(), "--"});
            for (const FilePath& file : files) words.push_back(file.text());
        }
        if (words.front().empty()) {
            reportProblem(
                "the desktop bar was not built, since Qt 6 was missing then: install qt6-declarative-dev and build "
                "again, or use 'brindlet' alone for the bar in a terminal");
            return exitFailed;
        }
        std::vector<char*> arguments;
        for (std::string& word : words) arguments.push_back(word.data());
        arguments.push_back(nullptr);
        ::execv(arguments.front(), arguments.data());
        reportProblem("'" + words.front() + "' can't be started");
        return exitFailed;
    }

  private:
    const CLI::Option& files_;
    const CLI::Option& folder_;
    std::vector<CLI::Option*> modes_;
};

}  // namespace

std::unique_ptr<Subcommand> makeBarCommand(CLI::App& app) {
    return std::make_unique<BarCommand>(app);
}

}  // namespace brindlet
