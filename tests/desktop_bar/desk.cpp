#include "desktop_bar/desk.h"

#include <atspi/atspi.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <thread>
#include <utility>

#include "platform/linux/forked_task.h"

namespace brindlet {

namespace {

using namespace std::chrono_literals;
using DeskClock = std::chrono::steady_clock;

constexpr auto deskPatience = 20s;
constexpr auto lookPause = 20ms;
constexpr auto betweenPresses = 500ms;
constexpr auto watchedTime = 5s;
constexpr auto longestReading = 5s;
constexpr int deepestItem = 24;
constexpr int mostChildren = 200;

// A line for each: role, place, states, name. In a process of its own, which ends before anything is freed.
void describe(AtspiAccessible* item, int depth, std::string& lines) {
    if (item == nullptr || depth > deepestItem) return;
    AtspiStateSet* states = atspi_accessible_get_state_set(item);
    AtspiComponent* component = atspi_accessible_get_component_iface(item);
    if (component != nullptr && states != nullptr && atspi_state_set_contains(states, ATSPI_STATE_SHOWING)) {
        const AtspiRect* place = atspi_component_get_extents(component, ATSPI_COORD_TYPE_SCREEN, nullptr);
        const char* name = atspi_accessible_get_name(item, nullptr);
        const char* role = atspi_accessible_get_role_name(item, nullptr);
        if (place != nullptr && name != nullptr && role != nullptr) {
            lines.append(role);
            for (const int number : {place->x, place->y, place->width, place->height,
                                     int{atspi_state_set_contains(states, ATSPI_STATE_SELECTED)},
                                     int{atspi_state_set_contains(states, ATSPI_STATE_FOCUSED)}})
                lines.append("\t").append(std::to_string(number));
            lines.append("\t").append(replacedAll(name, "\n", " ")) += '\n';
        }
    }
    const int children = std::min(atspi_accessible_get_child_count(item, nullptr), mostChildren);
    for (int at = 0; at < children; ++at)
        describe(atspi_accessible_get_child_at_index(item, at, nullptr), depth + 1, lines);
}

std::string describeProgram(const Environment& environment, pid_t process) {
    for (const auto& [name, value] : environment) ::setenv(name.c_str(), value.c_str(), 1);
    atspi_init();
    std::string lines;
    AtspiAccessible* desktop = atspi_get_desktop(0);
    const int programs = atspi_accessible_get_child_count(desktop, nullptr);
    for (int at = 0; at < programs; ++at) {
        AtspiAccessible* program = atspi_accessible_get_child_at_index(desktop, at, nullptr);
        if (program == nullptr || static_cast<pid_t>(atspi_accessible_get_process_id(program, nullptr)) != process)
            continue;
        describe(program, 0, lines);
    }
    return lines;
}

// The fields of /proc/PID/stat (proc(5)) from the third on, behind the name in parentheses; empty for one that is gone.
std::vector<std::string> processFields(const std::string& process) {
    std::ifstream file("/proc/" + process + "/stat");
    const std::string line{std::istreambuf_iterator<char>(file), {}};
    const std::size_t nameEnd = line.rfind(')');
    return nameEnd == std::string::npos ? std::vector<std::string>{} : splitNonEmpty(line.substr(nameEnd + 1), " ");
}

// Of all processes of that group so far.
double processorSeconds(pid_t group) {
    constexpr std::size_t groupField = 2, userTimeField = 11, systemTimeField = 12;
    std::int64_t ticks = 0;
    for (const auto& entry : std::filesystem::directory_iterator("/proc")) {
        const std::string name = entry.path().filename().string();
        const auto fields = parsedInteger(name) ? processFields(name) : std::vector<std::string>{};
        if (fields.size() <= systemTimeField || parsedInteger(fields[groupField]) != group) continue;
        for (const std::size_t field : {userTimeField, systemTimeField})
            ticks += parsedInteger(fields[field]).value_or(0);
    }
    return double(ticks) / double(::sysconf(_SC_CLK_TCK));
}

}  // namespace

Desk::Desk(std::string_view settings)
    : session_(DesktopSession::Bus::own),
      windows_(nullptr, session_.display().c_str()),
      x_(session_.display().c_str()),
      otherProgram_(session_.display()) {
    environment = session_.environment();
    environment["SHELL"] = "/bin/false";  // no login shell of this machine has a say
    environment["BRINDLET_SECRETS"] = "file";
    environment["BRINDLET_DATA_HOME"] = home().path("brindlet/data").text();
    environment["BRINDLET_CONFIG_HOME"] = home().path("brindlet/config").text();
    if (!settings.empty()) home().write("brindlet/config/settings.json", settings);
    if (display().empty())
        problem_ = "the display doesn't come up";
    else if ((otherWindow_ = otherProgram_.openManaged(windows_)) == XCB_NONE)
        problem_ = "the window manager doesn't come up";
}

std::string Desk::missing(const std::vector<std::string>& programs) {
    std::vector<std::string> all(std::begin(DesktopSession::wanted), std::end(DesktopSession::wanted));
    all.insert(all.end(), {"/usr/bin/xdotool", "/usr/bin/dbus-daemon"});
    all.insert(all.end(), programs.begin(), programs.end());
    const auto absent =
        std::ranges::find_if(all, [](const std::string& file) { return !std::filesystem::exists(file); });
    return absent == all.end() ? "" : *absent;
}

std::unique_ptr<ChildProcess> Desk::start(std::vector<std::string> words) const {
    auto started = ChildProcess::start({.arguments = std::move(words), .folder = folder(), .environment = environment});
    return started ? std::move(*started) : nullptr;
}

std::optional<int> Desk::endOf(ChildProcess& process) const {
    becomes([&] { return process.exitStatus().has_value(); });
    return process.exitStatus();
}

std::string Desk::outputOf(std::vector<std::string> words) const {
    const auto program = start(std::move(words));
    if (!program) return "it can't be started";
    std::string output;
    const auto limit = DeskClock::now() + deskPatience;
    while (program->read(output, lookPause) != ReadState::ended && DeskClock::now() < limit) {
    }
    const auto status = endOf(*program);
    if (!status) return "it doesn't end";
    return *status == 0 ? output : "it ends with " + std::to_string(*status);
}

std::optional<int> Desk::callBar(const std::vector<std::string>& words) const {
    std::vector<std::string> all{BRINDLET_PROGRAM, "bar"};
    all.insert(all.end(), words.begin(), words.end());
    const auto program = start(std::move(all));
    return program ? endOf(*program) : std::nullopt;
}

void Desk::startBar() {
    barProgram_ = start({BRINDLET_PROGRAM, "bar"});
}

bool Desk::barStandsAt(const Rectangle& frame) {
    return becomes([&] {
        const auto window = bar();
        return window && frameOf(*window) == frame;
    });
}

std::optional<WindowId> Desk::windowTitled(std::string_view title) {
    for (const WindowId window : stacking())
        if (x_.text(x_.askProperty(window, x_.atom("_NET_WM_NAME"))) == title) return window;
    return std::nullopt;
}

Rectangle Desk::frameOf(WindowId window) const {
    const auto askedSize = ::xcb_get_geometry(x_.raw(), window);
    const auto askedOrigin = ::xcb_translate_coordinates(x_.raw(), window, x_.root(), 0, 0);
    const XReply<xcb_get_geometry_reply_t> size(::xcb_get_geometry_reply(x_.raw(), askedSize, nullptr));
    const XReply<xcb_translate_coordinates_reply_t> origin(
        ::xcb_translate_coordinates_reply(x_.raw(), askedOrigin, nullptr));
    if (!size || !origin) return {};
    return {double(origin->dst_x), double(origin->dst_y), double(size->width), double(size->height)};
}

pid_t Desk::processOf(WindowId window) {
    const auto numbers = x_.numbers(x_.askProperty(window, x_.atom("_NET_WM_PID")));
    return numbers.empty() ? 0 : static_cast<pid_t>(numbers.front());
}

std::vector<WindowId> Desk::stacking() {
    std::vector<WindowId> stack;
    for (const SeenWindow& window : windows_.look().windows) stack.push_back(window.id);
    return stack;
}

std::vector<ShownItem> Desk::shownBy(pid_t process) const {
    const auto lines = runForked(longestReading, [&] { return describeProgram(environment, process); });
    std::vector<ShownItem> items;
    for (const std::string& line : splitNonEmpty(lines.value_or(""), "\n")) {
        const auto fields = split(line, "\t");
        if (fields.size() < 8) continue;
        const auto number = [&](std::size_t at) { return double(parsedInteger(fields[at]).value_or(0)); };
        items.push_back({.role = fields[0],
                         .name = fields[7],
                         .place = {number(1), number(2), number(3), number(4)},
                         .isSelected = fields[5] == "1",
                         .isFocused = fields[6] == "1"});
    }
    return items;
}

std::optional<ShownItem> Desk::shownBy(pid_t process, std::string_view name) const {
    for (ShownItem& item : shownBy(process))
        if (item.name == name) return std::move(item);
    return std::nullopt;
}

double Desk::loadOf(pid_t process) const {
    const pid_t group = ::getpgid(process);
    const auto begin = DeskClock::now();
    const double before = processorSeconds(group);
    std::this_thread::sleep_for(watchedTime);
    return (processorSeconds(group) - before) / std::chrono::duration<double>(DeskClock::now() - begin).count();
}

double Desk::residentMebibytesOf(pid_t process) const {
    std::ifstream file("/proc/" + std::to_string(process) + "/statm");
    double all = 0;
    double resident = 0;
    file >> all >> resident;
    return resident * double(::sysconf(_SC_PAGESIZE)) / (1024 * 1024);
}

void Desk::xdotool(std::vector<std::string> words) const {
    words.insert(words.begin(), "/usr/bin/xdotool");
    outputOf(std::move(words));
}

bool Desk::showsFocus(WindowId window) {
    return std::ranges::any_of(shownBy(processOf(window)), &ShownItem::isFocused);
}

bool Desk::hasBarKeyboard() {
    return becomes([&] {
        const auto window = bar();
        return window && activeWindow() == window && showsFocus(*window);
    });
}

bool Desk::otherWindowHasKeyboard() {
    return becomes([&] {
        const auto window = bar();
        return activeWindow() == otherWindow_ && (!window || !showsFocus(*window));
    });
}

bool Desk::becomesByConfirming(const std::function<bool()>& holds) {
    auto nextPress = DeskClock::now();
    return becomes([&] {
        if (holds()) return true;
        if (DeskClock::now() < nextPress || !windowTitled("Brindlet prediction")) return false;
        press("Return");
        nextPress = DeskClock::now() + betweenPresses;
        return false;
    });
}

void Desk::press(const std::string& keys) const {
    xdotool({"key", keys});
}

void Desk::type(const std::string& text) const {
    xdotool({"type", text});
}

void Desk::click(const Point& point, bool adds) const {
    std::vector<std::string> words{"mousemove", std::to_string(int(point.x)), std::to_string(int(point.y))};
    if (adds) words.insert(words.end(), {"keydown", "ctrl"});
    words.insert(words.end(), {"click", "1"});
    if (adds) words.insert(words.end(), {"keyup", "ctrl"});
    xdotool(std::move(words));
}

bool Desk::becomes(const std::function<bool()>& holds) {
    const auto limit = DeskClock::now() + deskPatience;
    while (!holds()) {
        if (DeskClock::now() >= limit) return false;
        std::this_thread::sleep_for(lookPause);
    }
    return true;
}

}  // namespace brindlet
