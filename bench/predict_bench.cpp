// Predictions in process, beside the parse of the same lines. But for the last two none launches a tool: those show
// what the simulation adds to a real `find` and a real `unzip`, which are measured beside them.
#include <benchmark/benchmark.h>
#include <fmt/format.h>

#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>

#include "analysis/models/command_table.h"
#include "analysis/request_analysis.h"
#include "platform/environment.h"

namespace brindlet {
namespace {

// A real folder with so many empty files, gone at the end.
class Folder {
  public:
    explicit Folder(int files)
        : path_(std::filesystem::temp_directory_path() / fmt::format("brindlet-bench-{}-{}", ::getpid(), files)) {
        std::filesystem::create_directories(path_);
        for (int at = 0; at < files; ++at) std::ofstream(path_ / fmt::format("IMG_{:05}.jpg", at));
    }
    ~Folder() { std::filesystem::remove_all(path_); }
    Folder(const Folder&) = delete;
    Folder& operator=(const Folder&) = delete;
    FilePath path() const { return FilePath(path_.string()); }

  private:
    std::filesystem::path path_;
};

struct Setting {
    std::unique_ptr<FileSystem> files = openFileSystem();
    std::unique_ptr<ReadOnlyLauncher> launcher = openReadOnlyLauncher();
    AnalysisServices services{*files, *launcher, builtInCommands(), [] { return std::string("/usr/bin:/bin"); },
                              homeFolder()};
};

void predict(benchmark::State& state, const std::string& line, int fileCount) {
    const Folder folder(fileCount);
    Setting setting;
    const std::vector<Environment> once{processEnvironment()};
    std::size_t changes = 0;
    for (auto _ : state) {
        const AnalysisResult result = analyzeRequest(line, folder.path(), once, setting.services);
        changes = result.changes.size();
        benchmark::DoNotOptimize(changes);
    }
    state.counters["changes"] = static_cast<double>(changes);
    state.SetComplexityN(fileCount);
}

constexpr int many = 10'000;

BENCHMARK_CAPTURE(predict, a_move, "mv IMG_00001.jpg first.jpg", 3);
BENCHMARK_CAPTURE(predict, a_chain, "mkdir -p out && cp IMG_00001.jpg out/ && rm IMG_00001.jpg", 3);
BENCHMARK_CAPTURE(predict, a_loop, "for f in *.jpg; do mv \"$f\" \"${f%.jpg}.jpeg\"; done", 3);
BENCHMARK_CAPTURE(predict, a_pipe, "echo \"$HOME\" | cat > note.txt", 3);
BENCHMARK_CAPTURE(predict, glob_of_many, "mkdir out; mv *.jpg out/", many)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(predict, loop_of_many, "for f in *.jpg; do mv \"$f\" \"${f%.jpg}.jpeg\"; done", many)
    ->Unit(benchmark::kMillisecond);
// Every file goes round several times: each path has a long record.
BENCHMARK_CAPTURE(predict, deep_overlay,
                  "for n in 1 2 3 4 5; do for f in IMG_000*.jpg; do mv \"$f\" t; mv t \"$f\"; done; done", 100)
    ->Unit(benchmark::kMillisecond);

BENCHMARK_CAPTURE(predict, find_exec_on_many, R"(find . -name '*.jpg' -exec sips -Z 100 {} \;)", many)
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();

void toolAlone(benchmark::State& state, const std::string& line, int fileCount) {
    const Folder folder(fileCount);
    const std::string inFolder = "cd '" + folder.path().text() + "' && " + line + " >/dev/null";
    for (auto _ : state) benchmark::DoNotOptimize(std::system(inFolder.c_str()));
}
BENCHMARK_CAPTURE(toolAlone, find_many, "find . -name '*.jpg'", many)->Unit(benchmark::kMillisecond)->UseRealTime();

void predictUnzip(benchmark::State& state, int fileCount) {
    const Folder folder(fileCount);
    const std::string pack = "cd '" + folder.path().text() + "' && zip -q many.zip *.jpg -x many.zip && rm *.jpg";
    if (std::system(pack.c_str()) != 0) return state.SkipWithError("zip is not installed");
    Setting setting;
    const std::vector<Environment> once{processEnvironment()};
    for (auto _ : state)
        benchmark::DoNotOptimize(analyzeRequest("unzip many.zip", folder.path(), once, setting.services));
}
BENCHMARK_CAPTURE(predictUnzip, of_many, many)->Unit(benchmark::kMillisecond)->UseRealTime();

void parseAlone(benchmark::State& state, const std::string& line) {
    for (auto _ : state) benchmark::DoNotOptimize(Basher(line).parse());
}
BENCHMARK_CAPTURE(parseAlone, a_loop, "for f in *.jpg; do mv \"$f\" \"${f%.jpg}.jpeg\"; done");

}  // namespace
}  // namespace brindlet
