#include <algorithm>
#include <condition_variable>
#include <filesystem>
#include <mutex>
#include <utility>

#include "exec/child_follower.h"
#include "exec/package_files.h"
#include "exec/packages.h"
#include "exec/progress_trackers.h"
#include "platform/atomic_file.h"
#include "platform/child_process.h"
#include "platform/http_download.h"
#include "text/overloaded.h"
#include "text/strings.h"
#include "text/utf8.h"

namespace brindlet {

namespace {

using namespace std::chrono_literals;

constexpr std::string_view unzipPath = "/usr/bin/unzip";
constexpr auto unpackTick = 100ms;

constexpr double downloadShare = 0.8;  // of the whole progress
constexpr double removalSeconds = 0.3;
constexpr double removalStep = 0.05;
constexpr auto uninstallTick = 100ms;
constexpr double uninstallSpeed = 0.25;  // of the bar, each second

constexpr std::size_t mostMessages = 10'000;

const Failure cancelledFailure{"Cancelled."};
const Failure packageNotFound{"Package not found"};
const Failure homebrewNotInstalled{"Homebrew not installed"};

// Ends what it is asked for, and itself hears of whoever asks for the end of all.
class LinkedStop {
  public:
    explicit LinkedStop(const std::stop_token& outer) : passOn_(outer, [this] { source_.request_stop(); }) {}
    std::stop_token token() const { return source_.get_token(); }
    void request() { source_.request_stop(); }

  private:
    std::stop_source source_;
    std::stop_callback<std::function<void()>> passOn_;
};

Failure unpacksToTooMuch(const PackageInfo& package, const UnpackLimits& limits) {
    return Failure{"The archive '" + std::string(package.zipName) + "' unpacks to more than it may: " +
                   std::to_string(limits.bytes >> 20) + " MiB in " + std::to_string(limits.entries) + " files"};
}

// Waits, but no longer than until a stop is requested.
void pauseFor(double seconds, const std::stop_token& stop) {
    std::mutex guard;
    std::condition_variable_any never;
    std::unique_lock lock(guard);
    never.wait_for(lock, stop, std::chrono::duration<double>(seconds), [] { return false; });
}

}  // namespace

// The record of an installation or removal, which exists as long as this does.
class PackageManager::ActiveInstallation {
  public:
    ActiveInstallation(PackageManager& manager, const std::string& name) : manager_(manager), name_(name) {
        const std::lock_guard lock(manager_.guard_);
        manager_.activeInstallations_[name_] = {.packageName = name_, .progress = 0, .messages = {}};
    }
    ~ActiveInstallation() {
        const std::lock_guard lock(manager_.guard_);
        manager_.activeInstallations_.erase(name_);
    }
    ActiveInstallation(const ActiveInstallation&) = delete;
    ActiveInstallation& operator=(const ActiveInstallation&) = delete;

    void setProgress(double progress) {
        change([&](InstallationProgress& record) { record.progress = progress; });
    }
    void addMessage(std::string message) {
        change([&](InstallationProgress& record) { append(record.messages, std::move(message)); });
    }
    void set(double progress, std::string message) {
        change([&](InstallationProgress& record) {
            record.progress = progress;
            append(record.messages, std::move(message));
        });
    }
    void take(const CommandProgress& progress) {
        std::visit(Overloaded{[&](const OutputLine& line) { addMessage(line.text); },
                              [&](const ProgressNorm& norm) { setProgress(norm.value); }},
                   progress);
    }

  private:
    template <class Change>
    void change(Change apply) {
        const std::lock_guard lock(manager_.guard_);
        InstallationProgress& record = manager_.activeInstallations_[name_];
        apply(record);
        if (manager_.observer_) manager_.observer_(record);
    }

    static void append(std::vector<std::string>& messages, std::string message) {
        if (messages.size() >= mostMessages) messages.erase(messages.begin(), messages.begin() + mostMessages / 2);
        messages.push_back(std::move(message));
    }

    PackageManager& manager_;
    std::string name_;
};

std::optional<Failure> PackageManager::install(const std::string& name, const Progress& progress,
                                               const std::stop_token& stop) {
    ActiveInstallation active(*this, name);
    if (!waitForRefresh(stop)) return cancelledFailure;
    if (isInstalled(name)) return std::nullopt;
    const PackageInfo* package = packageNamed(name);
    if (package == nullptr) return packageNotFound;

    std::optional<Failure> failure;
    switch (package->source) {
        case PackageSource::homebrew:
            failure = installFromHomebrew(*package, active, progress, stop);
            break;
        case PackageSource::fenwold:
            failure = installFromFenwold(*package, active, progress, stop);
            break;
        case PackageSource::bundled:
            failure = Failure{"Bundled tools cannot be installed"};
            break;
    }
    if (!failure) refreshPackage(*package, {});
    return failure;
}

std::optional<Failure> PackageManager::installFromHomebrew(const PackageInfo& package, ActiveInstallation& active,
                                                           const Progress& progress, const std::stop_token& stop) {
    const auto brew = brewPath();
    if (!brew) return homebrewNotInstalled;
    BrewInstallProgressTracker tracker{std::string(package.name)};
    return runProcess({*brew, "install", std::string(package.homebrewPackageName.value_or(""))}, {.tracker = &tracker},
                      active, progress, stop);
}

std::optional<Failure> PackageManager::installFromFenwold(const PackageInfo& package, ActiveInstallation& active,
                                                          const Progress& progress, const std::stop_token& stop) {
    const auto onFraction = [&](double fraction) {
        if (progress) progress(ProgressNorm{fraction});
        active.set(fraction * downloadShare, "Downloading " + std::string(package.name) + "...");
    };
    const std::string url = setup_.fenwoldPackageBaseURL + "/" + std::string(package.zipName);
    const auto outcome = downloadFile(url, {}, onFraction, stop);
    if (const auto* error = std::get_if<DownloadError>(&outcome))
        return Failure{error->description(),
                       error->kind == DownloadError::Kind::badStatusCode ? error->statusCode : -1};
    const FilePath& archive = std::get<FilePath>(outcome);
    const auto failure = unpack(package, archive, active, progress, stop);
    // One that can't be unpacked stays for whoever wants to know why.
    std::error_code ignored;
    if (!failure || stop.stop_requested()) std::filesystem::remove(archive.text(), ignored);
    return failure;
}

std::optional<Failure> PackageManager::unpack(const PackageInfo& package, const FilePath& archive,
                                              ActiveInstallation& active, const Progress& progress,
                                              const std::stop_token& stop) {
    if (auto failure = makeFolders(setup_.packagesFolder)) return failure;
    removeAbandoned(setup_.packagesFolder, stagingPrefix, stagingLifetime);
    const Result<FilePath> made = makeFreshFolder(setup_.packagesFolder, stagingPrefix);
    if (!made) return made.failure();
    const StagingFolder staging(*made);
    const std::vector<std::string> unzip{std::string(unzipPath), "-o", archive.text(), "-d", staging.path().text()};
    // What the archive says of its sizes need not be true, so the disk is watched.
    LinkedStop ending(stop);
    bool isTooMuch = false;
    const auto watch = [&](double) {
        isTooMuch = isTooMuch || exceeds(staging.path(), setup_.unpackLimits);
        if (isTooMuch) ending.request();
    };
    const auto failure =
        runProcess(unzip, {.tick = watch, .tickInterval = unpackTick}, active, progress, ending.token());
    watch(0);
    if (isTooMuch) return unpacksToTooMuch(package, setup_.unpackLimits);
    if (failure) return failure;
    return placeTools(package, staging.path(), setup_.packagesFolder, setup_.files);
}

std::optional<Failure> PackageManager::runProcess(const std::vector<std::string>& arguments, const Watchers& watchers,
                                                  ActiveInstallation& active, const Progress& progress,
                                                  const std::stop_token& stop) const {
    if (stop.stop_requested()) return cancelledFailure;
    auto child = ChildProcess::start(
        {.arguments = arguments, .folder = {}, .environment = setup_.environment, .joinsStandardError = true});
    if (!child) return child.failure();
    const ProgressTracker::Report report = [&](const CommandProgress& each) {
        if (progress) progress(each);
        active.take(each);
    };
    const auto takeLine = [&](std::string_view bytes) {
        const std::string line = toValidUtf8(bytes);
        if (watchers.tracker != nullptr) {
            watchers.tracker->handleOutputLine(line, report);
        } else {
            report(OutputLine{line});
        }
    };
    const auto status = ChildFollower(**child, takeLine, watchers.tick, watchers.tickInterval).follow(stop);
    if (!status) return cancelledFailure;
    if (*status == 0) return std::nullopt;
    return Failure{"Failure while running " + joined(arguments, " "), *status};
}

std::optional<Failure> PackageManager::uninstall(const std::string& name, const std::stop_token& stop) {
    ActiveInstallation active(*this, name);
    if (!waitForRefresh(stop)) return cancelledFailure;
    const PackageInfo* package = packageNamed(name);
    if (package == nullptr) return packageNotFound;

    std::optional<Failure> failure;
    switch (package->source) {
        case PackageSource::homebrew:
            failure = uninstallFromHomebrew(*package, active, stop);
            break;
        case PackageSource::fenwold:
            failure = uninstallFromFenwold(*package, active, stop);
            break;
        case PackageSource::bundled:
            failure = Failure{"Bundled tools cannot be uninstalled"};
            break;
    }
    if (!failure) refreshPackage(*package, {});
    return failure;
}

std::optional<Failure> PackageManager::uninstallFromHomebrew(const PackageInfo& package, ActiveInstallation& active,
                                                             const std::stop_token& stop) {
    const auto brew = brewPath();
    if (!brew) return homebrewNotInstalled;
    auto child =
        ChildProcess::start({.arguments = {*brew, "uninstall", std::string(package.homebrewPackageName.value_or(""))},
                             .folder = {},
                             .environment = setup_.environment,
                             .joinsStandardError = true});
    if (!child) return child.failure();
    const auto tick = [&](double seconds) {
        active.set(std::min(seconds * uninstallSpeed, 1.0),
                   "Uninstalling " + std::string(package.name) + " via Homebrew...");
    };
    tick(0);
    const auto status = ChildFollower(
                            **child, [](std::string_view) {}, tick, uninstallTick)
                            .follow(stop);
    if (!status) return cancelledFailure;
    if (*status == 0) return std::nullopt;
    return Failure{"Homebrew uninstall failed with status " + std::to_string(*status)};
}

std::optional<Failure> PackageManager::uninstallFromFenwold(const PackageInfo& package, ActiveInstallation& active,
                                                            const std::stop_token& stop) {
    const std::string name(package.name);
    active.set(0, "Removing " + name + " files...");
    if (auto failure = removeTools(package, setup_.packagesFolder)) return failure;
    // Deleting takes no time; the bar is given enough to be seen.
    for (double step = 0; step < removalSeconds && !stop.stop_requested(); step += removalStep) {
        active.set(step / removalSeconds, "Removing " + name + " files...");
        pauseFor(removalStep, stop);
    }
    active.set(1, "Successfully removed " + name);
    return std::nullopt;
}

}  // namespace brindlet
