// A prediction of a line that the user brings, made with what the command line shares.
//
//     const PredictReport report = predictCommand("mv a b", files, context);
#pragma once

#include <string>
#include <vector>

#include "platform/file_path.h"
#include "ui/predict_report.h"
#include "ui/terminal/command_line_context.h"

namespace brindlet {

// The line is simulated as it would run: once, or once for each file. A line that wants files and has none is
// `noFilesSelected`, whatever else it holds.
PredictReport predictCommand(const std::string& command, const std::vector<FilePath>& files,
                             CommandLineContext& context);
// In another folder than the context's.
PredictReport predictCommand(const std::string& command, const std::vector<FilePath>& files, const FilePath& folder,
                             CommandLineContext& context);

// For the stream that `descriptor` is: colour and characters as it can show them.
TerminalStyle styleFor(int descriptor);

}  // namespace brindlet
