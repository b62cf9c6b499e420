// What happened in a run, in one line: that line is all the user reads.
//
//     auto summary = summarizeOutput(models, model, {"count the lines", "wc -l a", {file}, "12 a"}, stop);
#pragma once

#include <optional>
#include <stop_token>
#include <string>
#include <vector>

#include "ai/ai_model.h"
#include "ai/model_caller.h"
#include "platform/file_path.h"
#include "platform/result.h"

namespace brindlet {

struct RunToSummarize {
    std::string prompt;   // the user's request
    std::string command;  // the line that ran
    std::vector<FilePath> files;
    std::string output;                   // what the runs printed, trimmed
    std::vector<std::string> failures{};  // the messages of those that failed
    bool allSuccess = true;
};

// What a model is sent for it.
std::string summaryPrompt(const RunToSummarize& run);

// The quick rule's own words, where the request has one and it has some.
std::optional<std::string> quickSummary(const RunToSummarize& run);

// By a quick rule where one has words, else by the model.
struct OutputSummary {
    std::string text;
    bool isQuick = false;
};
Result<OutputSummary> summarizeOutput(ModelCalling& models, const AIModel& model, const RunToSummarize& run,
                                      const std::stop_token& stop);

}  // namespace brindlet
