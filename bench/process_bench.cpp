// One prediction as a whole process, from the spawn to the end, beside the start of the shell that would run the line.
#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <initializer_list>
#include <string>
#include <vector>

namespace {

// A folder with the two settings that every start reads, so that no run is the first of all.
class Surroundings {
  public:
    Surroundings() {
        std::string pattern = std::filesystem::temp_directory_path() / "brindlet-bench-XXXXXX";
        if (!::mkdtemp(pattern.data())) std::abort();
        folder_ = pattern;
        std::ofstream(folder_ / "a") << "content";
        ::setenv("BRINDLET_CONFIG_HOME", (folder_ / "config").c_str(), 1);
        ::setenv("BRINDLET_DATA_HOME", (folder_ / "data").c_str(), 1);
        std::filesystem::current_path(folder_);
    }
    ~Surroundings() {
        std::error_code ignored;
        std::filesystem::remove_all(folder_, ignored);
    }
    Surroundings(const Surroundings&) = delete;
    Surroundings& operator=(const Surroundings&) = delete;

  private:
    std::filesystem::path folder_;
};

int spawnAndWait(std::initializer_list<const char*> words) {
    std::vector<char*> arguments;
    for (const char* word : words) arguments.push_back(const_cast<char*>(word));
    arguments.push_back(nullptr);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
    pid_t child = 0;
    int status = -1;
    if (::posix_spawn(&child, arguments[0], &actions, nullptr, arguments.data(), environ) == 0)
        ::waitpid(child, &status, 0);
    posix_spawn_file_actions_destroy(&actions);
    return status;
}

void measure(benchmark::State& state, std::initializer_list<const char*> words) {
    const Surroundings surroundings;
    spawnAndWait(words);
    for (auto _ : state)
        if (spawnAndWait(words) != 0) state.SkipWithError("the process failed");
}

void bashStarts(benchmark::State& state) {
    measure(state, {"/bin/bash", "-c", ":"});
}
void predictsOneMove(benchmark::State& state) {
    measure(state, {BRINDLET_PROGRAM, "predict", "mv a b"});
}
void predictsOneMoveAsJson(benchmark::State& state) {
    measure(state, {BRINDLET_PROGRAM, "predict", "--json", "mv a b"});
}

BENCHMARK(bashStarts)->UseRealTime()->Repetitions(5)->ReportAggregatesOnly();
BENCHMARK(predictsOneMove)->UseRealTime()->Repetitions(5)->ReportAggregatesOnly();
BENCHMARK(predictsOneMoveAsJson)->UseRealTime()->Repetitions(5)->ReportAggregatesOnly();

}  // namespace
