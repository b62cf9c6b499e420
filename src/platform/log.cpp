#include "platform/log.h"

#include <utility>

namespace brindlet {

namespace {

LogSink& installedSink() {
    // Never destroyed: what runs at the end of the program may still log.
    static LogSink& sink = *new LogSink;
    return sink;
}

void log(LogLevel level, std::string_view message) {
    try {
        if (const LogSink& sink = installedSink()) sink(level, message);
    } catch (...) {
        // A log that can't be written is no reason for anything else to fail, and there is nowhere to say so.
    }
}

}  // namespace

void installLogSink(LogSink sink) {
    installedSink() = std::move(sink);
}

void logInfo(std::string_view message) {
    log(LogLevel::info, message);
}
void logError(std::string_view message) {
    log(LogLevel::error, message);
}

}  // namespace brindlet
