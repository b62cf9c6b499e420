// What the models of the document tools share.
//
//     if (auto missing = firstMissingDocument(analysis, inputs)) return failureInWords(notFound("gs", *missing));
//     createDocument(analysis, output);
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "analysis/models/model_support.h"

namespace brindlet {

// "-" is standard input or output, and no file.
inline bool isStandardStream(std::string_view path) {
    return path == "-";
}

// "gs: a.pdf: No such file or directory".
std::string notFound(std::string_view tool, std::string_view path);

bool documentExists(BasherAnalysis& analysis, std::string_view path);
// The first of the paths, as written, at which nothing is; "-" is passed over.
std::optional<std::string> firstMissingDocument(BasherAnalysis& analysis, const Words& paths);

void createDocument(BasherAnalysis& analysis, std::string_view path);

// The tool writes a file that isn't among the predicted changes.
void noteUnshownWrite(BasherAnalysis& analysis, std::string_view tool, std::string_view path);
// The same, but only where it would replace what is there.
void noteUnshownOverwrite(BasherAnalysis& analysis, std::string_view tool, std::string_view path);

}  // namespace brindlet
