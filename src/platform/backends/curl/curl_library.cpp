#include "platform/backends/curl/curl_library.h"

#include <dlfcn.h>

namespace velmora::platform::http {

namespace {

template <typename Function> bool find(void *library, const char *name, Function *&function) {
    function = reinterpret_cast<Function *>(dlsym(library, name));
    return function != nullptr;
}

} // namespace

bool CurlLibrary::findAll(void *library) {
    return find(library, "curl_global_init", globalInit) &&
           find(library, "curl_easy_init", easyInit) &&
           find(library, "curl_easy_setopt", easySetopt) &&
           find(library, "curl_easy_getinfo", easyGetinfo) &&
           find(library, "curl_easy_pause", easyPause) &&
           find(library, "curl_easy_cleanup", easyCleanup) &&
           find(library, "curl_easy_strerror", easyStrerror) &&
           find(library, "curl_multi_init", multiInit) &&
           find(library, "curl_multi_add_handle", multiAddHandle) &&
           find(library, "curl_multi_remove_handle", multiRemoveHandle) &&
           find(library, "curl_multi_perform", multiPerform) &&
           find(library, "curl_multi_poll", multiPoll) &&
           find(library, "curl_multi_info_read", multiInfoRead) &&
           find(library, "curl_multi_cleanup", multiCleanup) &&
           find(library, "curl_share_init", shareInit) &&
           find(library, "curl_share_setopt", shareSetopt) &&
           find(library, "curl_share_cleanup", shareCleanup) &&
           find(library, "curl_slist_append", slistAppend) &&
           find(library, "curl_slist_free_all", slistFreeAll) &&
           find(library, "curl_getdate", getdate);
}

std::shared_ptr<const CurlLibrary> CurlLibrary::load() {
    // The two builds differ only in what they encrypt with.
    for (const char *name : {"libcurl.so.4", "libcurl-gnutls.so.4"}) {
        void *library = dlopen(name, RTLD_LAZY | RTLD_LOCAL);
        std::shared_ptr<CurlLibrary> result(new CurlLibrary);
        if (library != nullptr && result->findAll(library) &&
            result->globalInit(CURL_GLOBAL_DEFAULT) == CURLE_OK)
            return result;
    }
    return nullptr;
}

} // namespace velmora::platform::http
