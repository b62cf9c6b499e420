// A whole prediction as it leaves the program: one JSON object for scripts, a few lines for people at a terminal.
//
//     PredictReport report{.command = line, .result = result, .runs = "once", .folder = folder, .home = homeFolder(),
//                          .toggles = toggleList.toggles()};
//     print(wantsJson ? jsonText(toJson(report)) : predictionText(report, {.hasColor = isTerminal}));
#pragma once

#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "analysis/analysis_result.h"
#include "analysis/risk.h"
#include "platform/file_path.h"
#include "ui/json.h"
#include "ui/styled_text.h"

namespace brindlet {

struct PredictReport {
    std::string command;  // as it was given
    AnalysisResult result;
    std::string runs;  // "once", "oncePerFile" or "onceOnAllFiles"
    FilePath folder;   // that the command is for
    FilePath home;
    std::set<CommandEffect> toggles;  // what may run without asking
    std::optional<std::string> missingPackage;
    bool predictionNeedsInstall = false;  // the missing package is one without which nothing can be predicted
    bool needsHomebrew = false;           // it comes from Homebrew, which is missing too
};

Json toJson(const PredictReport& report);

// A row's subtitle as the lines that it is shown as, with nothing in them that a name could have smuggled in.
std::vector<std::string> subtitleLines(std::string_view subtitle);

struct TerminalStyle {
    bool hasColor = false;
    bool hasUnicode = true;  // else every icon is one ASCII character
};

// The heading, the rows with their subtitles below them, the risk and what would be asked about. Whatever the names and
// messages hold, no control character is among them.
std::vector<StyledLine> predictionLines(const PredictReport& report, bool hasUnicode);
// The same as text that ends in a line end; the control characters in it are the colours.
std::string predictionText(const PredictReport& report, const TerminalStyle& style);

}  // namespace brindlet
