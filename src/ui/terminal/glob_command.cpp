#include <algorithm>

#include "glob/pattern.h"
#include "ui/json.h"
#include "ui/terminal/arguments.h"
#include "ui/terminal/exit_code.h"
#include "ui/terminal/subcommand.h"

namespace brindlet {

namespace {

class GlobCommand final : public Subcommand {
  public:
    explicit GlobCommand(CLI::App& app)
        : pattern_(*addWord(app, "PATTERN", "The file-name pattern")),
          names_(*addWords(app, "NAME", "The names to test; without any the open folder's own")),
          folder_(*addFolderOption(app)) {
        app.add_flag("--json", wantsJson_, "Prints the pattern's parts and the matches as one JSON object");
    }

    int run(CommandLineContext& context, StandardOutput& output) override {
        const std::string text = requiredWord(pattern_);
        if (folder_.count() > 0) context.useFolder(requiredWord(folder_));
        try {
            const Pattern pattern(text);
            const std::vector<std::string> matches = matchesOf(pattern, names(context));
            if (wantsJson_) {
                output.write(jsonText({{"sections", jsonList(pattern.sections())}, {"matches", matches}}) + "\n");
            } else {
                for (const std::string& name : matches) output.write(name + "\n");
            }
            return matches.empty() ? exitFailed : exitDone;
        } catch (const InvalidPatternError& error) {
            if (wantsJson_) {
                output.write(jsonText({{"error", toJson(error.underlyingError)}}) + "\n");
            } else {
                reportProblem(error.sentence);
            }
            return exitFailed;
        }
    }

  private:
    std::vector<std::string> names(CommandLineContext& context) const {
        if (names_.count() > 0) return wordsOf(names_);
        auto listed = context.files().listNames(context.folder());
        if (!listed) throw UsageError{"the folder can't be listed: name another with --folder, or give the NAMEs"};
        std::sort(listed->begin(), listed->end());
        return *listed;
    }

    static std::vector<std::string> matchesOf(const Pattern& pattern, const std::vector<std::string>& names) {
        std::vector<std::string> matches;
        std::copy_if(names.begin(), names.end(), std::back_inserter(matches),
                     [&](const std::string& name) { return pattern.match(name); });
        return matches;
    }

    const CLI::Option& pattern_;
    const CLI::Option& names_;
    const CLI::Option& folder_;
    bool wantsJson_ = false;
};

}  // namespace

std::unique_ptr<Subcommand> makeGlobCommand(CLI::App& app) {
    return std::make_unique<GlobCommand>(app);
}

}  // namespace brindlet
