#include <gtest/gtest.h>

#include "tools/tool_bench.h"

namespace brindlet {

namespace trash_tests {

// Puts all back, by another reader of what stands in the notes.
constexpr std::string_view putAllBack = R"(
    cd ~/.local/share/Trash/info &&
    for note in ./* ./.[!.]*; do
        [ -e "$note" ] || continue
        path=$(sed -n 's/^Path=//p' "$note"; echo x) path=${path%??}
        grep -qE '^DeletionDate=[0-9-]{10}T[0-9:]{8}$' "$note" || exit 1
        printf -v path '%b' "${path//%/\\x}"
        mv -- "../files/${note%.trashinfo}" "$path" && rm -- "$note" || exit 1
    done)";

TEST(Trash, KeepsItemsSoThatTheyCanBePutBack) {
    const ToolBench bench;
    const std::string longest(250, 'n');
    for (const std::string& name :
         {std::string("a.txt"), std::string("-rf"), std::string("50% off"), std::string("two\nlines \xFF.txt"),
          std::string("folder/inside"), longest + ".txt", std::string(".hidden"), std::string("other/a.txt")})
        bench.write(name, "content of " + name);
    bench.scratch().link("work/link", "no such place");
    const auto before = bench.scratch().snapshot();

    const ToolRun run = bench.run(
        "trash -- a.txt -rf '50% off' $'two\\nlines \\xFF.txt' folder/ n* .hidden link "
        "other/a.txt && ls -A");
    EXPECT_EQ(run, (ToolRun{0, "other\n"}));
    EXPECT_EQ(bench.scratch().read("home/.local/share/Trash/files/a.2.txt"), "content of other/a.txt");
    EXPECT_EQ(bench.run(putAllBack), (ToolRun{0, ""}));
    std::filesystem::remove_all(bench.scratch().path("home/.local").text());
    auto after = bench.scratch().snapshot();
    for (const std::string folder : {"work", "home", "work/other"})  // these were changed in between
        after[folder].modifiedAt = before.at(folder).modifiedAt;
    EXPECT_EQ(after, before);
}

TEST(Trash, WhatCannotBeMoved) {
    struct Case {
        std::string_view line;
        ToolRun run;
        std::string_view left;  // of the files a, b and c
    };
    const std::string missing = "trash: cannot move 'x': No such file or directory\n";
    const Case cases[] = {
        {"trash a x b", {1, missing}, "c"},
        {"trash -s a x b", {1, missing}, "b c"},
        {"trash a x -stopOnError b", {1, missing}, "b c"},
        {"trash . a/..",
         {1,
          "trash: cannot move '.': Invalid argument\n"
          "trash: cannot move 'a/..': Invalid argument\n"},
         "a b c"},
        {"trash ''", {1, "trash: cannot move '': No such file or directory\n"}, "a b c"},
        {"trash a a", {1, "trash: cannot move 'a': No such file or directory\n"}, "b c"},
        {"trash", {64, "trash: which files? (see trash --help)\n"}, "a b c"},
        {"trash -rf a", {64, "trash: the option '-rf' is not known here\n"}, "a b c"},
        {"trash a && trash ~/.local/share/Trash/files/a ~/.local 2>&1 | sed \"s|'/.*/|'|\"",
         {0, "trash: 'a' is in the trash already\ntrash: '.local' holds the trash itself\n"},
         "b c"},
        {"trash --help | head -n 1", {0, "Usage: trash [-s] [-v] FILE...\n"}, "a b c"},
    };
    for (const auto& [line, run, left] : cases) {
        SCOPED_TRACE(line);
        const ToolBench bench;
        for (const std::string_view name : {"a", "b", "c"}) bench.write(name, "");
        EXPECT_EQ(bench.run(line), run);
        EXPECT_EQ(bench.run("echo *").output, std::string(left) + "\n");
    }
}

TEST(Trash, AnotherDiskHasItsOwn) {
    const ToolBench bench;
    if (bench.run("[ -w /dev/shm ] && [ $(stat -c %d /dev/shm) != $(stat -c %d ~) ]").status != 0)
        GTEST_SKIP() << "no second disk here";
    const ToolRun run = bench.run(
        "folder=$(mktemp -d /dev/shm/brindlet-XXXXXX) && echo x >$folder/a && trash $folder/a && rmdir $folder &&"
        "cd /dev/shm/.Trash-$(id -u) && note=$(grep -l \"^Path=${folder#/dev/shm/}/a$\" info/*) &&"
        "note=${note##*/} && cat files/${note%.trashinfo} && rm files/${note%.trashinfo} info/$note");
    EXPECT_EQ(run, (ToolRun{0, "x\n"}));
}

}  // namespace trash_tests
}  // namespace brindlet
