#include "platform/http_download.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <optional>
#include <string_view>
#include <system_error>
#include <utility>

#include "platform/linux/curl_transfer.h"
#include "platform/linux/file_descriptor.h"

namespace brindlet {

namespace {

using DownloadKind = DownloadError::Kind;

constexpr long mostRedirects = 10;

DownloadError underlyingError(std::string description) {
    return {.kind = DownloadKind::underlying, .statusCode = 0, .underlying = std::move(description)};
}

bool isFetchable(const CurlLibrary& curl, const std::string& url) {
    const std::optional<UrlOrigin> origin = originOf(curl, url);
    return origin && (origin->scheme == "https" || (origin->scheme == "http" && isLoopbackHost(origin->host)));
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

class Download {
  public:
    Download(const CurlLibrary& curl, const DownloadLimits& limits, const std::function<void(double)>& onFraction)
        : limits_(limits), onFraction_(onFraction), transfer_(curl) {}

    std::variant<FilePath, DownloadError> run(const std::string& url, const std::stop_token& stop) {
        if (file_.error() != 0)
            return DownloadError{
                .kind = DownloadKind::fileMoveFailed, .statusCode = 0, .underlying = systemWords(file_.error())};
        prepare(url);
        const std::optional<CURLcode> code = transfer_.run(stop);
        if (!code) return DownloadError{.kind = DownloadKind::cancelled, .statusCode = 0, .underlying = ""};
        if (auto error = errorAfter(*code)) return *error;
        if (onFraction_) onFraction_(1.0);
        return file_.keep();
    }

  private:
    void prepare(const std::string& url) {
        transfer_.aimAt(url);
        transfer_.set(CURLOPT_REDIR_PROTOCOLS_STR, "https");
        transfer_.set(CURLOPT_FOLLOWLOCATION, 1L);
        transfer_.set(CURLOPT_MAXREDIRS, mostRedirects);
        transfer_.set(CURLOPT_CONNECTTIMEOUT, static_cast<long>(limits_.idleSeconds));
        transfer_.set(CURLOPT_LOW_SPEED_LIMIT, 1L);
        transfer_.set(CURLOPT_LOW_SPEED_TIME, static_cast<long>(limits_.idleSeconds));
        transfer_.set(CURLOPT_WRITEFUNCTION, &Download::takePiece);
        transfer_.set(CURLOPT_WRITEDATA, static_cast<void*>(this));
    }

    std::optional<DownloadError> errorAfter(CURLcode code) const {
        if (const int status = transfer_.status(); status != 0 && status / 100 != 2)
            return DownloadError{.kind = DownloadKind::badStatusCode, .statusCode = status, .underlying = ""};
        if (file_.error() != 0)
            return underlyingError("Can't write the downloaded file: " + systemWords(file_.error()));
        if (isTooLarge_) return underlyingError("The file to download is too large.");
        if (code == CURLE_OK) return std::nullopt;
        return underlyingError(transfer_.errorText(code));
    }

    // libcurl's callback: anything but the size ends the transfer.
    static std::size_t takePiece(char* bytes, std::size_t, std::size_t size, void* self) {
        return static_cast<Download*>(self)->takes({bytes, size}) ? size : CURL_WRITEFUNC_ERROR;
    }

    bool takes(std::string_view bytes) {
        if (transfer_.status() / 100 != 2) return false;
        received_ += bytes.size();
        isTooLarge_ = received_ > limits_.bytes;
        if (isTooLarge_) return false;
        file_.write(bytes);
        if (file_.error() != 0) return false;
        const auto expected = transfer_.info(CURLINFO_CONTENT_LENGTH_DOWNLOAD_T, curl_off_t{-1});
        if (expected > 0 && onFraction_)
            onFraction_(std::min(1.0, static_cast<double>(received_) / static_cast<double>(expected)));
        return true;
    }

    const DownloadLimits& limits_;
    const std::function<void(double)>& onFraction_;
    TemporaryFile file_;
    std::uint64_t received_ = 0;
    bool isTooLarge_ = false;
    CurlTransfer transfer_;
};

}  // namespace

std::variant<FilePath, DownloadError> downloadFile(const std::string& url, const DownloadLimits& limits,
                                                   const std::function<void(double)>& onFraction,
                                                   const std::stop_token& stop) {
    const CurlLibrary* curl = CurlLibrary::load();
    if (curl == nullptr) return underlyingError("Nothing can be downloaded, since libcurl is not installed.");
    if (!isFetchable(*curl, url))
        return underlyingError("Files are downloaded over https only, and '" + url + "' is something else.");
    return Download(*curl, limits, onFraction).run(url, stop);
}

}  // namespace brindlet
