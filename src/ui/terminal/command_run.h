// Runs an accepted line, once or once for each file, and joins what the runs gave.
//
//     const CommandRunSummary done = runAccepted(line, files, folder, tools, onLine, interruption.token());
#pragma once

#include <functional>
#include <stop_token>
#include <string>
#include <string_view>
#include <vector>

#include "exec/command_runner.h"
#include "platform/environment.h"
#include "platform/file_path.h"

namespace brindlet {

struct CommandRunSummary {
    std::size_t runs = 0;
    std::string output;                        // of all runs, each beginning on a line of its own
    std::vector<std::string> failureMessages;  // of the runs that failed, in order
    int exitCode = 0;                          // the first that isn't 0, else 0
    bool wasCancelled = false;
};

// True where the line names all files at once and there are too many for it; tooManyFilesText is then the error.
bool hasTooManyFiles(std::string_view command, const std::vector<FilePath>& files);
inline constexpr std::string_view tooManyFilesText =
    "Sorry, Brindlet can't process more than 100 files at once with 'SPACE_SEPARATED_FILE_NAMES'";

// A line for each file does not run at all without files. A run that fails does not keep the next from running; `stop`
// does. `onLine` gets each line of output as it comes, `onProgress` the progress of all runs together; its lines are
// logged.
CommandRunSummary runAccepted(const std::string& command, const std::vector<FilePath>& files, const FilePath& folder,
                              const Environment& environment, CommandRunner& runner,
                              const std::function<void(std::string_view line)>& onLine, const std::stop_token& stop,
                              const std::function<void(const CommandProgress&)>& onProgress = nullptr);

}  // namespace brindlet
