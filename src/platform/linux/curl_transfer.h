// One transfer by libcurl: the options that every one has, and the loop that a request to stop wakes up.
//
//     CurlTransfer transfer(*CurlLibrary::load());
//     transfer.aimAt("https://example.org/a");
//     transfer.set(CURLOPT_WRITEFUNCTION, &takePiece);
//     if (auto code = transfer.run(stop)) ...   // none: stopped
#pragma once

#include <sys/socket.h>

#include <array>
#include <memory>
#include <optional>
#include <stop_token>
#include <string>

#include "platform/http_client.h"
#include "platform/linux/curl_library.h"

namespace brindlet {

// Where a URL leads, in lower case; the port is the scheme's own where the URL has none. Two URLs of one origin (RFC
// 6454) are equal here.
struct UrlOrigin {
    std::string scheme;
    std::string host;
    std::string port;

    // The host, and the port where it isn't the scheme's own: for people.
    std::string place() const;
    bool operator==(const UrlOrigin&) const = default;
};
// None where no URL can be read.
std::optional<UrlOrigin> originOf(const CurlLibrary& curl, const std::string& url);

// By its looks alone; "localhost" is never asked of a name server by libcurl.
bool isLoopbackHost(const std::string& host);
// An IPv4 address that is written as an IPv6 one counts as what it is.
bool mayGoUnencrypted(const sockaddr& address, PlainHttp reach);

// Each has a connection of its own, so that libcurl never sends anything again because a kept one turned out to be
// dead.
class CurlTransfer {
  public:
    explicit CurlTransfer(const CurlLibrary& curl);
    ~CurlTransfer();
    CurlTransfer(const CurlTransfer&) = delete;
    CurlTransfer& operator=(const CurlTransfer&) = delete;

    template <class Value>
    void set(CURLoption option, Value value) {
        if (easy_) curl_.easySetOption(easy_.get(), option, value);
    }
    template <class Value>
    Value info(CURLINFO what, Value value) const {
        if (easy_) curl_.easyGetInfo(easy_.get(), what, &value);
        return value;
    }

    // Only this URL's scheme is spoken. No proxy sees what goes to this machine or is not encrypted.
    void aimAt(const std::string& url);
    // libcurl's outcome; none: stopped, within some milliseconds.
    std::optional<CURLcode> run(const std::stop_token& stop);
    int status() const { return static_cast<int>(info(CURLINFO_RESPONSE_CODE, 0L)); }
    // What libcurl says of it.
    std::string errorText(CURLcode code) const;

  private:
    const CurlLibrary& curl_;
    std::array<char, CURL_ERROR_SIZE> errorText_{};
    bool isAdded_ = false;
    std::unique_ptr<CURL, decltype(&::curl_easy_cleanup)> easy_;
    std::unique_ptr<CURLM, decltype(&::curl_multi_cleanup)> multi_;
};

}  // namespace brindlet
