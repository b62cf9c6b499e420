// How the output of a quick command is told in one line, with no model. Each gives nothing where the output is not what
// it expects or a run failed; a model summarises then.
//
//     summaries::count("📝 Word count")({.files = {file}, .output = "  120 a.md"})   // "📝 Word count: 120"
#pragma once

#include <functional>
#include <optional>
#include <string>

#include "prompts/quick_commands.h"

namespace brindlet::summaries {

using Summary = std::function<std::optional<std::string>(const QuickSummaryContext&)>;

// The text, whatever the output and however many files.
Summary fixed(std::string text);
// How many items the file manager says that it selected.
std::optional<std::string> selected(const QuickSummaryContext& context);

// These read the output of one file.

// Leaves the summary to a model: always nothing.
std::optional<std::string> none(const QuickSummaryContext& context);
std::optional<std::string> imageSize(const QuickSummaryContext& context);  // as sips prints it
std::optional<std::string> videoSize(const QuickSummaryContext& context);  // "1920x1080" in the first line
std::optional<std::string> duration(const QuickSummaryContext& context);   // seconds
std::optional<std::string> fileSize(const QuickSummaryContext& context);   // a line of `ls -lh` or `du -sh`
std::optional<std::string> imageSizeAndFileSize(const QuickSummaryContext& context);
std::optional<std::string> videoSizeAndFileSize(const QuickSummaryContext& context);
// The number at the begin of the first line, behind the label.
Summary count(std::string label);

}  // namespace brindlet::summaries
