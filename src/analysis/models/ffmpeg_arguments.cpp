#include "analysis/models/ffmpeg_arguments.h"

#include <cstddef>
#include <string_view>
#include <utility>

#include "analysis/arg_extractor.h"
#include "text/characters.h"
#include "text/strings.h"

namespace brindlet {

namespace {

using Words = std::vector<std::string>;
using Values = ArgExtractor::FlagsAndOptions;

// clang-format off
constexpr std::string_view optionsWithValue[] = {
    "vf", "af", "filter:v", "filter:a", "filter_complex", "filter_complex_script", "c", "c:v", "c:a", "codec",
    "codec:v", "codec:a", "vcodec", "acodec", "b:v", "b:a", "crf", "q", "q:v", "q:a", "s", "r", "aspect", "ss", "t",
    "to", "itsoffset", "timestamp", "map", "map_channel", "streamid", "frames:v", "frames:a", "ac", "ar", "g",
    "keyint_min", "sc_threshold", "profile:v", "level", "pix_fmt", "preset", "threads", "movflags", "flags", "strict",
    "vsync", "async", "segment_time", "segment_format", "segment_list", "segment_list_size", "hls_time",
    "hls_segment_filename", "hls_flags", "hwaccel", "hwaccel_output_format", "f",
};
// clang-format on
constexpr std::string_view optionsWithoutValue[] = {
    "an", "vn", "sn", "dn", "shortest", "copyts", "start_at_zero",
};

const ArgExtractor::OptionArities& optionArities() {
    static const ArgExtractor::OptionArities arities = [] {
        ArgExtractor::OptionArities made;
        for (const auto name : optionsWithValue) made.emplace_back(name, 1);
        for (const auto name : optionsWithoutValue) made.emplace_back(name, 0);
        return made;
    }();
    return arities;
}

struct Size {
    std::int64_t width = 0, height = 0;
};

std::optional<Size> readSize(std::string_view text, std::string_view separator) {
    const Words parts = splitNonEmpty(text, separator);
    if (parts.size() != 2) return std::nullopt;
    const auto width = parsedInteger(parts[0]), height = parsedInteger(parts[1]);
    if (!width || !height) return std::nullopt;
    return Size{*width, *height};
}

std::optional<Size> plainScale(std::string_view filter) {
    constexpr std::string_view mark = "scale=";
    const std::size_t at = filter.find(mark);
    if (at == std::string_view::npos) return std::nullopt;
    return readSize(replacedAll(filter.substr(at + mark.size()), "x", ":"), ":");
}

std::optional<std::int64_t> readBitrate(std::string_view value) {
    const std::string lower = lowercased(value);
    std::string_view number = lower;
    std::int64_t factor = 1;
    if (lower.ends_with('k')) factor = 1'000;
    if (lower.ends_with('m')) factor = 1'000'000;
    if (factor > 1) number.remove_suffix(1);
    const auto count = parsedInteger(number);
    std::int64_t bitsPerSecond = 0;
    if (!count || __builtin_mul_overflow(*count, factor, &bitsPerSecond)) return std::nullopt;
    return bitsPerSecond;
}

void setSize(FFmpegParsedArguments& parsed, const Size& size) {
    parsed.targetWidth = size.width;
    parsed.targetHeight = size.height;
}

void readFilter(FFmpegParsedArguments& parsed, const Values& values) {
    parsed.rawVideoFilter = values.value("vf");
    if (!parsed.rawVideoFilter) parsed.rawVideoFilter = values.value("filter:v");
    if (!parsed.rawVideoFilter) return;
    if (const auto size = plainScale(*parsed.rawVideoFilter)) {
        setSize(parsed, *size);
        parsed.rawVideoFilter.reset();
    }
}

// An option's value as `read` takes it; none where the option isn't there.
template <class Read>
auto readValue(const Values& values, std::string_view option, std::string_view what, Read read)
    -> decltype(read(std::string_view())) {
    const auto value = values.value(option);
    if (!value) return std::nullopt;
    auto result = read(*value);
    if (!result) throw FFmpegParseError{"Invalid " + std::string(what) + " " + *value};
    return result;
}

bool looksLikeFileName(std::string_view word) {
    const std::size_t point = word.rfind('.');
    if (point == std::string_view::npos) return false;
    const std::size_t length = characterCount(word.substr(point + 1));
    return length >= 2 && length <= 4;
}

}  // namespace

std::vector<std::string> FFmpegArgumentParser::takeInputs(std::vector<std::string>& words) {
    Words inputs, others;
    for (std::size_t at = 0; at < words.size(); ++at) {
        if (words[at] != "-i")
            others.push_back(std::move(words[at]));
        else if (at + 1 < words.size() && !words[at + 1].starts_with('-'))
            inputs.push_back(std::move(words[++at]));
    }
    words = std::move(others);
    return inputs;
}

FFmpegParsedArguments FFmpegArgumentParser::parse(std::vector<std::string> words) {
    FFmpegParsedArguments parsed;
    parsed.inputPaths = takeInputs(words);
    if (parsed.inputPaths.empty()) throw FFmpegParseError{"Missing input file"};
    parsed.inputPath = parsed.inputPaths.front();

    ArgExtractor args("ffmpeg", ArgExtractor::Style::singleHyphenLongOptions, std::move(words));
    const Values values = args.extractFlagsAndOptions(optionArities());
    parsed.overwriteOutput = values.hasFlag("y");
    parsed.noOverwrite = values.hasFlag("n");
    readFilter(parsed, values);
    const auto readResolution = [](std::string_view value) { return readSize(value, "x"); };
    if (const auto size = readValue(values, "s", "resolution string", readResolution)) setSize(parsed, *size);
    parsed.videoBitrate = readValue(values, "b:v", "video bitrate", readBitrate);
    parsed.audioBitrate = readValue(values, "b:a", "audio bitrate", readBitrate);
    parsed.audioChannels = readValue(values, "ac", "channel count", parsedInteger);
    parsed.sampleRate = readValue(values, "ar", "sample rate", parsedInteger);
    parsed.videoCodec = values.value(values.value("vcodec") ? "vcodec" : "c:v");
    parsed.audioCodec = values.value(values.value("acodec") ? "acodec" : "c:a");

    for (std::string& word : args.extractTrailingOperands())
        if (looksLikeFileName(word)) parsed.outputPaths.push_back(std::move(word));
    if (parsed.outputPaths.empty()) throw FFmpegParseError{"Missing output file"};
    parsed.outputPath = parsed.outputPaths.back();
    return parsed;
}

}  // namespace brindlet
