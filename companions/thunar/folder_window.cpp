#include "folder_window.h"

#include <gdk/gdkx.h>

#include <memory>
#include <unordered_map>

#include "thunarx_library.h"

namespace brindlet_thunar {

namespace {

struct Free {
    void operator()(void* object) const { g_object_unref(object); }
};
template <class Type>
using Owned = std::unique_ptr<Type, Free>;
using OwnedFiles = std::unique_ptr<GList, decltype(&thunarx_file_info_list_free)>;

constexpr const char* folderProperty = "current-directory";
constexpr const char* selectionProperty = "selected-files";

bool hasProperty(void* object, const char* name) {
    return g_object_class_find_property(G_OBJECT_GET_CLASS(object), name) != nullptr;
}

// Empty where it isn't a file on a disk of this machine.
std::string pathOf(void* file) {
    if (!THUNARX_IS_FILE_INFO(file)) return "";
    const Owned<GFile> location(thunarx_file_info_get_location(THUNARX_FILE_INFO(file)));
    const char* path = g_file_is_native(location.get()) ? g_file_peek_path(location.get()) : nullptr;
    return path ? path : "";
}

Owned<GObject> objectIn(void* object, const char* property) {
    GObject* value = nullptr;
    if (hasProperty(object, property)) g_object_get(object, property, &value, nullptr);
    return Owned<GObject>(value);
}

void findViews(GtkWidget* widget, void* views) {
    // Side panes have a selection as well, but no text for the status bar.
    if (!gtk_widget_get_mapped(widget)) return;
    if (hasProperty(widget, selectionProperty) && hasProperty(widget, "statusbar-text") &&
        hasProperty(widget, folderProperty)) {
        static_cast<std::vector<GtkWidget*>*>(views)->push_back(widget);
    } else if (GTK_IS_CONTAINER(widget)) {
        gtk_container_forall(GTK_CONTAINER(widget), findViews, views);
    }
}

// The rows of a view, which are the only way to the files behind paths.
GtkTreeModel* rowsOf(GtkWidget* view) {
    GtkWidget* list = GTK_IS_BIN(view) ? gtk_bin_get_child(GTK_BIN(view)) : nullptr;
    // The view keeps it.
    const Owned<GObject> model = list ? objectIn(list, "model") : nullptr;
    return model && GTK_IS_TREE_MODEL(model.get()) ? GTK_TREE_MODEL(model.get()) : nullptr;
}

int fileColumn(GtkTreeModel* rows) {
    for (int column = 0; column < gtk_tree_model_get_n_columns(rows); ++column)
        if (g_type_is_a(gtk_tree_model_get_column_type(rows, column), THUNARX_TYPE_FILE_INFO)) return column;
    return -1;
}

}  // namespace

bool isFolderWindow(GtkWindow* window) {
    return g_strcmp0(G_OBJECT_TYPE_NAME(window), "ThunarWindow") == 0 && hasProperty(window, folderProperty);
}

GtkWidget* viewOf(GtkWindow* window) {
    std::vector<GtkWidget*> views;
    findViews(GTK_WIDGET(window), &views);
    GtkWidget* focused = gtk_window_get_focus(window);
    const Owned<GObject> folder = objectIn(window, folderProperty);
    GtkWidget* shown = nullptr;
    for (GtkWidget* view : views) {
        if (objectIn(view, folderProperty) != folder) continue;
        if (!shown || (focused && gtk_widget_is_ancestor(focused, view))) shown = view;
    }
    return shown;
}

std::optional<std::string> folderOf(GtkWindow* window) {
    const Owned<GObject> folder = objectIn(window, folderProperty);
    std::string path = folder ? pathOf(folder.get()) : "";
    return path.empty() ? std::nullopt : std::optional(std::move(path));
}

std::vector<std::string> selectedFiles(GtkWidget* view) {
    GList* list = nullptr;
    g_object_get(view, selectionProperty, &list, nullptr);
    const OwnedFiles files(list, thunarx_file_info_list_free);
    std::vector<std::string> paths;
    for (const GList* at = list; at; at = at->next)
        if (std::string path = pathOf(at->data); !path.empty()) paths.push_back(std::move(path));
    return paths;
}

bool selectFiles(GtkWidget* view, const std::set<std::string>& files) {
    GtkTreeModel* rows = rowsOf(view);
    const int column = rows ? fileColumn(rows) : -1;
    if (column < 0) return false;
    std::unordered_map<std::string, Owned<GObject>> wanted;
    for (const std::string& file : files) wanted[file];
    std::size_t found = 0;
    GtkTreeIter at;
    for (bool isRow = gtk_tree_model_get_iter_first(rows, &at); isRow && found < wanted.size();
         isRow = gtk_tree_model_iter_next(rows, &at)) {
        GObject* file = nullptr;
        gtk_tree_model_get(rows, &at, column, &file, -1);
        Owned<GObject> row(file);
        const auto place = row ? wanted.find(pathOf(row.get())) : wanted.end();
        if (place == wanted.end() || place->second) continue;
        place->second = std::move(row);
        ++found;
    }
    if (found < wanted.size()) return false;
    GList* list = nullptr;
    for (const std::string& file : files) list = g_list_prepend(list, g_object_ref(wanted[file].get()));
    const OwnedFiles selection(g_list_reverse(list), thunarx_file_info_list_free);
    g_object_set(view, selectionProperty, selection.get(), nullptr);
    return true;
}

guint32 numberOf(GtkWindow* window) {
    GdkWindow* surface = gtk_widget_get_window(GTK_WIDGET(window));
    return surface && GDK_IS_X11_WINDOW(surface) ? static_cast<guint32>(gdk_x11_window_get_xid(surface)) : 0;
}

}  // namespace brindlet_thunar
