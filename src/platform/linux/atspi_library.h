// libatspi, the client of the desktop's accessibility bus, loaded when the first file manager is to be looked into.
// Linked in the usual way it and the dozen libraries behind it would cost every start of the program.
//
//     const AtspiLibrary* atspi = AtspiLibrary::load();
//     if (!atspi || !atspi->connect()) return false;
//     AtspiAccessible* desktop = atspi->getDesktop(0);
#pragma once

#include <atspi/atspi.h>

namespace brindlet {

// Not safe on several threads at once: whoever uses it stays on one. A call can hang for good in a lock of the library
// itself, whatever its patience (see atspi_library.cpp): use it where that can be ended, as in forked_task.h.
struct AtspiLibrary {
    // The library, none where it can't be loaded.
    static const AtspiLibrary* load();

    // Connects to the accessibility bus of the session that this process's own environment names, once. A program
    // that doesn't answer a call is waited for a fraction of a second. Nothing is switched on by it: no listener is
    // registered, and org.a11y.Status stays as the user has it.
    bool connect() const;

    decltype(&::g_free) freeText = nullptr;
    decltype(&::g_object_unref) unref = nullptr;
    decltype(&::g_array_unref) unrefArray = nullptr;
    decltype(&::g_log_set_handler) setLogHandler = nullptr;
    decltype(&::atspi_init) init = nullptr;
    decltype(&::atspi_set_timeout) setTimeout = nullptr;
    decltype(&::atspi_get_desktop) getDesktop = nullptr;
    decltype(&::atspi_accessible_set_cache_mask) setCacheMask = nullptr;
    decltype(&::atspi_accessible_clear_cache) clearCache = nullptr;
    decltype(&::atspi_accessible_get_process_id) processId = nullptr;
    decltype(&::atspi_accessible_get_role) role = nullptr;
    decltype(&::atspi_accessible_get_name) name = nullptr;
    decltype(&::atspi_accessible_get_child_count) childCount = nullptr;
    decltype(&::atspi_accessible_get_child_at_index) childAt = nullptr;
    decltype(&::atspi_accessible_get_state_set) stateSet = nullptr;
    decltype(&::atspi_state_set_contains) contains = nullptr;
    decltype(&::atspi_accessible_get_component_iface) component = nullptr;
    decltype(&::atspi_component_get_extents) extents = nullptr;
    decltype(&::atspi_component_grab_focus) grabFocus = nullptr;
    decltype(&::atspi_accessible_get_text_iface) text = nullptr;
    decltype(&::atspi_text_get_text) textBetween = nullptr;
    decltype(&::atspi_accessible_get_selection_iface) selection = nullptr;
    decltype(&::atspi_selection_get_n_selected_children) selectedCount = nullptr;
    decltype(&::atspi_selection_get_selected_child) selectedChild = nullptr;
    decltype(&::atspi_selection_clear_selection) clearSelection = nullptr;
    decltype(&::atspi_selection_select_child) selectChild = nullptr;
    decltype(&::atspi_accessible_get_table_iface) table = nullptr;
    decltype(&::atspi_table_get_n_rows) rowCount = nullptr;
    decltype(&::atspi_table_get_n_columns) columnCount = nullptr;
    decltype(&::atspi_table_get_accessible_at) cellAt = nullptr;
    decltype(&::atspi_table_get_selected_rows) selectedRows = nullptr;
    decltype(&::atspi_table_add_row_selection) addRowSelection = nullptr;
};

}  // namespace brindlet
