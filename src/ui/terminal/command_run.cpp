#include "ui/terminal/command_run.h"

#include <utility>

#include "exec/file_variables.h"

namespace brindlet {

namespace {

// What each run gets as its files.
std::vector<std::vector<FilePath>> selections(std::string_view command, const std::vector<FilePath>& files) {
    if (runMode(command) != RunMode::oncePerFile) return {files};
    std::vector<std::vector<FilePath>> each;
    for (const FilePath& file : files) each.push_back({file});
    return each;
}

void join(CommandRunSummary& summary, CommandRunResult result) {
    ++summary.runs;
    if (!summary.output.empty() && summary.output.back() != '\n') summary.output += '\n';
    summary.output += result.output;
    if (!result.failureMessage.empty()) summary.failureMessages.push_back(std::move(result.failureMessage));
    if (summary.exitCode == 0) summary.exitCode = result.exitCode;
}

}  // namespace

bool hasTooManyFiles(std::string_view command, const std::vector<FilePath>& files) {
    return usesAllFilesVariable(command) && files.size() > maxFilesAtOnce;
}

CommandRunSummary runAccepted(const std::string& command, const std::vector<FilePath>& files, const FilePath& folder,
                              const Environment& environment, CommandRunner& runner,
                              const std::function<void(std::string_view line)>& onLine, const std::stop_token& stop) {
    CommandRunSummary summary;
    for (const std::vector<FilePath>& selection : selections(command, files)) {
        auto result = runner.run(
            command, selection, folder, environment, onLine, [](const CommandProgress&) {}, stop);
        if (!result || stop.stop_requested()) {
            summary.wasCancelled = true;
            break;
        }
        join(summary, std::move(*result));
    }
    return summary;
}

}  // namespace brindlet
