#include "analysis/models/ffmpeg_arguments.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "support/predict.h"
#include "text/strings.h"

namespace brindlet {
namespace ffmpeg_tests {

using Texts = std::vector<std::string>;

// What the reading takes out of the words between an input and an output, for short.
FFmpegParsedArguments parsed(std::string_view words) {
    Texts all = {"-i", "in.mov"};
    for (auto& word : splitNonEmpty(words, " ")) all.push_back(word);
    all.emplace_back("out.mp4");
    return FFmpegArgumentParser::parse(all);
}

std::string fault(std::string_view words) {
    try {
        FFmpegArgumentParser::parse(splitNonEmpty(words, " "));
    } catch (const FFmpegParseError& error) {
        return error.errorDescription();
    }
    return "";
}

TEST(FFmpegArguments, Values) {
    struct Case {
        std::string_view words;
        std::optional<std::int64_t> width, height;
        std::optional<std::string> filter = {};
    };
    const Case sizes[] = {
        {"-vf scale=640:480", 640, 480},
        {"-vf scale=640x480", 640, 480},
        {"-filter:v fps=10,scale=640:-1", 640, -1},
        {"-vf scale=640:480,fps=10", {}, {}, "scale=640:480,fps=10"},
        {"-vf scale=640", {}, {}, "scale=640"},
        {"-vf hflip -filter:v scale=1:2", {}, {}, "hflip"},
        {"-vf hflip -s 3x4", 3, 4, "hflip"},
        {"-s 3x4 -vf scale=1:2", 3, 4},  // -s goes over the filter wherever it stands
    };
    for (const auto& [words, width, height, filter] : sizes) {
        SCOPED_TRACE(words);
        const auto arguments = parsed(words);
        EXPECT_EQ(arguments.targetWidth, width);
        EXPECT_EQ(arguments.targetHeight, height);
        EXPECT_EQ(arguments.rawVideoFilter, filter);
    }
    const auto arguments = parsed("-b:v 2M -b:a 128k -ac 2 -ar 44100 -vcodec h264 -c:v copy -c:a aac -y -n -i more");
    EXPECT_EQ(arguments.videoBitrate, 2'000'000);
    EXPECT_EQ(arguments.audioBitrate, 128'000);
    EXPECT_EQ(arguments.audioChannels, 2);
    EXPECT_EQ(arguments.sampleRate, 44'100);
    EXPECT_EQ(arguments.videoCodec, "h264");
    EXPECT_EQ(arguments.audioCodec, "aac");
    EXPECT_TRUE(arguments.overwriteOutput && arguments.noOverwrite);
    EXPECT_EQ(arguments.inputPaths, (Texts{"in.mov", "more"}));
    EXPECT_EQ(arguments.inputPath, "in.mov");
}

TEST(FFmpegArguments, Outputs) {
    struct Case {
        std::string_view words;
        Texts outputs;
    };
    const Case cases[] = {
        {"-i a out.mp4 clip x.y a.webm b.jsonl", {"out.mp4", "a.webm"}},
        {"-i a -c copy -t 10 clip.mp4 -y", {"clip.mp4"}},
        {"-i a first.mp4 -- -x.mp4 last.mp4", {"last.mp4"}},
        {"-i a first.mp4 - last.éé", {"last.éé"}},
        {"out.mp4 thumb.png -i -i a", {"out.mp4", "thumb.png"}},
    };
    for (const auto& [words, outputs] : cases) {
        SCOPED_TRACE(words);
        const auto arguments = FFmpegArgumentParser::parse(splitNonEmpty(words, " "));
        EXPECT_EQ(arguments.outputPaths, outputs);
        EXPECT_EQ(arguments.outputPath, outputs.back());
    }
}

TEST(FFmpegArguments, Faults) {
    const std::pair<std::string_view, std::string_view> cases[] = {
        {"", "Missing input file"},
        {"out.mp4", "Missing input file"},
        {"-i - out.mp4", "Missing input file"},
        {"-i a", "Missing output file"},
        {"-i a -f null -", "Missing output file"},
        {"-i a out.mp4 -", "Missing output file"},
        {"-i a -s 640 -b:v x", "Invalid resolution string 640"},
        {"-i a -s 640x480x1", "Invalid resolution string 640x480x1"},
        {"-i a -b:v fast -b:a x", "Invalid video bitrate fast"},
        {"-i a -b:a k", "Invalid audio bitrate k"},
        {"-i a -b:a 9223372036854775807k", "Invalid audio bitrate 9223372036854775807k"},
        {"-i a -ac two -ar x", "Invalid channel count two"},
        {"-i a -ar 44.1", "Invalid sample rate 44.1"},
    };
    for (const auto& [words, text] : cases) EXPECT_EQ(fault(words), text) << words;
}

struct Row {
    std::string_view line;
    Texts changes = {};
    std::string outcome = "0 unknown";
    Texts errors = {};
    Texts sideEffects = {"longRunning: Long-running operation"};
};

void expectRow(const Row& row) {
    SCOPED_TRACE(row.line);
    FakeDisk disk{"in.mov", "a.mov", "error"};
    const AnalysisResult result = predict(row.line, disk);
    EXPECT_EQ(described(result), row.changes);
    EXPECT_EQ(described(result.commandErrors), row.errors);
    EXPECT_EQ(outcome(result), row.outcome);
    EXPECT_EQ(described(result.sideEffects), row.sideEffects);
    EXPECT_TRUE(result.requiredPackages.contains("FFmpeg"));
}

TEST(FFmpeg, Predictions) {
    const Texts nothing;
    const std::string gif = "brindlet_animated_gif: ";
    const Row rows[] = {
        {"ffmpeg -i in.mov -loglevel quiet out.mp4", {"create out.mp4"}},
        {"ffmpeg -i in.mov -n a.mov thumb.png", {"create a.mov", "overwrite a.mov", "create thumb.png"}},
        {"ffmpeg -ss 5 -i in.mov -i a.mov -filter_complex x -map -0:s -an out.mp4", {"create out.mp4"}},
        {"ffmpeg -i in.mov -i no.mov out.mp4", nothing, "1 'ffmpeg: no.mov: No such file or directory'", nothing,
         nothing},
        {"ffmpeg -i no.mov -f mp4 out.mp4", nothing, "1 'ffmpeg: no.mov: No such file or directory'", nothing, nothing},
        {"ffmpeg out.mp4",
         nothing,
         "1 'ffmpeg: Missing input file'",
         {"FFmpeg command error / ffmpeg: Missing input file"},
         nothing},
        {"ffprobe in.mov"},
        {"ffprobe -v error -i in.mov"},  // there is a file of that name here
        {"ffprobe -v quiet in.mov", nothing, "1 'ffprobe: quiet: No such file or directory'", nothing, nothing},
        {"ffprobe -hide_banner",
         nothing,
         "1 'ffprobe: missing input file'",
         {"ffprobe command incorrectly written / ffprobe: missing input file"},
         nothing},
        {"brindlet_animated_gif --lossy 65 --fps 20 --width 800 in.mov out.gif", {"create out.gif"}},
        {"brindlet_animated_gif in.mov",
         nothing,
         "1 '" + gif + "requires input video and output path'",
         {"Animated GIF command missing files / " + gif + "requires input video and output path"},
         nothing},
        {"brindlet_animated_gif --bad -x in.mov out.gif",
         nothing,
         "1 '" + gif + "unknown option -- bad'",
         {"Unsupported option in GIF command / " + gif + "unknown option -- bad"},
         nothing},
        {"brindlet_animated_gif no.mov out.gif",
         nothing,
         "1 '" + gif + "no.mov: No such file or directory'",
         {"GIF source doesn’t exist / " + gif + "no.mov: No such file or directory"},
         nothing},
    };
    for (const Row& row : rows) expectRow(row);
}

TEST(FFmpeg, GifHelpIsReallyRun) {
    for (const Texts& words : {Texts{}, Texts{"--fps", "--help"}}) {
        FakeDisk disk;
        FakeLauncher launcher;
        launcher.answers = {{.exitCode = 0, .output = "Usage"}};
        const auto result = predict("brindlet_animated_gif " + joined(words, " "), disk, {.launcher = &launcher});
        EXPECT_EQ(outcome(result), "0 'Usage'");
        EXPECT_EQ(launcher.launches.at(0).arguments.size(), words.size() + 1);
        EXPECT_EQ(result.requiredPackages, (std::set<std::string>{"FFmpeg", "Gifsicle"}));
    }
}

// Lines that may do more than the reading shows: something must be said of each that isn't plain.
TEST(FFmpeg, NothingIsHidden) {
    const std::string_view hazardous[] = {
        "ffmpeg -i in.mov -progress Makefile out.mp4",
        "ffmpeg -report -i in.mov out.mp4",
        "FFREPORT=file=x ffmpeg -i in.mov out.mp4",
        "ffmpeg -i in.mov -pass 1 -passlogfile log out.mp4",
        "ffmpeg -dump_attachment:t:0 Makefile -i in.mov out.mp4",
        "ffmpeg -i in.mov -f segment -segment_list Makefile out.mp4",
        "ffmpeg -i in.mov frame%03d.png",
        "ffmpeg -i in.mov list.m3u8",
        "ffmpeg -i in.mov -f tee '[f=mp4]x|y.mp4'",
        "ffmpeg -i in.mov out.mp4 Makefile",
        "ffmpeg -i in.mov out.mp4 -- -x last.mp4",
        "ffmpeg -i in.mov -an Makefile -nostats more out.mp4",
        "ffmpeg -i in.mov file:out.mp4",
        "ffmpeg -i in.mov rtmp://host/live.flv",
        "ffmpeg -i in.mov -vf 'met\\adata@x=print:file=Makefile' out.mp4",
        "ffmpeg -i in.mov -af vidstabdetect out.mp4",
        "ffmpeg -i in.mov -x264-params stats=Makefile out.mp4",
        "ffmpeg -i in.mov -/vf script out.mp4",
        "ffmpeg -metadata -i a.mov -i in.mov out.mp4",
        "ffmpeg -i https://host/in.mov out.mp4",
        "ffmpeg -i img%03d.png out.mp4",
        "ffmpeg -f lavfi -i testsrc out.mp4",
        "ffmpeg -i in.mov out.mp4 || rm in.mov",
        "ffprobe -o a.mov in.mov",
        "ffprobe -show_format -report in.mov",
        "ffprobe -f lavfi -i 'movie=in.mov,metadata=print:file=a.mov'",
        "ffprobe -v quiet in.mov && rm in.mov",
    };
    for (const auto line : hazardous) {
        FakeDisk disk{"in.mov", "a.mov"};
        const Texts said = described(predict(line, disk).sideEffects);
        const bool isSaid = std::any_of(said.begin(), said.end(), [](const auto& text) {
            return text.starts_with("partialSupport") || text.starts_with("unknownFileChanges");
        });
        EXPECT_TRUE(isSaid) << line;
    }
    expectRow({"ffmpeg -i in.mov -pass 2 -progress pipe:1 -movflags use_metadata_tags 100%.mp4", {"create 100%.mp4"}});
    expectRow({"ffmpeg -i in.mov -progress log.txt -metadata title=ssim out.mp4 pipe:1",
               {"create log.txt", "create out.mp4"}});
}

}  // namespace ffmpeg_tests
}  // namespace brindlet
