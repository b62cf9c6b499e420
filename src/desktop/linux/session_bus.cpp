#include "desktop/linux/session_bus.h"

#include "platform/child_process.h"

namespace brindlet {

std::optional<std::string> callSessionBus(const Environment& environment, const BusCall& call,
                                          std::chrono::milliseconds longest) {
    constexpr std::chrono::milliseconds patience{20};
    std::vector<std::string> arguments{"/usr/bin/env",
                                       "dbus-send",
                                       "--session",
                                       "--print-reply",
                                       "--reply-timeout=" + std::to_string(longest.count()),
                                       "--dest=" + call.name,
                                       call.object,
                                       call.method};
    arguments.insert(arguments.end(), call.arguments.begin(), call.arguments.end());
    auto child = ChildProcess::start(
        {.arguments = std::move(arguments), .environment = environment, .joinsStandardError = true});
    if (!child) return std::nullopt;
    std::string reply;
    const auto limit = std::chrono::steady_clock::now() + longest;
    while (std::chrono::steady_clock::now() < limit)
        if ((*child)->read(reply, patience) == ReadState::ended)
            return (*child)->waitForExit() == 0 ? std::optional(reply) : std::nullopt;
    (*child)->terminateGroup(false);
    return std::nullopt;
}

}  // namespace brindlet
