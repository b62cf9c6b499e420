// The GIF tool, with scripts that stand in for ffmpeg and gifsicle.
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <chrono>

#include "platform/child_process.h"
#include "support/scratch_folder.h"

namespace brindlet {
namespace animated_gif_tests {

class AnimatedGif : public testing::Test {
  protected:
    AnimatedGif() {
        engine("ffmpeg", R"(echo "Duration: 00:00:01.00, start" >&2
printf '%s\n' "$*" >> "$LOG"
for last; do :; done
echo picture > "${last#file:}")");
        engine("gifsicle", R"(printf '%s\n' "$*" >> "$LOG"
while [ "$1" != -o ]; do shift; done
echo small > "$2")");
        disk.write("in.mov", "film");
    }
    void engine(const std::string& name, const std::string& script) {
        ::chmod(engines.write(name, "#!/bin/sh\n" + script + "\n").text().c_str(), 0755);
    }

    std::unique_ptr<ChildProcess> start(const std::vector<std::string>& words) const {
        std::vector<std::string> arguments = {BRINDLET_BINARIES "/brindlet_animated_gif"};
        arguments.insert(arguments.end(), words.begin(), words.end());
        auto child = ChildProcess::start(
            {.arguments = arguments,
             .folder = disk.path(),
             .environment = {{"PATH", engines.path().text() + ":" + path}, {"LOG", engines.path("log").text()}},
             .joinsStandardError = true});
        return child ? std::move(*child) : nullptr;
    }

    int run(const std::vector<std::string>& words) {
        const auto child = start(words);
        if (!child) return -1;
        output.clear();
        while (child->read(output, std::chrono::seconds(60)) == ReadState::bytes) {
        }
        return child->waitForExit();
    }

    std::size_t itemsThere() const { return disk.snapshot().size() - 1; }

    ScratchFolder disk, engines;
    std::string path = "/usr/bin:/bin";
    std::string output;
};

TEST_F(AnimatedGif, MakesOne) {
    disk.write("-out dir/x", "");
    EXPECT_EQ(run({"--lossy", "65", "--fps", "20", "in.mov", "--width", "800", "--", "-out dir/%d.gif"}), 0) << output;
    EXPECT_EQ(disk.read("-out dir/%d.gif"), "small\n");
    EXPECT_EQ(itemsThere(), 4U);  // with nothing left beside
    const auto duration = output.find("Duration: "), gifsicle = output.find("gifsicle:"), end = output.find("Created ");
    EXPECT_LT(duration, gifsicle);
    EXPECT_LT(gifsicle, end);
    EXPECT_EQ(output.substr(end), "Created -out dir/%d.gif\n");
    const std::string log = engines.read("log");
    EXPECT_NE(log.find("-i file:./in.mov"), std::string::npos);
    EXPECT_NE(log.find("fps=20,scale=w='min(800,iw)'"), std::string::npos);
    EXPECT_NE(log.find("--lossy=65"), std::string::npos);
}

TEST_F(AnimatedGif, QuitsWithASentence) {
    disk.makeFolder("folder");
    struct Case {
        std::vector<std::string> words;
        int status;
        std::string_view sentence;
    };
    const Case cases[] = {
        {{"in.mov"}, 64, "takes a video and an output path, 1 given"},
        {{"in.mov", "b", "out.gif"}, 64, "3 given"},
        {{"--bad", "in.mov", "out.gif"}, 64, "unknown option --bad"},
        {{"in.mov", "out.gif", "--fps"}, 64, "--fps needs a value"},
        {{"--fps", "0.0", "in.mov", "out.gif"}, 64, "not '0.0'"},
        {{"--fps", "1,x[a", "in.mov", "out.gif"}, 64, "not '1,x[a'"},
        {{"--width", "99999999999999999999", "in.mov", "out.gif"}, 64, "--width takes"},
        {{"--lossy", "-1", "in.mov", "out.gif"}, 64, "not '-1'"},
        {{"in.mov", "./in.mov"}, 64, "would replace the video itself"},
        {{"no.mov", "out.gif"}, 66, "there is no video 'no.mov'"},
        {{"folder", "out.gif"}, 66, "'folder' can't be read as a video"},
        {{"in.mov", "folder"}, 73, "'folder' is a folder"},
        {{"in.mov", "no/out.gif"}, 73, "no file can be made in the folder of 'no/out.gif'"},
    };
    const auto before = disk.snapshot();
    for (const auto& [words, status, sentence] : cases) {
        EXPECT_EQ(run(words), status) << sentence;
        EXPECT_NE(output.find(sentence), std::string::npos) << output;
    }
    EXPECT_EQ(disk.snapshot(), before);
    for (const auto& words : {std::vector<std::string>{}, {"in.mov", "out.gif", "--fps", "-h"}}) {
        EXPECT_EQ(run(words), 0);
        EXPECT_TRUE(output.starts_with("Usage: brindlet_animated_gif"));
    }
    EXPECT_EQ(disk.snapshot(), before);
}

TEST_F(AnimatedGif, NamesTheMissingEngine) {
    engines.link("bash", "/bin/bash");
    std::filesystem::remove(engines.path("gifsicle").text());
    path = "";
    EXPECT_EQ(run({"in.mov", "out.gif"}), 69);
    EXPECT_NE(output.find("gifsicle is missing"), std::string::npos) << output;
}

TEST_F(AnimatedGif, AFailureLeavesNothing) {
    disk.write("out.gif", "old");
    const auto before = disk.snapshot();
    const auto expectFailure = [&](int status, std::string_view sentence) {
        EXPECT_EQ(run({"in.mov", "out.gif"}), status);
        EXPECT_NE(output.find(sentence), std::string::npos) << output;
        auto after = disk.snapshot();
        after["."].modifiedAt = before.at(".").modifiedAt;  // something came and went
        EXPECT_EQ(after, before);
    };
    engine("gifsicle", "exit 1");
    expectFailure(1, "gifsicle could not convert 'in.mov'");
    engine("gifsicle", "exit 0");
    expectFailure(1, "gifsicle could not convert 'in.mov'");
    engine("ffmpeg", "echo half > \"${LOG}\"; exit 3");
    expectFailure(1, "ffmpeg could not convert 'in.mov'");
}

TEST_F(AnimatedGif, ASignalLeavesNothing) {
    engine("ffmpeg", "echo started; exec sleep 60");
    const auto child = start({"in.mov", "out.gif"});
    ASSERT_TRUE(child);
    ASSERT_EQ(child->read(output, std::chrono::seconds(60)), ReadState::bytes);
    child->terminateGroup(true);
    EXPECT_EQ(child->waitForExit(), 128 + 15);
    EXPECT_EQ(itemsThere(), 1U);
}

}  // namespace animated_gif_tests
}  // namespace brindlet
