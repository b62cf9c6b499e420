#include <algorithm>
#include <iterator>

#include "exec/command_runner.h"
#include "exec/file_presenting.h"
#include "text/strings.h"

namespace brindlet {

namespace {

// What double quotes don't keep as it is. Both the names of files and the user's own PATH may hold any of it: a folder
// called "$(reboot)" must stay the name of a folder. Texts without it come out unchanged.
struct EscapeRow {
    char character;
    std::string_view text;
};
constexpr EscapeRow escapes[] = {
    {'"', "\\\""},
    {'\\', "\\\\"},
    {'$', "\\$"},
    {'`', "\\`"},
    // bash marks quoted characters with these two for itself, and in "NAME=(...)" leaves its marks in the value (seen
    // in bash 5.2.15). Outside of the double quotes they come through.
    {'\001', "\"$'\\001'\""},
    {'\177', "\"$'\\177'\""},
};

std::string inDoubleQuotes(std::string_view text) {
    std::string quoted = "\"";
    for (const char character : text) {
        const auto* row = std::find_if(std::begin(escapes), std::end(escapes),
                                       [character](const EscapeRow& each) { return each.character == character; });
        if (row == std::end(escapes)) {
            quoted += character;
        } else {
            quoted += row->text;
        }
    }
    return quoted + '"';
}

std::string namesForScript(const std::vector<FilePath>& files, const FilePath& workingDirectory) {
    std::vector<std::string> names;
    names.reserve(files.size());
    for (const FilePath& file : files) names.push_back(inDoubleQuotes(relativePath(file, workingDirectory)));
    return joined(names, " ");
}

}  // namespace

std::string CommandRunner::script(std::string_view command, const std::string& searchPath,
                                  const Environment& environment, const std::vector<FilePath>& files,
                                  const FilePath& workingDirectory) {
    const auto value = environment.find("SPACE_SEPARATED_FILE_NAMES");
    const bool hasNames = value != environment.end() && !value->second.empty();
    const std::string names = hasNames ? namesForScript(files, workingDirectory) : "";

    std::string text = "PATH=" + inDoubleQuotes(searchPath) + "; ";
    if (hasNames) text += "SPACE_SEPARATED_FILE_NAMES=(" + names + "); ";
    text += replacedAll(withoutPipelineEnd(command), "${SPACE_SEPARATED_FILE_NAMES}", names);
    return text + " 2>&1";
}

}  // namespace brindlet
