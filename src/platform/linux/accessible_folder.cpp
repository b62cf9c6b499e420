#include "platform/linux/accessible_folder.h"

#include <algorithm>
#include <map>
#include <utility>

#include "platform/linux/atspi_library.h"

namespace brindlet {

namespace {

// A window of the file managers that were looked at has 200 to 700 objects beside its items, 25 deep.
constexpr int deepestWindow = 60;
constexpr int mostWindowObjects = 5000;
// The text of an item is up to six objects below it (Nautilus).
constexpr int deepestItem = 8;
constexpr int mostNameColumns = 12;
constexpr int longestShownPath = 8192;

const AtspiLibrary& atspi() {
    return *AtspiLibrary::load();
}

struct Unreferencing {
    void operator()(void* object) const { atspi().unref(object); }
};
template <class Interface>
using Owned = std::unique_ptr<Interface, Unreferencing>;

Accessible owned(AtspiAccessible* object) {
    return object == nullptr ? nullptr : Accessible(object, Unreferencing());
}

bool isOver(TimeLimit limit) {
    return std::chrono::steady_clock::now() >= limit;
}

std::string takenText(gchar* text) {
    std::string taken = text == nullptr ? "" : text;
    atspi().freeText(text);
    return taken;
}

// 0 where the program doesn't answer.
int childCount(const Accessible& object) {
    return std::max(0, atspi().childCount(object.get(), nullptr));
}

Accessible childAt(const Accessible& object, int index) {
    return owned(atspi().childAt(object.get(), index, nullptr));
}

bool hasState(const Accessible& object, AtspiStateType state) {
    atspi().clearCache(object.get());
    const Owned<AtspiStateSet> states(atspi().stateSet(object.get()));
    return states && atspi().contains(states.get(), state) != 0;
}

std::string textOf(const Accessible& object) {
    const Owned<AtspiText> text(atspi().text(object.get()));
    return text ? takenText(atspi().textBetween(text.get(), 0, longestShownPath, nullptr)) : "";
}

std::string nameOf(const Accessible& object) {
    return takenText(atspi().name(object.get(), nullptr));
}

// GTK 4 names what has no name after its type, and GTK 2 names no icons: the text is right everywhere.
std::string firstTextBelow(const Accessible& object, int depth, TimeLimit limit) {
    std::string text = textOf(object);
    if (!text.empty() || depth == 0) return text;
    const int count = childCount(object);
    for (int at = 0; at < count && text.empty() && !isOver(limit); ++at)
        if (const Accessible child = childAt(object, at)) text = firstTextBelow(child, depth - 1, limit);
    return text;
}

std::string itemName(const Accessible& item, TimeLimit limit) {
    if (!item) return "";
    std::string text = firstTextBelow(item, deepestItem, limit);
    return text.empty() ? nameOf(item) : text;
}

// Path buttons from the root down to the pressed one. GTK 3 lists them from the innermost outwards.
class PathButtons {
  public:
    void add(const Accessible& button) {
        const bool isPressed = hasState(button, ATSPI_STATE_CHECKED) || hasState(button, ATSPI_STATE_PRESSED);
        if (isPressed) isBelow_ = true;
        if (isBelow_) names_.insert(names_.begin(), nameOf(button));
    }

    std::optional<FilePath> folder(const FilePath& home) const {
        if (names_.size() < 2) return std::nullopt;
        const bool isFromRoot = names_.front().empty() || names_.front() == "/";
        if (!isFromRoot && names_.front() != home.name() && names_.front() != "Home") return std::nullopt;
        FilePath folder = isFromRoot ? FilePath() : home;
        for (std::size_t at = 1; at < names_.size(); ++at) {
            if (names_[at].empty()) return std::nullopt;  // buttons for something else
            folder = folder.child(names_[at]);
        }
        return folder;
    }

  private:
    bool isBelow_ = false;
    std::vector<std::string> names_;
};

class WindowReader {
  public:
    WindowReader(const FilePath& home, TimeLimit limit) : home_(home), limit_(limit) {}

    FolderWindow read(const Accessible& window) {
        readBelow(window, 0, 0);
        FolderWindow shown;
        // The bar at the side has items too, but less room. What has the most room may have no items that can be
        // asked for, and then the side bar must not stand in for it.
        if (viewRoom_ == mostRoom_ && viewsOfThatRoom_ == 1) shown.view = std::move(view_);
        std::sort(folders_.begin(), folders_.end());
        folders_.erase(std::unique(folders_.begin(), folders_.end()), folders_.end());
        shown.folders = std::move(folders_);
        return shown;
    }

  private:
    // `room` is the area of the innermost object around it that scrolls.
    void readBelow(const Accessible& object, long room, int depth) {
        PathButtons buttons;
        const int count = childCount(object);
        for (int at = 0; at < count && depth < deepestWindow && readCount_ < mostWindowObjects; ++at) {
            if (isOver(limit_)) return;
            ++readCount_;
            const Accessible child = childAt(object, at);
            if (!child) continue;
            const AtspiRole role = atspi().role(child.get(), nullptr);
            if (role == ATSPI_ROLE_TOGGLE_BUTTON) buttons.add(child);
            readChild(child, role, room, depth);
        }
        if (const auto folder = buttons.folder(home_)) folders_.push_back(*folder);
    }

    void readChild(const Accessible& child, AtspiRole role, long room, int depth) {
        switch (role) {
            case ATSPI_ROLE_MENU_BAR:
            case ATSPI_ROLE_MENU:
            case ATSPI_ROLE_SCROLL_BAR:
                return;
            case ATSPI_ROLE_PAGE_TAB:  // the other tabs of the window
                if (!hasState(child, ATSPI_STATE_SELECTED)) return;
                break;
            case ATSPI_ROLE_ENTRY:
            case ATSPI_ROLE_TEXT:
                if (const std::string text = textOf(child); text.starts_with('/')) folders_.emplace_back(text);
                return;
            case ATSPI_ROLE_SCROLL_PANE:
            case ATSPI_ROLE_DIRECTORY_PANE:
                room = area(child);
                mostRoom_ = std::max(mostRoom_, room);
                break;
            case ATSPI_ROLE_LAYERED_PANE:
            case ATSPI_ROLE_TABLE:
            case ATSPI_ROLE_TREE_TABLE:
            case ATSPI_ROLE_LIST:
                if (Owned<AtspiSelection>(atspi().selection(child.get()))) return consider(child, room);
                break;  // GTK 4 has a list of rows in a table of columns
            default:
                break;
        }
        readBelow(child, room, depth + 1);
    }

    void consider(const Accessible& view, long room) {
        // GTK 4 may give the shown child of a stack once for each of its pages.
        if (room == 0 || room < viewRoom_ || view == view_) return;
        viewsOfThatRoom_ = room == viewRoom_ ? viewsOfThatRoom_ + 1 : 1;
        viewRoom_ = room;
        view_ = view;
    }

    static long area(const Accessible& object) {
        const Owned<AtspiComponent> component(atspi().component(object.get()));
        if (!component) return 0;
        AtspiRect* bounds = atspi().extents(component.get(), ATSPI_COORD_TYPE_WINDOW, nullptr);
        if (bounds == nullptr) return 0;
        const long area = std::max(0L, long{bounds->width}) * std::max(0L, long{bounds->height});
        atspi().freeText(bounds);
        return area;
    }

    const FilePath& home_;
    TimeLimit limit_;
    int readCount_ = 0;
    long mostRoom_ = 0;
    long viewRoom_ = 0;
    int viewsOfThatRoom_ = 0;
    Accessible view_;
    std::vector<FilePath> folders_;
};

using PlacesByName = std::map<std::string_view, std::vector<int>>;

// Where each of the wanted names stands, by `nameAt(index)`.
template <class NameAt>
PlacesByName placesOf(const std::vector<std::string>& names, int count, TimeLimit limit, const NameAt& nameAt) {
    PlacesByName places;
    for (const std::string& name : names) places[name];
    for (int at = 0; at < count && !isOver(limit); ++at)
        if (const auto found = places.find(nameAt(at)); found != places.end()) found->second.push_back(at);
    return places;
}

// In rising order; none where a name is missing, or stands there twice, so that nobody could tell which is meant.
std::optional<std::vector<int>> onePlaceEach(const PlacesByName& places) {
    std::vector<int> all;
    for (const auto& [name, here] : places) {
        if (here.size() != 1) return std::nullopt;
        all.push_back(here.front());
    }
    std::sort(all.begin(), all.end());
    return all;
}

std::string cellName(AtspiTable* table, int row, int column, TimeLimit limit) {
    return itemName(owned(atspi().cellAt(table, row, column, nullptr)), limit);
}

// Mostly the first column has the names, but the user may have moved it.
std::optional<std::vector<int>> rowsOf(const std::vector<std::string>& names, AtspiTable* table, TimeLimit limit) {
    const int columns = std::min(atspi().columnCount(table, nullptr), mostNameColumns);
    const int count = atspi().rowCount(table, nullptr);
    for (int column = 0; column < columns; ++column) {
        const PlacesByName places =
            placesOf(names, count, limit, [&](int row) { return cellName(table, row, column, limit); });
        if (std::any_of(places.begin(), places.end(), [](const auto& place) { return !place.second.empty(); }))
            return onePlaceEach(places);
    }
    return std::nullopt;
}

std::optional<std::vector<int>> selectedRows(AtspiTable* table) {
    GArray* rows = atspi().selectedRows(table, nullptr);
    if (rows == nullptr) return std::nullopt;
    std::vector<int> selected;
    for (guint at = 0; at < rows->len; ++at) selected.push_back(g_array_index(rows, gint, at));
    atspi().unrefArray(rows);
    std::sort(selected.begin(), selected.end());
    return selected;
}

bool selectOnlyRows(AtspiTable* table, AtspiSelection* selection, const std::vector<std::string>& names,
                    TimeLimit limit) {
    const auto wanted = rowsOf(names, table, limit);
    if (!wanted || isOver(limit)) return false;
    atspi().clearSelection(selection, nullptr);
    for (const int row : *wanted) atspi().addRowSelection(table, row, nullptr);
    return selectedRows(table) == wanted;
}

// GTK 4 gives the first of several selected items alone, and nothing for the others (Nautilus 43).
std::vector<std::string> namesOfSelectedChildren(const Accessible& view, TimeLimit limit) {
    std::vector<std::string> names;
    const int count = childCount(view);
    for (int at = 0; at < count && !isOver(limit); ++at) {
        const Accessible child = childAt(view, at);
        if (child && hasState(child, ATSPI_STATE_SELECTED)) names.push_back(itemName(child, limit));
    }
    return names;
}

}  // namespace

bool connectAccessibility() {
    return AtspiLibrary::load() != nullptr && atspi().connect();
}

std::string busNameOf(const Accessible& object) {
    const AtspiObject& named = object->parent;
    if (named.app == nullptr || named.app->bus_name == nullptr || named.path == nullptr) return "";
    return std::string(named.app->bus_name) + ' ' + named.path;
}

std::vector<Accessible> accessibleWindows(pid_t process, TimeLimit limit) {
    std::vector<Accessible> windows;
    const Accessible desktop = owned(atspi().getDesktop(0));
    if (!desktop) return windows;
    const int programs = childCount(desktop);
    for (int at = 0; at < programs && !isOver(limit); ++at) {
        const Accessible program = childAt(desktop, at);
        if (!program || static_cast<pid_t>(atspi().processId(program.get(), nullptr)) != process) continue;
        const int count = childCount(program);
        for (int child = 0; child < count && !isOver(limit); ++child) {
            Accessible window = childAt(program, child);
            if (window && atspi().role(window.get(), nullptr) == ATSPI_ROLE_FRAME) windows.push_back(std::move(window));
        }
    }
    return windows;
}

std::string accessibleTitle(const Accessible& window) {
    return nameOf(window);
}

bool isActiveWindow(const Accessible& window) {
    return hasState(window, ATSPI_STATE_ACTIVE);
}

FolderWindow readFolderWindow(const Accessible& window, const FilePath& home, TimeLimit limit) {
    return WindowReader(home, limit).read(window);
}

std::optional<std::vector<std::string>> selectedNames(const Accessible& view, TimeLimit limit) {
    std::vector<std::string> names;
    const Owned<AtspiSelection> selection(atspi().selection(view.get()));
    if (!selection) return std::nullopt;
    if (const Owned<AtspiTable> table{atspi().table(view.get())}) {
        const auto rows = selectedRows(table.get());
        if (!rows) return std::nullopt;
        for (const int row : *rows) names.push_back(cellName(table.get(), row, 0, limit));
    } else {
        const int count = atspi().selectedCount(selection.get(), nullptr);
        if (count < 0) return std::nullopt;
        for (int at = 0; at < count && !isOver(limit); ++at)
            names.push_back(itemName(owned(atspi().selectedChild(selection.get(), at, nullptr)), limit));
        if (std::find(names.begin(), names.end(), "") != names.end()) {
            auto named = namesOfSelectedChildren(view, limit);
            // Fewer where the view has no objects for what it never scrolled by.
            if (named.size() == names.size()) names = std::move(named);
        }
    }
    if (isOver(limit)) return std::nullopt;
    return names;
}

bool selectOnly(const Accessible& view, const std::vector<std::string>& names, TimeLimit limit) {
    const Owned<AtspiSelection> selection(atspi().selection(view.get()));
    if (!selection) return false;
    if (const Owned<AtspiTable> table{atspi().table(view.get())})
        return selectOnlyRows(table.get(), selection.get(), names, limit);
    const auto wanted = onePlaceEach(
        placesOf(names, childCount(view), limit, [&](int at) { return itemName(childAt(view, at), limit); }));
    if (!wanted || isOver(limit)) return false;
    atspi().clearSelection(selection.get(), nullptr);
    for (const int at : *wanted) atspi().selectChild(selection.get(), at, nullptr);
    auto selected = selectedNames(view, limit);
    if (!selected) return false;
    std::sort(selected->begin(), selected->end());
    std::vector<std::string> sorted = names;
    std::sort(sorted.begin(), sorted.end());
    return *selected == sorted;
}

void focus(const Accessible& object) {
    if (const Owned<AtspiComponent> component{atspi().component(object.get())})
        atspi().grabFocus(component.get(), nullptr);
}

}  // namespace brindlet
