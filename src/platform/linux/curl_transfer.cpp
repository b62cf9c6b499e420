#include "platform/linux/curl_transfer.h"

#include <arpa/inet.h>
#include <netinet/in.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <utility>

namespace brindlet {

namespace {

constexpr int longestPollMilliseconds = 1000;

std::string urlPart(const CurlLibrary& curl, CURLU* url, CURLUPart part) {
    char* text = nullptr;
    if (curl.urlGet(url, part, &text, CURLU_DEFAULT_PORT) != CURLUE_OK) return "";
    std::string copy = text;
    curl.freeText(text);
    for (char& byte : copy)
        if (byte >= 'A' && byte <= 'Z') byte = static_cast<char>(byte - 'A' + 'a');
    return copy;
}

struct AddressBlock {
    std::uint32_t begin;  // of an IPv4 address, in the machine's own order
    int bits;
};
constexpr AddressBlock loopbackBlock = {0x7F000000, 8};
constexpr AddressBlock privateBlocks[] = {{0x0A000000, 8}, {0xAC100000, 12}, {0xC0A80000, 16}, {0xA9FE0000, 16}};

bool isIn(const AddressBlock& block, std::uint32_t address) {
    return (address ^ block.begin) >> (32 - block.bits) == 0;
}

bool mayGoUnencrypted(std::uint32_t address, PlainHttp reach) {
    if (isIn(loopbackBlock, address)) return true;
    return reach == PlainHttp::privateNetworks &&
           std::ranges::any_of(privateBlocks, [&](const AddressBlock& block) { return isIn(block, address); });
}

bool mayGoUnencrypted(const in6_addr& address, PlainHttp reach) {
    if (IN6_IS_ADDR_LOOPBACK(&address)) return true;
    if (IN6_IS_ADDR_V4MAPPED(&address)) {
        std::uint32_t mapped = 0;
        std::memcpy(&mapped, address.s6_addr + 12, sizeof mapped);
        return mayGoUnencrypted(ntohl(mapped), reach);
    }
    const bool isUniqueLocal = (address.s6_addr[0] & 0xFE) == 0xFC;
    return reach == PlainHttp::privateNetworks && (isUniqueLocal || IN6_IS_ADDR_LINKLOCAL(&address));
}

}  // namespace

std::string UrlOrigin::place() const {
    const bool isUsual = port == (scheme == "https" ? "443" : "80");
    return isUsual ? host : host + ":" + port;
}

std::optional<UrlOrigin> originOf(const CurlLibrary& curl, const std::string& url) {
    const std::unique_ptr<CURLU, decltype(curl.urlCleanup)> parts(curl.url(), curl.urlCleanup);
    if (!parts || curl.urlSet(parts.get(), CURLUPART_URL, url.c_str(), 0) != CURLUE_OK) return std::nullopt;
    return UrlOrigin{urlPart(curl, parts.get(), CURLUPART_SCHEME), urlPart(curl, parts.get(), CURLUPART_HOST),
                     urlPart(curl, parts.get(), CURLUPART_PORT)};
}

bool isLoopbackHost(const std::string& host) {
    in_addr address{};
    if (::inet_pton(AF_INET, host.c_str(), &address) == 1) return isIn(loopbackBlock, ntohl(address.s_addr));
    return host == "localhost" || host == "[::1]";
}

bool mayGoUnencrypted(const sockaddr& address, PlainHttp reach) {
    if (address.sa_family == AF_INET)
        return mayGoUnencrypted(ntohl(reinterpret_cast<const sockaddr_in&>(address).sin_addr.s_addr), reach);
    return address.sa_family == AF_INET6 &&
           mayGoUnencrypted(reinterpret_cast<const sockaddr_in6&>(address).sin6_addr, reach);
}

CurlTransfer::CurlTransfer(const CurlLibrary& curl)
    : curl_(curl), easy_(curl.easyInit(), curl.easyCleanup), multi_(curl.multiInit(), curl.multiCleanup) {
    set(CURLOPT_SSL_VERIFYPEER, 1L);
    set(CURLOPT_SSL_VERIFYHOST, 2L);
    set(CURLOPT_SSLVERSION, static_cast<long>(CURL_SSLVERSION_TLSv1_2));
    set(CURLOPT_NOSIGNAL, 1L);
    // A name server that doesn't answer must not hold up the end of a cancelled transfer.
    set(CURLOPT_QUICK_EXIT, 1L);
    set(CURLOPT_USERAGENT, "Brindlet");
    set(CURLOPT_ERRORBUFFER, errorText_.data());
}

CurlTransfer::~CurlTransfer() {
    if (isAdded_) curl_.multiRemove(multi_.get(), easy_.get());
}

void CurlTransfer::aimAt(const std::string& url) {
    const std::optional<UrlOrigin> origin = originOf(curl_, url);
    if (!origin) return;
    set(CURLOPT_URL, url.c_str());
    set(CURLOPT_PROTOCOLS_STR, origin->scheme.c_str());
    if (origin->scheme != "https" || isLoopbackHost(origin->host)) set(CURLOPT_PROXY, "");
}

std::optional<CURLcode> CurlTransfer::run(const std::stop_token& stop) {
    isAdded_ = easy_ && multi_ && curl_.multiAdd(multi_.get(), easy_.get()) == CURLM_OK;
    if (!isAdded_) return CURLE_OUT_OF_MEMORY;
    const std::stop_callback wake(stop, [this] { curl_.multiWakeUp(multi_.get()); });
    int running = 1;
    while (!stop.stop_requested()) {
        if (curl_.multiPerform(multi_.get(), &running) != CURLM_OK) return CURLE_FAILED_INIT;
        if (running == 0) break;
        curl_.multiPoll(multi_.get(), nullptr, 0, longestPollMilliseconds, nullptr);
    }
    if (running != 0) return std::nullopt;
    int left = 0;
    const CURLMsg* message = curl_.multiReadInfo(multi_.get(), &left);
    return message == nullptr ? CURLE_FAILED_INIT : message->data.result;
}

std::string CurlTransfer::errorText(CURLcode code) const {
    return errorText_[0] != '\0' ? errorText_.data() : curl_.easyErrorText(code);
}

}  // namespace brindlet
