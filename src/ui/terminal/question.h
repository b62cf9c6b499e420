// Asks the person at the terminal one question that a single key answers.
//
//     if (!canAsk()) refuse();
//     if (ask("[Enter/y] runs, [n/Escape] stops ", interruption) == Answer::yes) run();
#pragma once

#include <cstddef>
#include <optional>
#include <string_view>

#include "ui/terminal/interruption.h"

namespace brindlet {

enum class Answer { yes, no };

// Whether somebody can read a question and answer it: standard input and one of the other two are terminals.
bool canAsk();

// Shows the question on standard error, or on standard output where only that is a terminal, and waits for a key: Enter
// or "y" say yes; "n", "q", Escape, Ctrl-C, Ctrl-D, a closed terminal and an interruption say no; other keys are passed
// over. The terminal is put back as it was, whatever happens.
Answer ask(std::string_view question, const Interruption& interruption);

// The same for a choice: a digit from 1 to `most`, which is at most 9. None: what says no to `ask`.
std::optional<std::size_t> askNumber(std::string_view question, std::size_t most, const Interruption& interruption);

}  // namespace brindlet
