#include <gtest/gtest.h>

#include <chrono>

#include "model_rows.h"

namespace brindlet {
namespace system_tests {

const std::initializer_list<std::string_view> disk{"a", "b", "folder/", "run.command", "script.scpt", "x y"};

struct Said {
    std::string line;
    Texts sideEffects = {};
    std::string outcome = "0";
    Texts errors = {};
};

void expectSaid(const std::vector<Said>& rows) {
    std::vector<ModelRow> all;
    for (const auto& [line, sideEffects, outcome, errors] : rows)
        all.push_back(
            {.line = line, .errors = errors, .sideEffects = sideEffects, .outcome = errors.empty() ? outcome : ""});
    expectRows(disk, all);
}

std::string partly(const std::string& text) {
    return "partialSupport: " + text;
}
std::string setting(const std::string& text) {
    return "modifiesSystemSetting: " + text;
}

void expectPrinted(std::string_view line, std::string_view runs) {
    FakeDisk files(disk);
    EXPECT_EQ(predict(line, files).rewrittenCommand, runs);
}

TEST(Open, AppsFilesAndFolders) {
    const std::string reveals = "revealsInFinder: Shows an file or folder in Finder";
    expectSaid({
        {"open a", {"opensFile: Opens a"}},
        {"open sub/no.pdf", {"opensFile: Opens no.pdf"}},
        {"open https://h.org/x", {"opensFile: Opens x"}},
        {"open -g folder", {reveals}},
        {"open -R a", {reveals}},
        {"open no || rm a", {"opensFile: Opens no", partly("'rm a' may run too, which isn't shown here")}},
        {"open -W a", {"longRunning: Long-running operation", "opensFile: Opens a"}},
        {"open -a Preview a", {"opensFile: Opens file in app"}},
        {"open -a Safari", {"launchesApp: Launches an app"}},
        {"open -e a", {"opensFile: Opens file in app"}},
        {"open"},
        {"open run.command", {"opensFile: Opens run.command", "runningUnknownScript: run.command"}},
        {"open -a Terminal a", {"opensFile: Opens file in app", "runningUnknownScript: a"}},
        {"open -a Safari --stderr b",
         {"launchesApp: Launches an app", "unknownFileChanges: 'open' may also write 'b', which isn't shown here"}},
    });
}

TEST(AppleScript, IsNeverRead) {
    expectSaid({
        {"osascript -e 'do shell script \"rm a\"'", {"runningUnknownScript: AppleScript"}, "? unknown"},
        {"osascript -l JavaScript -e x -e y", {"runningUnknownScript: JavaScript"}, "? unknown"},
        {"osascript script.scpt arg", {"runningUnknownScript: script.scpt"}, "? unknown"},
        {"osascript sub/no", {}, "", {"Script file doesn't exist / osascript: can't open file \"sub/no\""}},
        {"osascript", {}, "", {"Script file not specified / osascript: missing script filename"}},
    });
}

TEST(Clipboard, BothWays) {
    expectSaid({{"echo x | pbcopy -anything", {"copyToClipboard: Copies to clipboard"}},
                {"pbpaste", {"readsFromClipboard: Reads from clipboard"}, "0 unknown"}});
}

TEST(Defaults, Settings) {
    expectSaid({
        {"defaults read com.apple.dock", {}, "0 unknown"},
        {"defaults com.apple.dock", {}, "0 unknown"},
        {"defaults write com.apple.dock autohide -bool true", {setting("Changes autohide setting to true")}},
        {"defaults -currentHost write com.apple.dock x", {setting("Changes Dock settings")}},
        {"defaults -host h delete com.apple.dock", {setting("Resets Dock settings")}},
        {"defaults delete com.apple.TEXT-edit.x k", {setting("Resets Text-Edit.x's k setting")}},
        {"defaults delete NSGlobalDomain", {setting("Resets NSGlobalDomain settings")}},
        {"defaults delete-all com.apple.dock", {setting("Reset all Dock settings")}},
        {"defaults delete-all com.apple.dock k", {setting("Resets all Dock settings")}},
        {"defaults rename com.apple.dock k l", {setting("Renames Dock's k setting to l")}},
        {"defaults write x", {setting("Modifies system setting")}},
        {"defaults delete", {setting("Modifies system setting")}},
        {"defaults import x f", {setting("Replaces settings by those of a file")}, "0 unknown"},
        {"defaults export x b",
         {"unknownFileChanges: 'defaults export' writes a file, which isn't shown here"},
         "0 unknown"},
        {"defaults -currentHost -host",
         {},
         "",
         {"Defaults command incorrectly written / defaults: -host option requires an argument"}},
        {"defaults -currentHost", {}, "", {"Defaults command missing parameters / defaults: Nothing to do"}},
    });
}

TEST(Power, Settings) {
    expectSaid({
        {"pmset"},
        {"pmset -g", {}, "0 unknown"},
        {"pmset -g batt", {}, "0 unknown"},
        {"pmset -g -x", {}, "0 unknown"},
        {"pmset -g rawlog", {"indefinite: Won't work in Brindlet: it never finishes"}, "0 unknown"},
        {"pmset -g log", {"longRunning: Long-running operation"}, "0 unknown"},
        {"pmset -g no", {partly("'pmset -g no' partially supported, output unpredictable")}, "0 unknown"},
        {"pmset displaysleepnow", {"powerAction: Turns display off (display sleep)"}},
        {"pmset noidle", {"powerAction: Prevents idle sleep"}},
        {"pmset touch"},
        {"pmset repeat cancel",
         {setting("Schedules power event"), partly("'pmset repeat' partially supported, full effects unpredictable")}},
        {"pmset -a", {setting("Changes power management settings")}},
        {"pmset sleep 0", {setting("Changes power management settings")}},
        {"pmset lidwake", {partly("'pmset' partially supported, full effects unpredictable")}},
        {"caffeinate -d -t 60", {"powerAction: Preventing system sleep"}},
    });
    const Texts whileRemoving{"powerAction: Preventing system sleep while running 'rm'"};
    expectRows(disk, {{.line = "caffeinate rm a", .changes = {"delete a"}, .sideEffects = whileRemoving},
                      {.line = "caffeinate -it 60 -- rm -rf folder a",  // the command's options are its own
                       .changes = {"delete a", "delete folder/"},
                       .sideEffects = whileRemoving}});
    std::string chain;
    for (int level = 0; level < 2000; ++level) chain += "caffeinate ";
    FakeDisk files(disk);
    EXPECT_EQ(described(predict(chain + "rm a", files).analysisError),
              "simulationError: The line nests commands too deep to simulate");
}

TEST(SystemInformation, Sysctl) {
    const ToolOutcome answer{.exitCode = 0, .output = "17\n"};
    const auto said = [](const std::string& option) {
        return Texts{partly("'sysctl " + option + "' may change settings, which isn't shown here")};
    };
    expectRows(disk, {
                         {.line = "sysctl -n hw.memsize",
                          .answer = answer,
                          .launches = {"sysctl|-n|hw.memsize"},
                          .outcome = "0 '17\n'"},
                         {.line = "sysctl a.b=1", .sideEffects = {setting("Changes a.b value")}},
                         {.line = "sysctl -w a=1=2 -- -b=2 c", .sideEffects = {setting("Changes a, -b values")}},
                         {.line = "sysctl -w a", .answer = answer, .launches = {"sysctl|-w|a"}, .outcome = "0 '17\n'"},
                         {.line = "sysctl -qp a", .sideEffects = said("-qp"), .outcome = "? unknown"},
                         {.line = "sysctl --loa=a", .sideEffects = said("--loa=a"), .outcome = "? unknown"},
                         {.line = "sysctl --system", .sideEffects = said("--system"), .outcome = "? unknown"},
                     });
}

TEST(SystemInformation, Profiler) {
    const std::string isSlow = "longRunning: Long-running operation";
    const std::string isPartial = partly("'system_profiler' partially supported, full effects unpredictable");
    const std::string written = "System info command incorrectly written / system_profiler: option '";
    expectSaid({
        {"system_profiler", {isSlow}, "0 unknown"},
        {"system_profiler -json SPHardwareDataType", {}, "0 unknown"},
        {"system_profiler SPHardwareDataType SPLogsDataType", {isSlow}, "0 unknown"},
        {"system_profiler -listDataTypes", {}, "0 unknown"},
        {"system_profiler SPFoo", {isPartial}, "0 unknown"},
        {"system_profiler -detailLevel all -timeout 3", {isSlow, isPartial}, "0 unknown"},
        {"system_profiler -x SPHardwareDataType", {isPartial}, "0 unknown"},
        {"system_profiler -detailLevel", {}, "", {written + "-detailLevel' requires an argument"}},
        {"system_profiler SPFoo -timeout", {}, "", {written + "-timeout' requires an argument"}},
    });
    expectPrinted("system_profiler SPHardwareDataType", "system_profiler -timeout 20 SPHardwareDataType");
    expectPrinted("system_profiler x -timeout 3", "system_profiler x -timeout 3");
}

TEST(Processes, Kill) {
    const std::string none = "Force quit: No app or process specified / ";
    const auto others = [](const std::string& name) {
        return partly("'" + name + "' may force quit other processes than shown here");
    };
    expectSaid({
        {"kill -l 9", {}, "0 unknown"},
        {"kill -9 123", {"kill: Force quits a process"}},
        {"kill -s TERM 1 2", {"kill: Force quits 2 processes"}},
        {"killall finder", {"kill: Relaunches Finder"}},
        {"killall -TERM Safari", {"kill: Force quits Safari"}},
        {"echo ' 12  Mail' | kill", {"kill: Force quits 2 processes"}},
        {"pbpaste | kill", {"readsFromClipboard: Reads from clipboard", "kill: Force quits a process"}},
        {"killall", {}, "", {none + "killall: expected PIDs or process names"}},
        {"kill -9 -1", {others("kill")}, "", {none + "kill: expected PIDs or process names"}},
        {"kill 5 -1", {others("kill"), "kill: Force quits a process"}},
        {"kill -kill 123", {others("kill")}, "0 unknown"},  // for the tool a signal, and no list
        {"pkill -signal -f x", {"kill: Force quits x"}},
        {"pkill -9 -u me Mail", {"kill: Force quits Mail"}},
        {"pkill -u me", {others("pkill")}, "", {none + "pkill: expected PIDs or process names"}},
    });
    expectRows(
        disk,
        {{.line = "pgrep -f x", .answer = {.exitCode = 1, .output = ""}, .launches = {"pgrep|-f|x"}, .outcome = "1"}});
}

TEST(Brew, Packages) {
    expectSaid({
        {"brew", {}, "0 unknown"},
        {"brew -v", {}, "0 unknown"},
        {"brew -v install a", {partly("'brew -v' may do more than show information")}, "0 unknown"},
        {"brew -q", {partly("'brew' '-q' not known, effect unpredictable")}, "0 unknown"},
        {"brew install a b", {"homebrewInstall: Install a, b"}, "0 unknown"},
        {"brew install", {"homebrewInstall: Installs Homebrew package"}, "0 unknown"},
        {"brew rm a", {"homebrewUninstall: Uninstall a"}, "0 unknown"},
        {"brew leaves", {}, "0 unknown"},
        {"brew search a", {"networkAccess: Makes network request"}, "0 unknown"},
        {"brew upgrade", {partly("'brew upgrade' partially supported, full effects unpredictable")}, "0 unknown"},
    });
}

TEST(Spotlight, SearchesRealFiles) {
    const std::string incorrect = "Spotlight search command incorrect / ";
    const ToolOutcome answer{.exitCode = 0, .output = "/w/a\n"};
    expectRows(
        disk,
        {
            {.line = "mdfind -0 -onlyin . x",
             .answer = answer,
             .launches = {"mdfind|-0|-onlyin|.|x"},
             .outcome = "0 '/w/a\n'"},
            {.line = "mdfind x -name", .errors = {incorrect + "mdfind: option '-name' requires an argument"}},
            {.line = "mdfind -s x", .errors = {incorrect + "mdfind: unsupported option '-s'"}},
            {.line = "mdfind -live x", .ends = "wontWorkInBrindlet: mdfind: -l (live) flag won't work in Brindlet"},
            {.line = "mkdir n; cd n; mdfind x",
             .changes = {"create n/"},
             .errors = {"Spotlight search: folder doesn't exist / mdfind: working directory does not exist: /w/n"},
             .sideEffects = {"filesChangedBeforeReadingFiles: 'mdfind' sees only real files, not interim "
                             "simulated changes"}},
            {.line = "mdls -raw -name k a",
             .answer = answer,
             .launches = {"mdls|-raw|-name|k|a"},
             .outcome = "0 '/w/a\n'"},
            {.line = "mv b c; mdls a c", .changes = {"move b -> c"}, .outcome = "0 unknown"},
            {.line = "mdls a sub/no b",
             .errors = {"Spotlight search: file/folder missing / mdls: no: No such file or directory"}},
            {.line = "mdls -plist b a", .errors = {incorrect + "mdls: unsupported option '-plist'"}},
            {.line = "mdls a -nullMarker", .errors = {incorrect + "mdls: option '-nullMarker' requires an argument"}},
        });
    expectPrinted(R"(mdfind 'k == "x"')", R"(mdfind 'k == "x"c')");
    expectPrinted(R"(mdfind 'a ==  "x" && b == "y"c && c=="z"')", R"(mdfind 'a ==  "x"c && b == "y"c && c=="z"')");
    expectPrinted(R"(mdfind 'a'$(echo == "x" )'b')", R"(mdfind 'a'$(echo == "x")'b')");  // a shell's words, no query
}

TEST(Fiotraf, PreviewIsRead) {
    const std::string preview =
        "Would tidy 8 files\n\n  Documents (2 files)\n    → a.pdf\n    → b.txt\n\n"
        "Images (6 files)\n  → c d.jpg\n  → … and 5 more\n→ \n";
    const ToolOutcome answer{.exitCode = 0, .output = preview};
    const std::string shown = "0 '" + preview + "'";
    const Texts moves{"create Documents/", "move a.pdf -> Documents/a.pdf", "move b.txt -> Documents/b.txt",
                      "create Images/", "move c d.jpg -> Images/c d.jpg"};
    const Texts copies{"create Documents/", "create Documents/a.pdf", "create Documents/b.txt", "create Images/",
                       "create Images/c d.jpg"};
    const std::string unseen = "unknownFileChanges: 'fiotraf' may move or copy files that aren't shown here";
    const auto inDoubt = [&](std::string line) {
        return ModelRow{.line = std::move(line), .sideEffects = {unseen}, .outcome = "? unknown"};
    };
    expectRows({"a.pdf", "b.txt", "c d.jpg", "box/a.pdf"},
               {
                   {.line = "fiotraf organize . --execute",
                    .answer = answer,
                    .launches = {"fiotraf|organize|."},
                    .changes = moves,
                    .sideEffects = {"extraFileChanges: Also moves 5 other files not listed"},
                    .outcome = shown},
                   {.line = "fiotraf organize --min-size 1 --copy . --execute",
                    .answer = answer,
                    .launches = {"fiotraf|organize|--min-size|1|--copy|."},
                    .changes = copies,
                    .sideEffects = {"extraFileChanges: Also copies 5 other files not listed"},
                    .outcome = shown},
                   {.line = "fiotraf organize jpg box",  // the first operand that is there
                    .answer = {.exitCode = 0, .output = "X (1 file)\n→ a.pdf"},
                    .launches = {"fiotraf|organize|jpg|box"},
                    .changes = {"create box/X/", "move box/a.pdf -> box/X/a.pdf"},
                    .outcome = "0 'X (1 file)\n→ a.pdf'"},
                   {.line = "fiotraf organize box --execute",  // names that would lead elsewhere stay below the folder
                    .answer = {.exitCode = 0, .output = "/etc (1 file)\n→ /a.pdf\n→ ... and 99999999999999999999 more"},
                    .launches = {"fiotraf|organize|box"},
                    .changes = {"create box/etc/", "move box/a.pdf -> box/etc/a.pdf"},
                    .sideEffects = {"extraFileChanges: Also moves 9223372036854775807 other files not listed"},
                    .outcome = "0 '/etc (1 file)\n→ /a.pdf\n→ ... and 99999999999999999999 more'"},
                   {.line = "fiotraf organize --execute",
                    .answer = answer,
                    .launches = {"fiotraf|organize"},
                    .sideEffects = {unseen},
                    .outcome = shown},
                   {.line = "fiotraf organize box --execute",
                    .answer = {.exitCode = 2, .output = "no"},
                    .launches = {"fiotraf|organize|box"},
                    .sideEffects = {unseen},
                    .outcome = "2 'no'"},
                   {.line = "fiotraf organize box --execute",  // an output that is no text
                    .answer = {.exitCode = 0, .output = "\xff"},
                    .launches = {"fiotraf|organize|box"},
                    .sideEffects = {unseen}},
                   {.line = "fiotraf organize box",
                    .launches = {"fiotraf|organize|box"},
                    .sideEffects = {unseen},
                    .outcome = "? unknown"},
                   inDoubt("fiotraf organize box --exec"),
                   inDoubt("fiotraf organize box --EXECUTE=yes"),
                   inDoubt("fiotraf organize box --contains --exe"),
                   {.line = "fiotraf", .answer = answer, .launches = {"fiotraf"}, .outcome = shown},
                   {.line = "fiotraf --execute organize .",
                    .sideEffects = {partly("fiotraf '--execute' isn't supported — effects unknown")},
                    .outcome = "? unknown"},
               });
    FakeDisk files;
    EXPECT_EQ(predict("fiotraf x", files).requiredPackages, std::set<std::string>{"Fiotraf"});
}

TEST(Bash, ScriptsAreSimulated) {
    const std::string syntax = "bash: syntax error in command: `";
    const std::string unreadable = ", which this prediction can't read";
    const auto unexported = [](const std::string& name) {
        return "unknownFileChanges: A new shell sees '$" + name + "' only if it is exported, which isn't shown here";
    };
    expectRows(
        disk,
        {
            {.line = "bash -c 'rm a; echo hi'", .changes = {"delete a"}, .outcome = "0 'hi\n'"},
            {.line = "bash -c 'a=1; cd folder; touch y'; echo \"<$a>\"; touch z",
             .changes = {"create folder/y", "create z"},
             .outcome = "0 '<>\n'"},
            {.line = "bash -c 'mv $0 $1; echo $0' a new", .changes = {"move a -> new"}, .outcome = "0 'a\n'"},
            {.line = "bash -c 'rm \"$1\"' _ 'x y'", .changes = {"delete x y"}},
            {.line = "bash -c 'echo $0 ${#1}$1 ${*}'", .outcome = "0 'bash 0\n'"},
            {.line = "echo 'rm a $1' | bash -s b", .changes = {"delete a", "delete b"}},
            {.line = "bash -c 'false'", .outcome = "1"},
            {.line = "bash -c 'if'", .outcome = "2 '" + syntax + "if`'"},
            {.line = "bash -c ': ${x:?gone}; touch new'",
             .changes = {"create new"},
             .sideEffects = {},
             .outcome = "0 'gone'"},
            {.line = "bash dir/x.sh 1", .sideEffects = {"runningUnknownScript: dir/x.sh 1"}, .outcome = "? unknown"},
            {.line = "pbpaste | bash -s",
             .sideEffects = {"readsFromClipboard: Reads from clipboard",
                             "runningUnknownScript: Runs an unknown script"},
             .outcome = "? unknown"},
            {.line = "bash -xv -c 'rm a'", .ends = "simulationError: bash: unsupported flags: x, v"},
            // What a shell does beyond that.
            {.line = "bash -c ' rm a'",
             .sideEffects = {partly("The shell may be able to run ' rm a'" + unreadable)},
             .outcome = "2 '" + syntax + " rm a`'"},
            {.line = "bash -c 'touch new;; rm a'",
             .changes = {"create new"},
             .sideEffects = {partly("'; rm a' may run too, which isn't shown here")}},
            {.line = "bash -c ' ' && rm a",
             .sideEffects = {partly("'rm a' may run too, which isn't shown here")},
             .outcome = "2 '" + syntax + " `'"},
            {.line = "x=b; bash -c 'touch \"$x\"'", .sideEffects = {unexported("x")}},
            {.line = "bash -c 'rm -f ${@}' _ a b",
             .changes = {"delete a", "delete b"},
             .sideEffects = {"unknownFileChanges: '$@' stands for several words, which are taken for one here"}},
            {.line = "bash -c 'rm -f b $1' -s a",
             .changes = {"delete b"},
             .sideEffects = {"unknownFileChanges: A shell takes the options behind its script for '$0' and '$1', which "
                             "isn't shown here"}},
            {.line = "bash b -c 'echo hi'",
             .sideEffects = {"runningUnknownScript: b -c echo hi"},
             .outcome = "0 'hi\n'"},
            {.line = "bash -c -l 'rm a'",
             .sideEffects = {partly("'bash -l' runs the start-up files first, which isn't shown here"),
                             "runningUnknownScript: rm a"},
             .outcome = "2 '" + syntax + "`'"},
            {.line = "bash -c 'ping -x h'",
             .sideEffects = {"networkAccess: Makes network request", "longRunning: Long-running operation",
                             partly("'ping -x h' runs inside 'bash' as it is written, without what would make it work "
                                    "in Brindlet")},
             .outcome = "0 unknown"},
            {.line = "bash -c 'echo `pwd`'",
             .sideEffects = {partly("The shell may read 'echo `pwd`' otherwise than this prediction does")},
             .outcome = "0 '/w\n'"},
        });
}

TEST(Bash, RefusesWhatItCannotFollow) {
    FakeDisk files(disk);
    for (const std::string_view line : {"bash -c 'touch new # x'", "printf 'rm a\\nrm b' | bash -s x",
                                        "bash -c 'echo \"`rm a`\"'", "bash -c 'bash -c \"touch new # x\"'"}) {
        FakeLauncher launcher;
        launcher.answer = [](const ToolLaunch&) { return ToolOutcome{.exitCode = 0, .output = "rm a\nrm b"}; };
        EXPECT_TRUE(described(predict(line, files, {.launcher = &launcher}).analysisError).starts_with("highRisk: "))
            << line;
    }
    EXPECT_EQ(described(predict("bash -c 'sudo x'", files).analysisError),
              "bannedInBrindlet: 'sudo' command is banned in Brindlet for safety and security");
    // A shell that runs itself.
    EXPECT_EQ(described(predict("x='echo $x | bash -s'; echo $x | bash -s", files).analysisError),
              "simulationError: The line nests commands too deep to simulate");
}

// Every model comes back from any words, and asks nothing of the disk but looks.
TEST(SystemCommands, HostileWords) {
    const std::string longWord(5000, '-');
    const std::string words[] = {"''", "--", "-", "/", "'-- -x'", "-é", "'\xff'", "'\n'", "-1", "=", longWord};
    for (const char* command :
         {"curl -O", "curl -T", "ping", "open", "osascript -e", "defaults write", "pmset -g", "caffeinate", "sysctl",
          "system_profiler", "kill", "pkill", "pgrep", "brew", "mdfind", "mdls", "fiotraf organize", "bash -c"}) {
        for (const auto& first : words)
            for (const auto& second : words) {
                FakeDisk files(disk);
                static_cast<void>(predict(std::string(command) + " " + first + " " + second, files));
            }
    }
}

// The tools that are there to be launched, in their sandbox.
TEST(SystemCommands, RealToolsOnlyRead) {
    inOrdinaryProcess([] {
        RealPrediction real;
        if (!real.canLaunch()) GTEST_SKIP() << "no sandbox here";
        real.scratch.write("fiotraf.txt", "x");
        real.scratch.write("load", "kernel.hostname=changed\n");
        const auto before = real.scratch.snapshot();
        const auto start = std::chrono::steady_clock::now();
        for (const std::string_view line :
             {"sysctl kernel.ostype", "sysctl -p load", "sysctl -w kernel.hostname=x", "sysctl -- -w", "sysctl ''",
              "pgrep -F -", "pgrep -F load", "pgrep --signal 9 .", "pgrep -9 .", "mdfind x", "mdls load",
              "fiotraf organize . --execute"})
            static_cast<void>(real.predict(line));
        EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(60));
        EXPECT_EQ(real.scratch.snapshot(), before);
        EXPECT_EQ(real.predict("mdls load").exitCode, 127);
        EXPECT_EQ(real.predict("fiotraf organize . --execute").exitCode, 127);
    });
}

}  // namespace system_tests
}  // namespace brindlet
