#include "analysis/models/ffmpeg_hazards.h"

#include <algorithm>
#include <string_view>
#include <unordered_set>

#include <fmt/format.h>

#include "analysis/doubts.h"
#include "analysis/models/model_support.h"
#include "text/strings.h"

namespace brindlet {

namespace {

// ffmpeg 5.1, `ffmpeg -h long`: the options that take no value. Every other one takes the word behind it, whatever
// that is.
// clang-format off
constexpr std::string_view realOptionsWithoutValue[] = {
    "L", "version", "buildconf", "formats", "muxers", "demuxers", "devices", "codecs", "decoders", "encoders", "bsfs",
    "protocols", "filters", "pix_fmts", "layouts", "sample_fmts", "dispositions", "colors", "hwaccels", "report", "y",
    "n", "ignore_unknown", "stats", "hide_banner", "copy_unknown", "recast_media", "benchmark", "benchmark_all",
    "stdin", "dump", "hex", "copyts", "start_at_zero", "xerror", "auto_conversion_filters", "debug_ts", "psnr",
    "vstats", "qphist", "accurate_seek", "re", "shortest", "bitexact", "copyinkf", "find_stream_info", "autorotate",
    "autoscale", "vn", "an", "sn", "dn", "force_fps", "fix_sub_duration",
};
// clang-format on

// Options that make a file beside the outputs, or read on in a file.
// clang-format off
constexpr std::string_view ffmpegWritingOptions[] = {
    "report", "vstats", "vstats_file", "sdp_file", "progress", "pass", "dump_attachment", "stats_enc_pre",
    "stats_enc_post", "stats_mux_pre", "print_graphs_file", "segment_list", "hls_segment_filename",
    "hls_fmp4_init_filename", "master_pl_name", "init_seg_name", "media_seg_name", "single_file_name",
    "filter_complex_script", "filter_script", "fpre", "vpre", "apre", "spre", "pre",
};
// clang-format on
// Formats that make several files or pass on what they get, and the extensions that stand for some of them.
constexpr std::string_view spreadingFormats[] = {
    "tee", "hls", "segment", "stream_segment", "ssegment", "dash", "smoothstreaming", "hds", "webm_chunk", "fifo",
};
constexpr std::string_view spreadingExtensions[] = {".m3u8", ".mpd"};
// Filters that write a file, listen or load code.
constexpr std::string_view reachingFilters[] = {
    "metadata", "ametadata", "psnr",   "ssim",       "xpsnr",  "libvmaf", "vmafmotion", "signature",
    "zmq",      "azmq",      "frei0r", "frei0r_src", "ladspa", "lv2",     "whisper",
};
constexpr std::string_view reachingTexts[] = {"vidstabdetect", "stats_file", "log_path"};
// What an encoder's own parameters may hold: "stats=x264.log".
constexpr std::string_view writingParameters[] = {"stats", "csv", "recon", "dump", "save", "reuse-file", "log-file"};

using Names = std::unordered_set<std::string>;

struct Option {
    std::string name;  // without its stream specifier
    std::string value;
};

// The words as ffmpeg itself divides them.
struct Division {
    Words inputs;
    Words outputs;
    std::vector<Option> options;
};

bool takesValue(std::string_view name) {
    if (isAmong(name, realOptionsWithoutValue)) return false;
    return !(name.starts_with("no") && isAmong(name.substr(2), realOptionsWithoutValue));
}

Division divide(const Words& words) {
    Division division;
    bool isBehindDoubleHyphen = false;
    for (std::size_t at = 0; at < words.size(); ++at) {
        const std::string& word = words[at];
        const bool isOutput = isBehindDoubleHyphen || word.size() < 2 || !word.starts_with('-');
        isBehindDoubleHyphen = !isOutput && word == "--";
        if (isBehindDoubleHyphen) continue;
        if (isOutput) {
            division.outputs.push_back(word);
            continue;
        }
        const std::string name = word.substr(1, word.find(':') - 1);
        std::string value;
        if (takesValue(name) && at + 1 < words.size()) value = words[++at];
        if (word == "-i")
            division.inputs.push_back(value);
        else
            division.options.push_back({name, value});
    }
    return division;
}

bool isAsciiLetterOrDigit(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9');
}

// "https:" of "https://x", as ffmpeg finds the protocol of a name.
std::string_view protocol(std::string_view name) {
    const auto isProtocolCharacter = [](char c) { return isAsciiLetterOrDigit(c) || c == '+' || c == '-' || c == '.'; };
    const auto end = std::find_if_not(name.begin(), name.end(), isProtocolCharacter);
    if (end == name.begin() || end == name.end() || *end != ':') return {};
    return name.substr(0, static_cast<std::size_t>(end - name.begin()) + 1);
}

bool isNoFile(std::string_view output) {
    constexpr std::string_view devices[] = {"-", "/dev/null", "/dev/stdout", "/dev/stderr"};
    return isAmong(output, devices) || output.starts_with("pipe:");
}

// "%d", "%03d", or a mark of the time.
bool isPattern(std::string_view name) {
    const auto percent = std::adjacent_find(name.begin(), name.end(),
                                            [](char c, char next) { return c == '%' && isAsciiLetterOrDigit(next); });
    return percent != name.end();
}

// Whether `name` stands in a filter description as the name of a filter or parameter: "ssim=", "ssim@id=".
bool namesFilter(std::string_view text, std::string_view name) {
    const auto isWordCharacter = [](char c) { return isAsciiLetterOrDigit(c) || c == '_'; };
    for (std::size_t at = text.find(name); at != std::string_view::npos; at = text.find(name, at + 1)) {
        const std::size_t end = at + name.size();
        if (at > 0 && isWordCharacter(text[at - 1])) continue;
        if (end < text.size() && (text[end] == '=' || text[end] == '@')) return true;
    }
    return false;
}

// A filter description that reaches further than the picture; quotes and backslashes may stand within its names.
bool reachesOut(std::string_view word) {
    std::string plain(word);
    std::erase_if(plain, [](char c) { return c == '\\' || c == '\''; });
    return std::any_of(std::begin(reachingFilters), std::end(reachingFilters),
                       [&](auto name) { return namesFilter(plain, name); }) ||
           std::any_of(std::begin(reachingTexts), std::end(reachingTexts),
                       [&](auto text) { return contains(plain, text); });
}

bool holdsWritingParameter(const Option& option) {
    if (!option.name.ends_with("-params") && !option.name.ends_with("opts")) return false;
    return std::any_of(std::begin(writingParameters), std::end(writingParameters),
                       [&](auto text) { return contains(option.value, text); });
}

bool mayWrite(const Option& option, const Names& shown) {
    if (holdsWritingParameter(option)) return true;
    if (option.name.starts_with('/')) return true;  // ffmpeg 7: the value stands in a file
    if (!isAmong(option.name, ffmpegWritingOptions)) return false;
    if (option.name == "pass") return option.value != "2";  // the second pass reads
    return !isNoFile(option.value) && !shown.contains(option.value);
}

class Hazards {
  public:
    void files(std::string sentence) { add({PlainSideEffect::unknownFileChanges, std::move(sentence)}); }
    void partly(std::string sentence) { add({PlainSideEffect::partialSupport, std::move(sentence)}); }

    void ofOptions(std::string_view tool, const std::vector<Option>& options, const Names& shown) {
        for (const Option& option : options)
            if (mayWrite(option, shown))
                files(fmt::format("{}: '-{}' may write files that aren't shown here", tool, option.name));
    }
    void ofWords(std::string_view tool, const Words& words) {
        for (const std::string& word : words)
            if (reachesOut(word))
                partly(fmt::format("{}: {} may do more than is shown here", tool, quotedForSentence(word)));
    }
    std::vector<SideEffect> found;

  private:
    void add(SideEffect effect) {
        if (found.size() < mostSentences) found.push_back(std::move(effect));
    }
};

bool spreads(const Option& option) {
    return option.name == "f" && isAmong(option.value, spreadingFormats);
}

void ofOutputs(Hazards& hazards, const Division& division, const Names& shown) {
    const bool isSpread = std::any_of(division.options.begin(), division.options.end(), spreads);
    for (const std::string& output : division.outputs) {
        if (isNoFile(output)) continue;
        const std::string quoted = quotedForSentence(output);
        if (!shown.contains(output))
            hazards.files(fmt::format("ffmpeg may also write {}", quoted));
        else if (!protocol(output).empty())
            hazards.partly(fmt::format("ffmpeg may send its output elsewhere than to a file {}", quoted));
        else if (isSpread || isPattern(output) || endsInAny(output, spreadingExtensions))
            hazards.files(fmt::format("ffmpeg may create more files than {}", quoted));
    }
}

}  // namespace

std::vector<SideEffect> ffmpegHazards(const std::vector<std::string>& words, const FFmpegParsedArguments& parsed) {
    const Division division = divide(words);
    Hazards hazards;
    if (division.inputs != parsed.inputPaths) hazards.partly("ffmpeg may read other inputs than those looked at here");
    const Names shown(parsed.outputPaths.begin(), parsed.outputPaths.end());
    ofOutputs(hazards, division, shown);
    hazards.ofOptions("ffmpeg", division.options, shown);
    hazards.ofWords("ffmpeg", words);
    return hazards.found;
}

std::vector<SideEffect> ffprobeHazards(const std::vector<std::string>& words) {
    Hazards hazards;
    for (const std::string& word : words)
        if (word == "-o" || word == "-report" || word.starts_with("-/"))
            hazards.files(fmt::format("ffprobe: '{}' may write files that aren't shown here", word));
    hazards.ofWords("ffprobe", words);
    return hazards.found;
}

std::vector<SideEffect> missingInputHazards(const std::vector<std::string>& words, const std::string& input) {
    const auto isFormat = [](const std::string& word) { return word == "-f" || word.starts_with("-f:"); };
    const auto format = std::find_if(words.begin(), words.end(), isFormat);
    const bool hasFormat = std::find(format, words.end(), input) != words.end();  // in front: it is the input's
    const bool hasWildcard = input.find_first_of("%*?[{") != std::string::npos;
    if (!hasFormat && !hasWildcard && protocol(input).empty()) return {};
    return {{PlainSideEffect::partialSupport,
             fmt::format("ffmpeg may find its input {}, which is no file here, and go on", quotedForSentence(input))}};
}

}  // namespace brindlet
