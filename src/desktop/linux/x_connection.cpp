#include "desktop/linux/x_connection.h"

#include <algorithm>

namespace brindlet {

namespace {

// In units of four bytes. A title can be as long as its program likes.
constexpr std::uint32_t longestProperty = 4096;

}  // namespace

XConnection::XConnection(const char* display) {
    int preferred = 0;
    connection_ = ::xcb_connect(display, &preferred);
    if (::xcb_connection_has_error(connection_) != 0) return;
    auto screens = ::xcb_setup_roots_iterator(::xcb_get_setup(connection_));
    for (; preferred > 0 && screens.rem > 1; --preferred) ::xcb_screen_next(&screens);
    if (screens.rem > 0) root_ = screens.data->root;
}

XConnection::~XConnection() {
    ::xcb_disconnect(connection_);
}

XConnection::operator bool() const {
    return root_ != XCB_NONE && ::xcb_connection_has_error(connection_) == 0;
}

xcb_atom_t XConnection::atom(std::string_view name) {
    if (const auto known = atoms_.find(name); known != atoms_.end()) return known->second;
    const auto asked = ::xcb_intern_atom(connection_, 0, static_cast<std::uint16_t>(name.size()), name.data());
    const XReply<xcb_intern_atom_reply_t> answer(::xcb_intern_atom_reply(connection_, asked, nullptr));
    return atoms_.emplace(name, answer ? answer->atom : xcb_atom_t{XCB_ATOM_NONE}).first->second;
}

xcb_get_property_cookie_t XConnection::askProperty(xcb_window_t window, xcb_atom_t property) const {
    return ::xcb_get_property(connection_, 0, window, property, XCB_GET_PROPERTY_TYPE_ANY, 0, longestProperty);
}

XReply<xcb_get_property_reply_t> XConnection::reply(xcb_get_property_cookie_t asked) const {
    return XReply<xcb_get_property_reply_t>(::xcb_get_property_reply(connection_, asked, nullptr));
}

std::vector<std::uint32_t> XConnection::numbers(xcb_get_property_cookie_t asked) const {
    const auto answer = reply(asked);
    if (!answer || answer->format != 32) return {};
    const auto* first = static_cast<const std::uint32_t*>(::xcb_get_property_value(answer.get()));
    return {first, first + answer->value_len};
}

std::string XConnection::text(xcb_get_property_cookie_t asked) const {
    const auto answer = reply(asked);
    if (!answer || answer->format != 8) return "";
    const auto* first = static_cast<const char*>(::xcb_get_property_value(answer.get()));
    return {first, answer->value_len};
}

void XConnection::sendToManager(xcb_window_t window, xcb_atom_t type, const std::array<std::uint32_t, 5>& data) const {
    xcb_client_message_event_t message{};
    message.response_type = XCB_CLIENT_MESSAGE;
    message.format = 32;
    message.window = window;
    message.type = type;
    std::copy(data.begin(), data.end(), message.data.data32);
    ::xcb_send_event(connection_, 0, root_, XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT | XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY,
                     reinterpret_cast<const char*>(&message));
    ::xcb_flush(connection_);
}

}  // namespace brindlet
