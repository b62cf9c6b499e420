// The desktop bar on a display of its own: DISPLAY names one where a window manager runs and a folder window is open,
// with nothing behind it.
//
//     Xvfb :90 & DISPLAY=:90 dbus-run-session -- sh -c 'openbox & thunar . & sleep 3; build/bench/bench/desktop_bench'
#include <benchmark/benchmark.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <thread>

#include "desktop/finder_window_tracker.h"
#include "desktop/linux/x_connection.h"
#include "desktop/linux/x_window_source.h"

namespace {

using namespace brindlet;
using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

// Which window is in front, and where: sixty times a second while it moves.
void trackingRound(benchmark::State& state) {
    XWindowSource source;
    if (!source.canFollow()) return state.SkipWithError("no display with a window manager");
    if (frontFolderWindow(source.look()) == nullptr) return state.SkipWithError("no folder window is open");
    for (auto _ : state) benchmark::DoNotOptimize(source.look());
}
BENCHMARK(trackingRound)->Unit(benchmark::kMicrosecond)->UseRealTime();

// Settings as after the first-run pages, so that the bar shows itself.
class Surroundings {
  public:
    Surroundings() {
        std::string pattern = std::filesystem::temp_directory_path() / "brindlet-bench-XXXXXX";
        if (::mkdtemp(pattern.data()) == nullptr) std::abort();
        folder_ = pattern;
        std::filesystem::create_directories(folder_ / "config");
        std::ofstream(folder_ / "config/settings.json") << R"({"shownOnboarding": true})";
        ::setenv("BRINDLET_CONFIG_HOME", (folder_ / "config").c_str(), 1);
        ::setenv("BRINDLET_DATA_HOME", (folder_ / "data").c_str(), 1);
        ::setenv("BRINDLET_SECRETS", "file", 1);
    }
    ~Surroundings() {
        std::error_code ignored;
        std::filesystem::remove_all(folder_, ignored);
    }
    Surroundings(const Surroundings&) = delete;
    Surroundings& operator=(const Surroundings&) = delete;

  private:
    std::filesystem::path folder_;
};

pid_t startBar() {
    char program[] = BRINDLET_BAR;
    char* arguments[] = {program, nullptr};
    pid_t child = -1;
    return ::posix_spawn(&child, program, nullptr, nullptr, arguments, environ) == 0 ? child : -1;
}

std::uint32_t barWindowOf(XConnection& x, pid_t process) {
    for (const std::uint32_t window : x.numbers(x.askProperty(x.root(), x.atom("_NET_CLIENT_LIST")))) {
        const auto owner = x.askProperty(window, x.atom("_NET_WM_PID"));
        if (x.numbers(owner) == std::vector{static_cast<std::uint32_t>(process)}) return window;
    }
    return XCB_NONE;
}

// Whether the bar's light ground is there, where the desktop beneath it is dark.
bool isPainted(const XConnection& x, std::uint32_t window) {
    constexpr std::int16_t column = 60, row = 60;
    constexpr std::uint8_t light = 0xE0;
    const XReply<xcb_get_image_reply_t> image(::xcb_get_image_reply(
        x.raw(), ::xcb_get_image(x.raw(), XCB_IMAGE_FORMAT_Z_PIXMAP, window, column, row, 1, 1, ~0u), nullptr));
    if (!image || ::xcb_get_image_data_length(image.get()) < 3) return false;
    const std::uint8_t* pixel = ::xcb_get_image_data(image.get());
    return pixel[0] >= light && pixel[1] >= light && pixel[2] >= light;
}

void startToFirstFrame(benchmark::State& state) {
    XConnection x;
    if (!x) return state.SkipWithError("no display");
    const Surroundings surroundings;
    for (auto _ : state) {
        const auto start = Clock::now();
        const pid_t bar = startBar();
        bool isSeen = false;
        while (!isSeen && Clock::now() - start < 10s) {
            std::this_thread::sleep_for(1ms);
            const std::uint32_t window = barWindowOf(x, bar);
            isSeen = window != XCB_NONE && isPainted(x, window);
        }
        state.SetIterationTime(std::chrono::duration<double>(Clock::now() - start).count());
        ::kill(bar, SIGTERM);
        ::waitpid(bar, nullptr, 0);
        if (!isSeen) return state.SkipWithError("the bar doesn't show itself");
    }
}
BENCHMARK(startToFirstFrame)->Unit(benchmark::kMillisecond)->UseManualTime()->Iterations(10);

}  // namespace
