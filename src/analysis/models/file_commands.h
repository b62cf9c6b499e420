// The models of the commands that move, copy, make and remove files and folders or change what is said of them. Each
// reads like its command's manual page: what the line says, then what happens to each operand in turn.
//
//     mv a b           records a move of a to b
//     mv a             predicts "mv: missing destination file operand after 'a'"
//
// Only `ls` launches anything. The others know of the disk what the overlay tells them; `mv` also asks where links
// lead.
#pragma once

#include "analysis/basher_analysis.h"

namespace brindlet {

// move_copy.cpp
CommandResult moveFiles(BasherAnalysis& analysis, const ModelInput& input);  // mv
CommandResult copyFiles(BasherAnalysis& analysis, const ModelInput& input);  // cp

// remove.cpp. Has the prompts of -i and -I taken out of the line that runs.
CommandResult removeFiles(BasherAnalysis& analysis, const ModelInput& input);  // rm, unlink

// folders.cpp
CommandResult makeFolders(BasherAnalysis& analysis, const ModelInput& input);      // mkdir
CommandResult removeFolders(BasherAnalysis& analysis, const ModelInput& input);    // rmdir
CommandResult changeDirectory(BasherAnalysis& analysis, const ModelInput& input);  // cd

// links_and_touch.cpp
CommandResult linkFiles(BasherAnalysis& analysis, const ModelInput& input);   // ln
CommandResult touchFiles(BasherAnalysis& analysis, const ModelInput& input);  // touch

// metadata.cpp
CommandResult changeMetadata(BasherAnalysis& analysis, const ModelInput& input);      // chmod, chflags, chown
CommandResult extendedAttributes(BasherAnalysis& analysis, const ModelInput& input);  // xattr

// trash.cpp
CommandResult trashFiles(BasherAnalysis& analysis, const ModelInput& input);  // trash

// list.cpp
CommandResult listFiles(BasherAnalysis& analysis, const ModelInput& input);  // ls

}  // namespace brindlet
