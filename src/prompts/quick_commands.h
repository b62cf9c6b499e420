// Requests with one right answer, recognised by fixed rules: "to png" over a photo, "zip", "duration". No model is
// asked for the command, and where its output is simple none for the summary either.
//
//     quickCommand("Convert to PNG", {FilePath("/w/a.jpeg")})->command
//         // sips -s format png "$FILE_NAME" --out "${FILE_BASENAME}.png"
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/file_path.h"

namespace brindlet {

// What a run left behind.
struct QuickSummaryContext {
    std::string prompt;
    std::string command;
    std::vector<FilePath> files;
    std::string output;
    std::string failures;  // the messages of the runs that failed, joined
    bool allSuccess = true;
};

struct QuickCommand {
    std::string command;
    // Nothing where a model has to summarise.
    std::function<std::optional<std::string>(const QuickSummaryContext&)> summarize;
};

// Depends on the text and the extensions of the paths alone; touches no file.
std::optional<QuickCommand> quickCommand(std::string_view prompt, const std::vector<FilePath>& files);

}  // namespace brindlet
