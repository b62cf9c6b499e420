// The commands that reach the desktop and the machine itself: apps, settings, power, processes, packages, the search
// index, the clipboard. Most of what they give is side effects; few change files.
//
//     defaults delete com.apple.dock   modifiesSystemSetting "Resets Dock settings"
#pragma once

#include "analysis/basher_analysis.h"

namespace brindlet {

// open.cpp, osascript.cpp, clipboard.cpp
CommandResult openItem(BasherAnalysis& analysis, const ModelInput& input);
CommandResult runAppleScript(BasherAnalysis& analysis, const ModelInput& input);
CommandResult copyToClipboard(BasherAnalysis& analysis, const ModelInput& input);
CommandResult pasteFromClipboard(BasherAnalysis& analysis, const ModelInput& input);

// system_settings.cpp, power.cpp, system_profiler.cpp
CommandResult changeDefaults(BasherAnalysis& analysis, const ModelInput& input);
CommandResult kernelSettings(BasherAnalysis& analysis, const ModelInput& input);  // sysctl
CommandResult managePower(BasherAnalysis& analysis, const ModelInput& input);     // pmset
CommandResult keepAwake(BasherAnalysis& analysis, const ModelInput& input);       // caffeinate
CommandResult profileSystem(BasherAnalysis& analysis, const ModelInput& input);

// processes.cpp
CommandResult killProcesses(BasherAnalysis& analysis, const ModelInput& input);  // kill, killall
CommandResult killMatching(BasherAnalysis& analysis, const ModelInput& input);   // pkill
CommandResult findProcesses(BasherAnalysis& analysis, const ModelInput& input);  // pgrep

// brew.cpp, spotlight.cpp
CommandResult managePackages(BasherAnalysis& analysis, const ModelInput& input);
CommandResult searchIndex(BasherAnalysis& analysis, const ModelInput& input);   // mdfind
CommandResult showMetadata(BasherAnalysis& analysis, const ModelInput& input);  // mdls

}  // namespace brindlet
