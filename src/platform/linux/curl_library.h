// libcurl, loaded when something is first fetched. Linked in the usual way it and the two dozen libraries behind it
// take 10 ms of every start of the program (measured 2026-11-23), though most starts fetch nothing.
//
//     const CurlLibrary* curl = CurlLibrary::load();
//     if (!curl) return Failure{"libcurl isn't installed"};
//     CURL* transfer = curl->easyInit();
#pragma once

#include <curl/curl.h>

namespace brindlet {

struct CurlLibrary {
    // The library, ready for use on any thread; none where it can't be loaded.
    static const CurlLibrary* load();

    decltype(&::curl_global_init) globalInit = nullptr;
    decltype(&::curl_free) freeText = nullptr;
    decltype(&::curl_url) url = nullptr;
    decltype(&::curl_url_set) urlSet = nullptr;
    decltype(&::curl_url_get) urlGet = nullptr;
    decltype(&::curl_url_cleanup) urlCleanup = nullptr;
    decltype(&::curl_slist_append) listAppend = nullptr;
    decltype(&::curl_slist_free_all) listFree = nullptr;
    decltype(&::curl_easy_init) easyInit = nullptr;
    decltype(&::curl_easy_setopt) easySetOption = nullptr;
    decltype(&::curl_easy_getinfo) easyGetInfo = nullptr;
    decltype(&::curl_easy_strerror) easyErrorText = nullptr;
    decltype(&::curl_easy_cleanup) easyCleanup = nullptr;
    decltype(&::curl_multi_init) multiInit = nullptr;
    decltype(&::curl_multi_add_handle) multiAdd = nullptr;
    decltype(&::curl_multi_remove_handle) multiRemove = nullptr;
    decltype(&::curl_multi_perform) multiPerform = nullptr;
    decltype(&::curl_multi_poll) multiPoll = nullptr;
    decltype(&::curl_multi_wakeup) multiWakeUp = nullptr;
    decltype(&::curl_multi_info_read) multiReadInfo = nullptr;
    decltype(&::curl_multi_cleanup) multiCleanup = nullptr;
};

}  // namespace brindlet
