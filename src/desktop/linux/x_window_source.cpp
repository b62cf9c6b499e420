#include "desktop/linux/x_window_source.h"

#include <unistd.h>

#include <algorithm>
#include <set>
#include <utility>

#include "desktop/file_managers.h"
#include "desktop/linux/x_connection.h"
#include "text/strings.h"

namespace brindlet {

namespace {

constexpr std::uint32_t everyDesktop = 0xFFFFFFFF;
constexpr std::uint32_t sourceIsPager = 2;  // acts for the user, so that no focus protection stands in the way

// What never changes about a window, or so seldom that word of it is waited for.
struct WindowNature {
    Application owner;
    bool isFolderWindow = false;
};

struct AskedNature {
    xcb_window_t window;
    xcb_get_property_cookie_t windowClass, process, type, transientFor;
};

struct AskedPlace {
    xcb_window_t window;
    xcb_get_property_cookie_t state, desktop, frameExtents, shadowExtents;
    xcb_get_window_attributes_cookie_t attributes;
    xcb_get_geometry_cookie_t geometry;
    xcb_translate_coordinates_cookie_t origin;
};

bool holdsNumber(const std::vector<std::uint32_t>& numbers, std::uint32_t number) {
    return std::find(numbers.begin(), numbers.end(), number) != numbers.end();
}

// Left, right, top, bottom; a negative `sign` takes them off.
void widen(Rectangle& frame, const std::vector<std::uint32_t>& extents, double sign) {
    if (extents.size() != 4) return;
    frame.x -= sign * extents[0];
    frame.y -= sign * extents[2];
    frame.width += sign * (double(extents[0]) + double(extents[1]));
    frame.height += sign * (double(extents[2]) + double(extents[3]));
}

Application ownerOf(const std::string& windowClass, pid_t process) {
    const auto names = split(windowClass, std::string_view("\0", 1));  // instance, class
    const std::string name = names.size() > 1 ? names[1] : "";
    if (process == ::getpid()) return {"Brindlet", std::string(brindletIdentifier)};
    if (const FileManager* manager = fileManagerOfClass(name))
        return {std::string(manager->name), std::string(manager->identifier)};
    return {name, name.empty() ? std::nullopt : std::optional(name)};
}

}  // namespace

struct XWindowSource::State {
    State(ToPoints convert, const char* display) : toPoints(std::move(convert)), asks(display), hears(display) {
        if (!asks) return;
        // In one go: asking for them one by one would cost a round trip each at the first look.
        for (const char* name :
             {"_NET_CLIENT_LIST_STACKING", "_NET_CLIENT_LIST", "_NET_ACTIVE_WINDOW", "_NET_CURRENT_DESKTOP",
              "_NET_SHOWING_DESKTOP", "_NET_WM_PID", "_NET_WM_WINDOW_TYPE", "_NET_WM_WINDOW_TYPE_NORMAL",
              "_NET_WM_STATE", "_NET_WM_STATE_HIDDEN", "_NET_WM_STATE_SKIP_TASKBAR", "_NET_WM_DESKTOP",
              "_NET_FRAME_EXTENTS", "_GTK_FRAME_EXTENTS"})
            asks.atom(name);
    }

    ToPoints toPoints;
    XConnection asks;
    XConnection hears;  // its events aren't lost among the answers of the other
    std::map<xcb_window_t, WindowNature> natures{};
    std::set<xcb_window_t> watched{};
    std::function<void()> onChange{};

    xcb_get_property_cookie_t ask(xcb_window_t window, std::string_view property) {
        return asks.askProperty(window, asks.atom(property));
    }
    std::optional<std::uint32_t> firstNumber(xcb_get_property_cookie_t asked) const {
        const auto numbers = asks.numbers(asked);
        return numbers.empty() ? std::nullopt : std::optional(numbers.front());
    }

    WindowsLook look() {
        WindowsLook seen;
        if (!asks) return seen;
        const xcb_window_t root = asks.root();
        const auto stacking = ask(root, "_NET_CLIENT_LIST_STACKING");
        const auto clients = ask(root, "_NET_CLIENT_LIST");
        const auto active = ask(root, "_NET_ACTIVE_WINDOW");
        const auto desktop = ask(root, "_NET_CURRENT_DESKTOP");
        const auto showingDesktop = ask(root, "_NET_SHOWING_DESKTOP");
        std::vector<xcb_window_t> windows = asks.numbers(stacking);
        // xfwm4 4.18 tells no stacking until a window was first raised.
        const std::vector<xcb_window_t> inOrderOfMapping = asks.numbers(clients);
        if (windows.empty()) windows = inOrderOfMapping;
        std::reverse(windows.begin(), windows.end());
        seen.activeWindow = firstNumber(active).value_or(XCB_NONE);
        seen.desktop = firstNumber(desktop);
        seen.isShowingDesktop = firstNumber(showingDesktop).value_or(0) == 1;
        learnNatures(windows);
        for (const xcb_window_t window : windows) {
            const WindowNature& nature = natures.at(window);
            seen.windows.push_back(
                {.id = window, .owner = nature.owner, .isFolderWindow = nature.isFolderWindow, .frame = {}});
        }
        if (const auto nature = natures.find(seen.activeWindow); nature != natures.end())
            seen.frontmost = nature->second.owner;
        place(seen);
        return seen;
    }

    void learnNatures(const std::vector<xcb_window_t>& windows) {
        const std::set<xcb_window_t> present(windows.begin(), windows.end());
        std::erase_if(natures, [&](const auto& entry) { return !present.contains(entry.first); });
        std::vector<AskedNature> asked;
        for (const xcb_window_t window : present)
            if (!natures.contains(window))
                asked.push_back({window, asks.askProperty(window, XCB_ATOM_WM_CLASS), ask(window, "_NET_WM_PID"),
                                 ask(window, "_NET_WM_WINDOW_TYPE"),
                                 asks.askProperty(window, XCB_ATOM_WM_TRANSIENT_FOR)});
        for (const AskedNature& each : asked) natures.emplace(each.window, natureOf(each));
    }

    WindowNature natureOf(const AskedNature& asked) {
        const std::string windowClass = asks.text(asked.windowClass);
        const auto process = static_cast<pid_t>(firstNumber(asked.process).value_or(0));
        const auto types = asks.numbers(asked.type);
        const bool isTransient = firstNumber(asked.transientFor).value_or(XCB_NONE) != XCB_NONE;
        WindowNature nature{.owner = ownerOf(windowClass, process)};
        const bool isNormal = types.empty() || types.front() == asks.atom("_NET_WM_WINDOW_TYPE_NORMAL");
        nature.isFolderWindow = nature.owner.bundleIdentifier &&
                                fileManagerOfIdentifier(*nature.owner.bundleIdentifier) != nullptr && isNormal &&
                                !isTransient;
        return nature;
    }

    void place(WindowsLook& seen) {
        std::vector<AskedPlace> asked;
        for (const SeenWindow& window : seen.windows) {
            if (!window.isFolderWindow) continue;
            asked.push_back({window.id, ask(window.id, "_NET_WM_STATE"), ask(window.id, "_NET_WM_DESKTOP"),
                             ask(window.id, "_NET_FRAME_EXTENTS"), ask(window.id, "_GTK_FRAME_EXTENTS"),
                             ::xcb_get_window_attributes(asks.raw(), window.id),
                             ::xcb_get_geometry(asks.raw(), window.id),
                             ::xcb_translate_coordinates(asks.raw(), window.id, asks.root(), 0, 0)});
        }
        std::size_t at = 0;
        for (SeenWindow& window : seen.windows)
            if (window.isFolderWindow) place(window, asked[at++], seen.desktop);
    }

    void place(SeenWindow& window, const AskedPlace& asked, std::optional<std::uint32_t> currentDesktop) {
        const auto state = asks.numbers(asked.state);
        const auto desktop = firstNumber(asked.desktop);
        const auto frameExtents = asks.numbers(asked.frameExtents);
        const auto shadowExtents = asks.numbers(asked.shadowExtents);
        const XReply<xcb_get_window_attributes_reply_t> attributes(
            ::xcb_get_window_attributes_reply(asks.raw(), asked.attributes, nullptr));
        const XReply<xcb_get_geometry_reply_t> geometry(::xcb_get_geometry_reply(asks.raw(), asked.geometry, nullptr));
        const XReply<xcb_translate_coordinates_reply_t> origin(
            ::xcb_translate_coordinates_reply(asks.raw(), asked.origin, nullptr));
        window.isFolderWindow =
            attributes && geometry && origin && !holdsNumber(state, asks.atom("_NET_WM_STATE_SKIP_TASKBAR"));
        if (!window.isFolderWindow) return;
        window.isMiniaturized = holdsNumber(state, asks.atom("_NET_WM_STATE_HIDDEN"));
        const bool isHere = !desktop || !currentDesktop || *desktop == everyDesktop || *desktop == *currentDesktop;
        window.isOnScreen = isHere && attributes->map_state == XCB_MAP_STATE_VIEWABLE;
        Rectangle frame{double(origin->dst_x), double(origin->dst_y), double(geometry->width),
                        double(geometry->height)};
        widen(frame, frameExtents, 1);
        widen(frame, shadowExtents, -1);
        window.frame = toPoints ? toPoints(frame) : frame;
    }

    // A window that is gone by now answers with an error, which arrives among the events and is passed over there.
    void select(xcb_window_t window, std::uint32_t events) {
        ::xcb_change_window_attributes(hears.raw(), window, XCB_CW_EVENT_MASK, &events);
    }

    void watchFolderWindows() {
        std::set<xcb_window_t> present;
        for (const auto& [window, nature] : natures) {
            if (!nature.isFolderWindow) continue;
            present.insert(window);
            if (!watched.contains(window))
                select(window, XCB_EVENT_MASK_PROPERTY_CHANGE | XCB_EVENT_MASK_STRUCTURE_NOTIFY);
        }
        watched = std::move(present);
        ::xcb_flush(hears.raw());
    }

    bool concernsUs(const xcb_generic_event_t& event) {
        const int type = event.response_type & 0x7F;
        if (type != XCB_PROPERTY_NOTIFY) return type != 0;
        const auto& property = reinterpret_cast<const xcb_property_notify_event_t&>(event);
        if (property.window == asks.root())
            return std::ranges::any_of(
                std::initializer_list<const char*>{"_NET_CLIENT_LIST", "_NET_CLIENT_LIST_STACKING",
                                                   "_NET_ACTIVE_WINDOW", "_NET_CURRENT_DESKTOP",
                                                   "_NET_SHOWING_DESKTOP"},
                [&](const char* name) { return asks.atom(name) == property.atom; });
        if (property.atom == asks.atom("_NET_WM_WINDOW_TYPE") || property.atom == XCB_ATOM_WM_TRANSIENT_FOR)
            natures.erase(property.window);
        return property.atom != asks.atom("_NET_WM_USER_TIME");  // with each key
    }
};

XWindowSource::XWindowSource(ToPoints toPoints, const char* display)
    : state_(std::make_unique<State>(std::move(toPoints), display)) {}

XWindowSource::~XWindowSource() = default;

bool XWindowSource::canFollow() {
    State& x = *state_;
    if (!x.asks) return false;
    const auto supported = x.asks.numbers(x.ask(x.asks.root(), "_NET_SUPPORTED"));
    return holdsNumber(supported, x.asks.atom("_NET_CLIENT_LIST_STACKING")) &&
           holdsNumber(supported, x.asks.atom("_NET_ACTIVE_WINDOW"));
}

std::optional<FolderWindowDetails> XWindowSource::frontFolderWindowDetails() {
    const WindowsLook seen = look();
    const SeenWindow* front = frontFolderWindow(seen);
    if (front == nullptr) return std::nullopt;
    State& x = *state_;
    const auto process = x.ask(front->id, "_NET_WM_PID");
    const auto title = x.ask(front->id, "_NET_WM_NAME");
    const auto plainTitle = x.asks.askProperty(front->id, XCB_ATOM_WM_NAME);
    const auto objectPath = x.ask(front->id, "_GTK_WINDOW_OBJECT_PATH");
    // On the window itself, or on one of its own where the window manager knows of that; GTK goes by that.
    const auto userTime = x.ask(front->id, "_NET_WM_USER_TIME");
    const auto timeWindow = x.ask(front->id, "_NET_WM_USER_TIME_WINDOW");
    FolderWindowDetails details{.id = front->id, .identifier = front->owner.bundleIdentifier.value_or("")};
    details.process = static_cast<pid_t>(x.firstNumber(process).value_or(0));
    details.title = x.asks.text(title);
    const std::string plain = x.asks.text(plainTitle);
    if (details.title.empty()) details.title = plain;
    details.objectPath = x.asks.text(objectPath);
    details.userTime = x.firstNumber(userTime).value_or(0);
    if (const auto window = x.firstNumber(timeWindow))
        details.userTime = std::max(details.userTime, x.firstNumber(x.ask(*window, "_NET_WM_USER_TIME")).value_or(0));
    details.isActive = seen.activeWindow == front->id;
    return details;
}

WindowsLook XWindowSource::look() {
    WindowsLook seen = state_->look();
    if (state_->onChange) state_->watchFolderWindows();
    return seen;
}

std::optional<Failure> XWindowSource::watch(std::function<void()> onChange) {
    if (!canFollow() || !state_->hears)
        return Failure{"Windows can't be followed: no X11 window manager tells of them."};
    state_->onChange = std::move(onChange);
    state_->select(state_->hears.root(), XCB_EVENT_MASK_PROPERTY_CHANGE);
    look();
    return std::nullopt;
}

bool XWindowSource::close(WindowId window) {
    if (!state_->asks) return false;
    state_->asks.sendToManager(window, state_->asks.atom("_NET_CLOSE_WINDOW"), {XCB_CURRENT_TIME, sourceIsPager});
    return true;
}

void XWindowSource::activate(WindowId window) {
    if (!state_->asks) return;
    state_->asks.sendToManager(window, state_->asks.atom("_NET_ACTIVE_WINDOW"), {sourceIsPager, XCB_CURRENT_TIME});
}

int XWindowSource::descriptor() const {
    return state_->hears ? ::xcb_get_file_descriptor(state_->hears.raw()) : -1;
}

void XWindowSource::readEvents() {
    bool hasChange = false;
    while (const XReply<xcb_generic_event_t> event{::xcb_poll_for_event(state_->hears.raw())})
        hasChange = state_->concernsUs(*event) || hasChange;
    if (hasChange && state_->onChange) state_->onChange();
}

}  // namespace brindlet
