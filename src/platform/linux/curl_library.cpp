#include "platform/linux/curl_library.h"

#include <dlfcn.h>

#include <optional>

namespace brindlet {

namespace {

// Stays loaded: it may have threads of its own.
std::optional<CurlLibrary> loadedCurl() {
    void* library = ::dlopen("libcurl.so.4", RTLD_NOW | RTLD_LOCAL);
    if (library == nullptr) return std::nullopt;
    CurlLibrary curl;
    bool isWhole = true;
    const auto find = [&](auto& function, const char* name) {
        function = reinterpret_cast<std::remove_reference_t<decltype(function)>>(::dlsym(library, name));
        isWhole = isWhole && function != nullptr;
    };
    find(curl.globalInit, "curl_global_init");
    find(curl.freeText, "curl_free");
    find(curl.url, "curl_url");
    find(curl.urlSet, "curl_url_set");
    find(curl.urlGet, "curl_url_get");
    find(curl.urlCleanup, "curl_url_cleanup");
    find(curl.listAppend, "curl_slist_append");
    find(curl.listFree, "curl_slist_free_all");
    find(curl.easyInit, "curl_easy_init");
    find(curl.easySetOption, "curl_easy_setopt");
    find(curl.easyGetInfo, "curl_easy_getinfo");
    find(curl.easyErrorText, "curl_easy_strerror");
    find(curl.easyCleanup, "curl_easy_cleanup");
    find(curl.multiInit, "curl_multi_init");
    find(curl.multiAdd, "curl_multi_add_handle");
    find(curl.multiRemove, "curl_multi_remove_handle");
    find(curl.multiPerform, "curl_multi_perform");
    find(curl.multiPoll, "curl_multi_poll");
    find(curl.multiWakeUp, "curl_multi_wakeup");
    find(curl.multiReadInfo, "curl_multi_info_read");
    find(curl.multiCleanup, "curl_multi_cleanup");
    if (!isWhole || curl.globalInit(CURL_GLOBAL_DEFAULT) != CURLE_OK) return std::nullopt;
    return curl;
}

}  // namespace

const CurlLibrary* CurlLibrary::load() {
    static const std::optional<CurlLibrary> curl = loadedCurl();
    return curl ? &*curl : nullptr;
}

}  // namespace brindlet
