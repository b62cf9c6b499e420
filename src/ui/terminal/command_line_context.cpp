#include "ui/terminal/command_line_context.h"

#include <unistd.h>

#include <filesystem>
#include <system_error>

#include <fmt/format.h>

#include "analysis/models/command_table.h"
#include "platform/log.h"
#include "ui/terminal/exit_code.h"

namespace brindlet {

namespace {

constexpr std::string_view binariesName = "Binaries";
// Archives come from here instead, for tests and mirrors.
constexpr std::string_view packagesBaseURLVariable = "BRINDLET_PACKAGES_BASE_URL";

// The tools that came with the program, or that somebody put beside its data. In an installed tree they don't lie among
// the users' own programs: bin/brindlet, libexec/brindlet/, where the desktop bar lies too.
std::vector<FilePath> binariesFolders() {
    std::error_code error;
    const FilePath program(std::filesystem::read_symlink("/proc/self/exe", error).string());
    const FilePath folder = program.parent();
    const auto toolsBelow = [](const FilePath& prefix) { return prefix.child("libexec").child("brindlet"); };
    return {dataFolder().child(binariesName), folder.child(binariesName), toolsBelow(folder.parent()),
            toolsBelow(folder.parent().parent())};
}

}  // namespace

CommandLineContext::CommandLineContext() : files_(openFileSystem()) {}

const FilePath& CommandLineContext::currentDirectory() {
    if (currentDirectory_) return *currentDirectory_;
    std::error_code error;
    const std::filesystem::path path = std::filesystem::current_path(error);
    if (error) throw UsageError{"the current folder can't be used (" + error.message() + "): go to another one first"};
    return currentDirectory_.emplace(path.string());
}

void CommandLineContext::useFolder(std::string_view name) {
    if (name.empty()) throw UsageError{"--folder wants the name of a folder, and this one is empty"};
    const FilePath path = name.front() == '/' ? FilePath(name) : FilePath::resolve(name, currentDirectory());
    switch (files_->look(path)) {
        case ItemKind::missing:
            throw UsageError{fmt::format("there is no folder '{}': name one that exists with --folder", name)};
        case ItemKind::file:
            throw UsageError{fmt::format("'{}' is no folder: name one with --folder", name)};
        case ItemKind::folder:
            break;
    }
    if (::access(path.text().c_str(), R_OK | X_OK) != 0)
        throw UsageError{fmt::format("the folder '{}' can't be read: choose another with --folder", name)};
    folder_ = path;
}

const FilePath& CommandLineContext::folder() {
    if (!folder_) folder_ = currentDirectory();
    return *folder_;
}

std::vector<FilePath> CommandLineContext::namedFiles(const std::vector<std::string>& names) {
    std::vector<FilePath> paths;
    paths.reserve(names.size());
    for (const std::string& name : names) {
        if (name.empty()) throw UsageError{"a FILE is an empty name: leave it out or name a file"};
        paths.push_back(name.front() == '/' ? FilePath(name) : FilePath::resolve(name, currentDirectory()));
    }
    return paths;
}

std::vector<FilePath> CommandLineContext::existingFiles(const std::vector<std::string>& names) {
    std::vector<FilePath> paths = namedFiles(names);
    for (std::size_t at = 0; at < paths.size(); ++at)
        if (files_->look(paths[at]) == ItemKind::missing)
            throw UsageError{fmt::format("there is no file '{}': a FILE must exist", names[at])};
    return paths;
}

const Environment& CommandLineContext::environment() {
    if (!environment_) environment_ = processEnvironment();
    return *environment_;
}

SettingsStore& CommandLineContext::settings() {
    if (!settings_) settings_.emplace(configFolder().child("settings.json"));
    return *settings_;
}

SecretStore& CommandLineContext::secrets() {
    if (!secrets_) secrets_ = openSecretStore(dataFolder(), environment());
    return *secrets_;
}

ProviderApiKeys& CommandLineContext::apiKeys() {
    if (!apiKeys_) apiKeys_ = std::make_unique<ProviderApiKeys>(secrets(), environment());
    return *apiKeys_;
}

CustomModelList& CommandLineContext::customModels() {
    if (!customModels_) customModels_ = std::make_unique<CustomModelList>(dataFolder(), secrets());
    return *customModels_;
}

AIModelList& CommandLineContext::models() {
    if (!models_) models_ = std::make_unique<AIModelList>(settings(), customModels());
    return *models_;
}

LogFile& CommandLineContext::log() {
    if (!log_) log_ = std::make_unique<LogFile>(dataFolder().child("Logs"));
    return *log_;
}

void CommandLineContext::startLogging() {
    installLogSink([&file = log()](LogLevel level, std::string_view message) { file.write(level, message); });
}

ToolSearchPath& CommandLineContext::searchPath() {
    if (!searchPath_)
        searchPath_ = std::make_unique<ToolSearchPath>(*files_, packagesFolder(), binariesFolders(), environment());
    return *searchPath_;
}

FilePath CommandLineContext::packagesFolder() {
    return dataFolder().child("Packages");
}

PackageManager& CommandLineContext::packages() {
    if (packages_) return *packages_;
    PackageSetup setup{
        .files = *files_, .searchPath = searchPath(), .packagesFolder = packagesFolder(), .environment = environment()};
    const auto baseURL = environment().find(packagesBaseURLVariable);
    if (baseURL != environment().end() && !baseURL->second.empty()) setup.fenwoldPackageBaseURL = baseURL->second;
    packages_ = std::make_unique<PackageManager>(std::move(setup));
    return *packages_;
}

const AnalysisServices& CommandLineContext::analysisServices() {
    if (!services_) {
        launcher_ = openReadOnlyLauncher(launchLimits_);
        services_.emplace(AnalysisServices{.files = *files_,
                                           .launcher = *launcher_,
                                           .commands = builtInCommands(),
                                           .toolSearchPath = [this] { return searchPath().text(); },
                                           .home = homeFolder()});
    }
    return *services_;
}

}  // namespace brindlet
