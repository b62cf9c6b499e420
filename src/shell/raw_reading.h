// What a shell makes of texts that the parser takes as they are: the pieces of the reading guard that look at one text.
// Private to this folder.
//
//     unquotedHazard(Text{"{a;b}", "{a;b}"})  // "The shell would cut the word at ..."
//
// Each answers with the hazard's sentence, or none where a shell reads the text as the tree does.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "shell/syntax_tree.h"

namespace brindlet {

using Hazard = std::optional<std::string>;

// "The shell would <deed> `<text>`, which this prediction can't show.", the text on one line and not too long.
std::string hazardSentence(std::string_view deed, std::string_view text);

// Text outside quotes.
Hazard unquotedHazard(const Text& text);
// The texts between double quotes, not what they hold besides.
Hazard doubleQuotedHazard(const DoubleQuotedExpansion& quoted);
// The raw text of a ${...}: its name, or the text of its operation.
Hazard parameterTextHazard(std::string_view text);
Hazard arithmeticHazard(std::string_view text);
Hazard braceHazard(const BraceExpansion& braces);
// `$name` without braces, which for a shell ends at the first character that is no ASCII letter, digit or "_".
Hazard bareNameHazard(std::string_view name);
// A word at the start of a command that a shell takes as an assignment: `a+=b`, `a[0]=b`.
bool readsAsAssignment(const BashWord& word);

// An ASCII letter or "_", then letters, digits and "_".
bool isShellName(std::string_view name);

}  // namespace brindlet
