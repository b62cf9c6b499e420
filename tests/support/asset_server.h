// A server on a loopback address that hands out prepared answers, on a thread of its own, and keeps what it was asked.
//
//     AssetServer server({{"/ffmpeg.zip", {.body = archive}}});
//     fetch(server.url() + "/ffmpeg.zip");
//     server.request(0)   // "GET /ffmpeg.zip HTTP/1.1\r\nHost: ..."
#pragma once

#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <condition_variable>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <stdexcept>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace brindlet {

struct Asset {
    int status = 200;  // 0: the body is all that is sent
    std::string body{};
    std::string headers{};                            // further ones, each with its line end
    std::optional<std::size_t> announcedLength = {};  // if it isn't the body's; 0: none is announced
    bool hangs = false;                               // the connection stays open behind the body
};

// A client's connection; another kind puts encryption in between.
struct Peer {
    virtual ~Peer() = default;
    virtual ssize_t receive(char* bytes, std::size_t size) = 0;
    virtual ssize_t send(const char* bytes, std::size_t size) = 0;
};
struct PlainPeer final : Peer {
    explicit PlainPeer(int clientSocket) : client(clientSocket) {}
    ssize_t receive(char* bytes, std::size_t size) override { return ::recv(client, bytes, size, 0); }
    ssize_t send(const char* bytes, std::size_t size) override { return ::send(client, bytes, size, MSG_NOSIGNAL); }
    int client;
};
using PeerMaker = std::function<std::unique_ptr<Peer>(int client)>;  // none: no connection came about

class AssetServer {
  public:
    // What isn't there is answered with status 404.
    explicit AssetServer(
        std::map<std::string, Asset> assets,
        PeerMaker makePeer = [](int client) { return std::make_unique<PlainPeer>(client); })
        : assets_(std::move(assets)), makePeer_(std::move(makePeer)) {
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

    // From now on what is asked for there gets this answer.
    void lay(const std::string& path, Asset asset) {
        const std::lock_guard lock(mutex_);
        assets_.insert_or_assign(path, std::move(asset));
    }

    // Byte for byte, with its body. Waits for it; none comes within some seconds: empty.
    std::string request(std::size_t index) const {
        std::unique_lock lock(mutex_);
        arrived_.wait_for(lock, std::chrono::seconds{10}, [&] { return requests_.size() > index; });
        return requests_.size() > index ? requests_[index] : "";
    }
    std::size_t requestCount() const {
        const std::lock_guard lock(mutex_);
        return requests_.size();
    }

  private:
    // False: the server is to end.
    bool waitFor(int descriptor) const {
        std::array<pollfd, 2> watched = {pollfd{descriptor, POLLIN, 0}, pollfd{farewell_[0], POLLIN, 0}};
        ::poll(watched.data(), watched.size(), -1);
        return watched[1].revents == 0;
    }

    void serve() {
        while (waitFor(listener_)) {
            const int client = ::accept(listener_, nullptr, nullptr);
            if (const auto peer = makePeer_(client)) answer(client, *peer);
            ::close(client);
        }
    }

    static std::size_t wholeSize(const std::string& request) {
        const std::size_t head = request.find("\r\n\r\n"), length = request.find("\r\nContent-Length: ");
        if (head == std::string::npos) return std::string::npos;
        return head + 4 + (length < head ? std::stoul(request.substr(length + 18)) : 0);
    }

    void answer(int client, Peer& peer) {
        std::string request;
        std::vector<char> bytes(1 << 15);  // more than a TLS record, so that none is left where no poll sees it
        while (request.size() < wholeSize(request)) {
            if (!waitFor(client)) return;
            const ssize_t count = peer.receive(bytes.data(), bytes.size());
            if (count <= 0) return;
            request.append(bytes.data(), static_cast<std::size_t>(count));
            if (request[0] != 'G' && request[0] != 'P') return;  // such as the beginning of TLS
        }
        const std::size_t begin = request.find(' ') + 1;
        Asset asset = missing_;
        {
            const std::lock_guard lock(mutex_);
            const auto found = assets_.find(request.substr(begin, request.find(' ', begin) - begin));
            if (found != assets_.end()) asset = found->second;
            requests_.push_back(std::move(request));
        }
        arrived_.notify_all();
        const std::string text = answerText(asset);
        for (std::size_t sent = 0; sent < text.size();) {
            const ssize_t count = peer.send(text.data() + sent, text.size() - sent);
            if (count <= 0) return;
            sent += static_cast<std::size_t>(count);
        }
        while (asset.hangs && waitFor(client) && peer.receive(bytes.data(), bytes.size()) > 0) {
        }
    }

    static std::string answerText(const Asset& asset) {
        if (asset.status == 0) return asset.body;
        std::string text = "HTTP/1.1 " + std::to_string(asset.status) + " Status\r\n" + asset.headers;
        if (const std::size_t length = asset.announcedLength.value_or(asset.body.size()); length > 0)
            text += "Content-Length: " + std::to_string(length) + "\r\n";
        return text + "Connection: close\r\n\r\n" + asset.body;
    }

    const Asset missing_{.status = 404, .body = "nothing here"};
    std::map<std::string, Asset> assets_;
    PeerMaker makePeer_;
    mutable std::mutex mutex_;
    mutable std::condition_variable arrived_;
    std::vector<std::string> requests_;
    int listener_ = -1;
    std::array<int, 2> farewell_{-1, -1};
    int port_ = 0;
    std::thread thread_;
};

}  // namespace brindlet
