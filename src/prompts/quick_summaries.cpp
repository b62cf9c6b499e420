#include "prompts/quick_summaries.h"

#include <charconv>
#include <cmath>
#include <cstdint>
#include <limits>
#include <string_view>
#include <system_error>
#include <utility>

#include <fmt/format.h>

#include "text/characters.h"
#include "text/regex.h"
#include "text/strings.h"
#include "text/utf8.h"

namespace brindlet::summaries {

namespace {

struct PixelSize {
    std::string width, height;
};

// What a run over one file printed; none where there were several files or a run failed.
std::optional<std::string> outputOfOneFile(const QuickSummaryContext& context) {
    if (!context.allSuccess || context.files.size() != 1) return std::nullopt;
    return toValidUtf8(context.output);  // `ls` prints the bytes of a file name as they are
}

std::optional<std::string> firstLine(const QuickSummaryContext& context) {
    static const Regex notBlank(R"(^.*\S.*$)", {.anchorsMatchLines = true});
    const auto output = outputOfOneFile(context);
    if (!output) return std::nullopt;
    const auto match = notBlank.find(*output);
    return match ? std::optional<std::string>(*match->group(0)) : std::nullopt;
}

std::optional<PixelSize> pixelSize(const Regex& pattern, const std::optional<std::string>& text) {
    if (!text) return std::nullopt;
    const auto match = pattern.find(*text);
    if (!match) return std::nullopt;
    return PixelSize{std::string(*match->group(1)), std::string(*match->group(2))};
}

const Regex& imagePixels() {
    static const Regex pattern(R"(pixelWidth:\s*(\d+)[\s\S]*?pixelHeight:\s*(\d+))");
    return pattern;
}

const Regex& videoPixels() {
    static const Regex pattern(R"((?<!\d)(\d+)x(\d+))");
    return pattern;
}

// From the fifth field of a line of `ls -l`, or the first of one of `du`.
std::optional<std::string> sizeIn(std::string_view line) {
    static const Regex listing(R"(^[-dl]\S*(?:\s+\S+){3}\s+(\d+(?:\.\d+)?[BKMGT]?)(?!\S))");
    static const Regex diskUsage(R"(^\s*(\d+(?:\.\d+)?[BKMGT]?)(?!\S))");
    const bool isListing = line.find_first_of("-dl") == 0;
    const auto match = (isListing ? listing : diskUsage).find(line);
    if (!match) return std::nullopt;
    std::string size(*match->group(1));
    const bool hasUnit = size.back() >= 'A' && size.back() <= 'Z';
    return hasUnit ? size : size + "B";
}

// Past the range of a double counts as infinite.
std::optional<double> parsedNumber(std::string_view text) {
    if (text.starts_with('+') && !text.starts_with("+-")) text.remove_prefix(1);  // from_chars knows the minus only
    double number = 0;
    const char* const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, number);
    if (error == std::errc::invalid_argument || stop != end) return std::nullopt;
    return error == std::errc() ? number : std::numeric_limits<double>::infinity();
}

std::string formattedTime(double seconds) {
    constexpr double minute = 60;
    constexpr double hour = 60 * minute;
    if (seconds < 0 || !std::isfinite(seconds)) return "0s";
    if (seconds < minute) return fmt::format("{:.2f}s", seconds);
    const double whole = std::trunc(seconds);  // no integer holds them all
    const double minutes = std::trunc(std::fmod(whole, hour) / minute);
    const double rest = std::fmod(whole, minute);
    if (seconds < hour) return fmt::format("{:.0f}m {:02.0f}s", minutes, rest);
    return fmt::format("{:.0f}h {:02.0f}m {:02.0f}s", std::trunc(whole / hour), minutes, rest);
}

std::optional<std::string> pixelsAndFileSize(std::string_view what, const Regex& pattern,
                                             const QuickSummaryContext& context) {
    const auto line = firstLine(context);
    const auto pixels = pixelSize(pattern, outputOfOneFile(context));
    const auto size = line ? sizeIn(*line) : std::nullopt;
    if (!pixels || !size) return std::nullopt;
    return fmt::format("{} is {}x{} pixels, {} size", what, pixels->width, pixels->height, *size);
}

}  // namespace

Summary fixed(std::string text) {
    return [text = std::move(text)](const QuickSummaryContext& context) {
        return context.allSuccess ? std::optional(text) : std::nullopt;
    };
}

std::optional<std::string> selected(const QuickSummaryContext& context) {
    static const Regex report(R"(Selected\s+(?<count>\d+)\s+items?\s+in\s+Finder)");
    if (!context.allSuccess) return std::nullopt;
    const std::string output = toValidUtf8(context.output);
    const auto match = report.find(output);
    const auto count = match ? parsedInteger(*match->group("count")) : std::nullopt;
    if (!count) return std::nullopt;
    return fmt::format("📂 Selected {} item{}", *count, *count == 1 ? "" : "s");
}

std::optional<std::string> none(const QuickSummaryContext&) {
    return std::nullopt;
}

std::optional<std::string> imageSize(const QuickSummaryContext& context) {
    const auto pixels = pixelSize(imagePixels(), outputOfOneFile(context));
    if (!pixels) return std::nullopt;
    return fmt::format("🖼️ Image size: {}x{} pixels", pixels->width, pixels->height);
}

std::optional<std::string> videoSize(const QuickSummaryContext& context) {
    const auto pixels = pixelSize(videoPixels(), firstLine(context));
    if (!pixels) return std::nullopt;
    return fmt::format("🎬 Video size: {}x{} pixels", pixels->width, pixels->height);
}

std::optional<std::string> duration(const QuickSummaryContext& context) {
    const auto line = firstLine(context);
    const auto seconds = line ? parsedNumber(trimmed(*line)) : std::nullopt;
    if (!seconds) return std::nullopt;
    return "⏱️ Duration: " + formattedTime(*seconds);
}

std::optional<std::string> fileSize(const QuickSummaryContext& context) {
    const auto line = firstLine(context);
    const auto size = line ? sizeIn(*line) : std::nullopt;
    if (!size) return std::nullopt;
    return fmt::format("{} Size: {}", line->starts_with('d') ? "📁" : "📄", *size);
}

std::optional<std::string> imageSizeAndFileSize(const QuickSummaryContext& context) {
    return pixelsAndFileSize("🖼️ Image", imagePixels(), context);
}

std::optional<std::string> videoSizeAndFileSize(const QuickSummaryContext& context) {
    return pixelsAndFileSize("🎬 Video", videoPixels(), context);
}

Summary count(std::string label) {
    return [label = std::move(label)](const QuickSummaryContext& context) -> std::optional<std::string> {
        static const Regex number(R"(^\s*(\d+)\b)");
        const auto line = firstLine(context);
        const auto match = line ? number.find(*line) : std::nullopt;
        if (!match) return std::nullopt;
        return fmt::format("{}: {}", label, *match->group(1));
    };
}

}  // namespace brindlet::summaries
