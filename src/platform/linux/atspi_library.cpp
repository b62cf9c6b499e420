#include "platform/linux/atspi_library.h"

#include <dlfcn.h>

#include <optional>

namespace brindlet {

namespace {

// A program that hangs costs this much a call; a healthy one answers in 0.1 ms, a starting one in some 10.
constexpr int atspiPatienceMilliseconds = 300;

// Stays loaded: it keeps a connection, and types that can't be taken back.
std::optional<AtspiLibrary> loadedAtspi() {
    void* library = ::dlopen("libatspi.so.0", RTLD_NOW | RTLD_LOCAL);
    if (library == nullptr) return std::nullopt;
    AtspiLibrary atspi;
    bool isWhole = true;
    // Those of GLib are found through the libraries that it links.
    const auto find = [&](auto& function, const char* name) {
        function = reinterpret_cast<std::remove_reference_t<decltype(function)>>(::dlsym(library, name));
        isWhole = isWhole && function != nullptr;
    };
    find(atspi.freeText, "g_free");
    find(atspi.unref, "g_object_unref");
    find(atspi.unrefArray, "g_array_unref");
    find(atspi.setLogHandler, "g_log_set_handler");
    find(atspi.init, "atspi_init");
    find(atspi.setTimeout, "atspi_set_timeout");
    find(atspi.getDesktop, "atspi_get_desktop");
    find(atspi.setCacheMask, "atspi_accessible_set_cache_mask");
    find(atspi.clearCache, "atspi_accessible_clear_cache");
    find(atspi.processId, "atspi_accessible_get_process_id");
    find(atspi.role, "atspi_accessible_get_role");
    find(atspi.name, "atspi_accessible_get_name");
    find(atspi.childCount, "atspi_accessible_get_child_count");
    find(atspi.childAt, "atspi_accessible_get_child_at_index");
    find(atspi.stateSet, "atspi_accessible_get_state_set");
    find(atspi.contains, "atspi_state_set_contains");
    find(atspi.component, "atspi_accessible_get_component_iface");
    find(atspi.extents, "atspi_component_get_extents");
    find(atspi.grabFocus, "atspi_component_grab_focus");
    find(atspi.text, "atspi_accessible_get_text_iface");
    find(atspi.textBetween, "atspi_text_get_text");
    find(atspi.selection, "atspi_accessible_get_selection_iface");
    find(atspi.selectedCount, "atspi_selection_get_n_selected_children");
    find(atspi.selectedChild, "atspi_selection_get_selected_child");
    find(atspi.clearSelection, "atspi_selection_clear_selection");
    find(atspi.selectChild, "atspi_selection_select_child");
    find(atspi.table, "atspi_accessible_get_table_iface");
    find(atspi.rowCount, "atspi_table_get_n_rows");
    find(atspi.columnCount, "atspi_table_get_n_columns");
    find(atspi.cellAt, "atspi_table_get_accessible_at");
    find(atspi.selectedRows, "atspi_table_get_selected_rows");
    find(atspi.addRowSelection, "atspi_table_add_row_selection");
    if (!isWhole) return std::nullopt;
    return atspi;
}

// Without a main loop what the library keeps grows old unnoticed, so that it keeps states alone. Were it not to keep
// them either, libatspi 2.46 would ask for them while it handles a message, and wait for its own lock for ever (seen
// with every call). Its warnings would land between the lines that the user reads.
bool connectedAtspi(const AtspiLibrary& atspi) {
    constexpr auto ignore = [](const gchar*, GLogLevelFlags, const gchar*, gpointer) {};
    atspi.setLogHandler("dbind", G_LOG_LEVEL_MASK, ignore, nullptr);
    if (atspi.init() > 1) return false;
    atspi.setTimeout(atspiPatienceMilliseconds, atspiPatienceMilliseconds);
    AtspiAccessible* desktop = atspi.getDesktop(0);
    if (desktop == nullptr) return false;
    atspi.setCacheMask(desktop, ATSPI_CACHE_STATES);
    atspi.unref(desktop);
    return true;
}

}  // namespace

const AtspiLibrary* AtspiLibrary::load() {
    static const std::optional<AtspiLibrary> atspi = loadedAtspi();
    return atspi ? &*atspi : nullptr;
}

bool AtspiLibrary::connect() const {
    static const bool isConnected = connectedAtspi(*this);
    return isConnected;
}

}  // namespace brindlet
