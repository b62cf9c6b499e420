#include "analysis/models/command_table.h"

#include <algorithm>
#include <iterator>

#include "analysis/models/archives.h"
#include "analysis/models/bash_command.h"
#include "analysis/models/command_carriers.h"
#include "analysis/models/documents.h"
#include "analysis/models/ffmpeg.h"
#include "analysis/models/file_commands.h"
#include "analysis/models/fiotraf.h"
#include "analysis/models/image_tools.h"
#include "analysis/models/network_commands.h"
#include "analysis/models/simple_commands.h"
#include "analysis/models/system_commands.h"
#include "analysis/models/test_command.h"
#include "analysis/models/text_filters.h"
#include "analysis/models/text_output.h"

namespace brindlet {

namespace {

// Sorted by name, which is asserted. A row is `onlyReads` where no word can make the command do more than read and
// print: `sort` may write (-o), `man` may run a pager, `hostname` may set the name.
constexpr CommandRow commandRows[] = {
    {"[", testInBrackets, Reach::onlyReads},
    {"[[", testInDoubleBrackets, Reach::onlyReads},
    {"apropos", runOnInput, Reach::onlyReads},
    {"awk", processFields, Reach::mayChange, onlyPrintsFields},
    {"basename", runOnInput, Reach::onlyReads},
    {"bash", runShell},
    {"bc", calculate, Reach::onlyReads},
    {"break", refuseBreak},
    {"brew", managePackages},
    {"brindlet_animated_gif", makeAnimatedGif},
    {"caffeinate", keepAwake},
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
    {"compare", runUnderMagick},
    {"composite", runUnderMagick},
    {"convert", runUnderMagick},
    {"cp", copyFiles},
    {"curl", transferUrls},
    {"cut", cutColumns, Reach::onlyReads},
    {"date", printDate},
    {"dc", calculateOnStack},
    {"defaults", changeDefaults},
    {"df", runOnRealFiles, Reach::onlyReads},
    {"diff", compareFiles, Reach::onlyReads},
    {"dirname", runOnInput, Reach::onlyReads},
    {"dsmemberutil", runOnInput, Reach::onlyReads},
    {"du", runOnRealFiles, Reach::onlyReads},
    {"echo", echoWords, Reach::onlyReads},
    {"ed", refuseEditor},
    {"emacs", refuseEditor},
    {"expand", printSomething, Reach::onlyReads},
    {"false", fail, Reach::onlyReads},
    {"ffmpeg", convertMedia},
    {"ffprobe", probeMedia},
    {"file", guessFileType},
    {"find", findFiles, Reach::mayChange, onlyFinds},
    {"finderSelect", succeed, Reach::onlyReads},
    {"fiotraf", tidyFolder},
    {"fmt", printSomething, Reach::onlyReads},
    {"fold", printSomething, Reach::onlyReads},
    {"fs_usage", refuseFsUsage},
    {"gifsicle", gifsicle},
    {"grep", searchText, Reach::onlyReads},
    {"groups", runOnInput, Reach::onlyReads},
    {"gs", renderWithGhostscript},
    {"gunzip", decompressFiles},
    {"gzip", compressFiles},
    {"halt", refuseRootCommand},
    {"head", showEnd, Reach::onlyReads},
    {"history", showHistory},
    {"host", askNetwork},
    {"hostname", runOnInput},
    {"iconutil", iconutil},
    {"id", runOnInput, Reach::onlyReads},
    {"identify", runUnderMagick},
    {"join", printSomething, Reach::onlyReads},
    {"jq", queryJson, Reach::onlyReads},
    {"kill", killProcesses},
    {"killall", killProcesses},
    {"klist", saySomething, Reach::onlyReads},
    {"last", saySomething, Reach::onlyReads},
    {"ln", linkFiles},
    {"logname", runOnInput, Reach::onlyReads},
    {"look", printSomething, Reach::onlyReads},
    {"lp", printDocuments},
    {"ls", listFiles, Reach::onlyReads},
    {"magick", magick},
    {"man", runOnInput},
    {"mdfind", searchIndex, Reach::onlyReads},
    {"mdls", showMetadata, Reach::onlyReads},
    {"mkdir", makeFolders},
    {"mogrify", runUnderMagick},
    {"montage", runUnderMagick},
    {"mv", moveFiles},
    {"nano", refuseEditor},
    {"nl", printSomething, Reach::onlyReads},
    {"open", openItem},
    {"osascript", runAppleScript},
    {"pandoc", convertMarkup},
    {"pathchk", runOnInput, Reach::onlyReads},
    {"pbcopy", copyToClipboard},
    {"pbpaste", pasteFromClipboard, Reach::onlyReads},
    {"pdfimages", extractPdfImages},
    {"pdfinfo", showPdfInfo, Reach::onlyReads},
    {"pdftohtml", convertPdfToHtml},
    {"pdftotext", extractPdfText},
    {"pgrep", findProcesses, Reach::onlyReads},
    {"pico", refuseEditor},
    {"ping", pingHost},
    {"pkill", killMatching},
    {"pmset", managePower},
    {"presentFiles", succeed, Reach::onlyReads},
    {"printenv", runOnInput, Reach::onlyReads},
    {"printf", printFormatted, Reach::onlyReads},
    {"ps", runOnInput, Reach::onlyReads},
    {"pwd", printCurrentFolder, Reach::onlyReads},
    {"qpdf", rewritePdf},
    {"quota", runOnInput, Reach::onlyReads},
    {"read", readVariables},
    {"readlink", showFileDetails, Reach::onlyReads},
    {"realpath", runOnRealFiles, Reach::onlyReads},
    {"reboot", refuseRootCommand},
    {"rev", printSomething, Reach::onlyReads},
    {"rm", removeFiles},
    {"rmdir", removeFolders},
    {"sed", editStream, Reach::mayChange, onlyPrintsEdited},
    {"seq", runOnInput, Reach::onlyReads},
    {"shutdown", refuseRootCommand},
    {"sips", sips},
    {"sort", sortLines},
    {"stat", showFileDetails, Reach::onlyReads},
    {"su", refuseBanned},
    {"sudo", refuseBanned},
    {"sum", printSomething, Reach::onlyReads},
    {"sw_vers", runOnInput, Reach::onlyReads},
    {"sysctl", kernelSettings},
    {"system_profiler", profileSystem},
    {"tabs", saySomething},
    {"tail", showEnd, Reach::onlyReads},
    {"tar", archiveWithTar},
    {"test", testCondition, Reach::onlyReads},
    {"textutil", convertText},
    {"times", runOnInput, Reach::onlyReads},
    {"touch", touchFiles},
    {"tr", runOnInput, Reach::onlyReads},
    {"trash", trashFiles},
    {"true", succeed, Reach::onlyReads},
    {"type", saySomething, Reach::onlyReads},
    {"uname", runOnInput, Reach::onlyReads},
    {"unexpand", printSomething, Reach::onlyReads},
    {"uniq", uniqueLines},
    {"unlink", removeFiles},
    {"unzip", unzipFiles},
    {"uptime", runOnInput, Reach::onlyReads},
    {"users", runOnInput, Reach::onlyReads},
    {"uuidgen", runOnInput, Reach::onlyReads},
    {"vi", refuseEditor},
    {"vim", refuseEditor},
    {"w", runOnInput, Reach::onlyReads},
    {"wc", countWords, Reach::onlyReads},
    {"wget", download},
    {"whatis", runOnInput, Reach::onlyReads},
    {"which", runOnInput, Reach::onlyReads},
    {"whoami", runOnInput, Reach::onlyReads},
    {"xargs", runOnInputWords},
    {"xattr", extendedAttributes},
    {"zip", zipFiles},
    {"zipinfo", describeZip, Reach::onlyReads},
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
