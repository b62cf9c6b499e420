// Fetches a file over HTTP into the system's temporary folder.
//
//     auto outcome = downloadFile("https://example.org/tool.zip", {}, showFraction, stop);
//     if (auto* error = std::get_if<DownloadError>(&outcome)) return Failure{error->description()};
//     use(std::get<FilePath>(outcome));
#pragma once

#include <cstdint>
#include <functional>
#include <stop_token>
#include <string>
#include <variant>

#include "platform/file_path.h"

namespace brindlet {

struct DownloadError {
    enum class Kind { badStatusCode, fileMoveFailed, underlying, cancelled };
    Kind kind = Kind::underlying;
    int statusCode = 0;      // for badStatusCode
    std::string underlying;  // what the system or the transfer said

    std::string description() const;
    bool operator==(const DownloadError&) const = default;
};

struct DownloadLimits {
    std::uint64_t bytes = std::uint64_t{1} << 30;
    int idleSeconds = 60;  // for the connection, and between two pieces
};

// The server must prove who it is; plain http is for loopback addresses only, and redirections lead to https only. Any
// status but 2xx fails. `onFraction` hears of each piece where the whole size is known, and of 1.0 at the end. The file
// belongs to the caller, who removes it; nothing is left of a transfer that failed. A request to stop is honoured
// within some milliseconds, whatever the network does.
std::variant<FilePath, DownloadError> downloadFile(const std::string& url, const DownloadLimits& limits,
                                                   const std::function<void(double)>& onFraction,
                                                   const std::stop_token& stop);

}  // namespace brindlet
