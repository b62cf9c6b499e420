// Text from strangers (file names, a tool's words, a command) as it may stand in a terminal: nothing in it can move the
// cursor, change colours or turn the direction of writing.
//
//     shownText("a\x1b[31m\n") == "a\\x1b[31m\\n"
#pragma once

#include <string>
#include <string_view>

namespace brindlet {

// Control characters and bytes that are no UTF-8 are spelt out as "\n", "\t", "\r" or "\x1b", invisible characters that
// steer direction or lines as "\u{202e}". All else stays as it is, backslashes too: for the eye, not for reading back.
std::string shownText(std::string_view text);

}  // namespace brindlet
