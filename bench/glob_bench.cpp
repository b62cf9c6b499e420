// Patterns over file names, each beside fnmatch(3) with the same meaning, and the patterns that others explode on.
//
//     glob_bench --benchmark_repetitions=5 --benchmark_report_aggregates_only=true
//
// `items_per_second` counts names.
#include <benchmark/benchmark.h>
#include <fnmatch.h>

#include <string>
#include <vector>

#include "glob/pattern.h"

namespace {

using brindlet::Pattern;

const std::vector<std::string>& fileNames() {
    static const std::vector<std::string> names = {
        "IMG_2034.jpg",
        "IMG_2035.jpg",
        "Screenshot 2024-03-01 at 10.12.45.png",
        ".DS_Store",
        "notes.txt",
        "report-final-v2.docx",
        "a.txt",
        "budget 2023.xlsx",
        "main.cpp",
        "CMakeLists.txt",
        "README.md",
        ".gitignore",
        "holiday.mp4",
        "presentation.pdf",
        "archive.tar.gz",
        "data_2024_01.csv",
        "x",
        "package-lock.json",
        "song - artist (live).mp3",
        "invoice_0042.pdf",
        "thumbnail.png",
        "backup-2024-01-01.zip",
        "scan0001.tiff",
        "Makefile",
    };
    return names;
}

const char* const plainPatterns[] = {"*.txt", "IMG_*", "*20*", "?ain.cpp", "[a-m]*", "*_20??*.csv", "*a*e*.*"};
const char* const listPatterns[] = {"*.@(jpg|png|tiff)", "!(*.txt|*.md)", "@(IMG|scan)*.?(jp)g",
                                    "+([a-z]).+([a-z])", "*(a|b|x)",      "@(*-*|*_*).@(csv|zip)"};

void matchNames(benchmark::State& state, const char* text) {
    const Pattern pattern(text);
    for (auto _ : state)
        for (const auto& name : fileNames()) benchmark::DoNotOptimize(pattern.match(name));
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(fileNames().size()));
}

void fnmatchNames(benchmark::State& state, const char* text) {
    for (auto _ : state)
        for (const auto& name : fileNames())
            benchmark::DoNotOptimize(fnmatch(text, name.c_str(), FNM_PATHNAME | FNM_PERIOD | FNM_EXTMATCH));
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(fileNames().size()));
}

void matchOtherScripts(benchmark::State& state, const char* text) {
    const std::vector<std::string> names = {"фотография.jpg", "報告書.txt", "café résumé.pdf", "Übersicht.txt"};
    const Pattern pattern(text);
    for (auto _ : state)
        for (const auto& name : names) benchmark::DoNotOptimize(pattern.match(name));
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(names.size()));
}

std::string repeated(const std::string& text, std::size_t length) {
    std::string result;
    while (result.size() + text.size() <= length) result += text;
    return result;
}

// 200 characters against 255.
void matchHostile(benchmark::State& state, const std::string& text) {
    const Pattern pattern(text);
    const std::string name(255, 'a');
    for (auto _ : state) benchmark::DoNotOptimize(pattern.match(name));
}

void buildPattern(benchmark::State& state, const char* text) {
    for (auto _ : state) benchmark::DoNotOptimize(Pattern(text));
}

const int registered = [] {
    using benchmark::RegisterBenchmark;
    const auto named = [](const std::string& what, const std::string& text) { return what + " " + text; };
    const auto both = [&](const char* text) {
        RegisterBenchmark(named("match", text).c_str(), matchNames, text);
        RegisterBenchmark(named("fnmatch", text).c_str(), fnmatchNames, text);
    };
    for (const char* text : plainPatterns) both(text);
    for (const char* text : listPatterns) both(text);
    for (const char* text : {"*.txt", "@(*.txt|*.pdf)"})
        RegisterBenchmark(named("other scripts", text).c_str(), matchOtherScripts, text);
    const std::string hostile[] = {repeated("*a", 198) + "b*", repeated("*(*(a))", 199) + "b", repeated("+(a|*)", 200),
                                   repeated("!(a|b)", 200), repeated("!(", 130) + "x" + repeated(")", 65)};
    for (const auto& text : hostile)
        RegisterBenchmark(named("hostile", text.substr(0, 12)).c_str(), matchHostile, text);
    for (const char* text : {"file.txt", "*.txt", "[[:alpha:]]*", "*.@(jpg|png)"})
        RegisterBenchmark(named("build", text).c_str(), buildPattern, text);
    return 0;
}();

}  // namespace
