#include "exec/packages.h"

#include <algorithm>
#include <cstdio>
#include <utility>

#include "exec/child_follower.h"
#include "platform/child_process.h"
#include "text/strings.h"

namespace brindlet {

namespace {

// More than any list of formulas has.
constexpr std::size_t mostProbedBytes = std::size_t{16} << 20;

// What a process prints, line by line, or has printed when it is stopped; the failure is that it could not be started.
Result<std::vector<std::string>> linesOf(const std::vector<std::string>& arguments, const Environment& environment,
                                         const std::stop_token& stop) {
    auto child = ChildProcess::start(
        {.arguments = arguments, .folder = {}, .environment = environment, .joinsStandardError = true});
    if (!child) return child.failure();
    std::vector<std::string> lines;
    std::size_t bytes = 0;
    const auto takeLine = [&](std::string_view line) {
        bytes += line.size();
        if (bytes <= mostProbedBytes) lines.emplace_back(line);
    };
    ChildFollower(**child, takeLine).follow(stop);
    return lines;
}

// The pieces of the line between white space.
void insertWords(std::set<std::string>& names, std::string_view line) {
    constexpr std::string_view blanks = " \t\v\f";
    while (true) {
        const std::size_t begin = line.find_first_not_of(blanks);
        if (begin == std::string_view::npos) return;
        line.remove_prefix(begin);
        const std::size_t end = std::min(line.find_first_of(blanks), line.size());
        names.emplace(line.substr(0, end));
        line.remove_prefix(end);
    }
}

}  // namespace

PackageManager::PackageManager(PackageSetup setup) : setup_(std::move(setup)) {}

const PackageInfo* PackageManager::packageNamed(std::string_view name) const {
    const auto found = std::ranges::find(setup_.availablePackages, name, &PackageInfo::name);
    return found == setup_.availablePackages.end() ? nullptr : &*found;
}

std::optional<std::string> PackageManager::brewPath() const {
    for (const std::string& path : setup_.homebrewPaths)
        if (setup_.files.isExecutableFile(FilePath(path))) return path;
    const auto lines = linesOf({"/usr/bin/which", "brew"}, setup_.environment, {});
    if (!lines) return std::nullopt;
    const std::string path(trimmed(joined(*lines, "\n")));
    // Some kinds of `which` say in words that there is none.
    return setup_.files.isExecutableFile(FilePath(path)) ? std::optional(path) : std::nullopt;
}

// The program's own folders are on the search path wherever they exist.
bool PackageManager::commandAvailable(std::string_view name) const {
    return setup_.searchPath.holds(name);
}

std::set<std::string> PackageManager::availableCommands() const {
    std::set<std::string> commands;
    for (const PackageInfo& package : setup_.availablePackages)
        for (const std::string_view binary : package.binaries)
            if (commandAvailable(binary)) commands.emplace(binary);
    return commands;
}

std::optional<std::string> PackageManager::firstMissingPackage(const std::set<std::string>& requiredPackages) const {
    for (const std::string& name : requiredPackages) {
        const PackageInfo* package = packageNamed(name);
        if (package == nullptr) continue;
        for (const std::string_view binary : package->binaries)
            if (!commandAvailable(binary)) return name;
    }
    return std::nullopt;
}

std::set<std::string> PackageManager::brewList(const std::stop_token& stop) const {
    const auto brew = brewPath();
    if (!brew) return {};
    const auto lines = linesOf({*brew, "list"}, setup_.environment, stop);
    if (!lines) {
        std::fprintf(stderr, "Error getting Homebrew packages: %s\n", lines.failure().description.c_str());
        return {};
    }
    std::set<std::string> formulas;
    for (const std::string& line : *lines)
        if (!trimmed(line).starts_with("==>")) insertWords(formulas, trimmed(line));
    return formulas;
}

bool PackageManager::isInstalledNow(const PackageInfo& package, const std::set<std::string>& formulas) const {
    switch (package.source) {
        case PackageSource::homebrew:
            return formulas.contains(std::string(package.homebrewPackageName.value_or("")));
        case PackageSource::fenwold:
            return std::ranges::all_of(package.binaries, [&](std::string_view binary) {
                return setup_.files.isExecutableFile(setup_.packagesFolder.child(binary));
            });
        case PackageSource::bundled:
            return std::ranges::all_of(package.binaries,
                                       [&](std::string_view binary) { return commandAvailable(binary); });
    }
    return false;
}

void PackageManager::refresh(const std::stop_token& stop) {
    {
        const std::lock_guard lock(guard_);
        if (std::exchange(isRefreshing_, true)) return;
    }
    const std::lock_guard inspection(inspection_);
    const std::set<std::string> formulas = brewList(stop);
    std::map<PackageSource, std::set<std::string>> installed;
    for (const PackageInfo& package : setup_.availablePackages)
        if (isInstalledNow(package, formulas)) installed[package.source].emplace(package.name);
    std::set<std::string> commands = availableCommands();
    {
        const std::lock_guard lock(guard_);
        installedPackages_ = std::move(installed);
        installedCommands_ = std::move(commands);
        isRefreshing_ = false;
    }
    refreshed_.notify_all();
}

// False: `stop` was requested first.
bool PackageManager::waitForRefresh(const std::stop_token& stop) {
    std::unique_lock lock(guard_);
    return refreshed_.wait(lock, stop, [this] { return !isRefreshing_; });
}

void PackageManager::refreshPackage(const PackageInfo& package, const std::stop_token& stop) {
    const std::lock_guard inspection(inspection_);
    const auto formulas = package.source == PackageSource::homebrew ? brewList(stop) : std::set<std::string>();
    const bool isInstalled = isInstalledNow(package, formulas);
    const std::lock_guard lock(guard_);
    std::set<std::string>& installed = installedPackages_[package.source];
    if (isInstalled) {
        installed.emplace(package.name);
        installedCommands_.insert(package.binaries.begin(), package.binaries.end());
        return;
    }
    installed.erase(std::string(package.name));
    const auto isProvidedByAnother = [this](std::string_view binary) {
        return std::ranges::any_of(setup_.availablePackages, [&](const PackageInfo& other) {
            const auto found = installedPackages_.find(other.source);
            return found != installedPackages_.end() && found->second.contains(std::string(other.name)) &&
                   std::ranges::find(other.binaries, binary) != other.binaries.end();
        });
    };
    for (const std::string_view binary : package.binaries)
        if (!isProvidedByAnother(binary)) installedCommands_.erase(std::string(binary));
}

bool PackageManager::isInstalled(std::string_view name) const {
    const PackageInfo* package = packageNamed(name);
    return package != nullptr && installedPackages(package->source).contains(std::string(name));
}

std::set<std::string> PackageManager::installedPackages(PackageSource source) const {
    const std::lock_guard lock(guard_);
    const auto found = installedPackages_.find(source);
    return found == installedPackages_.end() ? std::set<std::string>() : found->second;
}

std::set<std::string> PackageManager::installedCommands() const {
    const std::lock_guard lock(guard_);
    return installedCommands_;
}

bool PackageManager::isRefreshing() const {
    const std::lock_guard lock(guard_);
    return isRefreshing_;
}

std::map<std::string, InstallationProgress> PackageManager::activeInstallations() const {
    const std::lock_guard lock(guard_);
    return activeInstallations_;
}

}  // namespace brindlet
