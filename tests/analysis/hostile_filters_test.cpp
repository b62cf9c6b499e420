// Lines that make the real tools write, run programs, wait or never end, launched for real as an ordinary user. The
// disk stays as it is, an answer comes in time, and no line that would change something is taken for a harmless one.
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <chrono>

#include "analysis/risk.h"
#include "platform/read_only_launcher.h"
#include "support/ordinary_user.h"
#include "support/predict.h"
#include "support/scratch_folder.h"

namespace brindlet {
namespace hostile_filters_tests {

using std::chrono::milliseconds;
using Clock = std::chrono::steady_clock;

constexpr LaunchLimits smallLimits{.wallClock = milliseconds{300}, .outputBytes = 64 * 1024};

// A prediction with nothing between it and the system but the sandbox.
class RealPrediction {
  public:
    AnalysisResult predict(const std::string& line, const FilePath& folder) {
        const AnalysisServices services{*files_, *launcher_, builtInCommands(), [] { return "/usr/bin:/bin"; }, folder};
        BasherAnalysis analysis(Basher(line), folder, {{"LC_ALL", "C"}}, std::make_shared<BasherAnalysisState>(*files_),
                                services);
        return analysis.analyse();
    }
    bool hasSandbox() const { return launcher_->layers() != "none"; }

  private:
    std::unique_ptr<FileSystem> files_ = openFileSystem();
    std::unique_ptr<ReadOnlyLauncher> launcher_ = openReadOnlyLauncher(smallLimits);
};

bool asks(const AnalysisResult& result, const FilePath& folder) {
    constexpr auto level = AnalysisConfirmationToggleList::defaultRiskLevel;
    return !reasonsToAsk(commandEffects(result, folder), AnalysisConfirmationToggleList::togglesOfLevel(level)).empty();
}

bool isInstalled(const std::string& tool) {
    return openFileSystem()->isExecutableFile(FilePath("/usr/bin/" + tool));
}

struct Row {
    std::string line;
    std::string outcome = "";  // "" where that doesn't matter
};

void expectRows(const std::vector<Row>& rows, bool wantsQuestion) {
    inOrdinaryProcess([&] {
        const ScratchFolder scratch;
        scratch.write("a", "beta\nalpha\n");
        scratch.write("b", "touch new\n");
        scratch.write("script", "w new\n");
        scratch.write("program.awk", "BEGIN { print 1 > \"new\" }\n");
        ASSERT_EQ(::mkfifo(scratch.path("fifo").text().c_str(), 0600), 0);
        const auto before = scratch.snapshot();
        RealPrediction prediction;
        if (!prediction.hasSandbox()) GTEST_SKIP() << "nothing is launched here";
        for (const auto& [line, expected] : rows) {
            SCOPED_TRACE(line);
            const auto start = Clock::now();
            const AnalysisResult result = prediction.predict(line, scratch.path());
            EXPECT_LT(Clock::now() - start, milliseconds{4'000});
            if (!expected.empty()) {
                EXPECT_EQ(outcome(result), expected);
            }
            EXPECT_EQ(asks(result, scratch.path()), wantsQuestion) << outcome(result);
            ASSERT_EQ(scratch.snapshot(), before);
        }
    });
}

TEST(HostileFilters, NothingIsWrittenAndTheUserIsAsked) {
    expectRows(
        {
            {"sort -oa a", "? unknown"},
            {"sort --outp a a", "? unknown"},
            {"sort a -n --output=new", "? unknown"},
            {"cat a | sort -nonew"},
            {"sort -S 1 -T . --compress-program='touch new; cat' a /usr/bin/env", ""},
            {"uniq - new", "? unknown"},
            {"echo x | uniq -c - a", "? unknown"},
            {"uniq --skip-chars 1 a new"},
            {"sed 'w new' a", "? unknown"},
            {"sed -n '$w new' a", "? unknown"},
            {"echo | sed '1{W new\n}'", "? unknown"},
            {"sed 's/a/b/w new' a", "? unknown"},
            {"echo 'touch new' | sed e", ""},
            {"sed '1e touch new' a", ""},
            {"sed 's/.*/touch new/e' a", ""},
            {"sed -nEi p a"},
            {"sed --in-place= p a", "? unknown"},
            {"sed --in-p p a", "? unknown"},
            {"sed -n --in-place=.bak p a", "? unknown"},
            {"sed -i p a"},
            {"sed -nfscript a", ""},
            {"sed --file=script a", ""},
            {"sed --expression='w new' a", ""},
            {"sed -e 'i\\' -e 'x' -e 'w new' a", "? unknown"},
            {"sed --posix 'w new' a", "? unknown"},
            {"sed -i"},
            {"awk 'BEGIN { print 1 | \"cat > new\" }'", ""},
            {"awk 'BEGIN { \"touch new\" | getline }'", ""},
            {"awk 'BEGIN { f = \"new\"; print 1 > (f) }'", "? unknown"},
            {"awk '{ print $1 > $1 }' a", "? unknown"},
            {"awk 'BEGIN { printf(\"x\") > ENVIRON[\"HOME\"] \"/new\" }'"},
            {"awk -fprogram.awk a"},
            {"awk -f program.awk a", "? unknown"},
            {"gawk -i inplace 1 a"},
            {"awk -i inplace '{ print }' a"},
            {"awk '@load \"filefuncs\"' a"},
            {"awk -Wexec=program.awk a"},
            {"date -s 2001-01-01 --debug"},
            {"date --s=2001-01-01"},
            {"date 0101010101"},
            {"file -C", "0 unknown"},
            {"file -Cm script"},
            {"printf -v x a"},
            {"read x < a"},
            {"awk 'BEGIN { while (1) n++ }'", "? unknown"},
            {"sed ':a;ba' a", "? unknown"},
            {"sort fifo", "? unknown"},
            {"sed p fifo", "? unknown"},
            {"file -s fifo /dev/zero -z --files-from=fifo", ""},
            {"date -f fifo", "? unknown"},
            {"sort /dev/zero", "? unknown"},
            {"grep -r x ."},
        },
        true);
}

TEST(HostileFilters, WhatOnlyReadsEndsInTime) {
    std::vector<Row> rows{
        {"grep x fifo", "? unknown"},
        {"grep -D read x fifo", "? unknown"},
        {"grep --devices=skip x fifo", "1"},
        {"grep --recursive beta .", "0 './a:beta\n'"},
        {"grep x /dev/zero", "? unknown"},
        {"grep -f /dev/zero a", "? unknown"},
        {"grep -c '' - a", "0 '(standard input):0\na:2\n'"},
        {"diff a fifo", "? unknown"},
        {"diff fifo fifo"},
        {"diff -l a b"},
        {"wc /dev/zero", "? unknown"},
        {"wc -c a", "0 '11 a\n'"},
        {"cut -c1 /dev/zero", "? unknown"},
        {"cut -b1 fifo", "? unknown"},
        {"cut -c1-2 a", "0 'be\nal\n'"},
        {"head -c 1 /dev/zero", "0 unknown"},
        {"tail -f a", "0 unknown"},
        {"tail fifo", "0 unknown"},
        {"stat /dev/stdin"},
        {"readlink a", "1"},
        {"printf '%1000000000d' 1", "? unknown"},
        {"printf '%.1000000000f' 1", "? unknown"},
        {"printf '%s' a > /dev/null", "0"},
        {"sed -n 2p a", "0 'alpha\n'"},
        {"sed 's/[/]/x/' a", "0 'beta\nalpha\n'"},
        {"awk '/a|b/ { print length($0) }' a", "0 '4\n5\n'"},
        {"sort a", "0 'alpha\nbeta\n'"},
        {"echo b | uniq -c", "0 '      1 b\n'"},
        {"date -u -d @0 +%Y", "0 '1970\n'"},
    };
    const std::vector<Row> jq{{"jq -n '[range(infinite)]'", "? unknown"},
                              {"jq -n 'repeat(1)'", "? unknown"},
                              {"jq . fifo", "? unknown"},
                              {"jq -L . --run-tests fifo ."},
                              {"jq -n '$ENV.HOME | length > 0'", "0 'true\n'"},
                              {"echo '{\"x\":[1]}' | jq -c .x", "0 '[1]\n'"}};
    const std::vector<Row> bc{{"echo 'while (1) { 1; }' | bc", "? unknown"},
                              {"echo '2^2^30' | bc", "? unknown"},
                              {"bc fifo", "? unknown"},
                              {"echo 1+1 | bc", "0 '2\n'"}};
    if (isInstalled("jq")) rows.insert(rows.end(), jq.begin(), jq.end());
    if (isInstalled("bc")) rows.insert(rows.end(), bc.begin(), bc.end());
    expectRows(rows, false);
}

}  // namespace hostile_filters_tests
}  // namespace brindlet
