#include "platform/http_download.h"

#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <thread>
#include <vector>

#include "support/asset_server.h"

namespace brindlet {
namespace http_download_tests {

struct Fetched {
    std::string content, error;
    std::vector<double> fractions;
};

Fetched fetched(const std::string& url, const DownloadLimits& limits = {}) {
    Fetched result;
    const auto outcome = downloadFile(url, limits, [&](double fraction) { result.fractions.push_back(fraction); }, {});
    if (const auto* error = std::get_if<DownloadError>(&outcome)) {
        result.error = error->description();
        return result;
    }
    const std::string file = std::get<FilePath>(outcome).text();
    std::ifstream stream(file, std::ios::binary);
    result.content.assign(std::istreambuf_iterator<char>(stream), {});
    std::filesystem::remove(file);
    return result;
}

TEST(HttpDownload, FilesAndWhatIsNoFile) {
    const std::string large(3'000'000, 'x');
    AssetServer server({{"/large", {.body = large}},
                        {"/unannounced", {.body = large, .announcedLength = 0}},
                        {"/empty", {}},
                        {"/cut", {.body = "begin", .announcedLength = 10}},
                        {"/failing", {.status = 500, .body = "oh"}},
                        {"/elsewhere", {.status = 302, .headers = "Location: /large\r\n"}}});
    const Fetched whole = fetched(server.url() + "/large");
    EXPECT_TRUE(whole.content == large);
    EXPECT_GT(whole.fractions.size(), 2u);
    EXPECT_TRUE(std::is_sorted(whole.fractions.begin(), whole.fractions.end()));
    EXPECT_EQ(whole.fractions.back(), 1.0);
    const Fetched unannounced = fetched(server.url("localhost") + "/unannounced");
    EXPECT_TRUE(unannounced.content == large);
    EXPECT_EQ(unannounced.fractions, std::vector<double>{1.0});
    EXPECT_EQ(fetched(server.url() + "/empty").fractions, std::vector<double>{1.0});

    struct Case {
        std::string url, error;
    };
    const Case cases[] = {
        {server.url() + "/none", "Download failed: server status code: 404"},
        {server.url() + "/failing", "Download failed: server status code: 500"},
        {server.url() + "/elsewhere", "Download failed: server status code: 302"},  // back to plain http
        {server.url() + "/cut", "transfer closed with 5 bytes remaining to read"},
        {"http://assets.fenwold.example/a",
         "Files are downloaded over https only, and 'http://assets.fenwold.example/a' is something else."},
        {"file:///etc/passwd", "Files are downloaded over https only, and 'file:///etc/passwd' is something else."},
        {"http://127.0.0.1.fenwold.example/a",
         "Files are downloaded over https only, and 'http://127.0.0.1.fenwold.example/a' is something else."},
        {"", "Files are downloaded over https only, and '' is something else."},
    };
    for (const auto& [url, error] : cases) EXPECT_EQ(fetched(url).error, error) << url;
    EXPECT_EQ(fetched(server.url() + "/large", {.bytes = 2'000'000}).error, "The file to download is too large.");
    // It speaks no TLS, and nobody falls back to going without.
    EXPECT_NE(fetched("https" + server.url().substr(4) + "/large").error, "");
}

TEST(HttpDownload, AStopEndsItAtOnceWhateverTheServerDoes) {
    AssetServer server({{"/hanging", {.body = "begin", .announcedLength = 10, .hangs = true}}});
    std::stop_source stop;
    std::chrono::steady_clock::time_point requested;
    std::thread stopper;
    const auto outcome = downloadFile(
        server.url() + "/hanging", {},
        [&](double) {
            stopper = std::thread([&] {
                requested = std::chrono::steady_clock::now();
                stop.request_stop();
            });
        },
        stop.get_token());
    stopper.join();
    ASSERT_TRUE(std::holds_alternative<DownloadError>(outcome));
    EXPECT_EQ(std::get<DownloadError>(outcome).description(), "Download cancelled.");
    EXPECT_LT(std::chrono::steady_clock::now() - requested, std::chrono::milliseconds{500});
}

}  // namespace http_download_tests
}  // namespace brindlet
