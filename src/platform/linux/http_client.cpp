#include "platform/http_client.h"

#include <sys/socket.h>

#include <algorithm>
#include <cctype>
#include <cstdint>
#include <iterator>
#include <optional>
#include <string_view>
#include <utility>

#include <fmt/format.h>

#include "platform/linux/curl_transfer.h"
#include "text/strings.h"

namespace brindlet {

namespace {

using RequestClock = std::chrono::steady_clock;

constexpr int mostRequestHops = 5;
constexpr std::size_t mostHeaderBytes = 256 * 1024;  // of an answer: libcurl keeps them all
// Asking for the same again elsewhere. Clients may turn the first two into a GET (RFC 9110, 15.4), which no endpoint
// that takes a POST would answer.
constexpr int repeatingRedirects[] = {301, 302, 307, 308};

// The host stands in place of the braces. libcurl's own words are left out: they may quote the server.
struct TroubleRow {
    CURLcode code;
    std::string_view sentence;
};
constexpr TroubleRow troubleRows[] = {
    {CURLE_COULDNT_RESOLVE_HOST, "Can't find {}: is this machine connected to the network?"},
    {CURLE_COULDNT_RESOLVE_PROXY, "Can't find the proxy on the way to {}."},
    {CURLE_COULDNT_CONNECT, "Can't connect to {}."},
    {CURLE_PROXY, "The proxy on the way to {} refuses the connection."},
    {CURLE_SSL_CONNECT_ERROR, "No encrypted connection to {} can be made."},
    {CURLE_PEER_FAILED_VERIFICATION, "{} can't be trusted: its certificate doesn't prove who it is."},
    {CURLE_SSL_PINNEDPUBKEYNOTMATCH, "{} can't be trusted: it shows another key than it should."},
    {CURLE_SEND_ERROR, "The connection to {} broke off before the answer was whole."},
    {CURLE_RECV_ERROR, "The connection to {} broke off before the answer was whole."},
    {CURLE_GOT_NOTHING, "The connection to {} broke off before the answer was whole."},
    {CURLE_PARTIAL_FILE, "The connection to {} broke off before the answer was whole."},
};

// Where it isn't, the line that it stands in would say something else.
bool isSendable(const HttpHeader& header) {
    const auto isControl = [](char byte) {
        return (static_cast<unsigned char>(byte) < ' ' && byte != '\t') || byte == 127;
    };
    const auto isOfName = [](char byte) { return std::isalnum(static_cast<unsigned char>(byte)) || byte == '-'; };
    return !header.name.empty() && std::ranges::all_of(header.name, isOfName) &&
           std::ranges::none_of(header.value, isControl);
}

class HeaderList {
  public:
    explicit HeaderList(const CurlLibrary& curl) : curl_(curl) {}
    ~HeaderList() { curl_.listFree(list_); }
    HeaderList(const HeaderList&) = delete;
    HeaderList& operator=(const HeaderList&) = delete;

    void add(const std::string& line) {
        if (curl_slist* longer = curl_.listAppend(list_, line.c_str())) list_ = longer;
    }
    // With nothing behind its colon libcurl would leave it out.
    void add(const HttpHeader& header) {
        add(header.value.empty() ? header.name + ";" : header.name + ": " + header.value);
    }
    curl_slist* get() const { return list_; }

  private:
    const CurlLibrary& curl_;
    curl_slist* list_ = nullptr;
};

// A request and its answer, at one address.
class HttpExchange {
  public:
    HttpExchange(const CurlLibrary& curl, const HttpClientOptions& options, const HttpRequest& request,
                 const UrlOrigin& origin)
        : options_(options), request_(request), origin_(origin), headers_(curl), transfer_(curl) {}

    Result<HttpResponse> run(const std::string& url, RequestClock::time_point deadline, const std::stop_token& stop) {
        if (stop.stop_requested()) return cancelled();
        const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(deadline - RequestClock::now());
        if (left.count() <= 0) return Failure{sentenceFor(CURLE_OPERATION_TIMEDOUT)};
        transfer_.aimAt(url);
        transfer_.set(CURLOPT_TIMEOUT_MS, static_cast<long>(left.count()));
        prepareRequest();
        prepareConnection();
        const std::optional<CURLcode> code = transfer_.run(stop);
        if (!code) return cancelled();
        // libcurl's word for a first line that isn't HTTP, since the scheme was looked at before.
        if (code == CURLE_UNSUPPORTED_PROTOCOL || code == CURLE_WEIRD_SERVER_REPLY) return HttpResponse{};
        if (code != CURLE_OK) return Failure{sentenceFor(*code)};
        return HttpResponse{transfer_.status(), std::move(body_)};
    }

    // Where the answer points to; empty where it doesn't.
    std::string redirectUrl() const {
        const char* url = transfer_.info(CURLINFO_REDIRECT_URL, static_cast<const char*>(nullptr));
        return url == nullptr ? "" : url;
    }

  private:
    static Failure cancelled() { return Failure{"Cancelled"}; }

    void prepareRequest() {
        for (const HttpHeader& header : request_.headers) headers_.add(header);
        // Those that libcurl would add of its own: a large body goes at once, and isn't taken for a form.
        headers_.add("Expect:");
        if (std::ranges::find(request_.headers, "Content-Type", &HttpHeader::name) == request_.headers.end())
            headers_.add("Content-Type:");
        transfer_.set(CURLOPT_HTTPHEADER, headers_.get());
        transfer_.set(CURLOPT_POST, 1L);
        transfer_.set(CURLOPT_POSTFIELDS, request_.body.data());
        transfer_.set(CURLOPT_POSTFIELDSIZE_LARGE, static_cast<curl_off_t>(request_.body.size()));
        transfer_.set(CURLOPT_WRITEFUNCTION, &HttpExchange::takeBody);
        transfer_.set(CURLOPT_WRITEDATA, static_cast<void*>(this));
        transfer_.set(CURLOPT_HEADERFUNCTION, &HttpExchange::takeHeader);
        transfer_.set(CURLOPT_HEADERDATA, static_cast<void*>(this));
    }

    void prepareConnection() {
        // HTTP/2 would send again what a server refuses.
        transfer_.set(CURLOPT_HTTP_VERSION, static_cast<long>(CURL_HTTP_VERSION_1_1));
        if (!options_.certificateFile.empty()) transfer_.set(CURLOPT_CAINFO, options_.certificateFile.c_str());
        const std::string pins = joined(request_.pinnedPublicKeys, ";");
        if (!pins.empty()) transfer_.set(CURLOPT_PINNEDPUBLICKEY, pins.c_str());
        transfer_.set(CURLOPT_OPENSOCKETFUNCTION, &HttpExchange::openSocket);
        transfer_.set(CURLOPT_OPENSOCKETDATA, static_cast<void*>(this));
    }

    std::string sentenceFor(CURLcode code) const {
        const std::string place = origin_.place();
        if (isTooLarge_) return fmt::format("The answer of {} is too large.", place);
        if (code == CURLE_OPERATION_TIMEDOUT)
            return fmt::format("No answer from {} within {:g} seconds.", place,
                               std::chrono::duration<double>(request_.timeout).count());
        if (isRefused_)
            return fmt::format(
                "Plain http goes to {} only, not to {}: please use https.",
                request_.plainHttp == PlainHttp::loopbackOnly ? "this machine" : "this machine and private networks",
                place);
        const auto* row = std::ranges::find(troubleRows, code, &TroubleRow::code);
        if (row != std::end(troubleRows)) return replacedAll(row->sentence, "{}", place);
        return fmt::format("The request to {} failed (libcurl's error {}).", place, static_cast<int>(code));
    }

    // libcurl's callbacks. Anything but the size ends the transfer.
    static std::size_t takeBody(char* bytes, std::size_t, std::size_t size, void* self) {
        auto& exchange = *static_cast<HttpExchange*>(self);
        exchange.isTooLarge_ = size > exchange.options_.mostBytes - exchange.body_.size();
        if (exchange.isTooLarge_) return CURL_WRITEFUNC_ERROR;
        exchange.body_.append(bytes, size);
        return size;
    }
    static std::size_t takeHeader(char*, std::size_t, std::size_t size, void* self) {
        auto& exchange = *static_cast<HttpExchange*>(self);
        exchange.headerBytes_ += size;
        exchange.isTooLarge_ = exchange.headerBytes_ > mostHeaderBytes;
        return exchange.isTooLarge_ ? CURL_WRITEFUNC_ERROR : size;
    }
    static curl_socket_t openSocket(void* self, curlsocktype, curl_sockaddr* address) {
        auto& exchange = *static_cast<HttpExchange*>(self);
        if (exchange.origin_.scheme == "http" && !mayGoUnencrypted(address->addr, exchange.request_.plainHttp)) {
            exchange.isRefused_ = true;
            return CURL_SOCKET_BAD;
        }
        return ::socket(address->family, address->socktype | SOCK_CLOEXEC, address->protocol);
    }

    const HttpClientOptions& options_;
    const HttpRequest& request_;
    const UrlOrigin& origin_;
    HeaderList headers_;
    std::string body_;
    std::size_t headerBytes_ = 0;
    bool isTooLarge_ = false;
    bool isRefused_ = false;  // an address that nothing goes to in the clear
    CurlTransfer transfer_;
};

std::optional<UrlOrigin> usableOrigin(const CurlLibrary& curl, const std::string& url) {
    const auto isBlankOrControl = [](char byte) { return static_cast<unsigned char>(byte) <= ' ' || byte == 127; };
    if (std::ranges::any_of(url, isBlankOrControl)) return std::nullopt;
    std::optional<UrlOrigin> origin = originOf(curl, url);
    if (!origin || origin->host.empty() || (origin->scheme != "http" && origin->scheme != "https")) return std::nullopt;
    return origin;
}

class CurlHttpClient final : public HttpClient {
  public:
    explicit CurlHttpClient(HttpClientOptions options) : options_(std::move(options)) {}

    Result<HttpResponse> post(const HttpRequest& request, const std::stop_token& stop) override {
        const CurlLibrary* curl = CurlLibrary::load();
        if (curl == nullptr) return Failure{"No request can be sent, since libcurl is not installed."};
        const std::optional<UrlOrigin> origin = usableOrigin(*curl, request.url);
        if (!origin) return Failure{"The request has no address that it could be sent to."};
        if (!std::ranges::all_of(request.headers, isSendable))
            return Failure{"The request to " + origin->place() +
                           " can't be sent: its key or another header holds a character that none may hold."};
        return exchanged(*curl, request, *origin, stop);
    }

  private:
    Result<HttpResponse> exchanged(const CurlLibrary& curl, const HttpRequest& request, const UrlOrigin& origin,
                                   const std::stop_token& stop) const {
        const auto deadline = RequestClock::now() + request.timeout;
        std::string url = request.url;
        for (int hop = 1;; ++hop) {
            HttpExchange exchange(curl, options_, request, origin);
            Result<HttpResponse> response = exchange.run(url, deadline, stop);
            if (!response || hop == mostRequestHops) return response;
            if (std::ranges::find(repeatingRedirects, response->status) == std::end(repeatingRedirects))
                return response;
            url = exchange.redirectUrl();
            if (usableOrigin(curl, url) != origin) return response;
        }
    }

    const HttpClientOptions options_;
};

}  // namespace

std::unique_ptr<HttpClient> openHttpClient(HttpClientOptions options) {
    return std::make_unique<CurlHttpClient>(std::move(options));
}

bool isUsableUrl(const std::string& url) {
    const CurlLibrary* curl = CurlLibrary::load();
    return curl == nullptr || usableOrigin(*curl, url).has_value();  // without libcurl the sending says what is wrong
}

bool isEncryptedOrLocalUrl(const std::string& url) {
    const CurlLibrary* curl = CurlLibrary::load();
    if (curl == nullptr) return true;
    const std::optional<UrlOrigin> origin = usableOrigin(*curl, url);
    return origin && (origin->scheme == "https" || isLoopbackHost(origin->host));
}

}  // namespace brindlet
