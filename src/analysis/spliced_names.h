// The names of the selected files go into the text of a command: "${SPACE_SEPARATED_FILE_NAMES}" is replaced by the
// quoted names before a shell reads it. Inside quotes of the command's own, their quotes close those, and a name is
// read as code.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "shell/syntax_tree.h"

namespace brindlet {

// One sentence if the reference stands inside quotes and the names hold more than plain characters; else none.
std::optional<std::string> splicedNamesHazard(const BashStatementList& list, std::string_view quotedNames);

}  // namespace brindlet
