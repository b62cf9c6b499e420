#include "ui/terminal/command_run.h"

#include <utility>

#include "exec/file_variables.h"
#include "platform/log.h"

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
                              const std::function<void(std::string_view line)>& onLine, const std::stop_token& stop,
                              const std::function<void(const CommandProgress&)>& onProgress) {
    CommandRunSummary summary;
    const auto runsToDo = selections(command, files);
    const auto total = static_cast<double>(runsToDo.size());
    const auto report = [&](const CommandProgress& progress) {
        if (const auto* line = std::get_if<OutputLine>(&progress)) logInfo("COMMAND OUTPUT: " + line->text);
        const auto* norm = std::get_if<ProgressNorm>(&progress);
        if (!onProgress) return;
        onProgress(norm ? ProgressNorm{(static_cast<double>(summary.runs) + norm->value) / total} : progress);
    };
    for (const std::vector<FilePath>& selection : runsToDo) {
        if (runsToDo.size() > 1) report(ProgressNorm{0});
        auto result = runner.run(command, selection, folder, environment, onLine, report, stop);
        if (!result || stop.stop_requested()) {
            summary.wasCancelled = true;
            break;
        }
        join(summary, std::move(*result));
    }
    return summary;
}

}  // namespace brindlet
