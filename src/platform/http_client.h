// One HTTP request, one answer: nothing is streamed and nothing is sent twice.
//
//     const auto client = openHttpClient();
//     auto answer = client->post({.url = "https://api.example.org/v1", .headers = {{"Authorization", "Bearer k"}},
//                                 .body = "{}"}, stop);
//     if (!answer) return answer.failure();
#pragma once

#include <chrono>
#include <memory>
#include <stop_token>
#include <string>
#include <vector>

#include "platform/result.h"

namespace brindlet {

struct HttpHeader {
    std::string name;
    std::string value;

    bool operator==(const HttpHeader&) const = default;
};

// Where a request may go without encryption. It is the address that is connected to that counts, so that a name can't
// lead elsewhere than it says.
enum class PlainHttp {
    loopbackOnly,     // 127.0.0.0/8 and ::1
    privateNetworks,  // loopback, and the addresses of RFC 1918, RFC 3927, RFC 4193 and link-local IPv6
};

struct HttpRequest {
    std::string url;
    std::vector<HttpHeader> headers{};  // sent in this order
    std::string body{};
    std::chrono::milliseconds timeout = std::chrono::seconds(60);  // for the whole of it
    PlainHttp plainHttp = PlainHttp::loopbackOnly;
    // Where not empty: "sha256//" and the base64 of the SHA-256 of the public key (SubjectPublicKeyInfo) that the
    // server must show, one of these (RFC 7469, 2.4). The ordinary trust is asked for besides.
    std::vector<std::string> pinnedPublicKeys{};
};

struct HttpResponse {
    int status = 0;      // 0: what came isn't HTTP
    std::string body{};  // as it came, of any bytes
};

// The kinds of trouble that are no answer. The sentence never holds a header or a body of the request.
struct HttpClient {
    virtual ~HttpClient() = default;
    // Blocks until the answer is whole. A redirect is followed only to the same scheme, host and port, since the
    // headers hold secrets, with the same body, and never where it asks for another method (303); any other comes back
    // as the status that it is. A failure's code is -1. A request to stop
    // ends it within some milliseconds, whatever the network does, with the failure "Cancelled". May be called by
    // several threads at once.
    virtual Result<HttpResponse> post(const HttpRequest& request, const std::stop_token& stop) = 0;
};

struct HttpClientOptions {
    std::size_t mostBytes = std::size_t{16} << 20;  // of an answer
    std::string certificateFile;  // trusted in place of the system's; for tests with a server of their own
};

std::unique_ptr<HttpClient> openHttpClient(HttpClientOptions options = {});

// True for a URL that a request can be made of: http or https, a host, no blank or control character.
bool isUsableUrl(const std::string& url);
// True for a usable URL that is https, or whose host is by its looks this machine: "http://localhost:8080".
bool isEncryptedOrLocalUrl(const std::string& url);

}  // namespace brindlet
