// A fault in a model or in the core, which no line can bring about: the program ends with the message.
#pragma once

#include <cstdio>
#include <cstdlib>

namespace brindlet {

[[noreturn]] inline void programmingError(const char* message) {
    std::fprintf(stderr, "%s\n", message);
    std::abort();
}

}  // namespace brindlet
