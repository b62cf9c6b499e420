// trash moves files and folders to the desktop's trash.
//
// Exit codes: 0 all moved, 1 something couldn't be moved, 64 wrong usage.
#include <cstdio>

#include "shared/command_line.h"
#include "shared/tool.h"
#include "trash_can.h"

namespace brindlet::tools {

namespace {

constexpr OptionRow trashOptions[] = {{"-s"}, {"-stopOnError"}, {"--stopOnError"}, {"-v"},
                                      {"-h"}, {"-help"},        {"--help"}};

constexpr std::string_view trashHelp =
    "Usage: trash [-s] [-v] FILE...\n\n"
    "Moves files and folders to the trash, from where the file manager can put them back.\n\n"
    "  -s, -stopOnError  stop at the first that can't be moved\n"
    "  -v                tell what was moved\n"
    "  -h, --help        this text\n";

int trash(const std::vector<std::string>& words) {
    const CommandLine line = readCommandLine(words, trashOptions);
    if (line.has("-h") || line.has("-help") || line.has("--help")) {
        std::fwrite(trashHelp.data(), 1, trashHelp.size(), stdout);
        return 0;
    }
    if (line.operands.empty()) throw ToolFailure{"which files? (see trash --help)", statusWrongUsage};
    const bool stops = line.has("-s") || line.has("-stopOnError") || line.has("--stopOnError");
    int status = 0;
    for (const std::string& item : line.operands) {
        try {
            moveToTrash(item);
            if (line.has("-v")) std::printf("%s -> trash\n", item.c_str());
        } catch (const ToolFailure& failure) {
            if (stops) throw;
            complain("trash", failure.sentence);
            status = failure.status;
        }
    }
    return status;
}

}  // namespace

}  // namespace brindlet::tools

int main(int count, char** words) {
    return brindlet::tools::toolMain("trash", count, words, brindlet::tools::trash);
}
