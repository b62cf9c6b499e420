#include "exec/file_presenting.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <iterator>

#include "platform/log.h"
#include "text/strings.h"

namespace brindlet {

namespace {

struct PipelineEndRow {
    PipelineEnd end;
    std::string_view text;
    std::string_view nothingFound;
    std::string_view verb;
};
constexpr PipelineEndRow pipelineEnds[] = {
    {PipelineEnd::finderSelect, "| finderSelect", "Zero files to select", "Selected"},
    {PipelineEnd::presentFiles, "| presentFiles", "Zero files returned from command", "Presented"},
};

// A file manager takes its time over a long selection; from here on a folder of links is the better sight.
constexpr std::size_t tooManyToSelect = 100;

const PipelineEndRow* rowFor(std::string_view command) {
    const auto* row = std::find_if(std::begin(pipelineEnds), std::end(pipelineEnds),
                                   [command](const PipelineEndRow& each) { return command.ends_with(each.text); });
    return row == std::end(pipelineEnds) ? nullptr : row;
}

bool canBeSelectedInPlace(PipelineEnd end, const std::vector<FilePath>& items, const FilePath& workingDirectory) {
    if (end == PipelineEnd::presentFiles) return items.size() == 1;
    return items.size() < tooManyToSelect && std::all_of(items.begin(), items.end(), [&](const FilePath& item) {
               return item.parent() == workingDirectory;
           });
}

bool isOwnFolder(const std::filesystem::path& folder) {
    struct stat status {};
    return ::lstat(folder.c_str(), &status) == 0 && S_ISDIR(status.st_mode) && status.st_uid == ::geteuid();
}

}  // namespace

PipelineEnd pipelineEnd(std::string_view command) {
    const PipelineEndRow* row = rowFor(command);
    return row ? row->end : PipelineEnd::none;
}

std::string_view withoutPipelineEnd(std::string_view command) {
    const PipelineEndRow* row = rowFor(command);
    return row ? command.substr(0, command.size() - row->text.size()) : command;
}

CommandRunResult presentPaths(PipelineEnd end, std::string_view output, const FilePath& workingDirectory,
                              FilePresenter* presenter, const FilePath& resultsFolder) {
    const auto* row = std::find_if(std::begin(pipelineEnds), std::end(pipelineEnds),
                                   [end](const PipelineEndRow& each) { return each.end == end; });
    std::vector<FilePath> items;
    for (const std::string& line : splitNonEmpty(output, "\n"))
        items.push_back(FilePath::resolve(trimmedBlanks(line), workingDirectory));
    if (items.empty()) return {.output = "", .failureMessage = std::string(row->nothingFound), .exitCode = 1};

    if (presenter) {
        if (canBeSelectedInPlace(end, items, workingDirectory)) {
            presenter->selectInFileManager(items);
        } else {
            presentInResultsFolder(items, resultsFolder, *presenter);
        }
    }
    return {.output = std::string(row->verb) + ' ' + std::to_string(items.size()) + " items in Finder",
            .failureMessage = "",
            .exitCode = 0};
}

void presentInResultsFolder(const std::vector<FilePath>& items, const FilePath& folder, FilePresenter& presenter) {
    namespace fs = std::filesystem;
    std::error_code ignored;
    fs::create_directories(folder.parent().text(), ignored);
    if (!isOwnFolder(folder.parent().text())) {
        logError("'" + folder.parent().text() + "' belongs to someone else, so the files can't be shown there");
        return;
    }
    fs::remove_all(folder.text(), ignored);
    fs::create_directory(folder.text(), ignored);
    for (const FilePath& item : items)
        fs::create_symlink(item.text(), fs::path(folder.text()) / std::string(item.name()), ignored);
    presenter.openFolder(folder);
}

}  // namespace brindlet
