#include "desktop/linux/x_window_source.h"

#include <gtest/gtest.h>
#include <poll.h>
#include <xcb/xcb.h>

#include <cstring>
#include <filesystem>

#include "desktop/finder_window_tracker.h"
#include "platform/child_process.h"
#include "platform/main_loop.h"
#include "support/scratch_folder.h"
#include "text/strings.h"

namespace brindlet {

namespace x_window_source_tests {

using namespace std::chrono_literals;

// A display of its own with a window manager on it.
class Display {
  public:
    static constexpr const char* wanted[] = {"/usr/bin/Xvfb", "/usr/bin/openbox"};

    Display() {
        const char* script =
            "Xvfb -displayfd 3 -screen 0 1280x900x24 -nolisten tcp 3>display >/dev/null 2>&1 &\n"
            "for i in $(seq 300); do [ -s display ] && break; sleep 0.02; done\n"
            "export DISPLAY=:$(cat display)\n"
            "echo \"$DISPLAY\"\n"
            "exec openbox >/dev/null 2>&1\n";
        auto session = ChildProcess::start(
            {.arguments = {"/bin/sh", "-c", script},
             .folder = scratch_.path(),
             .environment = {{"PATH", "/usr/bin:/bin"}, {"LC_ALL", "C.UTF-8"}, {"HOME", scratch_.path().text()}}});
        if (!session) return;
        session_ = std::move(*session);
        std::string line;
        for (int tries = 0; tries < 100 && !contains(line, "\n"); ++tries) session_->read(line, 100ms);
        name = trimmed(line);
    }
    ~Display() {
        if (session_) session_->terminateGroup(true);
    }

    std::string name;

  private:
    ScratchFolder scratch_;
    std::unique_ptr<ChildProcess> session_;
};

// A program with windows that say they are a file manager's.
class StandIn {
  public:
    explicit StandIn(const std::string& display)
        : x_(::xcb_connect(display.c_str(), nullptr)), screen_(::xcb_setup_roots_iterator(::xcb_get_setup(x_)).data) {}
    ~StandIn() { ::xcb_disconnect(x_); }
    StandIn(const StandIn&) = delete;
    StandIn& operator=(const StandIn&) = delete;

    xcb_window_t open(std::string_view classes, const Rectangle& at, const char* type = nullptr) {
        const xcb_window_t window = ::xcb_generate_id(x_);
        ::xcb_create_window(x_, XCB_COPY_FROM_PARENT, window, screen_->root, short(at.x), short(at.y),
                            static_cast<std::uint16_t>(at.width), static_cast<std::uint16_t>(at.height), 0,
                            XCB_WINDOW_CLASS_INPUT_OUTPUT, screen_->root_visual, 0, nullptr);
        set(window, XCB_ATOM_WM_CLASS, XCB_ATOM_STRING, classes);
        set(window, atom("_NET_WM_NAME"), atom("UTF8_STRING"), "w - Thunar");
        const std::uint32_t hints[18] = {1 | 2, 0};  // the position and the size are the user's
        ::xcb_change_property(x_, XCB_PROP_MODE_REPLACE, window, XCB_ATOM_WM_NORMAL_HINTS, XCB_ATOM_WM_SIZE_HINTS, 32,
                              18, hints);
        if (type != nullptr) {
            const xcb_atom_t value = atom(type);
            ::xcb_change_property(x_, XCB_PROP_MODE_REPLACE, window, atom("_NET_WM_WINDOW_TYPE"), XCB_ATOM_ATOM, 32, 1,
                                  &value);
        }
        ::xcb_map_window(x_, window);
        ::xcb_flush(x_);
        return window;
    }
    void place(xcb_window_t window, const Rectangle& at) {
        const std::uint32_t values[] = {std::uint32_t(at.x), std::uint32_t(at.y), std::uint32_t(at.width),
                                        std::uint32_t(at.height)};
        ::xcb_configure_window(x_, window, 1 | 2 | 4 | 8, values);
        ::xcb_flush(x_);
    }
    void minimise(xcb_window_t window) {
        xcb_client_message_event_t message{};
        message.response_type = XCB_CLIENT_MESSAGE;
        message.format = 32;
        message.window = window;
        message.type = atom("WM_CHANGE_STATE");
        message.data.data32[0] = 3;
        ::xcb_send_event(x_, 0, screen_->root, XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT,
                         reinterpret_cast<const char*>(&message));
        ::xcb_flush(x_);
    }
    void close(xcb_window_t window) {
        ::xcb_destroy_window(x_, window);
        ::xcb_flush(x_);
    }

  private:
    void set(xcb_window_t window, xcb_atom_t property, xcb_atom_t type, std::string_view text) {
        ::xcb_change_property(x_, XCB_PROP_MODE_REPLACE, window, property, type, 8,
                              static_cast<std::uint32_t>(text.size()), text.data());
    }
    xcb_atom_t atom(const char* name) {
        auto* reply = ::xcb_intern_atom_reply(
            x_, ::xcb_intern_atom(x_, 0, static_cast<std::uint16_t>(std::strlen(name)), name), nullptr);
        const xcb_atom_t found = reply == nullptr ? xcb_atom_t{XCB_ATOM_NONE} : reply->atom;
        std::free(reply);
        return found;
    }

    xcb_connection_t* x_;
    xcb_screen_t* screen_;
};

// With another program's window. openbox leaves windows alone that come while it starts, though it says it is there.
bool isManaged(XWindowSource& source, StandIn& program) {
    for (int tries = 0; tries < 30; ++tries) {
        const xcb_window_t window = program.open(std::string_view("editor\0Editor\0", 14), {10, 10, 300, 300});
        for (int looks = 0; looks < 20; ++looks, ::poll(nullptr, 0, 20))
            if (source.canFollow() && !source.look().windows.empty()) return true;
        program.close(window);
    }
    return false;
}

TEST(XWindowSource, FollowsAWindowUnderAWindowManager) {
    for (const char* file : Display::wanted)
        if (!std::filesystem::exists(file)) GTEST_SKIP() << file << " isn't installed";
    const Display display;
    XWindowSource source(nullptr, display.name.c_str());
    StandIn program(display.name);
    ASSERT_TRUE(isManaged(source, program));

    PollLoop loop;
    WorkspaceNotifications workspace;
    FinderWindowTracker tracker(loop, source, workspace);
    std::vector<FinderWindowEvent> events;
    tracker.start([&](FinderWindowEvent event) { events.push_back(event); });
    loop.watch(source.descriptor(), [&] { source.readEvents(); });
    bool isLate = false;
    const auto hears = [&](FinderWindowEvent event) {
        isLate = false;
        loop.postAfter(5s, [&] { isLate = true; });
        const auto heard = [&] { return std::find(events.begin(), events.end(), event) != events.end(); };
        loop.runUntil([&] { return isLate || heard(); });
        const bool was = heard();
        events.clear();
        return was;
    };
    const auto becomes = [&](const std::optional<Rectangle>& bounds) {
        for (int tries = 0; tries < 100 && tracker.currentBounds() != bounds; ++tries) ::poll(nullptr, 0, 20);
        return tracker.currentBounds() == bounds;
    };

    constexpr std::string_view thunarClass("thunar\0Thunar\0", 14);
    program.open(thunarClass, {0, 0, 1280, 900}, "_NET_WM_WINDOW_TYPE_DESKTOP");
    const xcb_window_t folder = program.open(thunarClass, {100, 50, 800, 500});
    EXPECT_TRUE(hears(FinderWindowEvent::windowCreated));
    EXPECT_TRUE(becomes(Rectangle{100, 50, 802, 527}));  // with openbox's frame
    const auto details = source.frontFolderWindowDetails();
    ASSERT_TRUE(details);
    EXPECT_EQ(details->title, "w - Thunar");
    EXPECT_EQ(details->identifier, "org.xfce.Thunar");
    program.open(thunarClass, {200, 200, 300, 300}, "_NET_WM_WINDOW_TYPE_DIALOG");

    program.place(folder, {300, 200, 800, 500});
    EXPECT_TRUE(hears(FinderWindowEvent::windowMoved));
    program.place(folder, {300, 200, 600, 400});
    EXPECT_TRUE(hears(FinderWindowEvent::windowResized));
    EXPECT_TRUE(becomes(Rectangle{300, 200, 602, 427}));
    program.minimise(folder);
    EXPECT_TRUE(hears(FinderWindowEvent::windowMiniaturized));
    EXPECT_TRUE(becomes(std::nullopt));
    source.activate(folder);
    EXPECT_TRUE(hears(FinderWindowEvent::windowDeminiaturized));
    EXPECT_TRUE(becomes(Rectangle{300, 200, 602, 427}));
    EXPECT_TRUE(tracker.isFinderOrBrindletFrontmost());
    program.close(folder);
    EXPECT_TRUE(hears(FinderWindowEvent::windowDestroyed));
    EXPECT_EQ(tracker.currentBounds(), std::nullopt);
}

TEST(XWindowSource, SaysWhereThereIsNoDisplay) {
    XWindowSource source(nullptr, ":4071");
    EXPECT_FALSE(source.canFollow());
    EXPECT_TRUE(source.look().windows.empty());
    EXPECT_NE(source.watch([] {}), std::nullopt);
    EXPECT_FALSE(source.close(1));
    EXPECT_EQ(source.descriptor(), -1);
}

}  // namespace x_window_source_tests
}  // namespace brindlet
