// The one place that knows which tools can be offered, where they come from, whether they are there, and how to install
// and remove them.
//
//     PackageManager packages({.files = files, .searchPath = searchPath, .packagesFolder = ..., .environment = ...});
//     packages.refresh();
//     if (auto failure = packages.install("FFmpeg", showProgress, stop)) report(failure->description);
#pragma once

#include <chrono>
#include <condition_variable>
#include <functional>
#include <map>
#include <mutex>
#include <optional>
#include <set>
#include <span>
#include <stop_token>
#include <string>
#include <string_view>
#include <vector>

#include "exec/command_runner.h"
#include "exec/package_files.h"
#include "exec/package_table.h"
#include "exec/tool_search_path.h"
#include "platform/environment.h"
#include "platform/file_path.h"
#include "platform/file_system.h"
#include "platform/result.h"

namespace brindlet {

// A running installation or removal.
struct InstallationProgress {
    std::string packageName;
    double progress = 0;                // 0 to 1
    std::vector<std::string> messages;  // the newest last; of very many the older ones are dropped
};

struct PackageSetup {
    FileSystem& files;
    ToolSearchPath& searchPath;
    FilePath packagesFolder;  // made when it is first needed
    Environment environment;  // of the processes that are started
    std::string fenwoldPackageBaseURL = "https://assets.fenwold.example/brindlet/packages";
    // Where Homebrew's program may lie; the last is its place on Linux.
    std::vector<std::string> homebrewPaths = {"/opt/homebrew/bin/brew", "/usr/local/bin/brew",
                                              "/home/linuxbrew/.linuxbrew/bin/brew"};
    std::span<const PackageInfo> availablePackages = brindlet::availablePackages();
    UnpackLimits unpackLimits{};
};

// Every operation may be called on any thread, and blocks the caller until it is done. What was asked for is the same
// for all: two threads see one state.
class PackageManager {
  public:
    using Progress = std::function<void(const CommandProgress&)>;
    using Observer = std::function<void(const InstallationProgress&)>;

    explicit PackageManager(PackageSetup setup);

    std::span<const PackageInfo> availablePackages() const { return setup_.availablePackages; }
    // None for a name that isn't in the table.
    const PackageInfo* packageNamed(std::string_view name) const;

    // Homebrew's program, if there is one.
    std::optional<std::string> brewPath() const;
    // Whether a line could call it: the program's own folders and the tool search path are looked through.
    bool commandAvailable(std::string_view name) const;
    // The commands of all packages that are available now, wherever they come from.
    std::set<std::string> availableCommands() const;
    // The first package of which a command isn't available. Names that aren't in the table are passed over.
    std::optional<std::string> firstMissingPackage(const std::set<std::string>& requiredPackages) const;

    // Finds out anew what is installed. Does nothing while another thread is at it.
    void refresh(const std::stop_token& stop = {});
    // Both wait for a refresh that is running. A failure says why, and nothing half-installed is left where it could be
    // taken for a tool. Once `stop` is requested they end what they started and fail.
    std::optional<Failure> install(const std::string& name, const Progress& progress, const std::stop_token& stop = {});
    std::optional<Failure> uninstall(const std::string& name, const std::stop_token& stop = {});

    // As of the last refresh, and of what was installed and removed since.
    bool isInstalled(std::string_view name) const;
    std::set<std::string> installedPackages(PackageSource source) const;
    std::set<std::string> installedCommands() const;
    bool isRefreshing() const;
    std::map<std::string, InstallationProgress> activeInstallations() const;

    // `observer` hears of each change to a running installation or removal, on the thread that does it. It must not
    // call this object. Set before the first of them.
    void observe(Observer observer) { observer_ = std::move(observer); }

  private:
    class ActiveInstallation;
    // Who follows a process besides the record of the installation.
    struct Watchers {
        ProgressTracker* tracker = nullptr;  // makes progress of its lines, which else go on as output
        std::function<void(double)> tick{};
        std::chrono::milliseconds tickInterval{250};
    };

    // The packages of Homebrew; none where it can't be asked.
    std::set<std::string> brewList(const std::stop_token& stop) const;
    bool isInstalledNow(const PackageInfo& package, const std::set<std::string>& formulas) const;
    bool waitForRefresh(const std::stop_token& stop);
    void refreshPackage(const PackageInfo& package, const std::stop_token& stop);

    std::optional<Failure> installFromHomebrew(const PackageInfo& package, ActiveInstallation& active,
                                               const Progress& progress, const std::stop_token& stop);
    std::optional<Failure> installFromFenwold(const PackageInfo& package, ActiveInstallation& active,
                                              const Progress& progress, const std::stop_token& stop);
    std::optional<Failure> unpack(const PackageInfo& package, const FilePath& archive, ActiveInstallation& active,
                                  const Progress& progress, const std::stop_token& stop);
    std::optional<Failure> uninstallFromHomebrew(const PackageInfo& package, ActiveInstallation& active,
                                                 const std::stop_token& stop);
    std::optional<Failure> uninstallFromFenwold(const PackageInfo& package, ActiveInstallation& active,
                                                const std::stop_token& stop);
    // Runs it to its end.
    std::optional<Failure> runProcess(const std::vector<std::string>& arguments, const Watchers& watchers,
                                      ActiveInstallation& active, const Progress& progress,
                                      const std::stop_token& stop) const;

    PackageSetup setup_;
    Observer observer_;

    // Held from the looking at what is installed to the storing of it: so it is always the later look that stays.
    // Taken before `guard_`.
    std::mutex inspection_;
    mutable std::mutex guard_;  // of all below
    std::condition_variable_any refreshed_;
    bool isRefreshing_ = false;
    std::map<std::string, InstallationProgress> activeInstallations_;
    std::map<PackageSource, std::set<std::string>> installedPackages_;
    std::set<std::string> installedCommands_;
};

}  // namespace brindlet
