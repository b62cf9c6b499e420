#include "exec/tool_search_path.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "support/scratch_folder.h"

namespace brindlet {

namespace tool_search_path_tests {

using Folders = std::vector<std::string>;

// A login shell that does what `script` says, whatever it is asked.
std::string shellIn(const ScratchFolder& scratch, std::string_view script) {
    const FilePath shell = scratch.write("shell", "#!/bin/bash\n" + std::string(script));
    std::filesystem::permissions(shell.text(), std::filesystem::perms::owner_all);
    return shell.text();
}

// On a machine that has Homebrew, its real folder comes second.
std::string homebrewFolders() {
    const std::string real = "/home/linuxbrew/.linuxbrew/bin";
    return "/opt/homebrew/bin:" + (std::filesystem::is_directory(real) ? real + ":" : "");
}

TEST(LoginShellPath, TheAnswerBetweenTheMarksElseTheOwnPath) {
    struct Case {
        std::string_view script;
        Folders folders;
    };
    const Folders ownPath{"/own", "/path"};
    const Case cases[] = {
        // A real shell, asked the real question behind start files that talk.
        {"echo hello; PATH=/a::/b:; eval \"$4\"; echo bye", {"/a", "/b"}},
        {"[[ $* == '-l -i -c printf'* ]] && PATH=/args eval \"$4\"", {"/args"}},
        {"echo noise >&2; /bin/cat; PATH=/after/cat:/usr/bin eval \"$4\"; exit 3", {"/after/cat", "/usr/bin"}},
        {"echo ___BrindletPath___; echo /a", ownPath},  // one mark only
        {"echo ' ___BrindletPath___'; echo /a; echo ___BrindletPath___", ownPath},
        {"echo ___BrindletPath___; echo; echo ___BrindletPath___", ownPath},
        {"echo ___BrindletPath___; echo ___BrindletPath___", ownPath},
        {"kill -KILL $$", ownPath},
        {"yes", ownPath},  // output without end is cut off
    };
    for (const auto& [script, folders] : cases) {
        const ScratchFolder scratch;
        EXPECT_EQ(loginShellPath({{"SHELL", shellIn(scratch, script)}, {"PATH", ":/own::/path"}}), folders) << script;
    }
    if (std::filesystem::exists("/bin/zsh")) return;  // it would answer in place of a shell that can't be asked
    for (const std::string shell : {"", "/no/such/shell", "/etc/passwd", "relative"})
        EXPECT_EQ(loginShellPath({{"SHELL", shell}, {"PATH", "/own:/path"}}), ownPath) << shell;
    EXPECT_EQ(loginShellPath({}), Folders{});
}

TEST(ToolSearchPath, OrderDuplicatesAndFoldersThatComeLater) {
    const ScratchFolder scratch;
    const auto files = openFileSystem();
    const FilePath packages = scratch.path("Packages");
    const FilePath binaries = scratch.path("Binaries");
    const std::string asked = "echo asked >> " + scratch.path().text() + "/log; ";
    ToolSearchPath searchPath(*files, packages, {scratch.path("Own"), binaries},
                              {{"SHELL", shellIn(scratch, asked + "PATH=/x:/bin:/x:/opt/homebrew/bin; eval \"$4\"")}});
    const std::string homebrew = homebrewFolders();
    EXPECT_EQ(searchPath.text(), homebrew + "/x:/bin:/usr/bin:/usr/sbin:/sbin:/usr/local/bin");

    scratch.makeFolder("Packages");
    scratch.makeFolder("Binaries");
    EXPECT_EQ(searchPath.text(),
              homebrew + packages.text() + ":/x:/bin:/usr/bin:/usr/sbin:/sbin:/usr/local/bin:" + binaries.text());
    // Programs that replace the system's of the same name come before the login shell's folders.
    scratch.makeFolder("Binaries/overrides");
    EXPECT_EQ(searchPath.text(), homebrew + packages.text() + ":" + binaries.text() +
                                     "/overrides:/x:/bin:/usr/bin:/usr/sbin:/sbin:/usr/local/bin:" + binaries.text());
    EXPECT_TRUE(searchPath.holds("sh"));
    EXPECT_FALSE(searchPath.holds("no-such-tool"));
    EXPECT_EQ(searchPath.find("sh"), FilePath("/bin/sh"));
    EXPECT_EQ(scratch.read("log"), "asked\n");  // the shell is asked once, the folders are looked at each time
}

}  // namespace tool_search_path_tests
}  // namespace brindlet
