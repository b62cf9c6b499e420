// The tool that tidies folders up, in scratch folders: what it shows, what it does, and that both are the same.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <time.h>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <set>

#include "end_to_end/program.h"
#include "platform/child_process.h"
#include "platform/read_only_launcher.h"

namespace brindlet {
namespace fiotraf_tests {

using Words = std::vector<std::string>;

const std::string binaries = std::filesystem::path(BRINDLET_PROGRAM).parent_path() / "Binaries";

struct Ran {
    int exitCode;
    std::string output;  // both streams
};

Ran fiotraf(const ScratchFolder& folder, const Words& words) {
    ChildLaunch launch{.arguments = {binaries + "/fiotraf"},
                       .folder = folder.path(),
                       .environment = {{"TZ", "UTC"}},
                       .joinsStandardError = true};
    launch.arguments.insert(launch.arguments.end(), words.begin(), words.end());
    auto child = ChildProcess::start(launch);
    if (!child) return {-1, child.failure().description};
    std::string output;
    while ((*child)->read(output, std::chrono::seconds(60)) == ReadState::bytes) continue;
    return {(*child)->waitForExit(), output};
}

// Every file below the folder, by its path.
std::set<std::string> files(const ScratchFolder& folder) {
    std::set<std::string> paths;
    for (const auto& [path, state] : folder.snapshot())
        if (!S_ISDIR(state.mode)) paths.insert(path);
    return paths;
}

void setDay(const ScratchFolder& folder, std::string_view file, std::time_t time) {
    const timespec times[] = {{time, 0}, {time, 0}};
    ASSERT_EQ(::utimensat(AT_FDCWD, folder.path(file).text().c_str(), times, 0), 0);
}

constexpr std::time_t may15of2024 = 1715731200;
constexpr std::time_t june1of2024 = 1717200000;  // its first second

TEST(Fiotraf, ShowsItsPlanAndChangesNothing) {
    const ScratchFolder folder;
    for (const char* name : {"b.JPG", "a.png", "notes.txt", "strange", ".hidden.txt", "folder.txt/x.txt"})
        folder.write(name, "");
    folder.link("link.txt", "notes.txt");
    for (int number = 1; number <= 12; ++number) folder.write("song" + std::to_string(number) + ".mp3", "");
    const auto before = folder.snapshot();
    const Ran ran = fiotraf(folder, {"organize", "."});
    EXPECT_EQ(ran.exitCode, 0);
    EXPECT_EQ(ran.output,
              "Documents (1 file)\n  → notes.txt\n\n"
              "Images (2 files)\n  → a.png\n  → b.JPG\n\n"
              "Music (12 files)\n  → song1.mp3\n  → song10.mp3\n  → song11.mp3\n  → song12.mp3\n  → song2.mp3\n"
              "  → song3.mp3\n  → song4.mp3\n  → song5.mp3\n  → song6.mp3\n  → song7.mp3\n  → … and 2 more\n\n"
              "Other (1 file)\n  → strange\n\n"
              "Nothing is changed yet: --execute moves 16 files into 4 folders.\n");
    EXPECT_EQ(folder.snapshot(), before);
}

TEST(Fiotraf, MovesAndCopiesWithoutReplacing) {
    struct Case {
        Words options;
        std::set<std::string> result;
    };
    const Case cases[] = {
        {{}, {".h", "Images", "Images 2/a.png", "Documents/t 2.txt", "Documents/t.txt", "Other/x.y z", "d/a.png"}},
        {{"--by-extension"}, {".h", "Documents/t.txt", "Images", "PNG/a.png", "TXT/t.txt", "Other/x.y z", "d/a.png"}},
        {{"--by-date"},
         {".h", "2024-05/a.png", "2024-06/t.txt", "2024-06/x.y z", "Documents/t.txt", "Images", "d/a.png"}},
        {{"--copy"},
         {".h", "Images", "Images 2/a.png", "a.png", "Documents/t 2.txt", "Documents/t.txt", "t.txt", "Other/x.y z",
          "x.y z", "d/a.png"}},
    };
    for (const auto& [options, result] : cases) {
        const ScratchFolder folder;
        for (const char* name : {"Documents/t.txt", "a.png", "t.txt", "x.y z", ".h", "d/a.png"})
            folder.write(name, std::string("of ") + name);
        folder.link("Images", "nowhere");  // the name of a folder to come is taken
        setDay(folder, "a.png", may15of2024);
        setDay(folder, "t.txt", june1of2024);
        setDay(folder, "x.y z", june1of2024);
        Words words = {"organize", "--execute", "."};
        words.insert(words.end(), options.begin(), options.end());
        SCOPED_TRACE(testing::PrintToString(words));
        EXPECT_EQ(fiotraf(folder, words).exitCode, 0);
        EXPECT_EQ(files(folder), result);
        // Content and time go along.
        for (const auto& [path, state] : folder.snapshot()) {
            if (path.ends_with("t.txt") && !path.starts_with("Documents/")) {
                EXPECT_EQ(state.content, "of t.txt");
            }
            if (path.ends_with("/a.png") && path != "d/a.png") {
                EXPECT_EQ(state.modifiedAt, may15of2024 * 1'000'000'000);
            }
        }
        EXPECT_EQ(folder.read("Documents/t.txt"), "of Documents/t.txt");
    }
}

TEST(Fiotraf, Filters) {
    const ScratchFolder folder;
    folder.write("Report May.pdf", std::string(1500, 'x'));
    folder.write("report.txt", std::string(1000, 'x'));
    folder.write("äbc.PNG", "");
    setDay(folder, "Report May.pdf", may15of2024);
    setDay(folder, "report.txt", june1of2024);
    setDay(folder, "äbc.PNG", june1of2024);
    struct Case {
        Words filters;
        std::set<std::string> entries;
    };
    const std::string pdf = "Report May.pdf", text = "report.txt", image = "äbc.PNG";
    const Case cases[] = {
        {{"--min-size", "1KB"}, {pdf, text}},
        {{"--min-size", "1KiB"}, {pdf}},
        {{"--max-size", "1.0 k"}, {text, image}},
        {{"--min-size=1001", "--max-size=2MB"}, {pdf}},
        {{"--after", "2024-06-01"}, {text, image}},
        {{"--before", "2024-06"}, {pdf}},
        {{"--after", "2024", "--before", "2025"}, {pdf, text, image}},
        {{"--startswith", "REPORT"}, {pdf, text}},
        {{"--endswith", ".png"}, {image}},
        {{"--contains", "ÄB"}, {image}},
        {{"--mime", "image"}, {image}},
        {{"--mime", "text/*"}, {text}},
        {{"--mime=application/pdf"}, {pdf}},
        {{"--mime", "text/pl"}, {}},
        {{"--contains", "report", "--mime", "text/plain"}, {text}},
    };
    for (const auto& [filters, entries] : cases) {
        SCOPED_TRACE(testing::PrintToString(filters));
        Words words = {"organize"};
        words.insert(words.end(), filters.begin(), filters.end());
        words.push_back(folder.path().text());
        const Ran ran = fiotraf(folder, words);
        EXPECT_EQ(ran.exitCode, 0);
        for (const auto& name : {pdf, text, image})
            EXPECT_EQ(ran.output.find("→ " + name + "\n") != std::string::npos, entries.contains(name)) << ran.output;
        EXPECT_EQ(ran.output == "Nothing to organize.\n", entries.empty());
    }
}

// A name must not make the plan say something else than what happens.
TEST(Fiotraf, NamesThatNoLineCanShowAreLeftAlone) {
    const ScratchFolder folder;
    const std::set<std::string> odd = {"a\n→ b.txt",  "photo (3 files)", "… and 5 more", " x.txt",
                                       "bad\xff.txt", "esc\x1b[31m.txt", "end\u2028.txt"};
    for (const auto& name : odd) folder.write(name, "");
    folder.write("A → B (1 file).txt", "");
    folder.write("x.a b (2 files)c", "");
    EXPECT_EQ(fiotraf(folder, {"organize", ".", "--by-extension"}).output,
              "Other (1 file)\n  → x.a b (2 files)c\n\nTXT (1 file)\n  → A → B (1 file).txt\n\n"
              "Left alone, since a line can't show the name as it is: 7 files.\n"
              "Nothing is changed yet: --execute moves 2 files into 2 folders.\n");
    EXPECT_EQ(fiotraf(folder, {"organize", ".", "--execute"}).exitCode, 0);
    const auto left = files(folder);
    EXPECT_TRUE(std::ranges::includes(left, odd));
}

TEST(Fiotraf, WrongUsageIsOneSentence) {
    const ScratchFolder folder;
    folder.write("a.txt", "");
    struct Case {
        Words words;
        int exitCode;
        std::string_view says;
    };
    const Case cases[] = {
        {{"tidy"}, 64, "'tidy' is nothing it does"},
        {{"organize"}, 64, "name the folder"},
        {{"organize", "--execute"}, 64, "name the folder"},
        {{"organize", ".", "sub"}, 64, "'sub' is one too many"},
        {{"organize", ".", "--exec"}, 64, "no option '--exec'"},
        {{"organize", ".", "-x"}, 64, "no option '-x'"},
        {{"organize", ".", "--contains"}, 64, "--contains needs a text"},
        {{"organize", "--contains", "--execute", "."}, 64, "--contains needs a text"},
        {{"organize", ".", "--min-size", "big"}, 64, "'big' is not a size"},
        {{"organize", ".", "--min-size", "-1"}, 64, "'-1' is not a size"},
        {{"organize", ".", "--after", "2024-02-30"}, 64, "'2024-02-30' is not a date"},
        {{"organize", ".", "--by-date", "--by-extension"}, 64, "choose one"},
        {{"organize", "--", "--execute"}, 1, "'--execute': No such file"},
        {{"organize", "gone", "--execute"}, 1, "'gone': No such file"},
        {{"organize", "a.txt"}, 1, "'a.txt': Not a directory"},
    };
    for (const auto& [words, exitCode, says] : cases) {
        SCOPED_TRACE(says);
        const Ran ran = fiotraf(folder, words);
        EXPECT_EQ(ran.exitCode, exitCode);
        EXPECT_NE(ran.output.find(says), std::string::npos) << ran.output;
        EXPECT_EQ(std::ranges::count(ran.output, '\n'), 1) << ran.output;
    }
    EXPECT_EQ(fiotraf(folder, {}).exitCode, 0);
    EXPECT_NE(fiotraf(folder, {"organize", ".", "--help"}).output.find("--execute"), std::string::npos);
    EXPECT_EQ(files(folder), std::set<std::string>{"a.txt"});
}

TEST(Fiotraf, WhatCannotBeMovedIsToldAndStays) {
    const ScratchFolder folder;
    const std::string longName = std::string(251, 'n') + ".txt";
    for (const auto& name : {longName, "Documents/" + longName, std::string("b.txt")}) folder.write(name, name);
    const Ran ran = fiotraf(folder, {"organize", ".", "--execute"});
    EXPECT_EQ(ran.exitCode, 1);
    EXPECT_NE(ran.output.find("fiotraf: can't move '" + longName + "': File name too long"), std::string::npos);
    EXPECT_EQ(folder.read(longName), longName);
    EXPECT_TRUE(folder.exists("Documents/b.txt"));
}

// The prediction runs the plan where nothing can be written, and what it makes of it is what then happens.
TEST(Fiotraf, HappensAsPredicted) {
#ifdef __SANITIZE_ADDRESS__
    GTEST_SKIP()
        << "a tool with the address sanitizer in it needs more address space than the sandbox of predictions has";
#endif
    Program program;
    program.environment["PATH"] = binaries + ":/usr/bin:/bin";
    for (const char* name : {"a.jpg", "t.txt", "Documents/u.txt", "Documents/t.txt", "u.txt", "v w.pdf"})
        program.disk.write(name, name);
    const auto before = program.disk.snapshot();
    const auto prediction = program.run({"predict", "--json", "fiotraf organize . --execute"}).json();
    EXPECT_EQ(program.disk.snapshot(), before);
    ASSERT_EQ(prediction["exitCode"], 0) << prediction;

    std::set<std::string> expected = files(program.disk);
    for (const auto& change : prediction["changes"]) {
        EXPECT_NE(change["type"], "delete");
        if (change["type"] != "move") continue;
        expected.erase(relativePath(FilePath(change["source"].get<std::string>()), program.disk.path()));
        expected.insert(relativePath(FilePath(change["path"].get<std::string>()), program.disk.path()));
    }
    // Two names are taken, which the prediction counts.
    EXPECT_NE(prediction["sideEffects"].dump().find(R"("count":2)"), std::string::npos) << prediction;
    for (const char* name : {"t.txt", "u.txt"}) expected.erase(name);
    for (const char* name : {"Documents/t 2.txt", "Documents/u 2.txt"}) expected.insert(name);

    EXPECT_EQ(program.run({"run", "--yes", "fiotraf organize . --execute"}).exitCode, 0);
    EXPECT_EQ(files(program.disk), expected);
}

}  // namespace fiotraf_tests
}  // namespace brindlet
