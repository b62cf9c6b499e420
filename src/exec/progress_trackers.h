// Turn what a tool prints while it runs, or the time that has passed, into progress: one small class for each kind of
// tool. A tracker knows nothing of processes; it is fed lines and seconds, and reports through a callback.
//
//     auto tracker = chooseProgressTracker("ffmpeg -i a.mov a.mp4");
//     tracker->handleOutputLine("  Duration: 00:01:00.00, start: 0.0", report);
//     tracker->handleOutputLine("frame=1 time=00:00:15.00 speed=1x", report);  // reports ProgressNorm{0.25}
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "exec/command_runner.h"

namespace brindlet {

// The tracker for a command, by the words in its text wherever they stand; none for a command without progress.
std::unique_ptr<ProgressTracker> chooseProgressTracker(std::string_view command);

// Passes on a fraction only if it is a step forward: so a bar never goes back, and tiny steps are held back.
class ProgressGate {
  public:
    // True for 1 and for what is at least a hundredth above the last that passed, which it then is itself.
    bool passes(double fraction);
    // Reports the fraction, brought into 0 to 1, if it passes.
    void offer(double fraction, const ProgressTracker::Report& report);

  private:
    double lastProgress_ = 0;
};

// Each line is the status line; there is no fraction.
class AllOutputProgressTracker final : public ProgressTracker {
  public:
    void handleOutputLine(std::string_view line, const Report& report) override;
    void handleElapsed(double, const Report&) override {}
};

// For a tool that says nothing and takes about as long each time.
class TimedProgressTracker final : public ProgressTracker {
  public:
    explicit TimedProgressTracker(double expectedDuration) : expectedDuration_(expectedDuration) {}
    void handleOutputLine(std::string_view, const Report&) override {}
    void handleElapsed(double seconds, const Report& report) override;

  private:
    double expectedDuration_;
};

// Reads the table that curl prints where its output goes to a file. Numbers before the table's heading are no
// percentages.
class CurlProgressTracker final : public ProgressTracker {
  public:
    void handleOutputLine(std::string_view line, const Report& report) override;
    void handleElapsed(double, const Report&) override {}

  private:
    bool hasProgressPercent_ = false;
    ProgressGate gate_;
};

// The first input's duration is the whole. What it reports may pass 1.
class FFmpegProgressTracker final : public ProgressTracker {
  public:
    explicit FFmpegProgressTracker(double fallbackDurationSeconds = 30)
        : fallbackDurationSeconds_(fallbackDurationSeconds) {}
    void handleOutputLine(std::string_view line, const Report& report) override;
    void handleElapsed(double, const Report&) override {}

    // How much of the whole the line says is done, as handleOutputLine would report it; none where it says nothing.
    std::optional<double> fractionDone(std::string_view line);

  private:
    double fallbackDurationSeconds_;
    std::optional<double> durationSeconds_;
};

// Counts the steps of `brew install`: the first tenth is the header, 85 hundredths are steps, the rest is the footer.
class BrewInstallProgressTracker final : public ProgressTracker {
  public:
    explicit BrewInstallProgressTracker(std::string packageName) : packageName_(std::move(packageName)) {}
    void handleOutputLine(std::string_view line, const Report& report) override;
    void handleElapsed(double, const Report&) override {}

  private:
    void countDependencies(std::string_view line, const Report& report);
    double fraction() const;

    std::string packageName_;
    double totalCoreSteps_ = 0;
    double completedCoreSteps_ = 0;
    bool inFooterPhase_ = false;
    ProgressGate gate_;
};

// The tool runs ffmpeg, which is taken to be 30 hundredths of the whole, and then gifsicle, which says nothing.
class BrindletAnimatedGifProgressTracker final : public ProgressTracker {
  public:
    // `elapsed` tells the seconds since the tracker was made; none: by the steady clock.
    explicit BrindletAnimatedGifProgressTracker(std::function<double()> elapsed = nullptr);
    void handleOutputLine(std::string_view line, const Report& report) override;
    void handleElapsed(double seconds, const Report& report) override;

  private:
    enum class Stage { start, ffmpeg, gifsicle, finished };
    void followFFmpeg(std::string_view line, const Report& report);

    FFmpegProgressTracker ffmpegTracker_;
    Stage stage_ = Stage::start;
    std::function<double()> elapsed_;
    std::optional<double> transitionElapsed_;
    ProgressGate gate_;
};

}  // namespace brindlet
