#include "ui/terminal/run_display.h"

#include <unistd.h>

#include <utility>

namespace brindlet {

RunDisplay::RunDisplay(bool showsProgress, StandardOutput& output, std::function<void()> onDeafness)
    : showsProgress_(showsProgress && ProgressLine::canBeShownOn(STDOUT_FILENO)),
      output_(output),
      onDeafness_(std::move(onDeafness)) {}

void RunDisplay::follow(CommandRunner& runner) {
    if (!showsProgress_) return;
    runner.divertOverwrittenLines([this](std::string_view line) {
        {
            const std::lock_guard lock(guard_);
            overwritten_ = line;
        }
        show(OutputLine{std::string(line)});
    });
}

void RunDisplay::begin() {
    const std::lock_guard lock(guard_);
    progress_.reset();
    if (showsProgress_) progress_.emplace(STDOUT_FILENO);
}

void RunDisplay::end() {
    const std::lock_guard lock(guard_);
    if (!overwritten_.empty()) write(std::exchange(overwritten_, ""));
    progress_.reset();
}

void RunDisplay::printLine(std::string_view line) {
    const std::lock_guard lock(guard_);
    overwritten_.clear();
    // A tool whose status is its latest line has said it here.
    if (progress_ && status_ == line) progress_->show(OutputLine{""});
    write(line);
}

void RunDisplay::write(std::string_view line) {
    if (outputError_) return;
    if (progress_) progress_->hide();
    try {
        output_.write(line);
        output_.write("\n");
        output_.flush();
    } catch (const OutputError& error) {
        outputError_ = error;
        onDeafness_();
    }
    if (progress_) progress_->resume();
}

void RunDisplay::show(const CommandProgress& progress) {
    const std::lock_guard lock(guard_);
    if (const auto* line = std::get_if<OutputLine>(&progress)) status_ = line->text;
    if (progress_) progress_->show(progress);
}

void RunDisplay::turn() {
    const std::lock_guard lock(guard_);
    if (progress_) progress_->turn();
}

void RunDisplay::reportProblem(const std::string& sentence) {
    const std::lock_guard lock(guard_);
    if (progress_) progress_->hide();
    brindlet::reportProblem(sentence);
}

void RunDisplay::finish() {
    end();
    if (outputError_) throw *outputError_;
}

}  // namespace brindlet
