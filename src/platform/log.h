// The log as everyone below sees it. Nothing that logging does can fail into the caller. Until a sink is installed,
// lines go nowhere.
#pragma once

#include <functional>
#include <string_view>

namespace brindlet {

enum class LogLevel { info, error };

using LogSink = std::function<void(LogLevel, std::string_view message)>;

// Installed once at the start of the program, before other threads; an empty sink takes the present one away.
void installLogSink(LogSink sink);

void logInfo(std::string_view message);
void logError(std::string_view message);

}  // namespace brindlet
