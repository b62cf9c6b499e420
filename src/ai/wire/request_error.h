// What can go wrong with a request to a model, and the message that the user is given for it.
//
//     AIProxyError error = UnsuccessfulRequest{429, R"({"error":{"message":"Rate limited"}})"};
//     Failure shown = friendlyFailure(error, true);   // code 429, "Sorry 😞 Too many requests have been ..."
#pragma once

#include <string>
#include <string_view>
#include <variant>

#include "platform/result.h"

namespace brindlet {

struct Assertion {
    std::string text;
};
struct UnsuccessfulRequest {
    int statusCode = 0;
    std::string responseBody;
};
struct DeviceCheckIsUnavailable {};

// The failures of the direct and the managed road; others are a `Failure` at once.
struct AIProxyError : std::variant<Assertion, UnsuccessfulRequest, DeviceCheckIsUnavailable> {
    using variant::variant;
};
using RequestError = std::variant<AIProxyError, Failure>;

std::string descriptionOf(const RequestError& error);

// `hasOwnKey`: whether the request was made with a key of the user's own, who then can do something about it.
Failure friendlyFailure(const RequestError& error, bool hasOwnKey);

}  // namespace brindlet
