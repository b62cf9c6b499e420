#include "platform/secret_store.h"

#include <gtest/gtest.h>

#include <string>
#include <thread>
#include <vector>

#include "support/scratch_folder.h"
#include "text/strings.h"

namespace brindlet {
namespace secret_store_tests {

const Environment filesOnly{{"BRINDLET_SECRETS", "file"}, {"DBUS_SESSION_BUS_ADDRESS", "unix:path=/nowhere"}};

TEST(SecretStore, KeepsSecretsInAFileOfOnesOwn) {
    const ScratchFolder scratch;
    const auto store = openSecretStore(scratch.path("data"), filesOnly);
    EXPECT_EQ(store->read("a"), std::nullopt);
    EXPECT_EQ(store->remove("a"), std::nullopt);
    EXPECT_FALSE(scratch.exists("data"));  // nothing is made without need

    EXPECT_EQ(store->write("a", "1 \"\n\u00e9"), std::nullopt);
    EXPECT_EQ(store->write("b", ""), std::nullopt);
    EXPECT_EQ(scratch.snapshot().at("data").mode, S_IFDIR | 0700u);
    EXPECT_EQ(scratch.snapshot().at("data/secrets.json").mode, S_IFREG | 0600u);
    EXPECT_EQ(store->placeOf("a"), scratch.path("data/secrets.json").text());
    // Where there is no bus the file serves as well.
    const auto again = openSecretStore(scratch.path("data"), {{"XDG_RUNTIME_DIR", scratch.path().text()}});
    EXPECT_EQ(again->read("a"), "1 \"\n\u00e9");
    EXPECT_EQ(again->read("b"), "");
    EXPECT_EQ(again->write("a", "2"), std::nullopt);
    EXPECT_EQ(again->remove("b"), std::nullopt);
    EXPECT_EQ(store->read("a"), "2");
    EXPECT_EQ(store->read("b"), std::nullopt);
}

// What accidents leave in the file: it reads as empty, and nothing in it is lost.
TEST(SecretStore, SurvivesAnyFile) {
    struct Case {
        std::string content;
        bool isWritable;
    };
    const Case cases[] = {
        {"", true},
        {"{\"other\": [1], \"a\": 1}", true},
        {"{\"a\": 1", false},
        {"[]", false},
        {"{\"a\": \"\xff\"}", false},
        {"{\"x\":" + std::string(200'000, '[') + std::string(200'000, ']') + "}", false},
        {"{\"a\": \"" + std::string(2'000'000, 'x') + "\"}", false},
    };
    for (const auto& [content, isWritable] : cases) {
        SCOPED_TRACE(content.substr(0, 40));
        const ScratchFolder scratch;
        scratch.write("secrets.json", content);
        const auto store = openSecretStore(scratch.path(), filesOnly);
        EXPECT_EQ(store->read("a"), std::nullopt);
        EXPECT_EQ(store->write("a", "new").has_value(), !isWritable);
        EXPECT_EQ(store->read("a"), isWritable ? std::optional("new") : std::nullopt);
        EXPECT_EQ(scratch.read("secrets.json") == content, !isWritable);
        EXPECT_EQ(contains(scratch.read("secrets.json"), "other"), contains(content, "other"));
    }
}

TEST(SecretStore, WritersLoseNothingOfEachOther) {
    const ScratchFolder scratch;
    std::vector<std::thread> writers;
    for (const std::string name : {"a", "b", "c", "d"}) {
        writers.emplace_back([&scratch, name] {
            const auto store = openSecretStore(scratch.path(), filesOnly);
            for (int key = 0; key < 5; ++key) EXPECT_EQ(store->write(name + std::to_string(key), name), std::nullopt);
        });
    }
    for (std::thread& writer : writers) writer.join();
    const auto store = openSecretStore(scratch.path(), filesOnly);
    for (const std::string name : {"a", "b", "c", "d"})
        for (int key = 0; key < 5; ++key) EXPECT_EQ(store->read(name + std::to_string(key)), name);
}

}  // namespace secret_store_tests
}  // namespace brindlet
