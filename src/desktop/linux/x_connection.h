// One connection to the X server, with what several questions at once need: atoms, and properties as they come.
//
//     XConnection x;
//     if (!x) return;
//     const auto asked = x.askProperty(window, x.atom("_NET_WM_STATE"));   // ... others meanwhile
//     const std::vector<std::uint32_t> state = x.numbers(asked);
#pragma once

#include <xcb/xcb.h>

#include <array>
#include <cstdint>
#include <cstdlib>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace brindlet {

struct FreedByC {
    void operator()(void* memory) const { std::free(memory); }
};
template <class Reply>
using XReply = std::unique_ptr<Reply, FreedByC>;

class XConnection {
  public:
    // To the display that DISPLAY names, or that `display` does. Neither waits for a server that isn't there.
    explicit XConnection(const char* display = nullptr);
    ~XConnection();
    XConnection(const XConnection&) = delete;
    XConnection& operator=(const XConnection&) = delete;

    // False from the start, or since the server has gone: all answers are empty then.
    explicit operator bool() const;
    xcb_connection_t* raw() const { return connection_; }
    xcb_window_t root() const { return root_; }

    // Asked once each.
    xcb_atom_t atom(std::string_view name);

    xcb_get_property_cookie_t askProperty(xcb_window_t window, xcb_atom_t property) const;
    // Empty where the property, or the window, isn't there.
    std::vector<std::uint32_t> numbers(xcb_get_property_cookie_t asked) const;
    std::string text(xcb_get_property_cookie_t asked) const;

    // To the window manager, as the extended window manager hints have it.
    void sendToManager(xcb_window_t window, xcb_atom_t type, const std::array<std::uint32_t, 5>& data) const;

  private:
    XReply<xcb_get_property_reply_t> reply(xcb_get_property_cookie_t asked) const;

    xcb_connection_t* connection_;
    xcb_window_t root_ = XCB_NONE;
    std::map<std::string, xcb_atom_t, std::less<>> atoms_;
};

}  // namespace brindlet
