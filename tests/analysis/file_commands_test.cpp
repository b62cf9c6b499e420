#include <gtest/gtest.h>

#include "support/predict.h"
#include "text/strings.h"

namespace brindlet {
namespace file_commands_tests {

using Texts = std::vector<std::string>;

struct Row {
    std::string_view line;
    Texts changes = {};
    Texts errors = {};         // "friendly / technical"
    std::string outcome = "";  // "" stands for "0", or for exit 1 with the technical text of the one error as output
};

std::string expectedOutcome(const Row& row) {
    if (!row.outcome.empty()) return row.outcome;
    if (row.errors.empty()) return "0";
    const std::string& error = row.errors.back();
    return "1 '" + error.substr(error.find(" / ") + 3) + "'";
}

FakeDisk ordinaryDisk() {
    return FakeDisk{"a",
                    "b",
                    "c",
                    "folder/x",
                    "folder2/",
                    "empty/",
                    "deep/er/est/",
                    "link->a",
                    "broken->nowhere",
                    "folderlink->folder",
                    "/home/me/.Trash/",
                    "/home/me/h"};
}

void expectRows(const std::vector<Row>& rows, const PredictOptions& options = {}) {
    for (const Row& row : rows) {
        SCOPED_TRACE(row.line);
        FakeDisk disk = ordinaryDisk();
        const AnalysisResult result = predict(row.line, disk, options);
        EXPECT_EQ(described(result.analysisError), "");
        EXPECT_EQ(described(result), row.changes);
        EXPECT_EQ(described(result.commandErrors), row.errors);
        EXPECT_EQ(outcome(result), expectedOutcome(row));
    }
}

void expectEnds(std::string_view line, std::string_view error) {
    SCOPED_TRACE(line);
    FakeDisk disk = ordinaryDisk();
    const AnalysisResult result = predict(line, disk);
    EXPECT_EQ(described(result.analysisError), error);
    EXPECT_TRUE(result.changes.empty());
    EXPECT_TRUE(result.commandErrors.empty());
}

TEST(FileCommands, Move) {
    expectRows({
        {"mv a new", {"move a -> new"}},
        {"mv -fiv a folder", {"move a -> folder/a"}},
        {"mv folder new", {"move folder -> new/"}},
        {"mv folder folder2", {"move folder -> folder2/folder/"}},
        {"mv a b folder", {"move a -> folder/a", "move b -> folder/b"}},
        {"mv a folder -v", {"move a -> folder/a"}},
        {"mv a b", {"move a -> b", "overwrite b"}},
        {"mv link new", {"move a -> new"}},  // the link is followed
        {"mv -h link new", {"move link -> new"}},
        {"mv a b folderlink", {"move a -> folder/a", "move b -> folder/b"}},
        {"mv", {}, {"Move command missing file / mv: missing file operand"}},
        {"mv a", {}, {"Move command missing destination / mv: missing destination file operand after 'a'"}},
        {"mv sub/no x", {}, {"Move: no doesn't exist / mv: source file doesn't exist"}},
        {"rm a; mv a y", {"delete a"}, {"Move: a doesn't exist / mv: source file doesn't exist"}},
        {"mv folder folder/sub",
         {},
         {"Move: can't move folder into itself / mv: rename folder to folder/sub: Invalid argument"}},
        {"mv folder folder",
         {},
         {"Move: can't move folder into itself / mv: rename folder to folder: Invalid argument"}},
        {"mv folder folderlink/sub",
         {},
         {"Move: can't move folder into itself / mv: rename folder to folderlink/sub: Invalid argument"}},
        {"mv / folder", {}, {"Move: can't move folder into itself / mv: rename / to folder: Invalid argument"}},
        {"mv a b c", {}, {"Move: destination isn't a folder / mv: target 'c' is not a directory"}},
        {"mv a b no", {}, {"Move: destination folder doesn't exist / mv: target 'no' not found"}},
        {"mv a no b folder", {"move a -> folder/a"}, {"Move: no doesn't exist / mv: source file doesn't exist"}},
        {"mv a folder b folder/",
         {"move a -> folder/a", "move b -> folder/b"},
         {"Move: can't move folder into itself / mv: rename folder to folder/: Invalid argument"},
         "1"},
    });
}

TEST(FileCommands, Copy) {
    const std::string omitted = "Copy command incorrectly written / cp: -r not specified; omitting directory 'folder'";
    expectRows({
        {"cp a new", {"create new"}},
        {"cp a folder", {"create folder/a"}},
        {"cp -n a b"},
        {"cp -n -f a b", {"create b", "overwrite b"}},
        {"cp -f -n a b"},
        {"cp -a folder new", {"create new/"}},
        {"cp -R folder folder2", {"create folder2/folder/"}},
        {"cp -s folder new -R", {"create new"}},
        {"cp -n a b new", {}, {"Copy: 'new' doesn't exist / cp: target 'new' not found"}},
        {"cp a b c", {}, {"Copy destination 'c' isn't a folder / cp: target 'c' is not a directory"}},
        {"cp folder new", {}, {omitted}},
        {"cp", {}, {"Copy command missing file / cp: missing file operand"}},
        {"cp a", {}, {"Copy command missing destination / cp: missing destination file operand after 'a'"}},
        {"cp sub/no x", {}, {"Copy: no doesn't exist / cp: 'sub/no': No such file or directory"}},
        {"cp -l -s a b",
         {},
         {"Copy command incorrectly written / cp: cannot specify both -l (hard links) and -s "
          "(symbolic links)"}},
        {"cp a folder b folder2",
         {"create folder2/a", "create folder2/b"},
         {"Won't copy folder folder without recursive flag / cp: folder is a directory (not copied), no recursive flag "
          "passed"},
         "1"},
        {"cp a no b folder", {"create folder/a"}, {"Copy: no doesn't exist / cp: 'no': No such file or directory"}},
        {"cp -i a", {}, {"Copy command missing destination / cp: missing destination file operand after 'a'"}},
    });
    expectEnds("cp -i a b", "wontWorkInBrindlet: cp: -i (interactive) flag won't work in Brindlet");
    expectEnds("touch new; cp -lsi a b", "wontWorkInBrindlet: cp: -i (interactive) flag won't work in Brindlet");
}

TEST(FileCommands, Remove) {
    const std::string written = "Delete command incorrectly written / rm: ";
    expectRows({
        {"rm a", {"delete a"}},
        {"unlink a", {"delete a"}},
        {"rm -rf folder no b", {"delete b", "delete folder/"}},
        {"rm -d empty", {"delete empty/"}},
        {"rm folder/x; rm -d folder", {"delete folder/"}},
        {"rm -f no"},
        {"rm no", {}, {"Delete command: no doesn't exist / rm: cannot remove 'no': No such file or directory"}},
        {"rm a no b",
         {"delete a"},
         {"Delete command: no doesn't exist / rm: cannot remove 'no': No such file or directory"}},
        {"rm -d folder", {}, {written + "cannot remove 'folder': Directory not empty"}},
        {"rm folder", {}, {"Wrong command used to delete directory / rm: cannot remove 'folder': Is a directory"}},
        {"rm", {}, {written + "missing operand"}},
        {"unlink -z", {}, {written + "missing operand"}},
        {"rm -z a", {}, {written + "unsupported option(s): -z"}},
        {"rm -zrz --force a", {}, {written + "unsupported option(s): -z, -force"}},
        {"rm -rf .", {}, {written + "cannot remove '.': Invalid argument"}},
        {"rm -rf deep/..", {}, {written + "cannot remove 'deep/..': Invalid argument"}},
        {"rm -rf ./", {}, {written + "cannot remove './': Invalid argument"}},
        {"rm a -f",
         {"delete a"},  // flags are read only at the start
         {"Delete command: -f doesn't exist / rm: cannot remove '-f': No such file or directory"}},
    });
}

TEST(FileCommands, RemoveAsksNobody) {
    struct Case {
        std::string_view line, runs;
    };
    const Case cases[] = {
        {"rm -i a", "rm a"},
        {"rm -ir folder", "rm -r folder"},
        {"rm -I -f a b", "rm -f a b"},
        {"rm -iI a", "rm a"},                   // never the file named "-"
        {"rm -f a -i", "rm -f a -i"},           // an operand here
        {"rm -fi -- a -ii", "rm -f -- a -ii"},  // names behind "--" stay whole
        {"for f in a b; do rm -i $f; done", "for f in a b; do rm $f; done"},
    };
    for (const auto& [line, runs] : cases) {
        SCOPED_TRACE(line);
        FakeDisk disk = ordinaryDisk();
        EXPECT_EQ(predict(line, disk).rewrittenCommand, runs);
    }
}

// What a tool does beyond its rules here is said, and only where it could hurt.
TEST(FileCommands, ChangesThatAreNotShown) {
    const Texts elsewhere = {
        "unknownFileChanges: 'cp' may put files elsewhere than shown here, and over what stands there"};
    struct Case {
        std::string_view line;
        Texts sideEffects;
    };
    const Case cases[] = {
        {"cp -r folder/. empty", elsewhere},
        {"cp -a . empty", elsewhere},
        {"cp -rT folder empty", elsewhere},
        {"cp --parents folder/x empty", elsewhere},
        {"cp -r -t empty folder", elsewhere},
        {"cp -r folder/. new", {}},
        {"cp -rn folder/. empty", {}},
        {"cp a .", {}},
        {"rm -f broken", {"unknownFileChanges: A link that leads nowhere is deleted too, which isn't shown here"}},
        {"rm -f no folderlink/no", {}},
    };
    for (const auto& [line, sideEffects] : cases) {
        SCOPED_TRACE(line);
        FakeDisk disk = ordinaryDisk();
        EXPECT_EQ(described(predict(line, disk).sideEffects), sideEffects);
    }
}

TEST(FileCommands, MakeFolders) {
    const std::string cannot = "Can't create folder / mkdir: ";
    const std::string written = "`mkdir` command incorrectly written / mkdir: ";
    expectRows({
        {"mkdir new other", {"create new/", "create other/"}},
        {"mkdir -m 755 new", {"create new/"}},
        {"mkdir new -m 755", {"create new/"}},
        {"mkdir -v new", {"create new/"}, {}, "0 unknown"},
        {"mkdir -p folder/b/c", {"create folder/b/", "create folder/b/c/"}},
        {"mkdir -p folder empty"},
        {"mkdir -p folder/../new", {"create new/"}},
        {"mkdir folder", {}, {cannot + "folder: can't make a folder because an item already exists with that name"}},
        {"mkdir /", {}, {cannot + "/: can't make a folder because an item already exists with that name"}},
        {"mkdir no/new", {}, {cannot + "no/new: folder doesn't exist to create a new folder in"}},
        {"mkdir new a other",
         {"create new/"},
         {cannot + "a: can't make a folder because an item already exists with that name"}},
        {"mkdir -p a/b", {}, {cannot + "/w/a: folder doesn't exist to create a new folder in"}},
        {"mkdir -p a", {}, {cannot + "/w/a: folder doesn't exist to create a new folder in"}},
        {"mkdir", {}, {written + "no folder name specified"}},
        {"mkdir -p -- new", {}, {written + "no folder name specified"}},
        {"mkdir -pz new", {}, {written + "unsupported option when attempting to create a folder: '-z'"}},
    });
}

TEST(FileCommands, RemoveFolders) {
    const std::string cannot = "Can't delete folder / rmdir: ";
    const std::string written = "`rmdir` command incorrectly written / rmdir: ";
    expectRows({
        {"rmdir empty", {"delete empty/"}, {}, "0 unknown"},
        {"rmdir -p deep/er/est", {"delete deep/"}, {}, "0 unknown"},  // one delete stands for all inside
        {"touch deep/x; rmdir -p deep/er/est", {"delete deep/er/", "create deep/x"}, {}, "0 unknown"},
        {"rm folder/x; rmdir folder", {"delete folder/"}, {}, "0 unknown"},
        {"cd deep && rmdir -p er/est", {"delete deep/er/"}, {}, "0 unknown"},  // the folder one stands in stays
        {"rmdir a", {}, {cannot + "a: folder doesn't exist to be removed"}},
        {"rmdir no", {}, {cannot + "no: folder doesn't exist to be removed"}},
        {"rmdir folder", {}, {cannot + "folder: folder isn't empty, so it can't be removed"}},
        {"rmdir empty no folder2", {"delete empty/"}, {cannot + "no: folder doesn't exist to be removed"}},
        {"rmdir", {}, {written + "no folder specified to be removed"}},
        {"rmdir -x empty", {}, {written + "unsupported option when attempting to remove a folder: '-x'"}},
    });
}

TEST(FileCommands, Link) {
    const std::string written = "`ln` command incorrectly written / ln: ";
    expectRows({
        {"ln a new", {"create new"}},
        {"ln -s no new", {"create new"}},
        {"ln -s folder new", {"create new"}},
        {"ln -sf a b", {"create b", "overwrite b"}},
        {"ln -s a b folder", {"create folder/a", "create folder/b"}},
        {"ln no new", {}, {"Link command: source doesn't exist / ln: no: No such file or directory"}},
        {"ln folder new", {}, {"Link command: source can't be a folder / ln: folder: Is a directory"}},
        {"ln -s a b", {}, {"Link command: can't overwrite / ln: b already exists"}},
        {"ln -s a folder", {}, {"Link command: can't overwrite / ln: folder already exists"}},
        {"ln -s a sub/x b folder",
         {"create folder/a"},
         {"Link command: can't overwrite / ln: folder/x already exists"}},
        {"ln -s folder/x b folder/", {}, {"Link command: can't overwrite / ln: folder/x already exists"}},
        {"ln a b c", {}, {"Can't link to directory / ln: target 'c' is not a directory"}},
        {"ln", {}, {written + "missing file operand"}},
        {"ln -z a", {}, {written + "missing destination file operand after 'a'"}},
        {"ln -sz a new", {}, {written + "unsupported flag '-z'"}},
    });
}

TEST(FileCommands, Touch) {
    expectRows({
        {"touch new a other", {"create new", "create other"}},
        {"touch a"},
        {"touch -c no"},
        {"touch -h no"},
        {"touch -t 202001010101 new", {"create new"}},
        {"touch -ct 2020 new"},
        {"touch -r a -m -d 2020 new", {"create new"}},
        {"touch -t2020 new", {"create new"}},
        {"touch new -c", {"create -c", "create new"}},
        {"touch", {}, {}, "1 unknown"},
        {"touch -c", {}, {}, "1 unknown"},
    });
}

TEST(FileCommands, Trash) {
    expectRows({
        {"trash a folder", {"move a -> /home/me/.Trash/a", "move folder -> /home/me/.Trash/folder/"}},
        {"trash a sub/no b x",
         {"move a -> /home/me/.Trash/a", "move b -> /home/me/.Trash/b"},
         {"Trash: no doesn't exist / trash: cannot move 'no': No such file or directory"}},
        {"trash a no b -stopOnError",
         {"move a -> /home/me/.Trash/a"},
         {"Trash: no doesn't exist / trash: cannot move 'no': No such file or directory"}},
        {"trash -s no b", {}, {"Trash: no doesn't exist / trash: cannot move 'no': No such file or directory"}},
        {"trash --help a"},
        {"trash -v", {}, {"Trash command incorrectly written / trash: missing operand"}},
    });
}

TEST(FileCommands, Metadata) {
    const std::string missing = "Will have missing file error / ";
    expectRows({
        {"chmod 644 a folder", {"modify a", "modify folder/"}},
        {"chflags hidden a", {"modify a"}},
        {"chown me a", {"modify a"}},
        {"chmod -f 644 no a", {"modify a"}},
        {"chmod 644 a no b", {"modify a"}, {missing + "chmod: cannot access 'no': No such file or directory"}},
        {"chflags x no", {}, {missing + "chflags: no: No such file or directory"}},
        {"chown x no", {}, {missing + "chown: no: No such file or directory"}},
        {"chmod 644", {}, {"`chmod` command incorrectly written / chmod: missing file operand"}},
        {"chown", {}, {"`chown` command incorrectly written / chown: missing file operand"}},
    });
    expectEnds("chmod -R 644 folder",
               "unimplemented: chmod: -R (recursive) option not supported in Brindlet simulation");
    expectEnds("chown -vR", "unimplemented: chown: -R (recursive) option not supported in Brindlet simulation");
}

TEST(FileCommands, ExtendedAttributes) {
    expectRows({
        {"xattr -w name value a folder", {"modify a", "modify folder/"}},
        {"xattr -d name a", {"modify a"}},
        {"xattr -c a", {"modify a"}},
        {"xattr -l a", {}, {}, "0 unknown"},
        {"xattr -p name a", {}, {}, "0 unknown"},
        {"xattr -h", {}, {}, "0 unknown"},
        {"xattr -c -- -- a", {"modify a"}},
        {"xattr -w name", {}, {"`Command incorrectly written / xattr: Missing attribute name or value"}},
        {"xattr -p", {}, {"Command incorrectly written / xattr: Missing attribute name"}},
        {"xattr -d name", {}, {"Command incorrectly written / xattr: No file specified"}},
        {"xattr -c a no", {}, {"Will have missing file error / xattr: no: No such file or directory"}},
    });
}

TEST(FileCommands, ChangeDirectory) {
    const std::string written = "`cd` command written incorrectly / cd: ";
    const std::string cannot = "Can't go to directory / cd: ";
    expectRows(
        {
            {"cd folder && touch y", {"create folder/y"}},
            {"cd -P folder/../deep && touch y", {"create deep/y"}},
            {"cd; touch y", {"create /home/me/y"}},
            {"cd folder; cd -; touch y", {"create y"}, {}, "0 '/w\n'"},
            {"cd -- folder; touch y", {"create folder/y"}},
            {"cd er; touch y", {"create deep/er/y"}},  // by CDPATH
            {"cd ./er", {}, {cannot + "./er: No such file or directory"}},
            {"cd no", {}, {cannot + "no: No such file or directory"}},
            {"cd a", {}, {cannot + "a: Not a directory"}},
            {"cd -", {}, {"Can't return to previous directory / cd: OLDPWD not set"}},
            {"cd folder deep", {}, {written + "too many arguments"}},
            {"cd -x folder", {}, {written + "unsupported option: '-x'"}},
        },
        {.environment = {{"CDPATH", ":no:deep"}}});
}

// Whatever the operand, a prediction comes back and stays in what it was asked about.
TEST(FileCommands, HostileOperands) {
    const std::string longName(5000, 'n');
    const std::string operands[] = {"''", "--", "-", "/", "..", "'-- -x'", "-é", "'\xff'", "'\n'", longName};
    for (const char* command : {"mv", "cp -R", "rm -rf", "rm -d", "mkdir", "mkdir -p", "rmdir -p", "ln -s", "touch -t",
                                "trash", "chmod 1", "xattr -c", "cd"}) {
        for (const auto& first : operands) {
            for (const auto& second : operands) {
                FakeDisk disk = ordinaryDisk();
                const AnalysisResult result = predict(std::string(command) + " " + first + " " + second, disk);
                EXPECT_TRUE(result.exitCode || result.analysisError) << command << " " << first << " " << second;
            }
        }
    }
}

TEST(FileCommands, FoldersWithoutNumber) {
    std::string path = "new";
    for (int level = 0; level < 3000; ++level) path += "/n";
    FakeDisk disk = ordinaryDisk();
    const AnalysisResult result = predict("mkdir -p " + path, disk);
    EXPECT_EQ(outcome(result), "1 'mkdir: " + path + ": File name too long'");
    EXPECT_LT(disk.log.size(), 20U);
}

TEST(FileCommands, ListIsReallyRun) {
    FakeDisk disk = ordinaryDisk();
    FakeLauncher launcher;
    launcher.answers = {{.exitCode = 0, .output = "a\n"}};
    const AnalysisResult result = predict("touch new; ls -l *.no", disk, {.launcher = &launcher});
    EXPECT_EQ(launcher.launches.at(0).arguments, (Texts{"ls", "-l", "*.no"}));
    EXPECT_EQ(outcome(result), "0 'a\n'");
    EXPECT_EQ(described(result.sideEffects), (Texts{"filesChangedBeforeReadingFiles: 'ls' sees only real files, not "
                                                    "interim simulated changes"}));
}

}  // namespace file_commands_tests
}  // namespace brindlet
