#include "analysis/models/command_table.h"

#include <algorithm>
#include <iterator>

#include "analysis/models/file_commands.h"
#include "analysis/models/simple_commands.h"
#include "analysis/models/test_command.h"
#include "analysis/models/text_output.h"

namespace brindlet {

namespace {

// Sorted by name, which is asserted. A row is `onlyReads` where no word can make the command do more than read and
// print: `sort` may write (-o), `man` may run a pager, `hostname` may set the name.
constexpr CommandRow commandRows[] = {
    {"[", testInBrackets, Reach::onlyReads},
    {"[[", testInDoubleBrackets, Reach::onlyReads},
    {"apropos", runOnInput, Reach::onlyReads},
    {"awk", notYetModelled},
    {"basename", runOnInput, Reach::onlyReads},
    {"bash", notYetModelled},
    {"bc", notYetModelled},
    {"break", refuseBreak},
    {"brew", notYetModelled},
    {"brindlet_animated_gif", notYetModelled},
    {"caffeinate", notYetModelled},
    {"cal", saySomething, Reach::onlyReads},
    {"cat", concatenate, Reach::onlyReads},
    {"cd", changeDirectory},
    {"chflags", changeMetadata},
    {"chmod", changeMetadata},
    {"chown", changeMetadata},
    {"cksum", printSomething, Reach::onlyReads},
    {"clear", saySomething},
    {"col", runOnInput, Reach::onlyReads},
    {"colrm", runOnInput, Reach::onlyReads},
    {"comm", printSomething, Reach::onlyReads},
    {"compare", notYetModelled},
    {"composite", notYetModelled},
    {"convert", notYetModelled},
    {"cp", copyFiles},
    {"curl", notYetModelled},
    {"cut", notYetModelled, Reach::onlyReads},
    {"date", notYetModelled},
    {"dc", printSomething},
    {"defaults", notYetModelled},
    {"df", runOnRealFiles, Reach::onlyReads},
    {"diff", notYetModelled, Reach::onlyReads},
    {"dirname", runOnInput, Reach::onlyReads},
    {"dsmemberutil", runOnInput, Reach::onlyReads},
    {"du", runOnRealFiles, Reach::onlyReads},
    {"echo", echoWords, Reach::onlyReads},
    {"ed", refuseEditor},
    {"emacs", refuseEditor},
    {"expand", printSomething, Reach::onlyReads},
    {"false", fail, Reach::onlyReads},
    {"ffmpeg", notYetModelled},
    {"ffprobe", notYetModelled, Reach::onlyReads},
    {"file", notYetModelled},
    {"find", notYetModelled},
    {"finderSelect", succeed, Reach::onlyReads},
    {"fiotraf", notYetModelled},
    {"fmt", printSomething, Reach::onlyReads},
    {"fold", printSomething, Reach::onlyReads},
    {"fs_usage", refuseFsUsage},
    {"gifsicle", notYetModelled},
    {"grep", notYetModelled, Reach::onlyReads},
    {"groups", runOnInput, Reach::onlyReads},
    {"gs", notYetModelled},
    {"gunzip", notYetModelled},
    {"gzip", notYetModelled},
    {"halt", refuseRootCommand},
    {"head", notYetModelled, Reach::onlyReads},
    {"history", saySomething},
    {"host", askNetwork},
    {"hostname", runOnInput},
    {"iconutil", notYetModelled},
    {"id", runOnInput, Reach::onlyReads},
    {"identify", notYetModelled},
    {"join", printSomething, Reach::onlyReads},
    {"jq", notYetModelled, Reach::onlyReads},
    {"kill", notYetModelled},
    {"killall", notYetModelled},
    {"klist", saySomething, Reach::onlyReads},
    {"last", saySomething, Reach::onlyReads},
    {"ln", linkFiles},
    {"logname", runOnInput, Reach::onlyReads},
    {"look", printSomething, Reach::onlyReads},
    {"lp", notYetModelled},
    {"ls", listFiles, Reach::onlyReads},
    {"magick", notYetModelled},
    {"man", runOnInput},
    {"mdfind", notYetModelled, Reach::onlyReads},
    {"mdls", notYetModelled, Reach::onlyReads},
    {"mkdir", makeFolders},
    {"mogrify", notYetModelled},
    {"montage", notYetModelled},
    {"mv", moveFiles},
    {"nano", refuseEditor},
    {"nl", printSomething, Reach::onlyReads},
    {"open", notYetModelled},
    {"osascript", notYetModelled},
    {"pandoc", notYetModelled},
    {"pathchk", runOnInput, Reach::onlyReads},
    {"pbcopy", notYetModelled},
    {"pbpaste", notYetModelled, Reach::onlyReads},
    {"pdfimages", notYetModelled},
    {"pdfinfo", notYetModelled, Reach::onlyReads},
    {"pdftohtml", notYetModelled},
    {"pdftotext", notYetModelled},
    {"pgrep", notYetModelled, Reach::onlyReads},
    {"pico", refuseEditor},
    {"ping", notYetModelled},
    {"pkill", notYetModelled},
    {"pmset", notYetModelled},
    {"presentFiles", succeed, Reach::onlyReads},
    {"printenv", runOnInput, Reach::onlyReads},
    {"printf", printFormatted, Reach::onlyReads},
    {"ps", runOnInput, Reach::onlyReads},
    {"pwd", printCurrentFolder, Reach::onlyReads},
    {"qpdf", notYetModelled},
    {"quota", runOnInput, Reach::onlyReads},
    {"read", notYetModelled},
    {"readlink", notYetModelled, Reach::onlyReads},
    {"realpath", runOnRealFiles, Reach::onlyReads},
    {"reboot", refuseRootCommand},
    {"rev", printSomething, Reach::onlyReads},
    {"rm", removeFiles},
    {"rmdir", removeFolders},
    {"sed", notYetModelled},
    {"seq", runOnInput, Reach::onlyReads},
    {"shutdown", refuseRootCommand},
    {"sips", notYetModelled},
    {"sort", notYetModelled},
    {"stat", notYetModelled, Reach::onlyReads},
    {"su", refuseBanned},
    {"sudo", refuseBanned},
    {"sum", printSomething, Reach::onlyReads},
    {"sw_vers", runOnInput, Reach::onlyReads},
    {"sysctl", notYetModelled},
    {"system_profiler", notYetModelled},
    {"tabs", saySomething},
    {"tail", notYetModelled, Reach::onlyReads},
    {"tar", notYetModelled},
    {"test", testCondition, Reach::onlyReads},
    {"textutil", notYetModelled},
    {"times", runOnInput, Reach::onlyReads},
    {"touch", touchFiles},
    {"tr", runOnInput, Reach::onlyReads},
    {"trash", trashFiles},
    {"true", succeed, Reach::onlyReads},
    {"type", saySomething, Reach::onlyReads},
    {"uname", runOnInput, Reach::onlyReads},
    {"unexpand", printSomething, Reach::onlyReads},
    {"uniq", notYetModelled},
    {"unlink", removeFiles},
    {"unzip", notYetModelled},
    {"uptime", runOnInput, Reach::onlyReads},
    {"users", runOnInput, Reach::onlyReads},
    {"uuidgen", runOnInput, Reach::onlyReads},
    {"vi", refuseEditor},
    {"vim", refuseEditor},
    {"w", runOnInput, Reach::onlyReads},
    {"wc", notYetModelled, Reach::onlyReads},
    {"wget", download},
    {"whatis", runOnInput, Reach::onlyReads},
    {"which", runOnInput, Reach::onlyReads},
    {"whoami", runOnInput, Reach::onlyReads},
    {"xargs", notYetModelled},
    {"xattr", extendedAttributes},
    {"zip", notYetModelled},
    {"zipinfo", notYetModelled, Reach::onlyReads},
};

static_assert(std::adjacent_find(std::begin(commandRows), std::end(commandRows), [](const auto& a, const auto& b) {
                  return a.name >= b.name;
              }) == std::end(commandRows));

struct BuiltInCommands final : CommandTable {
    const CommandRow* find(std::string_view name) const override {
        const auto isBefore = [](const CommandRow& row, std::string_view wanted) { return row.name < wanted; };
        const auto row = std::lower_bound(std::begin(commandRows), std::end(commandRows), name, isBefore);
        return row != std::end(commandRows) && row->name == name ? row : nullptr;
    }
};

}  // namespace

const CommandTable& builtInCommands() {
    static const BuiltInCommands commands;
    return commands;
}

}  // namespace brindlet
