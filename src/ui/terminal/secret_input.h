// Reads a secret, such as the key to a service, from standard input: never from an argument, which other programs see.
//
//     const auto key = readSecret("Key for OpenAI: ", interruption);
//     if (!key) return exitCancelled;
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "ui/terminal/interruption.h"

namespace brindlet {

// At a terminal one line that isn't shown while it is typed, with the question in front of it; elsewhere all there is.
// Trimmed; empty where there is nothing but blanks. None after an interruption or Ctrl-D. The terminal is put back as
// it was, whatever happens. UsageError for what can't be a key: control characters within, no UTF-8, far too long.
std::optional<std::string> readSecret(std::string_view question, const Interruption& interruption);

}  // namespace brindlet
