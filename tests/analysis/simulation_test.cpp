#include <gtest/gtest.h>

#include "analysis/request_analysis.h"
#include "support/predict.h"

namespace brindlet {
namespace simulation_tests {

using Texts = std::vector<std::string>;

FakeDisk ordinaryDisk() {
    return FakeDisk{"a",        "b",       "existing=old\n", "d/x",         "d/sub/y",
                    "file.txt", "one.txt", "two.txt",        ".hidden.txt", "/home/me/"};
}

TEST(Simulation, ChangesOfALine) {
    struct Row {
        std::string_view line;
        Texts changes;
    };
    const Row rows[] = {
        {"mv a new; mv new newer", {"move a -> newer"}},  // a chain is one move
        {"mv a b; mv b c", {"delete b", "move a -> c"}},
        {"touch new; rm new", {}},  // what comes and goes leaves nothing
        {"touch d/x; rm -r d", {"delete d/"}},
        {"rm d/x; rm -r d", {"delete d/"}},
        {"mv file.txt FILE.txt", {"move file.txt -> FILE.txt"}},
        {"mv a b", {"move a -> b", "overwrite b"}},
        {"rm a; echo x > a", {"create a", "overwrite a"}},
        {"touch new; mv new newer", {"create newer"}},
        // A content that changed on the way is no plain move any more.
        {"echo x >> a; mv a z", {"delete a", "create z"}},
        {"mv a z; echo x >> z", {"delete a", "create z"}},
        {"echo x > /dev/null; echo x >> /dev/stderr", {}},
        {"echo x >> existing", {"modify existing"}},
        {"echo x >> missing", {"create missing"}},
        {"echo x > existing", {"create existing", "overwrite existing"}},
        {"mkdir -p n/m; touch n/m/f; rm -r n", {}},
        {"mv d e", {"move d -> e/"}},
    };
    for (const auto& [line, changes] : rows) {
        SCOPED_TRACE(line);
        FakeDisk disk = ordinaryDisk();
        EXPECT_EQ(described(predict(line, disk)), changes);
    }
}

TEST(Simulation, BlankAndRefusedLines) {
    FakeDisk disk = ordinaryDisk();
    EXPECT_EQ(predict(" \n\t ", disk), AnalysisResult{});
    EXPECT_TRUE(disk.log.empty());

    const AnalysisResult stopped = predict("rm a; touch new; sudo ls", disk);
    EXPECT_EQ(described(stopped.analysisError),
              "bannedInBrindlet: 'sudo' command is banned in Brindlet for safety and security");
    EXPECT_EQ(outcome(stopped), "? unknown");
    EXPECT_TRUE(stopped.changes.empty() && stopped.sideEffects.empty() && stopped.commandErrors.empty());
    EXPECT_EQ(stopped.rewrittenCommand, "rm a; touch new; sudo ls");
    EXPECT_THROW((void)predict("a&&b", disk), BasherError);
}

TEST(Simulation, LooksAtTheDiskOnceAPath) {
    FakeDisk disk = ordinaryDisk();
    (void)predict("mv a z; mv z a; rm a; echo *; echo *.txt; echo $(echo *)", disk);
    EXPECT_EQ(disk.timesAsked("look /w/a"), 1u);
    EXPECT_EQ(disk.timesAsked("list /w"), 1u);
}

TEST(Simulation, RenamesToInvisibleNames) {
    FakeDisk disk = ordinaryDisk();
    EXPECT_EQ(described(predict("mv a .a; mv .hidden.txt .other", disk).sideEffects),
              Texts{"renameToInvisible: Renames a to .a, with '.' making it invisible"});
}

TEST(Simulation, ToolsSeeOnlyRealFiles) {
    const std::string note = "filesChangedBeforeReadingFiles: 'ls' sees only real files, not interim simulated changes";
    FakeLauncher launcher;
    launcher.answer = [](const ToolLaunch&) { return ToolOutcome{0, "a\n"}; };
    PredictOptions options;
    options.launcher = &launcher;
    for (const auto& [line, notes] : std::vector<std::pair<std::string, Texts>>{{"touch new; ls", {note}},
                                                                                {"echo x >> a; ls", {}},
                                                                                {"touch new; rm new; ls", {}},
                                                                                {"ls; touch new", {}}}) {
        SCOPED_TRACE(line);
        FakeDisk disk = ordinaryDisk();
        EXPECT_EQ(described(predict(line, disk, options).sideEffects), notes);
    }
    EXPECT_EQ(launcher.launches.front().arguments, Texts{"ls"});
    EXPECT_EQ(launcher.launches.front().folder.text(), "/w");
    EXPECT_EQ(launcher.launches.front().environment.at("PATH"), "/usr/bin:/bin");

    FakeDisk disk = ordinaryDisk();
    launcher.answer = [](const ToolLaunch&) { return ToolOutcome{3, "\xff\xfe"}; };  // no text
    EXPECT_EQ(outcome(predict("ls", disk, options)), "3");
    launcher.answer = nullptr;  // it tried to write, or ran too long
    EXPECT_EQ(outcome(predict("ls", disk, options)), "? unknown");
}

TEST(Simulation, AskedForThePathOnlyWhereItMatters) {
    FakeDisk disk = ordinaryDisk();
    FakeLauncher launcher;
    int asked = 0;
    const AnalysisServices services{disk, launcher, builtInCommands(), [&] { return ++asked, std::string("/usr/bin"); },
                                    FilePath("/home/me")};
    (void)analyzeRequest("mv a z; cp b c", FilePath("/w"), {{}}, services);
    EXPECT_EQ(asked, 0);
    EXPECT_EQ(outcome(analyzeRequest("echo $PATH; echo $PATH", FilePath("/w"), {{}}, services)),
              "0 '/usr/bin\n/usr/bin\n'");
    EXPECT_EQ(asked, 1);
}

TEST(Simulation, FanOutSharesOneState) {
    FakeDisk disk = ordinaryDisk();
    FakeLauncher launcher;
    const AnalysisServices services{disk, launcher, builtInCommands(), nullptr, FilePath("/home/me")};
    const auto analyzed = [&](const std::string& line, const std::vector<Environment>& iterations) {
        return analyzeRequest(line, FilePath("/w"), iterations, services);
    };
    const std::vector<Environment> both{{{"FILE_NAME", "a"}}, {{"FILE_NAME", "b"}}};
    const AnalysisResult moved = analyzed("mv $FILE_NAME t; echo $FILE_NAME", both);
    EXPECT_EQ(described(moved), (Texts{"delete a", "move b -> t"}));  // the second sees the first
    EXPECT_EQ(outcome(moved), "0 'a\n\nb\n'");

    // The first that ends in an error is the result.
    const AnalysisResult stopped = analyzed("if test $FILE_NAME = a; then sudo x; fi; sudo $FILE_NAME", both);
    EXPECT_EQ(described(stopped.analysisError),
              "bannedInBrindlet: 'sudo' command is banned in Brindlet for safety and security");
    EXPECT_EQ(described(analyzed("echo (", {{}}).analysisError), "otherError: Expected nested pipeline, but saw: ");
    EXPECT_EQ(described(analyzed("rm $FILE_NAME", {}).analysisError), "noFilesSelected: ");
    EXPECT_EQ(analyzed("echo (", {{}}).rewrittenCommand, "echo (");
}

TEST(Simulation, Limits) {
    FakeDisk disk = ordinaryDisk();
    const auto error = [&](const std::string& line) { return described(predict(line, disk).analysisError); };
    std::string ones = "for i in {1..400}; do for j in {1..400}; do true; done; done";
    EXPECT_EQ(error(ones), "simulationError: The line runs more than 100000 commands, which is too many to simulate");
    EXPECT_EQ(error("x=aaaaaaaaaaaaaaaa; for i in {1..60}; do x=\"$x$x\"; done"),
              "simulationError: The line makes a text that is too long to simulate");
    EXPECT_EQ(error("echo {1..1000}{1..1000}{1..1000}{1..1000}"),
              "simulationError: The braces make too many words to simulate");
}

}  // namespace simulation_tests
}  // namespace brindlet
