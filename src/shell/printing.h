// A tree as text again: what is printed is what runs, so a real shell reads it as the tree that was simulated.
//
//     print(Basher("a|b").parse()) == "a | b"
#pragma once

#include <string>

#include "shell/syntax_tree.h"

namespace brindlet {

std::string print(const BashStatementList& list);
std::string print(const BashStatement& statement);
std::string print(const BashPipeline& pipeline);
std::string print(const BashCommand& command);
std::string print(const BashRedirect& redirect);
std::string print(const BashWord& word);
std::string print(const BashWordElement& element);
std::string print(const ParameterOperation& operation);

}  // namespace brindlet
