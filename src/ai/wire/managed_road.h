// The road of a request through a service that holds the provider's key. It is a matter of configuration, and the
// shipped one has none: then a provider without a key of the user's own has no road.
//
//     ManagedRoad road{.services = {{AIModelProvider::openAI, "v2|abc|def",
//     "https://api.example.org/1a2b3c4d/5e6f7a8b"}}};
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "ai/ai_model.h"
#include "ai/wire/request_error.h"
#include "platform/http_client.h"

namespace brindlet {

struct ManagedService {
    AIModelProvider provider = AIModelProvider::openAI;
    std::string partialKey;  // three parts with bars between
    std::string serviceURL;  // https, with two path segments
};

// Who asks. On this system a random identity in the data folder stands for the device's.
struct ManagedClient {
    std::string clientId = "unknown";
    std::optional<std::string> anonymousId;
    std::string bundleIdentifier;
    std::string version;
    std::string systemVersion;  // major.minor.patch
    std::string machineModel;
};

struct ManagedRoad {
    std::vector<ManagedService> services;
    std::vector<std::string> pinnedPublicKeys;  // as in HttpRequest; with none there is no road
    ManagedClient client;
    // A fresh token for each request; none: the request is not sent.
    std::function<std::optional<std::string>()> deviceToken;
    std::function<long long()> now;  // seconds since 1970; the system's clock where unset
};

// None: no road leads to that provider.
const ManagedService* managedService(const ManagedRoad& road, AIModelProvider provider);

// `request` holds the path at the provider as its URL, its body, and further headers; what comes back is sent to the
// service instead, with who asks in front of the headers.
std::variant<HttpRequest, AIProxyError> managedRequest(const ManagedRoad& road, const ManagedService& service,
                                                       HttpRequest request);

}  // namespace brindlet
