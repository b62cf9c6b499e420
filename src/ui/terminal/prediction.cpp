#include "ui/terminal/prediction.h"

#include <cstdlib>

#include "analysis/request_analysis.h"
#include "exec/file_variables.h"
#include "platform/log.h"
#include "text/characters.h"
#include "text/strings.h"
#include "ui/terminal/console.h"

namespace brindlet {

namespace {

AnalysisResult analyze(const std::string& command, RunMode mode, const std::vector<FilePath>& files,
                       const FilePath& folder, CommandLineContext& context) {
    if (mode != RunMode::once && files.empty())
        return failedAnalysis(command, {BasherAnalysisError::Kind::noFilesSelected, ""});
    return analyzeRequest(command, folder, runEnvironments(command, files, folder, context.environment()),
                          context.analysisServices());
}

void noteMissingPackage(PredictReport& report, const PackageManager& packages) {
    report.missingPackage = packages.firstMissingPackage(report.result.requiredPackages);
    if (!report.missingPackage) return;
    const PackageInfo* package = packages.packageNamed(*report.missingPackage);
    report.predictionNeedsInstall = package->requiresInstallForPrediction;
    report.needsHomebrew = package->source == PackageSource::homebrew && !packages.brewPath();
}

// The locale's character set, by the variables that decide it (POSIX.1-2017, 8.2).
bool localeIsUtf8() {
    for (const char* name : {"LC_ALL", "LC_CTYPE", "LANG"}) {
        const char* value = std::getenv(name);
        if (value == nullptr || *value == '\0') continue;
        const std::string locale = lowercased(value);
        return contains(locale, "utf-8") || contains(locale, "utf8");
    }
    return false;
}

}  // namespace

PredictReport predictCommand(const std::string& command, const std::vector<FilePath>& files,
                             CommandLineContext& context) {
    return predictCommand(command, files, context.folder(), context);
}

PredictReport predictCommand(const std::string& command, const std::vector<FilePath>& files, const FilePath& folder,
                             CommandLineContext& context) {
    logInfo("PRE ANALYSIS COMMAND: " + command);
    const RunMode mode = runMode(command);
    PredictReport report{.command = command,
                         .result = analyze(command, mode, files, folder, context),
                         .runs = std::string(caseName(mode)),
                         .folder = folder,
                         .home = homeFolder(),
                         .toggles = AnalysisConfirmationToggleList(context.settings()).toggles(),
                         .missingPackage = std::nullopt,
                         .predictionNeedsInstall = false};
    if (!report.result.requiredPackages.empty()) noteMissingPackage(report, context.packages());
    logInfo("REWRITTEN COMMAND: " + report.result.rewrittenCommand);
    return report;
}

TerminalStyle styleFor(int descriptor) {
    return {.hasColor = wantsColour(descriptor), .hasUnicode = localeIsUtf8()};
}

}  // namespace brindlet
