// What the models of the image tools share.
//
//     if (hasAnyFlag(input.args, helpWords)) return runForHelp(analysis, "gifsicle", input.args);
#pragma once

#include <string>
#include <string_view>

#include "analysis/models/model_support.h"

namespace brindlet {

// Whether every word is an option: such a line asks a tool for its help and names nothing to work on.
bool holdsOnlyOptions(const Words& words);

// The tool itself, asked for its help or version. Where the line holds more (`isAlone` is false) that is said to be in
// doubt: a tool may do its work before it comes to the word.
CommandResult runForHelp(BasherAnalysis& analysis, std::string_view tool, const Words& args, bool isAlone);
inline CommandResult runForHelp(BasherAnalysis& analysis, std::string_view tool, const Words& args) {
    return runForHelp(analysis, tool, args, holdsOnlyOptions(args));
}

// Says that a tool may do more than the changes that are shown.
void noteMore(BasherAnalysis& analysis, std::string sentence);

// A tool that makes or changes images is taken to succeed, which the images' content may contradict.
void noteMayFail(BasherAnalysis& analysis, std::string_view tool);

// Exit 0, with an output that isn't known.
CommandResult printedSomething();

}  // namespace brindlet
