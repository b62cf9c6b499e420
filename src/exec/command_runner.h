// Runs one line of bash that the user has accepted, in the open folder, with the selected files in its variables.
//
//     CommandRunner runner(searchPath);
//     auto result = runner.run(command, files, folder, [](const CommandProgress& progress) { ... }, stop);
//     if (!result) ...  // cancelled
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <stop_token>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "exec/file_variables.h"
#include "exec/tool_search_path.h"
#include "platform/environment.h"
#include "platform/file_path.h"
#include "platform/file_presenter.h"

namespace brindlet {

// What a running command reports: a line of text for the status line, or a fraction of the whole where 1.0 is done.
struct OutputLine {
    std::string text;
};
struct ProgressNorm {
    double value = 0;
};
using CommandProgress = std::variant<OutputLine, ProgressNorm>;

struct CommandRunResult {
    std::string output;
    std::string failureMessage;  // empty when all went well
    int exitCode = 0;
    bool operator==(const CommandRunResult&) const = default;
};

// Chooses how a command's output becomes progress. The runner calls it once a run; none: no progress.
struct ProgressTracker {
    using Report = std::function<void(const CommandProgress&)>;
    virtual ~ProgressTracker() = default;
    virtual void handleOutputLine(std::string_view line, const Report& report) = 0;
    virtual void handleElapsed(double seconds, const Report& report) = 0;
};
using TrackerChooser = std::function<std::unique_ptr<ProgressTracker>(std::string_view command)>;

class CommandRunner {
  public:
    CommandRunner(ToolSearchPath& searchPath, FilePresenter* presenter = nullptr, TrackerChooser chooser = nullptr);

    // One process, run to its end. `onLine` gets each line of output as it comes (without its line end), `onProgress`
    // what the tracker makes of it. None if `stop` was requested: the whole process group has then been ended.
    // Every other failure is inside the result.
    std::optional<CommandRunResult> run(const std::string& command, const std::vector<FilePath>& files,
                                        const FilePath& workingDirectory, const Environment& base,
                                        const std::function<void(std::string_view line)>& onLine,
                                        const std::function<void(const CommandProgress&)>& onProgress,
                                        std::stop_token stop);

    // A line that ends in a carriage return is there to be overwritten by the next, as tools show how far they are.
    // Once it has a receiver of its own it does not reach `onLine`; it belongs to the output all the same.
    void divertOverwrittenLines(std::function<void(std::string_view line)> onOverwrittenLine);

    // The exact text that bash is given with -c, for `environment` as made by environmentWithFiles.
    static std::string script(std::string_view command, const std::string& searchPath, const Environment& environment,
                              const std::vector<FilePath>& files, const FilePath& workingDirectory);

  private:
    ToolSearchPath& searchPath_;
    FilePresenter* presenter_;
    TrackerChooser chooser_;
    std::function<void(std::string_view)> onOverwrittenLine_;
};

// The text of a command that only echoes a literal, for which no shell need be started; else none.
std::optional<std::string> pureEchoText(std::string_view command);

}  // namespace brindlet
