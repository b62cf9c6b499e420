#include <gtest/gtest.h>

#include <cstdlib>

#include "model_rows.h"

namespace brindlet {
namespace find_tests {

const std::initializer_list<std::string_view> disk = {"a.x", "b.x", "s/c.x", "full/y", "dest/"};

ToolOutcome found(const Texts& paths, int exitCode = 0) {
    std::string output;
    for (const auto& path : paths) output += path + '\0';
    return {.exitCode = exitCode, .output = output};
}

const std::string notShown = "unknownFileChanges: It can't be told on which files 'find' runs its ";

TEST(Find, ListsWithTheRealTool) {
    expectRows(disk,
               {
                   {"find . -name '*.x'",
                    {.exitCode = 0, .output = "./a.x\n"},
                    {"find|.|-name|*.x"},
                    {},
                    {},
                    {},
                    "0 './a.x\n'"},
                   {"find no -print0", {.exitCode = 1, .output = "no"}, {"find|no|-print0"}, {}, {}, {}, "1 'no'"},
                   {"mkdir new; find . -name new",
                    {.exitCode = 0},
                    {"find|.|-name|new"},
                    {"create new/"},
                    {},
                    {"filesChangedBeforeReadingFiles: 'find' sees only real files, not interim simulated "
                     "changes"}},
               });
}

TEST(Find, Delete) {
    const std::string notEmpty = "Delete command incorrectly written / rm: cannot remove './full': Directory not empty";
    const Texts launches = {"find|.|-print0"};
    expectRows(disk,
               {
                   {"find . -delete",
                    found({"./a.x", "./dest", "./s/c.x"}),
                    launches,
                    {"delete a.x", "delete dest/", "delete s/c.x"}},
                   {"find . -delete", found({"./full", "./full/y"}), launches, {"delete full/y"}, {notEmpty}, {}, "1"},
                   {"find ! -delete -name x", found({"a.x"}), {"find|!|-print0|-name|x"}, {"delete a.x"}},
                   {"find . -delete",
                    found({"./a.x"}, 1),
                    launches,
                    {},
                    {},
                    {notShown + "-delete"},
                    "1 './a.x" + std::string(1, '\0') + "'"},
                   {"find . -delete", {}, launches, {}, {}, {notShown + "-delete"}, "? unknown"},
                   {"find . -delete", {.exitCode = 1, .output = "find: no"}, launches, {}, {}, {}, "1 'find: no'"},
                   // A shell would search the home folder.
                   {"find ~/x -delete",
                    {.exitCode = 1, .output = "find: no"},
                    {"find|~/x|-print0"},
                    {},
                    {},
                    {notShown + "-delete"},
                    "1 'find: no'"},
               });
}

TEST(Find, Execute) {
    const std::string zero = "Found zero files / `find` query matched zero files, per-file command may also fail";
    const std::string written = "`find` command incorrectly written / find: ";
    const Texts launches = {"find|.|-print0"};
    expectRows(
        disk,
        {
            {"find . -exec mv {} {}.bak \\;",
             found({"./a.x", "./s/c.x"}),
             launches,
             {"move a.x -> a.x.bak", "move s/c.x -> s/c.x.bak"}},
            {"find . -exec cp {} dest/ +", found({"./a.x", "./b.x"}), launches, {"create dest/a.x", "create dest/b.x"}},
            {"find . -ok touch n {} \\; -newer a", found({"./a.x"}), {"find|.|-print0|-newer|a"}, {"create n"}},
            {"find . -exec echo -{}-{}- x \\;",
             found({"p", "q r"}),
             launches,
             {},
             {},
             {},
             "0 '-p-p- x\n-q r-q r- x\n'"},
            {"find . -exec false \\; && rm a.x",
             found({"p", "q"}),
             launches,
             {},
             {},
             {"partialSupport: 'rm a.x' may run too, which isn't shown here"},
             "1"},
            {"find . -exec /w/a.x.sh \\;",
             found({"p"}),
             launches,
             {},
             {"/w/a.x.sh doesn't exist / /w/a.x.sh: No such file or directory"}},
            {"find . -exec touch n \\;",
             {.exitCode = 0},
             {"find|.|-print0", "find|.|-printf|.|-quit"},
             {},
             {zero},
             {},
             "0"},
            {"find . -exec echo n {} +", {.exitCode = 0}, launches, {}, {zero}, {}, "0 'n\n'"},
            {"find . -exec \\;", found({"p"}), launches, {}, {written + "missing command for exec"}},
            {.line = "find . -name x -exec", .errors = {written + "missing terminator for exec"}},
            {.line = "find . -name x -exec rm {}", .errors = {written + "missing terminator for exec"}},
            {.line = "find . -delete -print",
             .ends = "simulationError: find: we don't support -print with an "
                     "additional action"},
            {.line = "find . -ls -exec b \\; -printf x",
             .ends = "simulationError: find: we don't support multiple actions"},
            // A real run would print what the first gave, so nothing of `-ls` is lost.
            {"find . -ls",
             found({"./a.x"}),
             {"find|.|-print0", "ls|-dgils|./a.x"},
             {},
             {},
             {},
             "0 './a.x" + std::string(1, '\0') + "'"},
        });
}

// What the real tool does that isn't simulated is said.
TEST(Find, BlindSpots) {
    const Texts launches = {"find|.|-print0"};
    const auto touches = [&](const std::string& line, const std::string& sideEffect) {
        return ModelRow{line, found({"./s/c.x"}), launches, {"create n"}, {}, {sideEffect}};
    };
    const std::string inFolder =
        "partialSupport: 'find' runs 'touch' in the folder of each file, which isn't shown here";
    expectRows(disk, {
                         touches("find . -execdir touch n \\;", inFolder),
                         {"find . -execdir rm -f {} \\;", found({"./s/c.x"}), launches, {"delete s/c.x"}},
                         {"find . -exec touch + {} \\;",
                          {.exitCode = 1, .output = "find: paths"},
                          {"find|.|-print0|{}|;"},
                          {},
                          {},
                          {"partialSupport: 'find' takes the '+' of -exec for a word of its command"},
                          "1 'find: paths'"},
                         {.line = "find . -name x -fprintf b.x %p",
                          .sideEffects = {"unknownFileChanges: 'find' writes what it finds "
                                          "to a file"},
                          .outcome = "? unknown"},
                     });
}

TEST(Find, HostileSizes) {
    std::string marks;
    for (int at = 0; at < 100'000; ++at) marks += "{}";
    const ToolOutcome longPath = found({std::string(4'000, 'p')});
    expectRows(disk, {{"find . -exec echo " + marks + " \\;",
                       longPath,
                       {"find|.|-print0"},
                       {},
                       {},
                       {},
                       "",
                       "simulationError: The line makes a command that is too long to simulate"}});
    Texts paths;
    for (int at = 0; at < 10'000; ++at) paths.push_back("./" + std::to_string(at));
    std::string words;
    for (int at = 0; at < 1'000; ++at) words += " {}";
    expectRows(disk, {{"find . -exec touch" + words + " +",
                       found(paths),
                       {"find|.|-print0"},
                       {},
                       {},
                       {},
                       "",
                       "simulationError: The line makes a command that is too long to simulate"}});
}

TEST(Find, RealTool) {
    inOrdinaryProcess([] {
        RealPrediction real;
        if (!real.canLaunch()) return;
        for (const char* name : {"a b.tmp", "line\nend.tmp", "-rf.tmp", "sub/c.tmp", "keep", "x", "\xff.raw"})
            real.scratch.write(name, name);
        const auto before = real.scratch.snapshot();

        const Texts deletions = {"delete -rf.tmp", "delete a b.tmp", "delete line\nend.tmp", "delete sub/c.tmp"};
        EXPECT_EQ(real.changes("find . -name '*.tmp' -delete"), deletions);
        EXPECT_EQ(real.changes("find . -name '*.tmp' -maxdepth 9 -exec rm {} \\;"), deletions);
        EXPECT_EQ(real.changes("find . -type f -name '*.tmp' -print0 | xargs -0 rm"), deletions);
        for (const char* line : {"find . -fprint keep", "find . -name '*.raw' -delete", "find . -fls keep",
                                 "find . -name x -fprint0 keep -delete", "find . -delete",
                                 "find . -execdir rm -f x \\;", "find . -exec rm + {} \\;", "find . -ok rm {} \\;",
                                 "find / -delete", "find -files0-from - -delete", "find -D search . -delete",
                                 "find ~ -delete", "find ~/ -exec rm {} +", "find . -warn -name x -maxdepth 1 -delete",
                                 "find . -name '*.tmp' | xargs rm", "find . -okdir sh -c 'echo > keep' \\;"}) {
            SCOPED_TRACE(line);
            EXPECT_TRUE(isAskedAbout(real.predict(line), real.scratch.path()));
        }
        EXPECT_EQ(real.scratch.snapshot(), before);
    });
}

}  // namespace find_tests
}  // namespace brindlet
