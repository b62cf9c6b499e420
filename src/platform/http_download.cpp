#include "platform/http_download.h"

namespace brindlet {

std::string DownloadError::description() const {
    switch (kind) {
        case Kind::badStatusCode:
            return "Download failed: server status code: " + std::to_string(statusCode);
        case Kind::fileMoveFailed:
            return "Download failed: Couldn't move the downloaded file into place. (" + underlying + ")";
        case Kind::underlying:
            return underlying;
        case Kind::cancelled:
            return "Download cancelled.";
    }
    return underlying;
}

}  // namespace brindlet
