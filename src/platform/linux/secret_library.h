// libsecret, the client of the desktop's Secret Service, loaded when a secret is first asked for: most starts of the
// program need none.
//
//     const SecretLibrary* secret = SecretLibrary::load();
//     if (!secret) return std::nullopt;
//     secret->getService(SECRET_SERVICE_OPEN_SESSION, cancellable, done, data);
#pragma once

#include <libsecret/secret.h>

namespace brindlet {

struct SecretLibrary {
    // The library, none where it can't be loaded.
    static const SecretLibrary* load();

    decltype(&::g_error_free) freeError = nullptr;
    decltype(&::g_list_free) freeList = nullptr;
    decltype(&::g_object_ref) ref = nullptr;
    decltype(&::g_object_unref) unref = nullptr;
    decltype(&::g_hash_table_unref) unrefTable = nullptr;
    decltype(&::g_log_set_handler) setLogHandler = nullptr;
    decltype(&::g_main_context_new) newContext = nullptr;
    decltype(&::g_main_context_unref) unrefContext = nullptr;
    decltype(&::g_main_context_push_thread_default) pushContext = nullptr;
    decltype(&::g_main_context_pop_thread_default) popContext = nullptr;
    decltype(&::g_main_context_iteration) iterate = nullptr;
    decltype(&::g_timeout_source_new) newTimeout = nullptr;
    decltype(&::g_source_set_callback) setCallback = nullptr;
    decltype(&::g_source_attach) attach = nullptr;
    decltype(&::g_source_destroy) destroySource = nullptr;
    decltype(&::g_source_unref) unrefSource = nullptr;
    decltype(&::g_cancellable_new) newCancellable = nullptr;
    decltype(&::g_cancellable_cancel) cancel = nullptr;
    decltype(&::secret_attributes_build) buildAttributes = nullptr;
    decltype(&::secret_service_get) getService = nullptr;
    decltype(&::secret_service_get_finish) getServiceFinish = nullptr;
    decltype(&::secret_service_search) search = nullptr;
    decltype(&::secret_service_search_finish) searchFinish = nullptr;
    decltype(&::secret_service_store) store = nullptr;
    decltype(&::secret_service_store_finish) storeFinish = nullptr;
    decltype(&::secret_service_clear) clear = nullptr;
    decltype(&::secret_service_clear_finish) clearFinish = nullptr;
    decltype(&::secret_item_get_secret) secretOf = nullptr;
    decltype(&::secret_value_new) newValue = nullptr;
    decltype(&::secret_value_get) bytesOf = nullptr;
    decltype(&::secret_value_unref) unrefValue = nullptr;
};

}  // namespace brindlet
