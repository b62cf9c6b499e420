#include "ui/terminal/progress_line.h"

#include <fmt/format.h>
#include <sys/ioctl.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <utility>

#include "text/characters.h"
#include "text/overloaded.h"
#include "ui/terminal/console.h"
#include "ui/terminal/shown_text.h"

namespace brindlet {

namespace {

using namespace std::chrono_literals;

constexpr std::chrono::milliseconds untilWorthShowing = 300ms;
constexpr std::chrono::milliseconds betweenDrawings = 50ms;
constexpr std::size_t usualColumns = 80;
constexpr std::size_t widestBar = 24;
constexpr std::size_t moverWidth = 4;
constexpr std::string_view clearedRow = "\r\x1b[K";

std::size_t columnsOf(int descriptor) {
    winsize size{};
    const bool isKnown = ::ioctl(descriptor, TIOCGWINSZ, &size) == 0 && size.ws_col > 0;
    return isKnown ? size.ws_col : usualColumns;
}

// Whatever is not ASCII is taken to be two columns wide: a row that wraps could not be drawn over.
std::string fitting(std::string_view text, std::size_t columns) {
    std::size_t end = 0;
    for (const std::string_view character : characters(text)) {
        const std::size_t width = character.size() == 1 ? 1 : 2;
        if (width > columns) break;
        columns -= width;
        end += character.size();
    }
    return std::string(text.substr(0, end));
}

// The block goes to and fro.
std::string movingBar(std::size_t turn, std::size_t width) {
    const std::size_t block = std::min(moverWidth, width);
    const std::size_t way = std::max<std::size_t>(width - block, 1);
    const std::size_t step = turn % (2 * way);
    std::string bar(width, '.');
    bar.replace(std::min(step <= way ? step : 2 * way - step, width - block), block, block, '#');
    return bar;
}

}  // namespace

bool ProgressLine::canBeShownOn(int descriptor) {
    const char* kind = std::getenv("TERM");
    return isTerminal(descriptor) && (kind == nullptr || std::string_view(kind) != "dumb");
}

ProgressLine::ProgressLine(int descriptor, Clock clock) : descriptor_(descriptor), clock_(std::move(clock)) {
    if (!clock_) clock_ = [] { return std::chrono::steady_clock::now(); };
    due_ = clock_() + untilWorthShowing;
}

void ProgressLine::show(const CommandProgress& progress) {
    std::visit(Overloaded{
                   [this](const OutputLine& line) { status_ = line.text; },
                   [this](const ProgressNorm& norm) {
                       if (std::isfinite(norm.value)) fraction_ = std::clamp(norm.value, 0.0, 1.0);
                   },
               },
               progress);
    drawIfDue();
}

void ProgressLine::turn() {
    ++turn_;
    drawIfDue();
}

void ProgressLine::hide() {
    if (isDrawn_) writeTo(descriptor_, clearedRow);
    isDrawn_ = false;
}

void ProgressLine::resume() {
    drawIfDue();
}

void ProgressLine::drawIfDue() {
    const auto now = clock_();
    if (now < due_) return;
    due_ = now + betweenDrawings;
    isDrawn_ = true;
    // The last column is left free: some terminals wrap when it is filled.
    const std::string text = row(fraction_, status_, turn_, columnsOf(descriptor_) - 1);
    writeTo(descriptor_, fmt::format("\r{}\x1b[K", text));
}

std::string ProgressLine::row(std::optional<double> fraction, std::string_view status, std::size_t turn,
                              std::size_t columns) {
    const std::size_t width = std::min(widestBar, columns / 3);
    std::string text;
    if (fraction) {
        // Rounded down, so that 100 is the end.
        const auto filled = static_cast<std::size_t>(*fraction * static_cast<double>(width));
        text = fmt::format("[{}{}] {:3}%", std::string(filled, '#'), std::string(width - filled, '.'),
                           static_cast<int>(*fraction * 100));
    } else {
        text = fmt::format("[{}]", movingBar(turn, width));
    }
    if (!status.empty()) text += "  " + shownText(status);
    return fitting(text, columns);
}

}  // namespace brindlet
