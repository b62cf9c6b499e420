#include "platform/http_client.h"

#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <netinet/in.h>

#include <cstdlib>
#include <thread>

#include "platform/linux/curl_transfer.h"
#include "support/asset_server.h"
#include "text/strings.h"

namespace brindlet {
namespace http_client_tests {

using namespace std::chrono_literals;

// "200 the body", or the failure's sentence.
std::string posted(const HttpRequest& request, const std::stop_token& stop = {}) {
    const Result<HttpResponse> response = openHttpClient()->post(request, stop);
    if (!response) return response.failure().description;
    return std::to_string(response->status) + " " + response->body;
}

TEST(HttpClient, SendsWhatItIsGiven) {
    AssetServer server({{"/a", {.body = "yes"}}, {"/moved", {.status = 308, .headers = "Location: a\r\n"}}});
    const std::string place = server.url().substr(7);
    // A proxy would see what is meant for this machine.
    AssetServer proxy({});
    ::setenv("http_proxy", proxy.url().c_str(), 1);
    // More than a million bytes is where libcurl would ask the server first.
    const std::string body = std::string(2'000'000, 'x') + '\0' + "\xFF";
    EXPECT_EQ(
        posted({.url = server.url() + "/a", .headers = {{"Content-Type", "t"}, {"b", ""}, {"A", "1 2"}}, .body = body}),
        "200 yes");
    ::unsetenv("http_proxy");
    EXPECT_TRUE(server.request(0) ==
                "POST /a HTTP/1.1\r\nHost: " + place +
                    "\r\nUser-Agent: Brindlet\r\nAccept: */*\r\nContent-Type: t\r\nb:\r\nA: 1 2\r\n"
                    "Content-Length: 2000002\r\n\r\n" +
                    body)
        << server.request(0).substr(0, 300);
    EXPECT_EQ(proxy.requestCount(), 0u);
    // What is moved is asked for again with all that belongs to it.
    EXPECT_EQ(posted({.url = server.url() + "/moved", .headers = {{"Key", "k"}}, .body = "{}"}), "200 yes");
    EXPECT_EQ(server.request(2),
              "POST /a HTTP/1.1\r\nHost: " + place +
                  "\r\nUser-Agent: Brindlet\r\nAccept: */*\r\nKey: k\r\nContent-Length: 2\r\n\r\n{}");
    EXPECT_EQ(
        posted({.url = server.url() + "/a", .headers = {{"Key", "secret\r\nX: y"}}}),
        "The request to " + place + " can't be sent: its key or another header holds a character that none may hold.");
    EXPECT_EQ(server.requestCount(), 3u);
}

TEST(HttpClient, AnswersAndWhatIsNone) {
    AssetServer stranger({{"/a", {.body = "stolen"}}});
    const auto to = [](const std::string& url) { return "Location: " + url + "\r\n"; };
    const std::string bytes("\0\xFF", 2), crowd(2'000'000, 'x');
    AssetServer server({{"/bytes", {.body = bytes}},
                        {"/failing", {.status = 500, .body = "oh"}},
                        {"/unannounced", {.body = "all", .announcedLength = 0}},
                        {"/cut", {.body = "begin", .announcedLength = 10}},
                        {"/silent", {.status = 0}},
                        {"/garbage", {.status = 0, .body = "nothing that HTTP knows\r\n\r\n"}},
                        {"/large", {.body = std::string(50'000'000, 'x')}},
                        {"/verbose", {.headers = "A: " + replacedAll(crowd, "xxxxxxxxxx", "\r\nB: xxxxx")}},
                        {"/slow", {.body = "begin", .announcedLength = 10, .hangs = true}},
                        {"/moved", {.status = 308, .headers = to("/failing")}},
                        {"/found", {.status = 302, .headers = to("failing")}},
                        {"/other-method", {.status = 303, .headers = to("/failing")}},
                        {"/circle", {.status = 307, .body = "round", .headers = to("/circle")}},
                        {"/stranger", {.status = 307, .body = "no", .headers = to(stranger.url() + "/a")}},
                        {"/file", {.status = 301, .headers = to("file:///etc/passwd")}}});
    const std::string place = server.url().substr(7);
    const struct {
        std::string path, outcome;
    } rows[] = {
        {"/bytes", "200 " + bytes},
        {"/failing", "500 oh"},
        {"/unannounced", "200 all"},
        {"/cut", "The connection to {} broke off before the answer was whole."},
        {"/silent", "The connection to {} broke off before the answer was whole."},
        {"/garbage", "0 "},
        {"/large", "The answer of {} is too large."},
        {"/verbose", "The answer of {} is too large."},
        {"/slow", "No answer from {} within 0.2 seconds."},
        {"/moved", "500 oh"},
        {"/found", "500 oh"},
        {"/other-method", "303 "},
        {"/circle", "307 round"},
        {"/stranger", "307 no"},
        {"/file", "301 "},
    };
    for (const auto& [path, outcome] : rows)
        EXPECT_EQ(posted({.url = server.url() + path,
                          .headers = {{"Key", "k"}},
                          .body = "{}",
                          .timeout = path == "/slow" ? 200ms : 10s}),
                  replacedAll(outcome, "{}", place))
            << path;
    EXPECT_EQ(stranger.requestCount(), 0u);
}

TEST(HttpClient, WhereNothingIsSent) {
    const std::string none = "The request has no address that it could be sent to.";
    const std::string plain = "Plain http goes to this machine only, not to ";
    AssetServer server({});
    const struct {
        std::string url, failure;
        bool isUsable, isEncryptedOrLocal;
    } rows[] = {
        {"http://192.0.2.1/a", plain + "192.0.2.1: please use https.", true, false},
        {"http://[2001:db8::1]:81/", plain + "[2001:db8::1]:81: please use https.", true, false},
        // Who says by name that it is this machine, need not be it.
        {"http://0300.0.2.1/", plain + "192.0.2.1: please use https.", true, false},
        // It speaks no TLS, and nobody falls back to going without.
        {"https" + server.url().substr(4), "No encrypted connection to " + server.url().substr(7) + " can be made.",
         true, true},
        {"http://127.0.0.1:1/", "Can't connect to 127.0.0.1:1.", true, true},
        {"http://LOCALHOST:1/", "Can't connect to localhost:1.", true, true},
        {"", none, false, false},
        {"localhost:1", none, false, false},
        {"http://", none, false, false},
        {"http://127.0.0.1:1/a b", none, false, false},
        {"http://127.0.0.1:1/\r\nX: y", none, false, false},
        {"ftp://127.0.0.1/", none, false, false},
        {"file:///etc/passwd", none, false, false},
    };
    for (const auto& [url, failure, isUsable, isEncryptedOrLocal] : rows) {
        SCOPED_TRACE(url);
        EXPECT_EQ(posted({.url = url}), failure);
        EXPECT_EQ(isUsableUrl(url), isUsable);
        EXPECT_EQ(isEncryptedOrLocalUrl(url), isEncryptedOrLocal);
    }
    EXPECT_EQ(server.requestCount(), 0u);
}

TEST(HttpClient, AddressesThatPlainHttpMayGoTo) {
    const struct {
        const char* address;
        bool atLoopback, inPrivateNetworks;
    } rows[] = {
        {"127.0.0.1", true, true},
        {"127.255.255.255", true, true},
        {"128.0.0.1", false, false},
        {"10.255.0.1", false, true},
        {"11.0.0.1", false, false},
        {"172.16.0.1", false, true},
        {"172.31.255.255", false, true},
        {"172.32.0.0", false, false},
        {"172.15.255.255", false, false},
        {"192.168.3.4", false, true},
        {"192.169.0.1", false, false},
        {"169.254.169.254", false, true},
        {"0.0.0.0", false, false},
        {"8.8.8.8", false, false},
        {"::1", true, true},
        {"::", false, false},
        {"::ffff:127.0.0.1", true, true},
        {"::ffff:10.0.0.1", false, true},
        {"::ffff:8.8.8.8", false, false},
        {"fd12::1", false, true},
        {"fc00::1", false, true},
        {"fe80::1", false, true},
        {"febf::1", false, true},
        {"fec0::1", false, false},
        {"2001:db8::1", false, false},
    };
    for (const auto& [text, atLoopback, inPrivateNetworks] : rows) {
        sockaddr_in6 wide{};
        wide.sin6_family = AF_INET6;
        sockaddr_in narrow{};
        narrow.sin_family = AF_INET;
        const bool isNarrow = ::inet_pton(AF_INET, text, &narrow.sin_addr) == 1;
        ASSERT_TRUE(isNarrow || ::inet_pton(AF_INET6, text, &wide.sin6_addr) == 1);
        const auto& address =
            isNarrow ? reinterpret_cast<const sockaddr&>(narrow) : reinterpret_cast<const sockaddr&>(wide);
        EXPECT_EQ(mayGoUnencrypted(address, PlainHttp::loopbackOnly), atLoopback) << text;
        EXPECT_EQ(mayGoUnencrypted(address, PlainHttp::privateNetworks), inPrivateNetworks) << text;
    }
}

TEST(HttpClient, AStopEndsItAtOnce) {
    AssetServer server({{"/slow", {.body = "begin", .announcedLength = 10, .hangs = true}}});
    std::stop_source stop;
    std::chrono::steady_clock::time_point requested;
    std::thread stopper([&] {
        server.request(0);
        requested = std::chrono::steady_clock::now();
        stop.request_stop();
    });
    EXPECT_EQ(posted({.url = server.url() + "/slow"}, stop.get_token()), "Cancelled");
    const auto ended = std::chrono::steady_clock::now();
    stopper.join();
    EXPECT_LT(ended - requested, 500ms);  // some, where the machine isn't busy otherwise
    EXPECT_EQ(posted({.url = server.url() + "/slow"}, stop.get_token()), "Cancelled");
    EXPECT_EQ(server.requestCount(), 1u);
}

}  // namespace http_client_tests
}  // namespace brindlet
