#pragma once

// The functions of libcurl that the network uses.

#include "base/loaded_library.h"

#define CURL_DISABLE_TYPECHECK
#include <curl/curl.h>

#include <memory>

namespace velmora::platform::http {

#define VELMORA_CURL_FUNCTIONS(F)                                                                  \
    F(curl_global_init)                                                                            \
    F(curl_easy_init)                                                                              \
    F(curl_easy_setopt)                                                                            \
    F(curl_easy_getinfo)                                                                           \
    F(curl_easy_pause)                                                                             \
    F(curl_easy_cleanup)                                                                           \
    F(curl_easy_strerror)                                                                          \
    F(curl_multi_init)                                                                             \
    F(curl_multi_add_handle)                                                                       \
    F(curl_multi_remove_handle)                                                                    \
    F(curl_multi_perform)                                                                          \
    F(curl_multi_poll)                                                                             \
    F(curl_multi_info_read)                                                                        \
    F(curl_multi_cleanup)                                                                          \
    F(curl_share_init)                                                                             \
    F(curl_share_setopt)                                                                           \
    F(curl_share_cleanup)                                                                          \
    F(curl_slist_append)                                                                           \
    F(curl_slist_free_all)                                                                         \
    F(curl_getdate)

struct CurlLibrary {
    explicit CurlLibrary(const LoadedLibrary &library);
    // Null where the library is not installed or too old.
    static std::shared_ptr<const CurlLibrary> load();

    bool complete = true;
    VELMORA_CURL_FUNCTIONS(VELMORA_TABLE_MEMBER)
};

} // namespace velmora::platform::http
