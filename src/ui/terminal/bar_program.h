// The bar as a program in a terminal: one field, the prediction, the run, the summary.
//
//     return runBar(context, files);
#pragma once

#include <vector>

#include "ui/terminal/command_line_context.h"

namespace brindlet {

// Whether standard input and output are a terminal.
bool canOpenBar();

// Until the user leaves; the exit code. UsageError where the terminal can't be drawn on.
int runBar(CommandLineContext& context, std::vector<FilePath> files);

}  // namespace brindlet
