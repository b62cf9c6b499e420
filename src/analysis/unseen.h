// The parts of a line that the simulation passes over and a shell might still run.
#pragma once

#include <cstddef>
#include <string>

#include "analysis/command_table.h"
#include "shell/syntax_tree.h"

namespace brindlet {

// Whether anything in it could do more than read and print, going by the names of the commands alone.
bool mayChangeSomething(const BashStatementList& list, const CommandTable& commands);
bool mayChangeSomething(const BashStatement& statement, std::size_t fromPart, const CommandTable& commands);

// The parts of a statement from `fromPart` on, as printed.
std::string printedFrom(const BashStatement& statement, std::size_t fromPart);

}  // namespace brindlet
