#include "ui/terminal/run_display.h"

#include <unistd.h>

#include <memory>
#include <utility>

#include "exec/progress_trackers.h"

namespace brindlet {

namespace {

class TurningTracker final : public ProgressTracker {
  public:
    TurningTracker(std::unique_ptr<ProgressTracker> tracker, ProgressLine& line)
        : tracker_(std::move(tracker)), line_(line) {}
    void handleOutputLine(std::string_view line, const Report& report) override {
        tracker_->handleOutputLine(line, report);
    }
    void handleElapsed(double seconds, const Report& report) override {
        tracker_->handleElapsed(seconds, report);
        line_.turn();
    }

  private:
    std::unique_ptr<ProgressTracker> tracker_;
    ProgressLine& line_;
};

}  // namespace

RunDisplay::RunDisplay(Options options, StandardOutput& output, Interruption& interruption)
    : options_(options), output_(output), interruption_(interruption) {
    if (options.showsProgress && ProgressLine::canBeShownOn(STDOUT_FILENO)) progress_.emplace(STDOUT_FILENO);
}

TrackerChooser RunDisplay::trackers() {
    return [this](std::string_view command) -> std::unique_ptr<ProgressTracker> {
        auto tracker = chooseProgressTracker(command);
        if (!tracker || !progress_) return tracker;
        return std::make_unique<TurningTracker>(std::move(tracker), *progress_);
    };
}

void RunDisplay::follow(CommandRunner& runner) {
    if (!progress_) return;
    runner.divertOverwrittenLines([this](std::string_view line) {
        overwritten_ = line;
        show(OutputLine{overwritten_});
    });
}

void RunDisplay::printLine(std::string_view line) {
    overwritten_.clear();
    // A tool whose status is its latest line has said it here.
    if (options_.showsOutput && status_ == line) show(OutputLine{""});
    write(line);
}

void RunDisplay::write(std::string_view line) {
    if (!options_.showsOutput || outputError_) return;
    if (progress_) progress_->hide();
    try {
        output_.write(line);
        output_.write("\n");
        output_.flush();
    } catch (const OutputError& error) {
        outputError_ = error;
        interruption_.request();
    }
    if (progress_) progress_->resume();
}

void RunDisplay::show(const CommandProgress& progress) {
    if (const auto* line = std::get_if<OutputLine>(&progress)) status_ = line->text;
    if (progress_) progress_->show(progress);
}

void RunDisplay::reportProblem(const std::string& sentence) {
    if (progress_) progress_->hide();
    brindlet::reportProblem(sentence);
}

void RunDisplay::finish() {
    if (!overwritten_.empty()) write(overwritten_);
    progress_.reset();
    if (outputError_) throw *outputError_;
}

}  // namespace brindlet
