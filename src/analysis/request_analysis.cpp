#include "analysis/request_analysis.h"

namespace brindlet {

AnalysisResult failedAnalysis(const std::string& command, BasherAnalysisError error) {
    AnalysisResult result;
    result.output = SimString::unknown();
    result.analysisError = std::move(error);
    result.rewrittenCommand = command;
    return result;
}

AnalysisResult analyzeRequest(const std::string& command, const FilePath& folder,
                              const std::vector<Environment>& iterations, const AnalysisServices& services) {
    using Kind = BasherAnalysisError::Kind;
    if (iterations.empty()) return failedAnalysis(command, {Kind::noFilesSelected, ""});
    const auto state = std::make_shared<BasherAnalysisState>(services.files);
    AnalysisResult result;
    try {
        for (const auto& environment : iterations) {
            BasherAnalysis analysis(Basher(command), folder, environment, state, services);
            result = analysis.analyse();
            if (result.analysisError) break;
        }
    } catch (const BasherError& error) {
        return failedAnalysis(command, {Kind::otherError, error.description()});
    } catch (const BasherAnalysisExpansionError& error) {
        return failedAnalysis(command, {Kind::otherError, error.message});
    } catch (const BasherAnalysisFailure& failure) {
        return failedAnalysis(command, {Kind::otherError, failure.message});
    }
    return result;
}

}  // namespace brindlet
