// The two tools "finderSelect" and "presentFiles", which exist only as the end of a pipeline: no shell ever sees them.
// They are cut off the command, and what the rest of it printed is taken as paths that the file manager shows.
//
//     pipelineEnd("find . -name '*.txt' | finderSelect") == PipelineEnd::finderSelect
#pragma once

#include <string_view>

#include "exec/command_runner.h"
#include "platform/file_path.h"

namespace brindlet {

enum class PipelineEnd { none, finderSelect, presentFiles };
PipelineEnd pipelineEnd(std::string_view command);

// The command without that end. What stands before its bar, such as a blank, stays.
std::string_view withoutPipelineEnd(std::string_view command);

// Shows the paths in `output`, one a line, and tells how many there were; it is a failure if there were none. With no
// presenter nothing is shown. `output` is taken byte for byte, since names need not be UTF-8. What can't be selected in
// one folder is shown in `resultsFolder`.
CommandRunResult presentPaths(PipelineEnd end, std::string_view output, const FilePath& workingDirectory,
                              FilePresenter* presenter,
                              const FilePath& resultsFolder = FilePath("/tmp/Brindlet/Brindlet File Results"));

// Fills `folder`, anew each time, with symbolic links to `items` and opens it: so files from anywhere appear in one
// window. What goes wrong for one item leaves that one out. Nothing is done if the folder above it belongs to another
// user, who could put anything there.
void presentInResultsFolder(const std::vector<FilePath>& items, const FilePath& folder, FilePresenter& presenter);

}  // namespace brindlet
