#include "platform/backends/qt/screen/file_uris.h"

#include "text/file_uris.h"

#include <unistd.h>

#include <climits>

namespace velmora::platform::qt {

std::vector<std::string> localPaths(std::string_view uriList) {
    char host[HOST_NAME_MAX + 1] = {};
    gethostname(host, HOST_NAME_MAX);
    return platform::localPaths(uriList, host);
}

} // namespace velmora::platform::qt
