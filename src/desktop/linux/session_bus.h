// One call on the session's D-Bus, through dbus-send(1).
//
//     callSessionBus(environment, {.name = "org.a11y.Bus", .object = "/org/a11y/bus",
//                                  .method = "org.a11y.Bus.GetAddress"}, 300ms)
#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <vector>

#include "platform/environment.h"

namespace brindlet {

struct BusCall {
    std::string name;
    std::string object;
    std::string method;
    std::vector<std::string> arguments{};  // as dbus-send has them
};

// The reply as it prints it; none where the call failed or took longer.
std::optional<std::string> callSessionBus(const Environment& environment, const BusCall& call,
                                          std::chrono::milliseconds longest);

}  // namespace brindlet
