// Tools of a desktop session, and what a file carries beside its content.
#include <gtest/gtest.h>

#include "tools/tool_bench.h"

namespace brindlet {

namespace session_tests {

struct Case {
    std::string_view line;
    ToolRun run;
    std::string_view log = "";
};

void expectAll(const ToolBench& bench, const std::vector<Case>& cases) {
    for (const auto& [line, run, log] : cases) {
        EXPECT_EQ(bench.run(line), run) << line;
        EXPECT_EQ(bench.log(), log) << line;
    }
}

TEST(Clipboard, ByWhicheverProgramTheSessionHas) {
    const ToolBench bench;
    // Like the real ones they stay in the background; a pipe that they kept would not end.
    constexpr std::string_view copies = "cat >~/clip; (exec -a held sleep 9) & disown";
    constexpr std::string_view pastes = "[ -s ~/clip ] && cat ~/clip";
    bench.standIn("wl-copy", copies);
    bench.standIn("wl-paste", pastes);
    bench.standIn("xclip",
                  "case \" $* \" in *' -out '*) " + std::string(pastes) + " ;; *) " + std::string(copies) + " ;; esac");
    expectAll(
        bench,
        {
            {"DISPLAY=:7 pbpaste",
             {0, ""},
             "xclip <-selection> <clipboard> <-target> <UTF8_STRING> <-out>\nxclip <-selection> <clipboard> <-out>\n"},
            {"export DISPLAY=:7; printf 'ü\\n\\n' | pbcopy; pbpaste",
             {0, "ü\n\n"},
             "xclip <-selection> <clipboard> <-in>\nxclip <-selection> <clipboard> <-target> <UTF8_STRING> <-out>\n"},
            {"export WAYLAND_DISPLAY=w; printf b | pbcopy -pboard general; pbpaste -Prefer txt",
             {0, "b"},
             "wl-copy\nwl-paste <--no-newline> <--type> <text>\n"},
            {"pbcopy </dev/null", {69, "pbcopy: there is no desktop session here, and so no clipboard\n"}},
            {"DISPLAY=:7 pbcopy file", {64, "pbcopy: it takes no arguments, only what is piped into it\n"}},
        });
}

TEST(StayingAwake, ForACommandATimeOrAProcess) {
    const ToolBench bench;
    bench.standIn("sleep");
    bench.standIn("systemd-inhibit", "while [[ $1 == --* ]]; do shift; done; exec \"$@\"");
    const std::string probe = "systemd-inhibit <--what=idle:sleep> <--mode=block> <true>\n";
    const std::string held =
        probe + "systemd-inhibit <--what=idle:sleep> <--who=caffeinate> <--why=Kept awake> <--mode=block> ";
    expectAll(bench, {
                         {"caffeinate -u -t 3600 & wait", {0, ""}, held + "<sleep> <3600>\nsleep <3600>\n"},
                         {"echo in | caffeinate -dims cat -; caffeinate -i -- sh -c 'exit 3'",
                          {3, "in\n"},
                          held + "<cat> <->\n" + held + "<sh> <-c> <exit 3>\n"},
                         {"true & caffeinate -w $!; rm $LOG", {0, ""}, ""},
                         {"caffeinate -t soon", {64, "caffeinate: -t takes a number of seconds, not 'soon'\n"}},
                         {"caffeinate -z", {64, "caffeinate: the option '-z' is not known here, or lacks its value\n"}},
                     });
}

TEST(Scripts, NotificationsAndVolume) {
    const ToolBench bench;
    bench.standIn("notify-send");
    bench.standIn("wpctl");
    expectAll(bench,
              {
                  {R"(osascript -e 'display notification "a \"b\" <c>" with title "T" sound name "Glass"')",
                   {0, ""},
                   "notify-send <--> <T> <a \"b\" &lt;c&gt;>\n"},
                  {R"(osascript -e 'display notification "-x" subtitle "S"')", {0, ""}, "notify-send <--> <S\n-x>\n"},
                  {"osascript -e 'set volume output volume 35' -e 'Set Volume with output muted'",
                   {0, ""},
                   "wpctl <set-volume> <@DEFAULT_AUDIO_SINK@> <35%>\nwpctl <set-mute> <@DEFAULT_AUDIO_SINK@> <1>\n"},
                  {"osascript -e 'set volume 7'", {0, ""}, "wpctl <set-volume> <@DEFAULT_AUDIO_SINK@> <100%>\n"},
                  // Nothing is done by halves.
                  {"osascript -e 'set volume 7\nsay \"x\"'",
                   {69, "osascript: 'say' can't be done here; use 'spd-say TEXT'\n"}},
                  {"osascript -e 'set volume output volume 101'", {64, "osascript: a volume is a plain number here\n"}},
                  {"osascript -e 'display notification \"a'",
                   {69,
                    "osascript: of such scripts only 'display notification' and "
                    "'set volume' can be run here\n"}},
                  {"osascript x.scpt",
                   {69,
                    "osascript: script files and other languages can't be run here, only 'display "
                    "notification' and 'set volume' behind -e\n"}},
                  {"defaults read com.apple.dock >/dev/null 2>&1", {69, ""}},
              });
}

TEST(Printing, IsLeftToTheRealOne) {
    ToolBench bench;
    bench.set("TOOLS", BRINDLET_BINARIES);
    bench.standIn("lp");
    expectAll(bench, {
                         {"PATH=$TOOLS:$PATH; lp -n 2 'a b'", {0, ""}, "lp <-n> <2> <a b>\n"},
                         {"PATH=$TOOLS; lp a", {69, "lp: lp is missing; the Debian package cups-client has it\n"}},
                     });
}

TEST(HiddenFiles, StandInTheListOfTheirFolder) {
    const ToolBench bench;
    const std::string other = "other\n";
    bench.write("sub/-a b", "");
    bench.write("sub/.hidden", other);
    bench.write("c.txt", "");
    expectAll(bench,
              {
                  {"FILE_NAME='sub/-a b'; chflags hidden \"$FILE_NAME\" && chflags hidden \"$FILE_NAME\" c.txt sub/ && "
                   "cat .hidden sub/.hidden",
                   {0, "c.txt\nsub\nother\n-a b\n"}},
                  {"cd sub; chflags nohidden '-a b' && cat .hidden", {0, other}},
                  {"chflags nohidden sub c.txt; [ ! -e .hidden ]", {0, ""}},
                  {"chflags hidden gone c.txt; cat .hidden", {0, "chflags: gone: No such file or directory\nc.txt\n"}},
                  {"chflags -f hidden gone", {0, ""}},
                  {"touch .x; chflags hidden .x; chflags nohidden .x",
                   {1, "chflags: '.x' is hidden by the dot in its name; rename it\n"}},
                  {"touch $'x\\ny'; chflags hidden $'x\\ny'",
                   {1, "chflags: 'x\\x0ay' can't be hidden: its name has more than one line\n"}},
                  {"chflags uchg c.txt 2>/dev/null", {64, ""}},
                  {"chflags -R hidden sub", {64, "chflags: the option '-R' is not known here\n"}},
              });
}

TEST(Attributes, JudgedByGetfattr) {
    const ToolBench bench;
    bench.write("a", "");
    bench.write("-b", "");
    bench.write("folder/c", "");
    if (!bench.has("getfattr")) GTEST_SKIP() << "getfattr is missing";
    if (bench.run("setfattr -n user.x -v y a && setfattr -x user.x a").status != 0)
        GTEST_SKIP() << "the disk of the temporary folder keeps no attributes";
    expectAll(
        bench,
        {
            {"xattr -w note 'two words' a && getfattr --only-values -n user.note a", {0, "two words"}},
            {"xattr -w -- user.note v -b; getfattr --only-values -n user.note -- -b", {0, "v"}},
            {"setfattr -n user.raw -v 0x00ff41 a; xattr a; xattr -l a",
             {0, "note\nraw\nnote: two words\nraw:\n00 FF 41\n"}},
            {"xattr -p note a; xattr -px note ./-b; xattr -wx hex '41 42' a; xattr -lp hex a",
             {0, "two words\n76\nhex: AB\n"}},
            {"xattr -l a ./-b | tail -n 1", {0, "./-b: note: v\n"}},
            {"xattr -d gone a", {1, "xattr: a: No such xattr: gone\n"}},
            {"xattr -d hex a; xattr -c a; getfattr a", {0, ""}},
            {"xattr -w q 1 folder folder/c; xattr -w p 1 folder; xattr -dr q folder; xattr -dr p folder; getfattr -R "
             "folder",
             {0, ""}},
            {"xattr -l gone", {1, "xattr: gone: No such file or directory\n"}},
            {"xattr -w name a", {64, "xattr: something is missing in that command (see xattr --help)\n"}},
        });
}

}  // namespace session_tests
}  // namespace brindlet
