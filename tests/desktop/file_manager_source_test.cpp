#include "desktop/file_manager_source.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include "desktop/linux/selection_reader.h"
#include "fakes/fake_disk.h"
#include "platform/log.h"
#include "text/strings.h"

namespace brindlet::file_manager_source_tests {

using namespace std::chrono_literals;
using Names = std::vector<std::string>;

class FileManagerSourceTest : public testing::Test {
  protected:
    // "/w: a.txt b", "-" where nothing is new.
    std::string fetched() {
        const auto found = source.fetch();
        if (!*found) return "-";
        return (*found)->activeFolderPath + ": " + joined((*found)->items, " ");
    }

    FakeDisk disk{"a.txt", "b", "sub/", "/v/x"};
    std::chrono::steady_clock::time_point clock{1h};
    std::optional<FolderWindowDetails> front{{.id = 1, .identifier = "org.xfce.Thunar", .title = "w - Thunar"}};
    std::optional<FolderContent> content{{.folder = "/w", .selectedNames = Names{"a.txt"}}};
    std::string reads;
    FileManagerSource source{disk,
                             {.front = [this] { return front; },
                              .read =
                                  [this](const FolderWindowDetails&, bool isFresh) {
                                      reads += isFresh ? 'F' : 'r';
                                      return content;
                                  },
                              .now = [this] { return clock; }}};
};

TEST_F(FileManagerSourceTest, ReadsOnlyWhatMayHaveChanged) {
    for (int round = 0; round < 20; ++round, clock += 300ms) fetched();
    EXPECT_EQ(reads, "FrrrFr");  // at once, for a second, when that has settled, after three seconds
    reads.clear();
    front->userTime = 5;
    for (int round = 0; round < 6; ++round, clock += 300ms) fetched();
    EXPECT_EQ(reads, "rrrrF");
    reads.clear();
    front->title = "v - Thunar";
    fetched();
    EXPECT_EQ(reads, "F");
}

TEST_F(FileManagerSourceTest, BelievesOnlyWhatIsOnTheDisk) {
    struct Case {
        FolderContent content;
        std::string fetched;
        bool knowsSelection;
    };
    const Case cases[] = {
        {{"/w", Names{"a.txt", "sub"}}, "/w: /w/a.txt /w/sub", true},
        {{"/w", Names{}}, "/w: ", true},
        {{"/w", Names{"gone", "b"}}, "/w: /w/b", true},
        {{"/w", std::nullopt}, "/w: ", false},
        {{"/w", Names{"a.txt", ""}}, "/w: ", false},  // a long list in which names are left out
        {{"/w", Names{"../x"}}, "/w: ", false},
        {{"/gone", Names{"a.txt"}}, "-", true},
        {{"/w/a.txt", Names{}}, "-", true},
    };
    for (const Case& row : cases) {
        front->userTime++;
        content = row.content;
        EXPECT_EQ(fetched(), row.fetched);
        EXPECT_TRUE(row.fetched == "-" || source.knowsSelection() == row.knowsSelection) << row.fetched;
    }
    front.reset();
    EXPECT_EQ(fetched(), "-");
}

TEST_F(FileManagerSourceTest, WhatIsHandedOverStandsForAWhile) {
    source.handOver({{"/v/x"}, "/v"});
    EXPECT_EQ(fetched(), "/v: /v/x");
    front->userTime = 7;
    EXPECT_EQ(fetched(), "/v: /v/x");
    front->title = "other";
    EXPECT_EQ(fetched(), "/w: /w/a.txt");
    source.takeFromCompanion(1, FinderSelection{{"/w/b"}, "/w"});
    EXPECT_EQ(fetched(), "/w: /w/b");
    source.takeFromCompanion(1, FinderSelection{{"/gone/b"}, "/gone"});
    EXPECT_EQ(fetched(), "-");
    front->id = 2;
    EXPECT_EQ(fetched(), "/w: /w/a.txt");
}

TEST(SelectionReader, FindsFoldersInTitlesAndLocations) {
    const std::pair<const char*, Names> titles[] = {
        {"/a/b - Thunar", {"/a/b", "/a/b - Thunar"}},
        {"b - /a/b", {"/a/b"}},
        {"x - y - /a/x - y", {"/a/x - y"}},
        {"/a/x - y - Thunar", {"/a/x - y", "/a/x - y - Thunar"}},
        {"b - Thunar", {}},
        {"", {}},
    };
    for (const auto& [title, paths] : titles) EXPECT_EQ(pathsInTitle(title), paths) << title;

    const std::string reply =
        "method return time=1\n   variant       array [\n         dict entry(\n"
        "            string \"/org/gnome/Nautilus/window/1\"\n            array [\n"
        "               string \"file:///a/one\"\n               string \"file:///b/na%C3%AFve%20%22\"\n"
        "            ]\n         )\n         dict entry(\n            string \"/org/gnome/Nautilus/window/2\"\n"
        "            array [\n               string \"file:///c%2\"\n            ]\n         )\n      ]\n";
    struct Case {
        const char* window;
        const char* title;
        const char* folder;
    };
    for (const auto& [window, title, folder] : {Case{"1", "one", "/a/one"},
                                                {"1", "na\u00EFve \"", "/b/na\u00EFve \""},
                                                {"1", "two", ""},
                                                {"2", "whatever", "/c%2"},
                                                {"3", "one", ""}})
        EXPECT_EQ(folderInLocations(reply, std::string("/org/gnome/Nautilus/window/") + window, title), folder);
}

TEST(AnsweringProcess, KeepsItsStateAndIsReplacedWhenItFails) {
    AnsweringProcess helper([count = 0](const std::string& question) mutable -> std::optional<std::string> {
        if (question == "hang") ::pause();
        if (question == "crash") ::_exit(1);
        if (question == "throw") throw std::runtime_error("");
        if (question == "again") return std::nullopt;
        return question == "long" ? std::string(1'000'000, 'x') : std::to_string(++count);
    });
    EXPECT_EQ(helper.ask("", 5s), "1");
    EXPECT_EQ(helper.ask("", 5s), "2");
    EXPECT_EQ(helper.ask("long", 5s)->size(), 1'000'000U);
    for (const char* fault : {"crash", "throw", "again", "hang"}) {
        EXPECT_EQ(helper.ask(fault, fault == std::string("hang") ? 50ms : 5000ms), std::nullopt) << fault;
        EXPECT_EQ(helper.ask("", 5s), "1") << fault;
    }
}

}  // namespace brindlet::file_manager_source_tests
