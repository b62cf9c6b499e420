// What the subcommands share, made when first asked for: a prediction that needs neither the settings nor a tool pays
// for neither.
//
//     CommandLineContext context;
//     context.useFolder("photos");
//     AnalysisServices services = context.analysisServices();
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "ai/ai_model.h"
#include "ai/custom_model.h"
#include "ai/provider_api_keys.h"
#include "analysis/basher_analysis.h"
#include "exec/log_file.h"
#include "exec/packages.h"
#include "exec/tool_search_path.h"
#include "platform/environment.h"
#include "platform/file_path.h"
#include "platform/file_system.h"
#include "platform/read_only_launcher.h"
#include "platform/secret_store.h"
#include "platform/settings_store.h"

namespace brindlet {

class CommandLineContext {
  public:
    CommandLineContext();

    // Makes `name` the open folder; an empty one leaves the current directory. UsageError for what is no folder, or one
    // that can't be read.
    void useFolder(std::string_view name);
    // The open folder. UsageError where the current directory is asked for and has gone.
    const FilePath& folder();

    // Names taken against the current directory, in order. UsageError for the first that does not exist.
    std::vector<FilePath> existingFiles(const std::vector<std::string>& names);
    // The same for names that need not exist. UsageError for an empty one.
    std::vector<FilePath> namedFiles(const std::vector<std::string>& names);

    FileSystem& files() { return *files_; }
    const Environment& environment();
    SettingsStore& settings();
    SecretStore& secrets();
    ProviderApiKeys& apiKeys();
    CustomModelList& customModels();
    AIModelList& models();
    LogFile& log();
    // From here on what the program does is logged.
    void startLogging();
    ToolSearchPath& searchPath();
    PackageManager& packages();
    // Where it puts what it downloads.
    static FilePath packagesFolder();
    // All of it lives as long as this context.
    const AnalysisServices& analysisServices();
    // No tool of a prediction is waited for once the descriptor can be read. Before the first prediction.
    void endPredictionsOn(int descriptor) { launchLimits_.stopDescriptor = descriptor; }

  private:
    const FilePath& currentDirectory();

    std::unique_ptr<FileSystem> files_;
    std::optional<FilePath> currentDirectory_;
    std::optional<FilePath> folder_;
    std::optional<Environment> environment_;
    std::optional<SettingsStore> settings_;
    std::unique_ptr<SecretStore> secrets_;
    std::unique_ptr<ProviderApiKeys> apiKeys_;
    std::unique_ptr<CustomModelList> customModels_;
    std::unique_ptr<AIModelList> models_;
    std::unique_ptr<LogFile> log_;
    std::unique_ptr<ToolSearchPath> searchPath_;
    std::unique_ptr<PackageManager> packages_;
    LaunchLimits launchLimits_;
    std::unique_ptr<ReadOnlyLauncher> launcher_;
    std::optional<AnalysisServices> services_;
};

}  // namespace brindlet
