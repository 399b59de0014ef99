#pragma once

// The functions of libcurl that the network uses, under their own names and types.

#define CURL_DISABLE_TYPECHECK
#include <curl/curl.h>

#include <memory>

namespace velmora::platform::http {

// Loads once and stays for the life of the process: a library that has had threads (it looks names
// up in them) cannot be taken out of memory safely.
struct CurlLibrary {
    // Null where the library is not installed or too old.
    static std::shared_ptr<const CurlLibrary> load();

    decltype(curl_global_init) *globalInit = nullptr;
    decltype(curl_easy_init) *easyInit = nullptr;
    decltype(curl_easy_setopt) *easySetopt = nullptr;
    decltype(curl_easy_getinfo) *easyGetinfo = nullptr;
    decltype(curl_easy_pause) *easyPause = nullptr;
    decltype(curl_easy_cleanup) *easyCleanup = nullptr;
    decltype(curl_easy_strerror) *easyStrerror = nullptr;
    decltype(curl_multi_init) *multiInit = nullptr;
    decltype(curl_multi_add_handle) *multiAddHandle = nullptr;
    decltype(curl_multi_remove_handle) *multiRemoveHandle = nullptr;
    decltype(curl_multi_perform) *multiPerform = nullptr;
    decltype(curl_multi_poll) *multiPoll = nullptr;
    decltype(curl_multi_info_read) *multiInfoRead = nullptr;
    decltype(curl_multi_cleanup) *multiCleanup = nullptr;
    decltype(curl_share_init) *shareInit = nullptr;
    decltype(curl_share_setopt) *shareSetopt = nullptr;
    decltype(curl_share_cleanup) *shareCleanup = nullptr;
    decltype(curl_slist_append) *slistAppend = nullptr;
    decltype(curl_slist_free_all) *slistFreeAll = nullptr;
    decltype(curl_getdate) *getdate = nullptr;

private:
    CurlLibrary() = default;
    bool findAll(void *library);
};

} // namespace velmora::platform::http
