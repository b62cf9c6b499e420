#include <gtest/gtest.h>

#include <filesystem>
#include <optional>

#include "end_to_end/program.h"
#include "support/asset_server.h"

namespace brindlet {
namespace tools_tests {

// Whether the list says so of the tool.
bool isListedAs(const Program& program, std::string_view name, const char* state) {
    const auto list = program.run({"tools", "list", "--json"}).json();
    for (const auto& tool : list["tools"])
        if (tool["name"] == name) return tool[state].get<bool>();
    ADD_FAILURE() << name << " is not in the list";
    return false;
}

TEST(Tools, InstallsAndRemoves) {
    Program program;
    const std::string makeArchive =
        "cd " + program.disk.path().text() + " && echo > fiotraf && chmod 755 fiotraf && zip -q archive.zip fiotraf";
    ASSERT_EQ(std::system(makeArchive.c_str()), 0);
    AssetServer server({{"/fiotraf.zip", {.body = program.disk.read("archive.zip")}}});
    program.environment["BRINDLET_PACKAGES_BASE_URL"] = server.url();
    // The program's own one lies beside it, which isn't to be installed.
    EXPECT_FALSE(isListedAs(program, "Fiotraf", "installed"));
    EXPECT_TRUE(isListedAs(program, "Fiotraf", "available"));

    EXPECT_EQ(program.run({"tools", "install", "fiotraf"}).out, "Fiotraf is installed\n");
    EXPECT_TRUE(isListedAs(program, "Fiotraf", "installed"));
    EXPECT_TRUE(program.home.exists("data/Packages/fiotraf"));
    EXPECT_EQ(program.run({"tools", "install", "Fiotraf"}).out, "Fiotraf was installed already\n");
    EXPECT_EQ(program.run({"tools", "uninstall", "Fiotraf"}).out, "Fiotraf is removed\n");
    EXPECT_FALSE(isListedAs(program, "Fiotraf", "installed"));

    const Outcome failed = program.run({"tools", "install", "FFmpeg"});
    EXPECT_EQ(failed.err, "brindlet: Download failed: server status code: 404\n");
    EXPECT_EQ(failed.exitCode, 1);
    EXPECT_EQ(program.run({"tools", "install", "Nothing"}).err, "brindlet: Package not found\n");
    EXPECT_EQ(program.run({"tools", "install"}).exitCode, 2);
}

TEST(Tools, CtrlCEndsTheDownload) {
    Program program;
    AssetServer server({{"/ffmpeg.zip", {.body = "begin", .announcedLength = 10, .hangs = true}}});
    program.environment["BRINDLET_PACKAGES_BASE_URL"] = server.url();
    program.environment["TMPDIR"] = program.disk.makeFolder("tmp").text();
    const Outcome cancelled = program.runAtTerminal({"tools", "install", "FFmpeg"}, "Downloading FFmpeg...", "");
    EXPECT_EQ(cancelled.exitCode, 130);
    EXPECT_EQ(program.names("tmp"), "");
}

TEST(Tools, APredictionSaysWhatIsMissing) {
    const Program program;
    program.disk.write("a.md", "");
    const std::vector<std::string> line{"predict", "--json", "pandoc a.md -o a.docx"};
    const auto before = program.run(line).json();
    EXPECT_EQ(before["requiredPackages"], nlohmann::json::array({"Pandoc"}));
    EXPECT_EQ(before["missingPackage"].is_null(), isListedAs(program, "Pandoc", "available"));
    const FilePath tool = program.home.write("data/Binaries/pandoc", "#!/bin/sh\n");
    std::filesystem::permissions(tool.text(), std::filesystem::perms::owner_all);
    EXPECT_EQ(program.run(line).json()["missingPackage"], nullptr);
    EXPECT_TRUE(isListedAs(program, "Pandoc", "available"));
}

// Homebrew's stand-in makes the tool that it is asked for, unless it is told to fail.
constexpr std::string_view standInBrew = R"(#!/bin/bash
[ "$1" = install ] || exit 0
[ -e "$0.fails" ] && exit 3
printf '#!/bin/bash\necho "tool ran: $*"\n' > "$(dirname "$0")/$2"
chmod 755 "$(dirname "$0")/$2"
)";

struct Tool {
    std::string package, command, arguments;
};
// The first that this machine doesn't have.
std::optional<Tool> missingTool() {
    const Tool tools[] = {{"QPDF", "qpdf", "--linearize a.pdf b.pdf"}, {"Gifsicle", "gifsicle", "a.gif -o b.gif"}};
    for (const Tool& tool : tools)
        if (!isListedAs(Program(), tool.package, "available")) return tool;
    return std::nullopt;
}

TEST(Tools, WhatIsMissingIsInstalledBeforeTheRun) {
    const auto tool = missingTool();
    if (!tool) GTEST_SKIP() << "this machine has every tool that could be missing";
    struct Case {
        std::vector<std::string> words;
        std::string_view keys;  // none: nobody is there
        int exitCode;
        std::string says;
        bool brewFails = false;
    };
    const std::string line = tool->command + " " + tool->arguments, name = tool->package;
    const std::string question = "Install " + name + " and run it?";
    const Case cases[] = {
        {{"run", line}, "", 1, "since " + name + " is missing: 'brindlet tools install " + name + "' installs it"},
        {{"run", "--yes", line}, "", 1, "'brindlet tools install " + name + "'"},
        {{"run", line}, "n", 130, "Downloads " + name},
        {{"run", line}, "y", 0, "tool ran: " + tool->arguments},
        {{"run", line}, "y", 1, "install " + tool->command, true},
    };
    for (const auto& [words, keys, exitCode, says, brewFails] : cases) {
        SCOPED_TRACE(says);
        Program program;
        for (const char* file : {"a.pdf", "a.gif"}) program.disk.write(file, "");
        const FilePath brew = program.home.write("bin/brew", standInBrew);
        if (brewFails) program.home.write("bin/brew.fails", "");
        std::filesystem::permissions(brew.text(), std::filesystem::perms::owner_all);
        program.environment["PATH"] += ":" + brew.parent().text();
        const Outcome outcome = keys.empty() ? program.run(words) : program.runAtTerminal(words, question, keys);
        EXPECT_EQ(outcome.exitCode, exitCode) << outcome.out << outcome.err;
        EXPECT_NE((outcome.out + outcome.err).find(says), std::string::npos) << outcome.out << outcome.err;
        EXPECT_EQ(program.home.exists("bin/" + tool->command), exitCode == 0);
    }
}

}  // namespace tools_tests
}  // namespace brindlet
