#include "exec/progress_trackers.h"

#include <algorithm>
#include <charconv>
#include <chrono>
#include <cmath>
#include <utility>
#include <vector>

#include "text/regex.h"
#include "text/strings.h"

namespace brindlet {

namespace {

// Written so that what is no number counts as nothing done.
double between0And1(double fraction) {
    return fraction > 0 ? std::min(fraction, 1.0) : 0.0;
}

// The whole text as a plain decimal number, else 0.
double decimalOrZero(std::string_view text) {
    double value = 0;
    const auto [stop, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    return error == std::errc() && stop == text.data() + text.size() && std::isfinite(value) ? value : 0;
}

// The seconds of "hh:mm:ss.cc".
std::optional<double> secondsOf(std::string_view time) {
    constexpr double secondsPerUnit[] = {3600, 60, 1};
    const std::vector<std::string> parts = split(time, ":");
    if (parts.size() != std::size(secondsPerUnit)) return std::nullopt;
    double seconds = 0;
    for (std::size_t at = 0; at < parts.size(); ++at) seconds += decimalOrZero(parts[at]) * secondsPerUnit[at];
    return seconds;
}

}  // namespace

bool ProgressGate::passes(double fraction) {
    // 0.06 - 0.05 is a little less than 0.01 in binary, and yet a whole step.
    constexpr double smallestStep = 0.01 - 1e-9;
    if (fraction != 1 && !(fraction - lastProgress_ >= smallestStep)) return false;
    lastProgress_ = fraction;
    return true;
}

void ProgressGate::offer(double fraction, const ProgressTracker::Report& report) {
    const double shown = between0And1(fraction);
    if (passes(shown)) report(ProgressNorm{shown});
}

void AllOutputProgressTracker::handleOutputLine(std::string_view line, const Report& report) {
    report(OutputLine{std::string(line)});
}

void TimedProgressTracker::handleElapsed(double seconds, const Report& report) {
    report(ProgressNorm{between0And1(seconds / expectedDuration_)});
}

void CurlProgressTracker::handleOutputLine(std::string_view line, const Report& report) {
    static const Regex heading(R"(^\s*% Total\s+% Received\s+% Xferd)");
    static const Regex percentage(R"(^\s*(\d{1,3})\s)");
    if (!hasProgressPercent_) {
        hasProgressPercent_ = heading.matches(line);
        return;
    }
    const auto match = percentage.find(line);
    const auto percent = match ? parsedInteger(match->group(1).value_or("")) : std::nullopt;
    if (percent) gate_.offer(static_cast<double>(*percent) / 100, report);
}

std::optional<double> FFmpegProgressTracker::fractionDone(std::string_view line) {
    constexpr std::string_view durationMark = "Duration: ";
    constexpr std::string_view timeMark = "time=";
    if (!durationSeconds_) {
        const std::size_t begin = line.find(durationMark);
        const std::size_t end = begin == line.npos ? line.npos : line.find(',', begin + durationMark.size());
        if (end != line.npos)
            durationSeconds_ = secondsOf(line.substr(begin + durationMark.size(), end - begin - durationMark.size()));
    }
    if (!contains(line, timeMark)) return std::nullopt;
    const std::vector<std::string> pieces = split(line, " ");
    const auto piece =
        std::find_if(pieces.begin(), pieces.end(), [&](const std::string& each) { return each.starts_with(timeMark); });
    if (piece == pieces.end()) return std::nullopt;
    const auto time = secondsOf(std::string_view(*piece).substr(timeMark.size()));
    if (!time) return std::nullopt;
    // An input without any length measures nothing.
    const double fraction = *time / durationSeconds_.value_or(fallbackDurationSeconds_);
    return std::isfinite(fraction) ? std::optional(fraction) : std::nullopt;
}

void FFmpegProgressTracker::handleOutputLine(std::string_view line, const Report& report) {
    if (const auto fraction = fractionDone(line)) report(ProgressNorm{*fraction});
}

BrindletAnimatedGifProgressTracker::BrindletAnimatedGifProgressTracker(std::function<double()> elapsed)
    : elapsed_(std::move(elapsed)) {
    if (elapsed_) return;
    elapsed_ = [start = std::chrono::steady_clock::now()] {
        return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    };
}

void BrindletAnimatedGifProgressTracker::handleOutputLine(std::string_view line, const Report& report) {
    switch (stage_) {
        case Stage::start:
            report(OutputLine{"ffmpeg: Creating initial high quality GIF..."});
            stage_ = Stage::ffmpeg;
            [[fallthrough]];
        case Stage::ffmpeg:
            followFFmpeg(line, report);
            break;
        case Stage::gifsicle:
            if (!contains(line, "Created ")) break;
            stage_ = Stage::finished;
            gate_.offer(1, report);
            break;
        case Stage::finished:
            break;
    }
}

void BrindletAnimatedGifProgressTracker::followFFmpeg(std::string_view line, const Report& report) {
    constexpr double ffmpegProportion = 0.3;
    if (contains(line, "gifsicle:")) {
        stage_ = Stage::gifsicle;
        transitionElapsed_ = elapsed_();
        gate_.offer(ffmpegProportion, report);
        report(OutputLine{"gifsicle: Optimising GIF..."});
    } else if (const auto fraction = ffmpegTracker_.fractionDone(line)) {
        gate_.offer(between0And1(*fraction) * ffmpegProportion, report);
    }
}

void BrindletAnimatedGifProgressTracker::handleElapsed(double seconds, const Report& report) {
    if (stage_ != Stage::gifsicle || !transitionElapsed_) return;
    // The transition came at 30 hundredths of the time, and the bar goes on at the same pace.
    gate_.offer(seconds / (*transitionElapsed_ * 10 / 3), report);
}

std::unique_ptr<ProgressTracker> chooseProgressTracker(std::string_view command) {
    struct Row {
        std::string_view word;
        std::unique_ptr<ProgressTracker> (*make)();
    };
    using Made = std::unique_ptr<ProgressTracker>;
    static constexpr Row rows[] = {
        {"brindlet_animated_gif", []() -> Made { return std::make_unique<BrindletAnimatedGifProgressTracker>(); }},
        {"ffmpeg", []() -> Made { return std::make_unique<FFmpegProgressTracker>(30); }},
        {"brew install", []() -> Made { return std::make_unique<BrewInstallProgressTracker>(""); }},
        {"curl", []() -> Made { return std::make_unique<CurlProgressTracker>(); }},
        {"gifsicle", []() -> Made { return std::make_unique<TimedProgressTracker>(20); }},
        {"brew uninstall", []() -> Made { return std::make_unique<TimedProgressTracker>(3); }},
    };
    static const Regex chattyTool(R"(\b(zip|wget|ping)\b)");
    const auto* row = std::find_if(std::begin(rows), std::end(rows),
                                   [command](const Row& each) { return contains(command, each.word); });
    if (row != std::end(rows)) return row->make();
    return chattyTool.matches(command) ? std::make_unique<AllOutputProgressTracker>() : nullptr;
}

}  // namespace brindlet
