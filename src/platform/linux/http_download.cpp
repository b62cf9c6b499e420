#include "platform/http_download.h"

#include <arpa/inet.h>
#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <optional>
#include <string_view>
#include <system_error>
#include <utility>

#include "platform/linux/curl_library.h"
#include "platform/linux/file_descriptor.h"

namespace brindlet {

namespace {

using DownloadKind = DownloadError::Kind;

constexpr int longestPollMilliseconds = 1000;
constexpr long mostRedirects = 10;

DownloadError underlyingError(std::string description) {
    return {.kind = DownloadKind::underlying, .statusCode = 0, .underlying = std::move(description)};
}

std::string urlPart(const CurlLibrary& curl, CURLU* url, CURLUPart part) {
    char* text = nullptr;
    if (curl.urlGet(url, part, &text, 0) != CURLUE_OK) return "";
    std::string copy = text;
    curl.freeText(text);
    return copy;
}

// "localhost" is never asked of a name server by libcurl.
bool isLoopback(const std::string& host) {
    in_addr address{};
    if (::inet_pton(AF_INET, host.c_str(), &address) == 1) return ntohl(address.s_addr) >> 24 == 127;
    return host == "localhost" || host == "[::1]";
}

enum class Road { https, plainLoopback };

// None: no file is fetched from there.
std::optional<Road> roadFor(const CurlLibrary& curl, const std::string& text) {
    const std::unique_ptr<CURLU, decltype(curl.urlCleanup)> url(curl.url(), curl.urlCleanup);
    if (!url || curl.urlSet(url.get(), CURLUPART_URL, text.c_str(), 0) != CURLUE_OK) return std::nullopt;
    const std::string scheme = urlPart(curl, url.get(), CURLUPART_SCHEME);
    if (scheme == "https") return Road::https;
    if (scheme == "http" && isLoopback(urlPart(curl, url.get(), CURLUPART_HOST))) return Road::plainLoopback;
    return std::nullopt;
}

// A file that nobody else can have made or can open, gone with its owner unless it is kept.
class TemporaryFile {
  public:
    TemporaryFile() {
        std::error_code error;
        const std::filesystem::path folder = std::filesystem::temp_directory_path(error);
        path_ = (error ? std::filesystem::path("/tmp") : folder) / "brindlet-download-XXXXXX";
        file_ = FileDescriptor(::mkostemp(path_.data(), O_CLOEXEC));
        error_ = file_ ? 0 : errno;
    }
    ~TemporaryFile() {
        if (file_ && !isKept_) ::unlink(path_.c_str());
    }
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;

    // An error number of its making or its writing; 0 where all went well.
    int error() const { return error_; }
    void write(std::string_view bytes) {
        while (error_ == 0 && !bytes.empty()) {
            const ssize_t count = writeSome(file_, bytes);
            if (count < 0) error_ = errno;
            if (count > 0) bytes.remove_prefix(static_cast<std::size_t>(count));
        }
    }
    FilePath keep() {
        isKept_ = true;
        return FilePath(path_);
    }

  private:
    std::string path_;
    FileDescriptor file_;
    int error_ = 0;
    bool isKept_ = false;
};

class Transfer {
  public:
    Transfer(const CurlLibrary& curl, const DownloadLimits& limits, const std::function<void(double)>& onFraction)
        : curl_(curl),
          limits_(limits),
          onFraction_(onFraction),
          easy_(curl.easyInit(), curl.easyCleanup),
          multi_(curl.multiInit(), curl.multiCleanup) {}
    ~Transfer() {
        if (isAdded_) curl_.multiRemove(multi_.get(), easy_.get());
    }
    Transfer(const Transfer&) = delete;
    Transfer& operator=(const Transfer&) = delete;

    std::variant<FilePath, DownloadError> run(const std::string& url, Road road, const std::stop_token& stop) {
        if (file_.error() != 0)
            return DownloadError{
                .kind = DownloadKind::fileMoveFailed, .statusCode = 0, .underlying = systemWords(file_.error())};
        if (!easy_ || !multi_) return underlyingError(systemWords(ENOMEM));
        prepare(url, road);
        isAdded_ = curl_.multiAdd(multi_.get(), easy_.get()) == CURLM_OK;
        if (!isAdded_) return underlyingError(systemWords(ENOMEM));
        const std::optional<CURLcode> code = transferred(stop);
        if (!code) return DownloadError{.kind = DownloadKind::cancelled, .statusCode = 0, .underlying = ""};
        if (auto error = errorAfter(*code)) return *error;
        if (onFraction_) onFraction_(1.0);
        return file_.keep();
    }

  private:
    template <class Value>
    void set(CURLoption option, Value value) {
        curl_.easySetOption(easy_.get(), option, value);
    }

    void prepare(const std::string& url, Road road) {
        set(CURLOPT_URL, url.c_str());
        set(CURLOPT_PROTOCOLS_STR, road == Road::https ? "https" : "http");
        set(CURLOPT_REDIR_PROTOCOLS_STR, "https");
        if (road == Road::plainLoopback) set(CURLOPT_PROXY, "");
        set(CURLOPT_FOLLOWLOCATION, 1L);
        set(CURLOPT_MAXREDIRS, mostRedirects);
        set(CURLOPT_SSL_VERIFYPEER, 1L);
        set(CURLOPT_SSL_VERIFYHOST, 2L);
        set(CURLOPT_SSLVERSION, static_cast<long>(CURL_SSLVERSION_TLSv1_2));
        set(CURLOPT_NOSIGNAL, 1L);
        // A name server that doesn't answer must not hold up the end of a cancelled transfer.
        set(CURLOPT_QUICK_EXIT, 1L);
        set(CURLOPT_CONNECTTIMEOUT, static_cast<long>(limits_.idleSeconds));
        set(CURLOPT_LOW_SPEED_LIMIT, 1L);
        set(CURLOPT_LOW_SPEED_TIME, static_cast<long>(limits_.idleSeconds));
        set(CURLOPT_USERAGENT, "Brindlet");
        set(CURLOPT_ERRORBUFFER, errorText_.data());
        set(CURLOPT_WRITEFUNCTION, &Transfer::takePiece);
        set(CURLOPT_WRITEDATA, static_cast<void*>(this));
    }

    // None: stopped.
    std::optional<CURLcode> transferred(const std::stop_token& stop) {
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

    std::optional<DownloadError> errorAfter(CURLcode code) const {
        if (const int status = statusCode(); status != 0 && status / 100 != 2)
            return DownloadError{.kind = DownloadKind::badStatusCode, .statusCode = status, .underlying = ""};
        if (file_.error() != 0)
            return underlyingError("Can't write the downloaded file: " + systemWords(file_.error()));
        if (isTooLarge_) return underlyingError("The file to download is too large.");
        if (code == CURLE_OK) return std::nullopt;
        return underlyingError(errorText_[0] != '\0' ? errorText_.data() : curl_.easyErrorText(code));
    }

    int statusCode() const {
        long status = 0;
        curl_.easyGetInfo(easy_.get(), CURLINFO_RESPONSE_CODE, &status);
        return static_cast<int>(status);
    }

    // libcurl's callback: anything but the size ends the transfer.
    static std::size_t takePiece(char* bytes, std::size_t, std::size_t size, void* self) {
        return static_cast<Transfer*>(self)->takes({bytes, size}) ? size : CURL_WRITEFUNC_ERROR;
    }

    bool takes(std::string_view bytes) {
        if (statusCode() / 100 != 2) return false;
        received_ += bytes.size();
        isTooLarge_ = received_ > limits_.bytes;
        if (isTooLarge_) return false;
        file_.write(bytes);
        if (file_.error() != 0) return false;
        curl_off_t expected = -1;
        curl_.easyGetInfo(easy_.get(), CURLINFO_CONTENT_LENGTH_DOWNLOAD_T, &expected);
        if (expected > 0 && onFraction_)
            onFraction_(std::min(1.0, static_cast<double>(received_) / static_cast<double>(expected)));
        return true;
    }

    const CurlLibrary& curl_;
    const DownloadLimits& limits_;
    const std::function<void(double)>& onFraction_;
    TemporaryFile file_;
    std::array<char, CURL_ERROR_SIZE> errorText_{};
    std::uint64_t received_ = 0;
    bool isTooLarge_ = false;
    bool isAdded_ = false;
    std::unique_ptr<CURL, decltype(&::curl_easy_cleanup)> easy_;
    std::unique_ptr<CURLM, decltype(&::curl_multi_cleanup)> multi_;
};

}  // namespace

std::variant<FilePath, DownloadError> downloadFile(const std::string& url, const DownloadLimits& limits,
                                                   const std::function<void(double)>& onFraction,
                                                   const std::stop_token& stop) {
    const CurlLibrary* curl = CurlLibrary::load();
    if (curl == nullptr) return underlyingError("Nothing can be downloaded, since libcurl is not installed.");
    const std::optional<Road> road = roadFor(*curl, url);
    if (!road) return underlyingError("Files are downloaded over https only, and '" + url + "' is something else.");
    return Transfer(*curl, limits, onFraction).run(url, *road, stop);
}

}  // namespace brindlet
