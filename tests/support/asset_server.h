// A server on a loopback address that hands out prepared answers, on a thread of its own.
//
//     AssetServer server({{"/ffmpeg.zip", {.body = archive}}});
//     fetch(server.url() + "/ffmpeg.zip");
#pragma once

#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <map>
#include <optional>
#include <stdexcept>
#include <string>
#include <thread>

namespace brindlet {

struct Asset {
    int status = 200;
    std::string body{};
    std::string headers{};                            // further ones, each with its line end
    std::optional<std::size_t> announcedLength = {};  // if it isn't the body's; 0: none is announced
    bool hangs = false;                               // the connection stays open behind the body
};

class AssetServer {
  public:
    // What isn't there is answered with status 404.
    explicit AssetServer(std::map<std::string, Asset> assets) : assets_(std::move(assets)) {
        listener_ = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        socklen_t size = sizeof address;
        auto* plain = reinterpret_cast<sockaddr*>(&address);
        if (::bind(listener_, plain, size) != 0 || ::listen(listener_, 8) != 0 || ::pipe(farewell_.data()) != 0 ||
            ::getsockname(listener_, plain, &size) != 0)
            throw std::runtime_error("no server can be started");
        port_ = ntohs(address.sin_port);
        thread_ = std::thread([this] { serve(); });
    }
    ~AssetServer() {
        ::close(farewell_[1]);
        thread_.join();
        ::close(farewell_[0]);
        ::close(listener_);
    }
    AssetServer(const AssetServer&) = delete;
    AssetServer& operator=(const AssetServer&) = delete;

    std::string url(const std::string& host = "127.0.0.1") const {
        return "http://" + host + ":" + std::to_string(port_);
    }

  private:
    // False: the server is to end.
    bool waitFor(int descriptor) const {
        std::array<pollfd, 2> watched = {pollfd{descriptor, POLLIN, 0}, pollfd{farewell_[0], POLLIN, 0}};
        ::poll(watched.data(), watched.size(), -1);
        return watched[1].revents == 0;
    }

    void serve() const {
        while (waitFor(listener_)) {
            const int client = ::accept(listener_, nullptr, nullptr);
            answer(client);
            ::close(client);
        }
    }

    void answer(int client) const {
        std::string request;
        std::array<char, 4096> bytes;
        while (request.find("\r\n\r\n") == std::string::npos) {
            if (!waitFor(client)) return;
            const ssize_t count = ::recv(client, bytes.data(), bytes.size(), 0);
            if (count <= 0) return;
            request.append(bytes.data(), static_cast<std::size_t>(count));
            if (!request.starts_with("GET ")) return;  // such as the beginning of TLS
        }
        const std::size_t begin = request.find(' ') + 1;
        const auto found = assets_.find(request.substr(begin, request.find(' ', begin) - begin));
        const Asset& asset = found == assets_.end() ? missing_ : found->second;
        std::string text = "HTTP/1.1 " + std::to_string(asset.status) + " Status\r\n" + asset.headers;
        if (const std::size_t length = asset.announcedLength.value_or(asset.body.size()); length > 0)
            text += "Content-Length: " + std::to_string(length) + "\r\n";
        text += "Connection: close\r\n\r\n" + asset.body;
        for (std::size_t sent = 0; sent < text.size();) {
            const ssize_t count = ::send(client, text.data() + sent, text.size() - sent, MSG_NOSIGNAL);
            if (count <= 0) return;
            sent += static_cast<std::size_t>(count);
        }
        while (asset.hangs && waitFor(client) && ::recv(client, bytes.data(), bytes.size(), 0) > 0) {
        }
    }

    const Asset missing_{.status = 404, .body = "nothing here"};
    std::map<std::string, Asset> assets_;
    int listener_ = -1;
    std::array<int, 2> farewell_{-1, -1};
    int port_ = 0;
    std::thread thread_;
};

}  // namespace brindlet
