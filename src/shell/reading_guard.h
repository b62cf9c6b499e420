// Where a real shell would read the printed text otherwise than the tree says: texts that the parser takes as plain
// and on which a shell acts. A line with such a place must not be trusted to the simulation.
//
//     readingHazard(Basher("echo \"`date`\"").parse())  // the shell would run `date`
#pragma once

#include <optional>
#include <string>

#include "shell/syntax_tree.h"

namespace brindlet {

// One sentence that names the text and says what a shell would do with it, or none where the shell reads the tree.
// What is looked for: an unquoted line break inside a word; a backtick inside double quotes; a "$(" or backtick inside
// the raw text of a ${...} or of an arithmetic text; characters inside braces that end a word for a shell; commands
// side by side that a shell would read as one.
std::optional<std::string> readingHazard(const BashStatementList& list);

}  // namespace brindlet
