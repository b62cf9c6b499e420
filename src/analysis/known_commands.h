// Commands that the simulation knows by name alone: it has no model of them, but can say why it can't foretell them.
//
//     analysis.addSideEffect(sideEffectOfUnmodelled("git"));  // complexCommand: "'git' command is complex, ..."
#pragma once

#include <string_view>

#include "analysis/side_effect.h"

namespace brindlet {

// Interpreters, build tools, package managers, clients of servers: what they do lies in other files or machines.
bool isComplexCommand(std::string_view name);
// Commands for which a model is planned.
bool isCommandToCome(std::string_view name);

// Commands that a shell carries out itself and that have no row: they run others, or change what the rest of the line
// means.
bool isPartOfTheShell(std::string_view name);

// What to tell the user of an installed command that has no model.
SideEffect sideEffectOfUnmodelled(std::string_view name);

}  // namespace brindlet
