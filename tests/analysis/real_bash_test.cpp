#include <gtest/gtest.h>

#include <algorithm>

#include "analysis/models/command_table.h"
#include "analysis/request_analysis.h"
#include "platform/child_process.h"
#include "support/predict.h"
#include "support/scratch_folder.h"

namespace brindlet {
namespace real_bash_tests {

void fill(const ScratchFolder& folder) {
    for (const char* name : {"a.txt", "b.txt", "c d.txt", "1.jpg", "sub/x", "sub/deep/y"}) folder.write(name, name);
}

void runInBash(const ScratchFolder& folder, const std::string& line) {
    ChildLaunch launch;
    launch.arguments = {"/bin/bash", "-c", line};
    launch.folder = folder.path();
    launch.environment = {{"PATH", "/usr/bin:/bin"}, {"HOME", folder.path().text()}, {"LC_ALL", "C"}};
    auto child = ChildProcess::start(launch);
    ASSERT_TRUE(child);
    (*child)->waitForExit();
}

// What a prediction claims must be what bash does: paths that come and go are compared, and what is said to be as it
// was.
TEST(Prediction, IsWhatBashDoes) {
    const char* lines[] = {
        "mv a.txt z.txt",
        "mv a.txt b.txt sub",
        "mv sub new",
        "mv a.txt z; mv z y",
        "cp a.txt b.txt",
        "cp -r sub copy",
        "cp sub copy",
        "cp -n a.txt b.txt",
        "rm a.txt missing b.txt",
        "rm -f missing a.txt",
        "rm -rf sub *.jpg",
        "rm sub",
        "rmdir sub; rm -r sub/deep; rm sub/x; rmdir sub",
        "mkdir -p n/m/o sub",
        "mkdir n/m",
        "touch new a.txt; ln -s new link; ln a.txt hard",
        "for f in *.txt; do mv \"$f\" \"${f%.txt}.md\"; done",
        "for f in *.txt; do cp \"$f\" \"sub/${f// /_}\"; done",
        "cd sub && touch inside && cd .. && touch out",
        "echo hi > a.txt; echo hi >> b.txt; echo hi > new",
        "true && touch yes || touch no",
        "if test -f a.txt; then touch yes; else touch no; fi",
        "test -f missing && touch yes",
        "x=2; while [ $x -gt 0 ]; do touch file$x; ((x--)); done",
        "touch {a,b}{1..2}.new '$HOME' \"x y\"",
        "touch $(echo made) `echo too`",
        "cat a.txt > copy; cat < b.txt > copy2",
        "rm -i a.txt",
        "mv a.txt a.txt.bak; touch a.txt",
    };
    const auto files = openFileSystem();
    const auto launcher = openReadOnlyLauncher();
    for (const std::string line : lines) {
        SCOPED_TRACE(line);
        ScratchFolder folder;
        fill(folder);
        const auto before = folder.snapshot();
        const AnalysisServices services{*files, *launcher, builtInCommands(),
                                        [] { return std::string("/usr/bin:/bin"); }, folder.path()};
        const Environment environment{{"LC_ALL", "C"}};
        const AnalysisResult result = analyzeRequest(line, folder.path(), {environment}, services);
        ASSERT_FALSE(result.analysisError) << result.analysisError->text;
        EXPECT_EQ(folder.snapshot(), before);  // a prediction changes nothing
        runInBash(folder, result.rewrittenCommand);
        for (const auto& [change, isDirectory] : result.changes) {
            const bool stands = files->look(change.url) != ItemKind::missing;
            EXPECT_EQ(stands, change.type != FileChange::FileChangeType::delete_) << change.url.text();
            if (stands) {
                EXPECT_EQ(files->look(change.url) == ItemKind::folder, isDirectory) << change.url.text();
            }
        }
        for (const auto& [path, content] : folder.snapshot()) {  // nothing came that was not foretold
            const auto isForetold = [&, &entry = path](const PredictedChange& predicted) {
                const FilePath there = FilePath::resolve(entry, folder.path());
                return there == predicted.change.url || there.isInside(predicted.change.url) ||
                       predicted.change.url.isInside(there);
            };
            const bool isNew = !before.contains(path);
            if (isNew) {
                EXPECT_TRUE(std::ranges::any_of(result.changes, isForetold)) << path;
            }
        }
    }
}

}  // namespace real_bash_tests
}  // namespace brindlet
