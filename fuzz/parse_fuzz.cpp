// Any text: it is refused, or it prints to text that reads back whole, as the same tree, and prints the same again.
// (Not where a shell reads otherwise: such a print never runs, and "a &;\nb" has a line break at which it could end.)
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "shell/basher.h"
#include "shell/printing.h"
#include "shell/reading_guard.h"

namespace {

void require(bool holds, const char* what, const std::string& printed) {
    if (holds) return;
    std::fprintf(stderr, "%s: %s\n", what, printed.c_str());
    std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace brindlet;
    Basher basher(std::string(reinterpret_cast<const char*>(data), size));
    BashStatementList tree;
    try {
        tree = basher.parse();
    } catch (const BasherError&) {
        return 0;
    }
    require(!tree.statements.empty(), "an empty tree", "");
    const std::string printed = print(tree);
    if (readingHazard(tree)) return 0;
    Basher again(printed);
    try {
        const BashStatementList second = again.parse();
        require(again.unparsedRemainder().empty(), "a remainder", printed);
        require(print(second) == printed, "another print", printed);
        require(second == tree, "another tree", printed);
    } catch (const BasherError& error) {
        require(false, error.what(), printed);
    }
    return 0;
}
