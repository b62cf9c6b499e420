#include "platform/file_system.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <algorithm>
#include <string>

#include "fakes/fake_disk.h"
#include "support/scratch_folder.h"

namespace brindlet {
namespace file_system_tests {

TEST(FileSystem, Looks) {
    using namespace std::string_literals;
    const ScratchFolder scratch;
    scratch.write("folder/a", "content");
    scratch.link("to-file", "folder/a");
    scratch.link("to-folder", "folder");
    scratch.link("broken", "nothing");
    scratch.link("loop", "loop");
    ASSERT_EQ(::mkfifo(scratch.path("pipe").text().c_str(), 0600), 0);
    const auto files = openFileSystem();
    struct Case {
        std::string path;
        ItemKind kind;
    };
    const Case cases[] = {{"folder", ItemKind::folder},      {"folder/a", ItemKind::file},
                          {"to-file", ItemKind::file},       {"to-folder", ItemKind::folder},
                          {"broken", ItemKind::missing},     {"loop", ItemKind::missing},
                          {"pipe", ItemKind::file},          {"none", ItemKind::missing},
                          {"folder/a/b", ItemKind::missing}, {"folder\0x"s, ItemKind::missing}};
    for (const auto& [path, kind] : cases) {
        SCOPED_TRACE(path);
        EXPECT_EQ(files->look(scratch.path(path)), kind);
        EXPECT_EQ(files->listNames(scratch.path(path)).has_value(), kind == ItemKind::folder);
        const bool isPlain = kind == ItemKind::file && path != "pipe";  // reading a pipe would wait for a writer
        EXPECT_EQ(static_cast<bool>(files->readFile(scratch.path(path), 100)), isPlain);
    }
    auto names = *files->listNames(scratch.path());
    std::ranges::sort(names);
    EXPECT_EQ(names, (std::vector<std::string>{"broken", "folder", "loop", "pipe", "to-file", "to-folder"}));
}

TEST(FileSystem, ReadsUpToALimit) {
    const ScratchFolder scratch;
    const FilePath file = scratch.write("a", std::string("a\0\xff", 3));
    const auto files = openFileSystem();
    EXPECT_EQ(*files->readFile(file, 3), std::string("a\0\xff", 3));
    EXPECT_EQ(files->readFile(file, 2).failure().description, "Can't read '" + file.text() + "': File too large");
    EXPECT_EQ(files->readFile(scratch.path("b"), 2).failure().description,
              "Can't read '" + scratch.path("b").text() + "': No such file or directory");
    EXPECT_FALSE(files->readFile(FilePath("/dev/zero"), 100));
    // A file of the kernel's own that gives no size beforehand.
    EXPECT_TRUE(files->readFile(FilePath("/proc/self/status"), 100'000));
    EXPECT_FALSE(files->readFile(FilePath("/proc/self/status"), 10));
}

TEST(FileSystem, ExecutableFiles) {
    const ScratchFolder scratch;
    const FilePath tool = scratch.write("tool", "");
    const auto files = openFileSystem();
    EXPECT_FALSE(files->isExecutableFile(tool));
    ASSERT_EQ(::chmod(tool.text().c_str(), 0700), 0);
    EXPECT_TRUE(files->isExecutableFile(tool));
    EXPECT_FALSE(files->isExecutableFile(scratch.path()));
}

// The fake is held against the real thing where it has logic of its own.
TEST(FileSystem, ResolvesLinksAsFarAsTheyExist) {
    const ScratchFolder scratch;
    scratch.write("real/sub/a", "");
    scratch.link("one", "real");
    scratch.link("two", "one/sub");
    scratch.link("up", "real/sub/..");
    scratch.link("absolute", scratch.path("one").text());
    scratch.link("broken", "one/nothing");
    scratch.link("loop", "loop2");
    scratch.link("loop2", "loop");
    FakeDisk fake({"real/sub/a", "one->real", "two->one/sub", "broken->one/nothing", "loop->loop2", "loop2->loop"},
                  scratch.path().text());
    fake.addLink("absolute", scratch.path("one").text());
    fake.addLink("up", "real/sub/..");
    const auto files = openFileSystem();
    struct Case {
        std::string path, resolved;
    };
    const Case cases[] = {
        {"real/sub/a", "real/sub/a"},
        {"two/a", "real/sub/a"},
        {"up/sub", "real/sub"},
        {"absolute/sub/new/deep", "real/sub/new/deep"},
        {"one/nothing/more", "real/nothing/more"},
        {"broken", "broken"},
        {"broken/x", "broken/x"},
        {"loop/x", "loop/x"},
        {"real/sub/a/x", "real/sub/a/x"},
    };
    for (const auto& [path, resolved] : cases) {
        SCOPED_TRACE(path);
        EXPECT_EQ(files->resolvingLinks(scratch.path(path)), scratch.path(resolved));
        EXPECT_EQ(fake.resolvingLinks(scratch.path(path)), scratch.path(resolved));
        EXPECT_EQ(fake.look(scratch.path(path)), files->look(scratch.path(path)));
    }
    EXPECT_EQ(files->resolvingLinks(FilePath()), FilePath());
}

}  // namespace file_system_tests
}  // namespace brindlet
