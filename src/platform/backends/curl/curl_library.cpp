#include "platform/backends/curl/curl_library.h"

namespace velmora::platform::http {

CurlLibrary::CurlLibrary(const LoadedLibrary &library) {
    VELMORA_CURL_FUNCTIONS(VELMORA_TABLE_BIND)
    complete = complete && curl_global_init(CURL_GLOBAL_DEFAULT) == CURLE_OK;
}

std::shared_ptr<const CurlLibrary> CurlLibrary::load() {
    // The two builds differ only in what they encrypt with.
    auto table = loadedTable<CurlLibrary>("libcurl.so.4");
    return table ? table : loadedTable<CurlLibrary>("libcurl-gnutls.so.4");
}

} // namespace velmora::platform::http
