// One-liners of some 40 bytes, parsed and printed back. Beside it by hand, on the same lines in one file: `bash -n` and
// `shfmt`.
//
//     parse_bench --benchmark_repetitions=5 --benchmark_report_aggregates_only=true
//
// `items_per_second` counts lines.
#include <benchmark/benchmark.h>

#include <string>
#include <vector>

#include "shell/basher.h"
#include "shell/printing.h"
#include "shell/reading_guard.h"

namespace {

using namespace brindlet;

const std::vector<std::string> lines = {
    "mv \"$FILE_NAME\" \"${FILE_BASENAME}.bak\"",
    "mkdir -p backup && cp *.txt backup/",
    "find . -name '*.log' -mtime +7 -delete",
    "for f in *.jpg; do mv \"$f\" \"img_$f\"; done",
    "ls -la | grep -i report | wc -l",
    "rm -rf build/",
    "tar -czf archive.tar.gz folder",
    "zip -r photos.zip IMG_2034.jpg IMG_2035.jpg",
    "grep -rn 'TODO' src | sort | uniq -c",
    "convert in.png -resize 50% out.png",
    "ffmpeg -i in.mov -vcodec h264 out.mp4",
    "echo \"hello $USER\" > greeting.txt",
    "cat a.txt b.txt >> all.txt",
    "du -sh * | sort -h | tail -n 5",
    "if [ -f a ]; then rm a; fi",
    "sed -i 's/foo/bar/g' notes.txt",
    "awk '{ sum += $3 } END { print sum }' data.csv",
    "head -n 20 access.log | cut -d ' ' -f 1",
    "touch file{1..5}.txt",
    "mkdir -p project/{src,include,tests}",
    "mv photo.jpeg \"${FILE_NAME%.*}.jpg\"",
    "cp \"$f\" \"${f%.txt}.md\"",
    "curl -sL https://example.com/a.zip -o a.zip",
    "pdftotext report.pdf - | wc -w",
    "open -a Preview scan.pdf",
    "chmod +x script.sh && ls -l script.sh",
    "find . -type f -exec chmod 644 {} +",
    "(cd sub) && ls",
    "date +%Y-%m-%d",
    "x=1; while [ $x -lt 3 ]; do ((x++)); done",
    "sips -Z 640 IMG_2034.jpg --out small.jpg",
    "ls *.png | xargs -n 1 basename",
    "diff old.txt new.txt || echo changed",
    "unzip -l archive.zip 2>/dev/null",
    "cd Downloads && rm -f *.dmg",
    "mv 'My File.txt' my\\ file.txt",
    "echo $((3 + 4))",
    "wc -l $(find . -name '*.cpp')",
    "pandoc notes.md -o notes.pdf",
    "qpdf --empty --pages a.pdf b.pdf -- out.pdf",
};

void count(benchmark::State& state) {
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(lines.size()));
}

void parseLines(benchmark::State& state) {
    for (auto _ : state) {
        for (const std::string& line : lines) benchmark::DoNotOptimize(Basher(line).parse());
    }
    count(state);
}
BENCHMARK(parseLines);

std::vector<BashStatementList> trees() {
    std::vector<BashStatementList> result;
    for (const std::string& line : lines) result.push_back(Basher(line).parse());
    return result;
}

void printTrees(benchmark::State& state) {
    const auto parsed = trees();
    for (auto _ : state) {
        for (const BashStatementList& tree : parsed) benchmark::DoNotOptimize(print(tree));
    }
    count(state);
}
BENCHMARK(printTrees);

void parseAndPrint(benchmark::State& state) {
    for (auto _ : state) {
        for (const std::string& line : lines) benchmark::DoNotOptimize(print(Basher(line).parse()));
    }
    count(state);
}
BENCHMARK(parseAndPrint);

void guardTrees(benchmark::State& state) {
    const auto parsed = trees();
    for (auto _ : state) {
        for (const BashStatementList& tree : parsed) benchmark::DoNotOptimize(readingHazard(tree));
    }
    count(state);
}
BENCHMARK(guardTrees);

}  // namespace
