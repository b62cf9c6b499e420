// A program with windows that say whose they are: a file manager's, or another's.
//
//     StandInProgram program(display);
//     const xcb_window_t folder = program.open(StandInProgram::thunar, {100, 50, 800, 500});
//     program.place(folder, {300, 200, 800, 500});
#pragma once

#include <poll.h>
#include <xcb/xcb.h>

#include <cstdlib>
#include <cstring>
#include <string>
#include <string_view>

#include "desktop/linux/x_window_source.h"

namespace brindlet {

class StandInProgram {
  public:
    static constexpr std::string_view thunar{"thunar\0Thunar\0", 14};
    static constexpr std::string_view editor{"editor\0Editor\0", 14};

    // `process` is what its windows say theirs is; 0: they don't say.
    explicit StandInProgram(const std::string& display, std::uint32_t process = 0)
        : x_(::xcb_connect(display.c_str(), nullptr)),
          screen_(::xcb_setup_roots_iterator(::xcb_get_setup(x_)).data),
          process_(process) {}
    ~StandInProgram() { ::xcb_disconnect(x_); }
    StandInProgram(const StandInProgram&) = delete;
    StandInProgram& operator=(const StandInProgram&) = delete;

    xcb_window_t open(std::string_view classes, const Rectangle& at, const char* type = nullptr) {
        const xcb_window_t window = ::xcb_generate_id(x_);
        ::xcb_create_window(x_, XCB_COPY_FROM_PARENT, window, screen_->root, short(at.x), short(at.y),
                            static_cast<std::uint16_t>(at.width), static_cast<std::uint16_t>(at.height), 0,
                            XCB_WINDOW_CLASS_INPUT_OUTPUT, screen_->root_visual, 0, nullptr);
        set(window, XCB_ATOM_WM_CLASS, XCB_ATOM_STRING, classes);
        set(window, atom("_NET_WM_NAME"), atom("UTF8_STRING"), "w - Thunar");
        if (process_ != 0) setNumbers(window, atom("_NET_WM_PID"), XCB_ATOM_CARDINAL, &process_, 1);
        const std::uint32_t hints[18] = {1 | 2, 0};  // the position and the size are the user's
        setNumbers(window, XCB_ATOM_WM_NORMAL_HINTS, XCB_ATOM_WM_SIZE_HINTS, hints, 18);
        if (type != nullptr) {
            const xcb_atom_t value = atom(type);
            setNumbers(window, atom("_NET_WM_WINDOW_TYPE"), XCB_ATOM_ATOM, &value, 1);
        }
        ::xcb_map_window(x_, window);
        ::xcb_flush(x_);
        return window;
    }
    // Another program's window, once it is the window manager's as well; 0 where that never comes. openbox leaves
    // windows alone that come while it starts, though it says it is there.
    xcb_window_t openManaged(XWindowSource& source) {
        for (int tries = 0; tries < 30; ++tries) {
            const xcb_window_t window = open(editor, {10, 10, 300, 300});
            for (int looks = 0; looks < 20; ++looks, ::poll(nullptr, 0, 20))
                if (source.canFollow() && !source.look().windows.empty()) return window;
            close(window);
        }
        return XCB_NONE;
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
    void setNumbers(xcb_window_t window, xcb_atom_t property, xcb_atom_t type, const std::uint32_t* numbers,
                    std::uint32_t count) {
        ::xcb_change_property(x_, XCB_PROP_MODE_REPLACE, window, property, type, 32, count, numbers);
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
    std::uint32_t process_;
};

}  // namespace brindlet
