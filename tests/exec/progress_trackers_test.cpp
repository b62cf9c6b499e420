#include "exec/progress_trackers.h"

#include <gtest/gtest.h>

#include <typeinfo>
#include <vector>

#include "text/overloaded.h"

namespace brindlet {

namespace progress_trackers_tests {

// A report as text: the line in quotes, or the fraction by four digits.
class Reports {
  public:
    explicit Reports(ProgressTracker& tracker) : tracker_(tracker) {}

    std::vector<std::string> line(std::string_view text) {
        reports_.clear();
        tracker_.handleOutputLine(text, report());
        return reports_;
    }
    std::vector<std::string> after(double seconds) {
        reports_.clear();
        tracker_.handleElapsed(seconds, report());
        return reports_;
    }

  private:
    ProgressTracker::Report report() {
        return [this](const CommandProgress& progress) {
            char digits[32];
            std::visit(Overloaded{
                           [&](const OutputLine& line) { reports_.push_back("'" + line.text + "'"); },
                           [&](const ProgressNorm& norm) {
                               std::snprintf(digits, sizeof digits, "%.4f", norm.value);
                               reports_.emplace_back(digits);
                           },
                       },
                       progress);
        };
    }

    ProgressTracker& tracker_;
    std::vector<std::string> reports_;
};

struct Step {
    std::string_view line;
    std::vector<std::string> reports;
};

void expectSteps(ProgressTracker& tracker, const std::vector<Step>& steps) {
    Reports reports(tracker);
    for (const auto& [line, expected] : steps) EXPECT_EQ(reports.line(line), expected) << line;
}

constexpr std::string_view curlHeading =
    "  % Total    % Received % Xferd  Average Speed   Time    Time     Time  Current";

TEST(ProgressTrackers, TheChoiceGoesByTheFirstWordThatIsThere) {
    struct Case {
        std::string_view command;
        const std::type_info* tracker;  // null: none
    };
    const Case cases[] = {
        {"brindlet_animated_gif --fps 10 a.mov a.gif; ffmpeg", &typeid(BrindletAnimatedGifProgressTracker)},
        {"curl https://x.org/ffmpeg.zip", &typeid(FFmpegProgressTracker)},  // anywhere, in a name too
        {"brew install curl", &typeid(BrewInstallProgressTracker)},
        {"libcurl-config; gifsicle a", &typeid(CurlProgressTracker)},
        {"gifsicle -O3 a.gif; brew uninstall x", &typeid(TimedProgressTracker)},
        {"brew uninstall wget", &typeid(TimedProgressTracker)},
        {"cat a|wget -i -", &typeid(AllOutputProgressTracker)},
        {"zip -r a.zip a", &typeid(AllOutputProgressTracker)},
        {"mv a.zip b", &typeid(AllOutputProgressTracker)},
        {"cat ~/.wgetrc", nullptr},
        {"unzip a; pinged; gzip b", nullptr},
        {"ls", nullptr},
    };
    for (const auto& [command, expected] : cases) {
        SCOPED_TRACE(command);
        const auto tracker = chooseProgressTracker(command);
        ASSERT_EQ(tracker == nullptr, expected == nullptr);
        if (!tracker) continue;
        const ProgressTracker& chosen = *tracker;
        EXPECT_TRUE(typeid(chosen) == *expected) << typeid(chosen).name();
    }
    for (const auto& [command, fraction] : {std::pair{"gifsicle a", "0.0750"}, std::pair{"brew uninstall a", "0.5000"}})
        EXPECT_EQ(Reports(*chooseProgressTracker(command)).after(1.5), std::vector<std::string>{fraction});
}

TEST(ProgressTrackers, TheOnesThatReadNothing) {
    AllOutputProgressTracker all;
    expectSteps(all, {{"  adding: a (stored 0%)", {"'  adding: a (stored 0%)'"}}, {"", {"''"}}});
    EXPECT_TRUE(Reports(all).after(1).empty());

    TimedProgressTracker timed(20);
    expectSteps(timed, {{"50%", {}}});
    const std::pair<double, std::string> times[] = {{-1, "0.0000"},   {10, "0.5000"}, {10.1, "0.5050"},
                                                    {10.1, "0.5050"}, {20, "1.0000"}, {90, "1.0000"}};
    for (const auto& [seconds, fraction] : times)
        EXPECT_EQ(Reports(timed).after(seconds), std::vector<std::string>{fraction});
}

TEST(ProgressTrackers, Curl) {
    CurlProgressTracker tracker;
    expectSteps(tracker, {
                             {"100 1024k", {}},  // a number of whatever is fetched
                             {"% Total", {}},
                             {curlHeading, {}},
                             {"                                 Dload  Upload   Total   Spent    Left  Speed", {}},
                             {"  0     0    0     0    0     0", {}},
                             {"  5 1024k    5", {"0.0500"}},
                             {"  6 1024k    6", {"0.0600"}},  // a whole step, though not quite in binary
                             {"  6 1024k    6", {}},
                             {"40", {}},  // nothing behind it
                             {"1234 x", {}},
                             {"  0     0    0", {}},  // a redirect begins anew
                             {curlHeading, {}},
                             {"  6 10", {}},
                             {"\t41 10", {"0.4100"}},
                             {"100 1024k  100", {"1.0000"}},
                         });
}

TEST(ProgressTrackers, FFmpeg) {
    struct Case {
        std::string_view of;
        std::vector<Step> steps;
    };
    const Case cases[] = {
        {"an ordinary run",
         {{"  Duration: 00:01:00.00, start: 0.000000, bitrate: 1 kb/s", {}},
          {"time=00:00:15.00 bitrate=...", {"0.2500"}},
          {"frame=  9 fps=0 size= 1kB time=00:00:30.00 bitrate=1 speed=2x    ", {"0.5000"}},
          {"frame= 10 time=00:00:29.00 x", {"0.4833"}},  // as it comes, back too
          {"  Duration: 00:00:10.00, the second input's", {}},
          {"x time=00:01:30.00", {"1.5000"}}}},
        {"no duration that can be read", {{"  Duration: N/A, bitrate: N/A", {}}, {"time=00:00:45.00", {"1.5000"}}}},
        {"a duration with no end", {{"Duration: 00:01:00.00", {}}, {"time=00:00:15.00", {"0.5000"}}}},
        {"both in one line", {{"Duration: 01:00:00.00, time=00:30:00", {"0.5000"}}}},
        {"times that can't be read",
         {{"time= N/A", {}},
          {"time=00:00:00:10", {}},
          {"uptime=00:00:10 time=00:00:03", {"0.1000"}},
          {"time=xx:inf:06.0", {"0.2000"}},  // a part that can't be read counts 0
          {"time=-00:00:03", {"0.1000"}}}},
        {"an input of no length", {{"Duration: 00:00:00.00, x", {}}, {"time=00:00:00.00", {}}}},
    };
    for (const auto& [of, steps] : cases) {
        SCOPED_TRACE(of);
        FFmpegProgressTracker tracker;
        expectSteps(tracker, steps);
    }
}

TEST(ProgressTrackers, BrewInstall) {
    BrewInstallProgressTracker tracker("Poppler");
    expectSteps(
        tracker,
        {
            {"==> Fetching downloads for: poppler", {}},
            {"🍺  /opt/homebrew/Cellar/early/1: 3 files", {"'🍺 Installing Poppler components...'"}},
            {"==> Fetching dependencies for poppler: a, b and c",
             {"'🍺 Downloading Poppler dependencies: a'", "'🍺 Downloading Poppler dependencies: b c'",
              "0.3833"}},  // 1 of 3
            {"==> Installing dependencies for poppler: a, b and c",
             {"'🍺 Installing Poppler dependency: a'", "'🍺 Installing Poppler dependency: b c'"}},
            {"🍺 /opt/homebrew/Cellar/one blank", {}},
            {"🍺  /opt/homebrew/Cellar/a/1.2: 9 files, 1MB", {"'🍺 Installing Poppler components...'", "0.4400"}},
            {"🍺  /home/linuxbrew/.linuxbrew/Cellar/b/1", {"'🍺 Installing Poppler components...'", "0.6100"}},
            {"Warning: c 2 is already installed and up-to-date", {"'🍺 Installing Poppler components...'", "0.7800"}},
            {"==> Running `brew cleanup` c...", {"'Finishing up...'", "0.9750"}},
            {"anything", {}},
            {"`brew cleanup` has not been run in the last 30 days", {"1.0000", "'🍺 Poppler installation complete!'"}},
        });
    BrewInstallProgressTracker surprised("");
    expectSteps(surprised, {
                               {"x already installed", {"'🍺 Installing  components...'"}},
                               {"y already installed", {"'🍺 Installing  components...'"}},
                               {"Fetching dependencies for x: and , ,", {"1.0000"}},  // 2 of 1
                               {"Fetching dependencies for x", {}},
                           });
}

TEST(ProgressTrackers, AnimatedGif) {
    double now = 0;
    BrindletAnimatedGifProgressTracker tracker([&now] { return now; });
    const std::string begins = "'ffmpeg: Creating initial high quality GIF...'";
    expectSteps(tracker, {
                             {"  Duration: 00:00:10.00, start", {begins}},
                             {"time=00:00:05.00", {"0.1500"}},
                             {"time=00:00:05.10", {}},
                             {"time=00:00:50.00", {"0.3000"}},  // no further without gifsicle
                             {"time=00:01:50.00", {}},
                         });
    EXPECT_TRUE(Reports(tracker).after(5).empty());
    now = 6;
    expectSteps(tracker, {{"gifsicle: warning", {"'gifsicle: Optimising GIF...'"}}, {"time=00:00:01", {}}});
    EXPECT_TRUE(Reports(tracker).after(6).empty());  // where it stands
    EXPECT_EQ(Reports(tracker).after(10), std::vector<std::string>{"0.5000"});
    EXPECT_EQ(Reports(tracker).after(40), std::vector<std::string>{"1.0000"});
    expectSteps(tracker, {{"Created a.gif", {"1.0000"}}, {"Created a.gif", {}}, {"gifsicle:", {}}});
    EXPECT_TRUE(Reports(tracker).after(60).empty());

    BrindletAnimatedGifProgressTracker atOnce([] { return 0.0; });
    expectSteps(atOnce, {{"gifsicle:", {begins, "0.3000", "'gifsicle: Optimising GIF...'"}}});
    EXPECT_TRUE(Reports(atOnce).after(0).empty());
}

}  // namespace progress_trackers_tests
}  // namespace brindlet
