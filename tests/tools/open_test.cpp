#include <gtest/gtest.h>

#include "text/strings.h"
#include "tools/tool_bench.h"

namespace brindlet {

namespace open_tests {

// A desktop with a browser, two editors and a terminal.
class Desktop : public ToolBench {
  public:
    Desktop() {
        set("DISPLAY", ":77");
        set("XDG_DATA_DIRS", scratch().path("share").text());
        standIn("xdg-open", "[[ $1 != *broken* ]]");
        standIn("xdg-mime", "case $3 in text/plain) echo org.editor.Notes.desktop ;; *https) echo web.desktop ;; esac");
        standIn("x-terminal-emulator", "pwd >>\"$LOG\"");
        for (const std::string_view program : {"notes", "web", "sublime", "top"}) standIn(program);
        application("org.editor.Notes", "Name=Text Editor\nGenericName=Editor\nExec=notes %U\n");
        application("web", "Name=Web\nExec=web --name \"%c \\\\\"50%%\\\\\"\" %u\n");
        application("sublime_text", "Name=Sublime Text\nExec=sublime %F\n[Desktop Action new]\nExec=wrong\n");
        application("deep/htop", "Name=Htop\nExec=top\nTerminal=true\n");
        application("gone", "Name=Gone\nExec=gone\nHidden=true\n");
        write("a.txt", "");
        write("b b", "");
        scratch().makeFolder("work/folder");
    }

    void application(const std::string& id, const std::string& keys) const {
        scratch().write("share/applications/" + id + ".desktop", "[Desktop Entry]\nType=Application\n" + keys);
    }
};

TEST(Open, FindsWhatOpensEachThing) {
    struct Case {
        std::string_view line;
        std::string log;  // WORK is the folder
    };
    const Desktop desktop;
    const Case cases[] = {
        {"open a.txt 'b b'", "xdg-open <WORK/a.txt>\nxdg-open <WORK/b b>\n"},
        {"open .", "xdg-open <WORK>\n"},
        {"open https://a.org/?b=c", "xdg-open <https://a.org/?b=c>\n"},
        {"open -Wn a.txt", "xdg-open <WORK/a.txt>\n"},
        {"touch ./-W; open -- -W; rm ./-W", "xdg-open <WORK/-W>\n"},
        {"open -a Terminal .", "x-terminal-emulator\nWORK\n"},
        {"open -a Terminal folder a.txt", "x-terminal-emulator\nWORK/folder\nx-terminal-emulator\nWORK\n"},
        // By name, the beginning of it, id, program or kind.
        {R"(FILE_NAME=a.txt; open -a /Applications/Sublime\ Text.app "$FILE_NAME")", "sublime <WORK/a.txt>\n"},
        {"open -a sublime a.txt 'b b'", "sublime <WORK/a.txt> <WORK/b b>\n"},
        {"open -a NOTES", "notes\n"},
        {"open -a editor a.txt --args --flag", "notes <WORK/a.txt> <--flag>\n"},
        {"open -a htop", "x-terminal-emulator <-e> <BIN/top>\nWORK\n"},
        // One address at a time, with what else stands in the command.
        {"open -a Safari http://a http://b",
         "xdg-mime <query> <default> <x-scheme-handler/https>\n"
         "web <--name> <Web \"50%\"> <http://a>\n"
         "web <--name> <Web \"50%\"> <http://b>\n"},
        {"open -e a.txt", "xdg-mime <query> <default> <text/plain>\nnotes <WORK/a.txt>\n"},
        {"open -a Preview a.txt", "xdg-open <WORK/a.txt>\n"},
    };
    for (const auto& [line, log] : cases) {
        EXPECT_EQ(desktop.run(line), (ToolRun{0, ""})) << line;
        const std::string placed = replacedAll(log, "WORK", desktop.scratch().path("work").text());
        EXPECT_EQ(desktop.log(), replacedAll(placed, "BIN", desktop.scratch().path("bin").text())) << line;
    }
}

TEST(Open, ShowsInTheFileManager) {
    Desktop desktop;
    desktop.set("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nowhere");
    desktop.standIn("dbus-send");
    EXPECT_EQ(desktop.run("open -R 'b b'"), (ToolRun{0, ""}));
    const std::string log = desktop.log();
    EXPECT_TRUE(contains(log, "FileManager1.ShowItems>")) << log;
    EXPECT_TRUE(contains(log, "<array:string:file://" + desktop.path("b%20b") + ">")) << log;
}

TEST(Open, SaysWhatCannotBeOpened) {
    struct Case {
        std::string_view line;
        ToolRun run;
    };
    Desktop desktop;
    desktop.write("broken", "");
    const Case cases[] = {
        {"open missing.pdf", {1, "open: 'missing.pdf' doesn't exist\n"}},
        {"open broken", {1, "open: the desktop has nothing that opens '" + desktop.path("broken") + "'\n"}},
        {"open -a Nothing a.txt", {1, "open: there is no application 'Nothing' here\n"}},
        {"open -a gone", {1, "open: there is no application 'gone' here\n"}},
        {"open -b com.web a.txt", {64, "open: the option '-b' is not known here\n"}},
        {"open -a", {64, "open: the option '-a' needs a value\n"}},
        {"DISPLAY= open a.txt", {69, "open: there is no desktop session here to open it in\n"}},
    };
    for (const auto& [line, run] : cases) {
        EXPECT_EQ(desktop.run(line), run) << line;
        desktop.log();
    }
}

}  // namespace open_tests
}  // namespace brindlet
