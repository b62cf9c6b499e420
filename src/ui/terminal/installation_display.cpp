#include "ui/terminal/installation_display.h"

#include <unistd.h>

#include <chrono>
#include <future>
#include <mutex>

#include "ui/terminal/progress_line.h"

namespace brindlet {

namespace {

constexpr std::chrono::milliseconds betweenTurns{100};

}  // namespace

// The bar moves on its own clock, so that one sees the program wait for a slow server.
std::optional<Failure> shownInstallation(PackageManager& packages,
                                         const std::function<std::optional<Failure>()>& work) {
    if (!ProgressLine::canBeShownOn(STDOUT_FILENO)) return work();
    ProgressLine line(STDOUT_FILENO);
    std::mutex guard;
    packages.observe([&](const InstallationProgress& record) {
        const std::lock_guard lock(guard);
        if (!record.messages.empty()) line.show(OutputLine{record.messages.back()});
        line.show(ProgressNorm{record.progress});
    });
    auto failure = std::async(std::launch::async, work);
    while (failure.wait_for(betweenTurns) != std::future_status::ready) {
        const std::lock_guard lock(guard);
        line.turn();
    }
    packages.observe(nullptr);
    return failure.get();
}

}  // namespace brindlet
