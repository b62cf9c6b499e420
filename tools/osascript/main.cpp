// osascript runs the two kinds of script that have a meaning here: it shows a notification, or sets the volume.
//
//     osascript -e 'display notification "Done" with title "Copy"'
//     osascript -e 'set volume output volume 50'
//
// Exit codes: 0 done, 64 wrong usage, 69 no other script can be run here, or a program is missing.
#include <algorithm>
#include <array>

#include <fmt/format.h>

#include "shared/command_line.h"
#include "shared/tool.h"
#include "statement.h"
#include "text/strings.h"

namespace brindlet::tools {

namespace {

constexpr OptionRow scriptOptions[] = {{"-e", true}, {"-l", true}, {"-s", true}};

// Who sets the volume, the first that is installed.
struct Mixer {
    std::string_view program;
    std::array<std::string_view, 2> beforeVolume;
    std::array<std::string_view, 2> beforeMute;
    std::string_view muted, heard;
};
constexpr Mixer mixers[] = {
    {"wpctl", {"set-volume", "@DEFAULT_AUDIO_SINK@"}, {"set-mute", "@DEFAULT_AUDIO_SINK@"}, "1", "0"},
    {"pactl", {"set-sink-volume", "@DEFAULT_SINK@"}, {"set-sink-mute", "@DEFAULT_SINK@"}, "1", "0"},
    {"amixer", {"sset", "Master"}, {"sset", "Master"}, "mute", "unmute"},
};

int askMixer(const std::string& program, const std::array<std::string_view, 2>& before, const std::string& value) {
    // What it prints on success is of no use to anybody.
    const Captured asked = capture({program, std::string(before[0]), std::string(before[1]), value});
    if (asked.status != 0) throw ToolFailure{"the volume can't be set: " + std::string(trimmed(asked.errors))};
    return 0;
}

int carryOut(const VolumeChange& change) {
    const auto* mixer = std::find_if(std::begin(mixers), std::end(mixers),
                                     [](const Mixer& each) { return programPath(each.program).has_value(); });
    if (mixer == std::end(mixers)) neededProgram("amixer", "alsa-utils");
    const std::string program = *programPath(mixer->program);
    if (change.percent) askMixer(program, mixer->beforeVolume, fmt::format("{}%", *change.percent));
    if (change.isMuted)
        askMixer(program, mixer->beforeMute, std::string(*change.isMuted ? mixer->muted : mixer->heard));
    return 0;
}

// The body of a notification is a kind of HTML (desktop notifications of freedesktop.org, 1.2).
std::string markedUp(std::string_view text) {
    return replacedAll(replacedAll(replacedAll(text, "&", "&amp;"), "<", "&lt;"), ">", "&gt;");
}

int carryOut(const Notification& notification) {
    const std::string body = notification.subtitle.empty() || notification.text.empty()
                                 ? notification.subtitle + notification.text
                                 : notification.subtitle + '\n' + notification.text;
    const std::string program = neededProgram("notify-send", "libnotify-bin");
    // Without a title the text is what has to be seen.
    if (notification.title.empty()) return run({program, "--", body});
    return run({program, "--", notification.title, markedUp(body)});
}

int runScript(const std::vector<std::string>& words) {
    const CommandLine line = readCommandLine(words, scriptOptions, Operands::endOptions);
    const auto language = line.value("-l");
    if (!line.has("-e") || (language && *language != "AppleScript"))
        throw ToolFailure{
            "script files and other languages can't be run here, only 'display notification' and "
            "'set volume' behind -e",
            statusMissingEngine};
    // All are read before the first is carried out.
    std::vector<Statement> statements;
    for (const std::string& script : line.values("-e"))
        for (const std::string& each : split(script, "\n"))
            if (!trimmed(each).empty()) statements.push_back(readStatement(trimmed(each)));
    int status = 0;
    for (const Statement& statement : statements)
        status = std::max(status, std::visit([](const auto& each) { return carryOut(each); }, statement));
    return status;
}

}  // namespace

}  // namespace brindlet::tools

int main(int count, char** words) {
    return brindlet::tools::toolMain("osascript", count, words, brindlet::tools::runScript);
}
