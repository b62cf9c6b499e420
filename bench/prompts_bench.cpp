// The index of requests: built, searched warm and cold, and the prompt that comes of it, beside one plain read of as
// much memory.
#include <benchmark/benchmark.h>

#include <numeric>
#include <vector>

#include "platform/file_system.h"
#include "prompts/system_prompt.h"

namespace {

using namespace brindlet;

const PromptSimilaritySearch& builtSearch() {
    static PromptSimilaritySearch search;
    static const bool isBuilt = (search.buildIndex(), true);
    benchmark::DoNotOptimize(isBuilt);
    return search;
}

// More than a processor's cache holds.
std::vector<std::uint64_t>& otherMemory() {
    static std::vector<std::uint64_t> memory(std::size_t{64} << 17, 1);
    return memory;
}

void coolDown() {
    benchmark::DoNotOptimize(std::accumulate(otherMemory().begin(), otherMemory().end(), std::uint64_t{0}));
}

void buildIndex(benchmark::State& state) {
    for (auto _ : state) {
        PromptIndex index;
        benchmark::DoNotOptimize(PromptSimilaritySearch(index).buildIndex());
    }
}
BENCHMARK(buildIndex)->Unit(benchmark::kMillisecond);

void searchIndex(benchmark::State& state, bool isCold) {
    builtSearch();
    for (auto _ : state) {
        if (isCold) {
            state.PauseTiming();
            coolDown();
            state.ResumeTiming();
        }
        benchmark::DoNotOptimize(PromptIndex::shared().search("make this photo 300px wide", 12));
    }
}
BENCHMARK_CAPTURE(searchIndex, warm, false)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(searchIndex, cold, true)->Unit(benchmark::kMicrosecond);

void readAsMuchMemory(benchmark::State& state) {
    builtSearch();
    const std::vector<std::uint64_t> memory(PromptIndex::shared().size() * PromptIndex::vectorLength / 8, 1);
    for (auto _ : state) benchmark::DoNotOptimize(std::accumulate(memory.begin(), memory.end(), std::uint64_t{0}));
}
BENCHMARK(readAsMuchMemory)->Unit(benchmark::kMicrosecond);

void composePrompt(benchmark::State& state) {
    const auto files = openFileSystem();
    const PromptSources sources{builtSearch(), *files, {}};
    for (auto _ : state)
        benchmark::DoNotOptimize(composeSystemPrompt("make this photo 300px wide", ModelPace::normal,
                                                     {FilePath("/tmp/photo.jpg")}, sources));
}
BENCHMARK(composePrompt)->Unit(benchmark::kMicrosecond);

}  // namespace
