// The vocabulary of the simulation: every command that is predicted by more than its name.
//
//     const CommandRow* row = builtInCommands().find("mv");
//
// To teach it a command, write its model and add a row.
#pragma once

#include "analysis/command_table.h"

namespace brindlet {

// Made once; may be asked from any thread.
const CommandTable& builtInCommands();

}  // namespace brindlet
