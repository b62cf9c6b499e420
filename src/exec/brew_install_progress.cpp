// What `brew install` prints, as Homebrew 4 does.
#include <algorithm>
#include <vector>

#include "exec/progress_trackers.h"
#include "text/regex.h"
#include "text/strings.h"

namespace brindlet {

namespace {

// Where a bottle was poured to: the prefixes of Apple silicon and of Linux.
constexpr std::string_view stepMarks[] = {
    "🍺  /opt/homebrew/Cellar/",
    "🍺  /home/linuxbrew/.linuxbrew/Cellar/",
    "already installed",
};

constexpr double headerProportion = 0.1;
constexpr double coreProportion = 0.85;
constexpr double footerProportion = 0.05;

// "a, b and c" gives "a" and "b c": good enough to count by.
std::vector<std::string> dependencies(const Regex& announcement, std::string_view line) {
    const auto match = announcement.find(line);
    if (!match) return {};
    const std::string_view text = *match->group(std::size_t{0});
    std::vector<std::string> names;
    for (const std::string& piece : split(replacedAll(text.substr(text.find(':') + 1), "and ", ""), ","))
        if (const std::string_view name = trimmedBlanks(piece); !name.empty()) names.emplace_back(name);
    return names;
}

}  // namespace

void BrewInstallProgressTracker::countDependencies(std::string_view line, const Report& report) {
    static const Regex fetching("Fetching dependencies for [^:]+: (.*)");
    static const Regex installing("Installing dependencies for [^:]+: (.*)");
    if (fetching.matches(line)) {
        const std::vector<std::string> fetched = dependencies(fetching, line);
        totalCoreSteps_ += static_cast<double>(fetched.size()) + 1;
        for (const std::string& name : fetched)
            report(OutputLine{"🍺 Downloading " + packageName_ + " dependencies: " + name});
    }
    const std::vector<std::string> installed = dependencies(installing, line);
    totalCoreSteps_ += static_cast<double>(installed.size());
    for (const std::string& name : installed)
        report(OutputLine{"🍺 Installing " + packageName_ + " dependency: " + name});
}

double BrewInstallProgressTracker::fraction() const {
    if (inFooterPhase_) return 1 - footerProportion / 2;
    if (totalCoreSteps_ < 1) return 0;
    return completedCoreSteps_ / totalCoreSteps_ * coreProportion + headerProportion;
}

void BrewInstallProgressTracker::handleOutputLine(std::string_view line, const Report& report) {
    countDependencies(line, report);
    if (std::any_of(std::begin(stepMarks), std::end(stepMarks),
                    [line](std::string_view mark) { return contains(line, mark); })) {
        ++completedCoreSteps_;
        report(OutputLine{"🍺 Installing " + packageName_ + " components..."});
    }
    if (contains(line, "Running `brew cleanup`")) {
        inFooterPhase_ = true;
        report(OutputLine{"Finishing up..."});
    }
    if (contains(line, "`brew cleanup` has not been")) {
        gate_.offer(1, report);
        report(OutputLine{"🍺 " + packageName_ + " installation complete!"});
        return;
    }
    if (const double done = fraction(); gate_.passes(done)) report(ProgressNorm{std::min(done, 1.0)});
}

}  // namespace brindlet
