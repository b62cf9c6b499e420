// lp prints files: by the printing system, where it is installed. Its own lp is found on the path before this one,
// which is here to say what is missing.
//
// Exit codes: that of the real one, 69 it is missing.
#include "shared/tool.h"

namespace brindlet::tools {

namespace {

int print(const std::vector<std::string>& words) {
    std::vector<std::string> line{neededProgram("lp", "cups-client")};
    line.insert(line.end(), words.begin(), words.end());
    return run(line);
}

}  // namespace

}  // namespace brindlet::tools

int main(int count, char** words) {
    return brindlet::tools::toolMain("lp", count, words, brindlet::tools::print);
}
