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

// What happens at the end of a line that ends in "| finderSelect" or "| presentFiles". A front end without a file
// manager brings one that only says what it would have shown.
struct FilePresenter {
    virtual ~FilePresenter() = default;
    // Opens the file manager with exactly these items selected.
    virtual void selectInFileManager(const std::vector<FilePath>& items) = 0;
    // Opens a folder in the file manager.
    virtual void openFolder(const FilePath& folder) = 0;
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

    // The exact text that bash is given with -c, for `environment` as made by environmentWithFiles.
    static std::string script(std::string_view command, const std::string& searchPath, const Environment& environment,
                              const std::vector<FilePath>& files, const FilePath& workingDirectory);

  private:
    ToolSearchPath& searchPath_;
    FilePresenter* presenter_;
    TrackerChooser chooser_;
};

// The text of a command that only echoes a literal, for which no shell need be started; else none.
std::optional<std::string> pureEchoText(std::string_view command);

}  // namespace brindlet
