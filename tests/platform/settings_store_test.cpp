#include "platform/settings_store.h"

#include <gtest/gtest.h>

#include <string>
#include <thread>
#include <vector>

#include "platform/atomic_file.h"
#include "platform/file_lock.h"
#include "support/scratch_folder.h"

namespace brindlet {
namespace settings_store_tests {

TEST(SettingsStore, KeepsValuesByKind) {
    const ScratchFolder scratch;
    const FilePath file = scratch.path("config/Brindlet/settings.json");
    SettingsStore store(file);
    EXPECT_EQ(store.text("name"), std::nullopt);
    EXPECT_FALSE(scratch.exists("config"));  // reading makes nothing

    EXPECT_EQ(store.setText("name", "a \"b\"\n\u00e9"), std::nullopt);
    EXPECT_EQ(store.setInteger("count", INT64_MIN), std::nullopt);
    EXPECT_EQ(store.setBoolean("flag", false), std::nullopt);
    EXPECT_EQ(store.setText("count2", "7"), std::nullopt);
    const SettingsStore again(file);
    EXPECT_EQ(again.text("name"), "a \"b\"\n\u00e9");
    EXPECT_EQ(again.integer("count"), INT64_MIN);
    EXPECT_EQ(again.boolean("flag"), false);
    EXPECT_EQ(again.integer("count2"), std::nullopt);
    EXPECT_EQ(again.text("flag"), std::nullopt);
    EXPECT_EQ(again.keys(), (std::vector<std::string>{"name", "count", "flag", "count2"}));

    EXPECT_EQ(store.unset("count"), std::nullopt);
    EXPECT_EQ(store.unset("never there"), std::nullopt);
    EXPECT_EQ(again.integer("count"), std::nullopt);
    EXPECT_EQ(store.setText("bad\xff", "bytes\xff"), std::nullopt);
    EXPECT_EQ(store.text("name"), "a \"b\"\n\u00e9");
}

// What people and accidents leave in the file: it reads as empty, and the first write sets it aside.
TEST(SettingsStore, SurvivesAnyFile) {
    struct Case {
        std::string content;
        bool isSetAside;
    };
    const Case cases[] = {
        {"", false},
        {"{}", false},
        {"{\"other\": [1, {\"x\": null}]}", false},
        {"\xEF\xBB\xBF{\"other\": 1}", false},
        {"garbage", true},
        {"{\"a\": 1", true},
        {"[1]", true},
        {"null", true},
        {std::string(1'000, '\0'), true},
        {std::string(500'000, '['), true},
        {"{\"a\":" + std::string(200'000, '[') + std::string(200'000, ']') + "}", true},
        {"{\"a\": \"\xff\"}", true},
        {"{\"a\": \"" + std::string(5'000'000, 'x') + "\"}", true},
    };
    for (const auto& [content, isSetAside] : cases) {
        SCOPED_TRACE(content.substr(0, 40));
        const ScratchFolder scratch;
        SettingsStore store(scratch.write("settings.json", content));
        EXPECT_EQ(store.text("a"), std::nullopt);
        EXPECT_EQ(store.setBoolean("new", true), std::nullopt);
        EXPECT_EQ(store.boolean("new"), true);
        EXPECT_EQ(scratch.exists("settings.json.unreadable"), isSetAside);
        EXPECT_TRUE(!isSetAside || scratch.read("settings.json.unreadable") == content);
        EXPECT_EQ(content.find("other") != std::string::npos,
                  scratch.read("settings.json").find("other") != std::string::npos);
    }
}

TEST(SettingsStore, NumbersThatAreNoIntegers) {
    const ScratchFolder scratch;
    const SettingsStore store(
        scratch.write("s.json", R"({"a": 18446744073709551615, "b": 1.0, "c": 1e400, "d": 9223372036854775807})"));
    for (const char* key : {"a", "b", "c"}) EXPECT_EQ(store.integer(key), std::nullopt);
}

TEST(SettingsStore, WritersLoseNothingOfEachOther) {
    const ScratchFolder scratch;
    std::vector<std::thread> writers;
    for (int writer = 0; writer < 4; ++writer) {
        writers.emplace_back([&, writer] {
            SettingsStore store(scratch.path("settings.json"));
            for (int key = 0; key < 5; ++key)
                EXPECT_EQ(store.setInteger(std::to_string(writer * 5 + key), key), std::nullopt);
        });
    }
    for (std::thread& writer : writers) writer.join();
    EXPECT_EQ(SettingsStore(scratch.path("settings.json")).keys().size(), 20u);
}

TEST(SettingsStore, SaysWhatFailed) {
    const ScratchFolder scratch;
    scratch.write("file", "");
    SettingsStore store(scratch.path("file/settings.json"));
    EXPECT_EQ(store.setText("a", "b")->description,
              "Can't make the folder '" + scratch.path("file").text() + "': Not a directory");
    const auto held = FileLock::take(scratch.path("lock"));
    ASSERT_TRUE(held);
    EXPECT_EQ(FileLock::take(scratch.path("lock"), std::chrono::milliseconds{0}).failure().description,
              "Can't lock '" + scratch.path("lock").text() + "': Another program holds it");
}

TEST(AtomicFile, ReplacesWholeFiles) {
    const ScratchFolder scratch;
    EXPECT_EQ(makeFolders(scratch.path("a/b/c")), std::nullopt);
    EXPECT_EQ(makeFolders(scratch.path("a/b/c")), std::nullopt);
    EXPECT_EQ(makeFolders(FilePath()), std::nullopt);
    EXPECT_EQ(scratch.snapshot().at("a/b").mode, S_IFDIR | 0700u);

    EXPECT_EQ(writeFileAtomically(scratch.path("a/x"), "old", 0644), std::nullopt);
    EXPECT_EQ(writeFileAtomically(scratch.path("a/x"), std::string("n\0w", 3)), std::nullopt);
    EXPECT_EQ(scratch.read("a/x"), std::string("n\0w", 3));
    EXPECT_EQ(scratch.snapshot().at("a/x").mode, S_IFREG | 0600u);

    scratch.link("link", "a/x");  // stays a link
    EXPECT_EQ(writeFileAtomically(scratch.path("link"), "through"), std::nullopt);
    EXPECT_EQ(scratch.read("a/x"), "through");
    EXPECT_EQ(writeFileAtomically(scratch.path(std::string(255, 'n')), "long name"), std::nullopt);
}

TEST(AtomicFile, LeavesAllAsItWasWhereItFails) {
    const ScratchFolder scratch;
    scratch.makeFolder("folder");
    const auto before = scratch.snapshot();
    EXPECT_EQ(writeFileAtomically(scratch.path("folder"), "x")->description,
              "Can't write '" + scratch.path("folder").text() + "': Is a directory");
    EXPECT_EQ(writeFileAtomically(scratch.path("none/x"), "x")->description,
              "Can't write '" + scratch.path("none/x").text() + "': No such file or directory");
    EXPECT_NE(writeFileAtomically(scratch.path(std::string("new\0x", 5)), "x"), std::nullopt);
    auto after = scratch.snapshot();
    after["."].modifiedAt = before.at(".").modifiedAt;  // the temporary file came and went
    EXPECT_EQ(after, before);
}

}  // namespace settings_store_tests
}  // namespace brindlet
