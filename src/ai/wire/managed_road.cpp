#include "ai/wire/managed_road.h"

#include <algorithm>
#include <chrono>

#include <fmt/format.h>

namespace brindlet {

namespace {

// The versions of the metadata and of the protocol that the service knows.
constexpr std::string_view metadataVersion = "v4";
constexpr std::string_view protocolVersion = "0.129.0";

long long secondsNow(const ManagedRoad& road) {
    if (road.now) return road.now();
    const auto elapsed = std::chrono::system_clock::now().time_since_epoch();
    return std::chrono::duration_cast<std::chrono::seconds>(elapsed).count();
}

std::string requestMetadata(const ManagedRoad& road, std::size_t bodySize) {
    const ManagedClient& client = road.client;
    return fmt::format("{}|{}|{}|{}|{}|macOS|{}|{}|{}", metadataVersion, client.bundleIdentifier, client.version,
                       protocolVersion, secondsNow(road), client.systemVersion, client.machineModel, bodySize);
}

}  // namespace

const ManagedService* managedService(const ManagedRoad& road, AIModelProvider provider) {
    if (road.pinnedPublicKeys.empty()) return nullptr;
    const auto found = std::ranges::find(road.services, provider, &ManagedService::provider);
    return found == road.services.end() ? nullptr : &*found;
}

std::variant<HttpRequest, AIProxyError> managedRequest(const ManagedRoad& road, const ManagedService& service,
                                                       HttpRequest request) {
    if (!service.serviceURL.starts_with("https://") || !isUsableUrl(service.serviceURL))
        return AIProxyError(Assertion{"Could not create urlComponents, please check the aiproxyEndpoint constant"});
    request.url = service.serviceURL + request.url;
    if (!isUsableUrl(request.url)) return AIProxyError(Assertion{"Could not create a request URL"});
    const std::optional<std::string> token = road.deviceToken ? road.deviceToken() : std::nullopt;
    if (!token) return AIProxyError(DeviceCheckIsUnavailable{});

    const ManagedClient& client = road.client;
    std::vector<HttpHeader> headers = {{"aiproxy-partial-key", service.partialKey},
                                       {"aiproxy-client-id", client.anonymousId.value_or(client.clientId)},
                                       {"aiproxy-metadata", requestMetadata(road, request.body.size())}};
    if (client.anonymousId) headers.push_back({"aiproxy-anonymous-id", *client.anonymousId});
    headers.push_back({"aiproxy-devicecheck", *token});
    request.headers.insert(request.headers.begin(), headers.begin(), headers.end());
    request.pinnedPublicKeys = road.pinnedPublicKeys;
    return request;
}

}  // namespace brindlet
