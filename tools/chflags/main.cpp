// chflags hides files from the file manager, and shows them again: their names stand in a file ".hidden" of their
// folder, which the desktop's file managers read (GIO 2.74, gfileinfo.h, standard::is-hidden).
//
//     chflags hidden notes.txt
//
// Exit codes: 0 done, 1 something couldn't be, 64 wrong usage.
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>

#include <fmt/format.h>

#include "shared/command_line.h"
#include "shared/tool.h"
#include "text/strings.h"

namespace brindlet::tools {

namespace {

namespace fs = std::filesystem;

constexpr std::string_view listName = ".hidden";
constexpr OptionRow flagOptions[] = {{"-f"}, {"-h"}, {"-v"}};

struct FlagRow {
    std::string_view name;
    bool hides;
};
constexpr FlagRow flagRows[] = {{"hidden", true}, {"nohidden", false}};

bool hidesBy(const std::string& flag) {
    for (const FlagRow& row : flagRows)
        if (row.name == flag) return row.hides;
    throw ToolFailure{
        "the flag '" + flag + "' has no meaning here; hidden and nohidden have ('chmod a-w' keeps a file from changes)",
        statusWrongUsage};
}

std::vector<std::string> namesIn(const fs::path& list) {
    std::error_code error;
    if (fs::exists(fs::symlink_status(list, error)) && !fs::is_regular_file(list, error))
        throw ToolFailure{"'" + list.string() + "' is no file"};
    std::ifstream stream(list, std::ios::binary);
    return splitNonEmpty(std::string(std::istreambuf_iterator<char>(stream), {}), "\n");
}

void writeNames(const fs::path& list, const std::vector<std::string>& names) {
    std::error_code error;
    if (names.empty()) {
        fs::remove(list, error);
        if (error) throw ToolFailure{"'" + list.string() + "' can't be removed: " + error.message()};
        return;
    }
    Output output(list);
    std::ofstream(output.path(), std::ios::binary) << joined(names, "\n") << '\n';
    output.keep();
}

// The item's own folder and name, also where it is given as "." or with a slash behind it.
fs::path placeOf(const std::string& item) {
    std::string text = item;
    while (text.size() > 1 && text.back() == '/') text.pop_back();
    const fs::path path = text, name = path.filename();
    if (name.empty() || name == "." || name == "..") return fs::canonical(path);
    return fs::canonical(path.has_parent_path() ? path.parent_path() : ".") / name;
}

void setHidden(const std::string& item, bool hides) {
    std::error_code error;
    if (!fs::exists(fs::symlink_status(item, error)))
        throw ToolFailure{item + ": " + std::strerror(error ? error.value() : ENOENT)};
    const fs::path place = placeOf(item);
    const std::string name = place.filename().string();
    if (name.starts_with('.')) {
        if (hides) return;
        throw ToolFailure{"'" + item + "' is hidden by the dot in its name; rename it"};
    }
    if (contains(name, "\n")) throw ToolFailure{"'" + item + "' can't be hidden: its name has more than one line"};
    const fs::path list = place.parent_path() / listName;
    std::vector<std::string> names = namesIn(list);
    const std::size_t erased = std::erase(names, name);
    if (hides) names.push_back(name);
    if (hides ? erased == 0 : erased > 0) writeNames(list, names);
}

int changeFlags(const std::vector<std::string>& words) {
    const CommandLine line = readCommandLine(words, flagOptions, Operands::endOptions);
    if (line.operands.size() < 2) throw ToolFailure{"chflags takes hidden or nohidden, and files", statusWrongUsage};
    const bool hides = hidesBy(line.operands.front());
    int status = 0;
    for (std::size_t at = 1; at < line.operands.size(); ++at) {
        try {
            setHidden(line.operands[at], hides);
        } catch (const ToolFailure& failure) {
            if (line.has("-f")) continue;
            complain("chflags", failure.sentence);
            status = failure.status;
        }
    }
    return status;
}

}  // namespace

}  // namespace brindlet::tools

int main(int count, char** words) {
    return brindlet::tools::toolMain("chflags", count, words, brindlet::tools::changeFlags);
}
