// The models of the commands that read text and print text. There is no text engine here: what a filter prints is what
// the real tool prints, launched read-only on files that the line has not changed or on text that is known; where it
// would have to see anything else, its output is unknown.
//
//     sort a            the real tool's sorted lines
//     sort -o b a       a change of b; nothing is launched
//     cat a | sort      unknown, since what cat prints is
//
// Several of these tools write files and run commands where an option or a script tells them to. The models follow the
// usual spellings; what they see beyond them they say as side effects.
#pragma once

#include "analysis/basher_analysis.h"

namespace brindlet {

// text_filters.cpp
CommandResult showEnd(BasherAnalysis& analysis, const ModelInput& input);  // head, tail
CommandResult cutColumns(BasherAnalysis& analysis, const ModelInput& input);
CommandResult sortLines(BasherAnalysis& analysis, const ModelInput& input);
CommandResult uniqueLines(BasherAnalysis& analysis, const ModelInput& input);
CommandResult countWords(BasherAnalysis& analysis, const ModelInput& input);

// comparing.cpp. Neither recursion is simulated.
CommandResult searchText(BasherAnalysis& analysis, const ModelInput& input);    // grep
CommandResult compareFiles(BasherAnalysis& analysis, const ModelInput& input);  // diff

// sed.cpp, awk.cpp. A script that does more than print is refused or said.
CommandResult editStream(BasherAnalysis& analysis, const ModelInput& input);     // sed
bool onlyPrintsEdited(const std::vector<std::string>& args);
bool onlyPrintsFields(const std::vector<std::string>& args);
CommandResult processFields(BasherAnalysis& analysis, const ModelInput& input);  // awk

// evaluators.cpp
CommandResult queryJson(BasherAnalysis& analysis, const ModelInput& input);  // jq
CommandResult calculate(BasherAnalysis& analysis, const ModelInput& input);  // bc

// file_details.cpp
CommandResult printDate(BasherAnalysis& analysis, const ModelInput& input);        // date
CommandResult guessFileType(BasherAnalysis& analysis, const ModelInput& input);    // file
CommandResult showFileDetails(BasherAnalysis& analysis, const ModelInput& input);  // stat, readlink

// read_variables.cpp. Sets the variables and, since no more is sure, fails: a `while read` loop ends at its first test.
CommandResult readVariables(BasherAnalysis& analysis, const ModelInput& input);  // read

}  // namespace brindlet
