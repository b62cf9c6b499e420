#include "platform/linux/secret_library.h"

#include <dlfcn.h>

#include <optional>

namespace brindlet {

namespace {

// Stays loaded: it keeps a connection and a thread of its own.
std::optional<SecretLibrary> loadedSecretLibrary() {
    void* library = ::dlopen("libsecret-1.so.0", RTLD_NOW | RTLD_LOCAL);
    if (library == nullptr) return std::nullopt;
    SecretLibrary secret;
    bool isWhole = true;
    // Those of GLib are found through the libraries that it links.
    const auto find = [&](auto& function, const char* name) {
        function = reinterpret_cast<std::remove_reference_t<decltype(function)>>(::dlsym(library, name));
        isWhole = isWhole && function != nullptr;
    };
    find(secret.freeError, "g_error_free");
    find(secret.freeList, "g_list_free");
    find(secret.ref, "g_object_ref");
    find(secret.unref, "g_object_unref");
    find(secret.unrefTable, "g_hash_table_unref");
    find(secret.setLogHandler, "g_log_set_handler");
    find(secret.newContext, "g_main_context_new");
    find(secret.unrefContext, "g_main_context_unref");
    find(secret.pushContext, "g_main_context_push_thread_default");
    find(secret.popContext, "g_main_context_pop_thread_default");
    find(secret.iterate, "g_main_context_iteration");
    find(secret.newTimeout, "g_timeout_source_new");
    find(secret.setCallback, "g_source_set_callback");
    find(secret.attach, "g_source_attach");
    find(secret.destroySource, "g_source_destroy");
    find(secret.unrefSource, "g_source_unref");
    find(secret.newCancellable, "g_cancellable_new");
    find(secret.cancel, "g_cancellable_cancel");
    find(secret.buildAttributes, "secret_attributes_build");
    find(secret.getService, "secret_service_get");
    find(secret.getServiceFinish, "secret_service_get_finish");
    find(secret.search, "secret_service_search");
    find(secret.searchFinish, "secret_service_search_finish");
    find(secret.store, "secret_service_store");
    find(secret.storeFinish, "secret_service_store_finish");
    find(secret.clear, "secret_service_clear");
    find(secret.clearFinish, "secret_service_clear_finish");
    find(secret.secretOf, "secret_item_get_secret");
    find(secret.newValue, "secret_value_new");
    find(secret.bytesOf, "secret_value_get");
    find(secret.unrefValue, "secret_value_unref");
    if (!isWhole) return std::nullopt;
    // Its warnings would land between the lines that the user reads.
    constexpr auto ignore = [](const gchar*, GLogLevelFlags, const gchar*, gpointer) {};
    secret.setLogHandler("libsecret", G_LOG_LEVEL_MASK, ignore, nullptr);
    return secret;
}

}  // namespace

const SecretLibrary* SecretLibrary::load() {
    static const std::optional<SecretLibrary> secret = loadedSecretLibrary();
    return secret ? &*secret : nullptr;
}

}  // namespace brindlet
