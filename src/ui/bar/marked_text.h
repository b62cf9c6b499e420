// The program's own texts with "**" around what is strong, as the pages draw them.
//
//     markedText("**your** request & it") == "<b>your</b> request &amp; it"
#pragma once

#include <QString>
#include <string_view>

namespace brindlet {

QString markedText(std::string_view text);

}  // namespace brindlet
