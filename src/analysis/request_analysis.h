// The prediction of a command for a whole request: simulated once, or once per selected file over one shared state.
//
//     AnalysisResult result = analyzeRequest(command, folder, {environmentOf("a.txt"), environmentOf("b.txt")},
//     services);
#pragma once

#include <string>
#include <vector>

#include "analysis/basher_analysis.h"

namespace brindlet {

// One simulation for each environment, in order; a later one starts from the simulated changes of the earlier ones.
// The result of the last is the result, but the first that ends in an analysis error ends the simulation and is the
// result. A line that does not parse is an `otherError` with the parser's words. Never throws.
AnalysisResult analyzeRequest(const std::string& command, const FilePath& folder,
                              const std::vector<Environment>& iterations, const AnalysisServices& services);

// The result of a simulation that ended in an error: nothing is known, and the command stays as given.
AnalysisResult failedAnalysis(const std::string& command, BasherAnalysisError error);

}  // namespace brindlet
