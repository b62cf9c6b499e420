#include "wire.h"

#include <utility>

namespace brindlet_thunar {

namespace {

constexpr const char* ownName = "com.fenwold.Brindlet.Thunar";
constexpr const char* ownObject = "/com/fenwold/Brindlet/Companion";
constexpr const char* barName = "com.fenwold.Brindlet";
constexpr const char* barObject = "/com/fenwold/Brindlet";
constexpr const char* barInterface = "com.fenwold.Brindlet.Bar1";

// URIs, since dbus-send(1) can't send arrays of arrays.
constexpr const char* ownInterface = R"(<node><interface name='com.fenwold.Brindlet.Companion1'><method name='Select'>
    <arg type='as' name='uris' direction='in'/><arg type='b' name='isSelected' direction='out'/>
</method></interface></node>)";

GVariant* bytesOf(const std::string& path) {
    return g_variant_new_fixed_array(G_VARIANT_TYPE_BYTE, path.data(), path.size(), 1);
}

std::vector<std::string> localPaths(GVariant* uris) {
    std::vector<std::string> paths;
    GVariantIter at;
    const char* uri = nullptr;
    g_variant_iter_init(&at, uris);
    while (g_variant_iter_next(&at, "&s", &uri)) {
        const std::unique_ptr<char, decltype(&g_free)> path(g_filename_from_uri(uri, nullptr, nullptr), g_free);
        if (!path) return {};
        paths.emplace_back(path.get());
    }
    return paths;
}

}  // namespace

Variant selectionMessage(guint32 window, const std::string& folder, const std::vector<std::string>& files) {
    GVariantBuilder list;
    g_variant_builder_init(&list, G_VARIANT_TYPE("aay"));
    for (const std::string& file : files) g_variant_builder_add_value(&list, bytesOf(file));
    return Variant(
        g_variant_ref_sink(g_variant_new("(u@ay@aay)", window, bytesOf(folder), g_variant_builder_end(&list))));
}

Wire::Wire(WireEvents events) : events_(std::move(events)) {
    g_bus_own_name(G_BUS_TYPE_SESSION, ownName, G_BUS_NAME_OWNER_FLAGS_NONE, offerSelect, nullptr, nullptr, this,
                   nullptr);
    g_bus_watch_name(
        G_BUS_TYPE_SESSION, barName, G_BUS_NAME_WATCHER_FLAGS_NONE,
        [](GDBusConnection* bus, const char*, const char*, void* self) {
            static_cast<Wire*>(self)->bar_ = bus;
            static_cast<Wire*>(self)->events_.barCame();
        },
        [](GDBusConnection*, const char*, void* self) { static_cast<Wire*>(self)->bar_ = nullptr; }, this, nullptr);
}

void Wire::tell(GVariant* message) {
    if (bar_ == nullptr) return;
    // Without a callback no reply is asked for.
    g_dbus_connection_call(bar_, barName, barObject, barInterface, "SelectionChanged", message, nullptr,
                           G_DBUS_CALL_FLAGS_NO_AUTO_START, -1, nullptr, nullptr, nullptr);
}

void Wire::offerSelect(GDBusConnection* bus, const char*, void* self) {
    static GDBusNodeInfo* const node = g_dbus_node_info_new_for_xml(ownInterface, nullptr);
    static constexpr GDBusInterfaceVTable methods{answer, nullptr, nullptr, {}};
    g_dbus_connection_register_object(bus, ownObject, node->interfaces[0], &methods, self, nullptr, nullptr);
}

void Wire::answer(GDBusConnection*, const char*, const char*, const char*, const char*, GVariant* parameters,
                  GDBusMethodInvocation* invocation, void* self) {
    const Variant uris(g_variant_get_child_value(parameters, 0));
    static_cast<Wire*>(self)->events_.select(localPaths(uris.get()), [invocation](bool isSelected) {
        g_dbus_method_invocation_return_value(invocation, g_variant_new("(b)", isSelected));
    });
}

}  // namespace brindlet_thunar
