#include "platform/backends/bus/opened_files.h"

#include "text/file_uris.h"
#include "text/path_text.h"

#include <unistd.h>

#include <climits>

namespace velmora::platform::bus {

std::vector<std::u16string> openedFiles(std::string_view uri) {
    char host[HOST_NAME_MAX + 1] = {};
    gethostname(host, HOST_NAME_MAX);
    const auto path = localPath(uri, host);
    if (!path)
        return {};
    return {pathFromBytes(*path)};
}

} // namespace velmora::platform::bus
