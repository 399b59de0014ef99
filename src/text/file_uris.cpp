#include "text/file_uris.h"

#include "base/ascii.h"

#include <optional>

namespace velmora::platform {

namespace {

bool startsWithScheme(std::string_view line) {
    constexpr std::string_view scheme = "file:";
    return lowerAscii(line.substr(0, scheme.size())) == scheme;
}

} // namespace

std::optional<std::string> localPath(std::string_view line, std::string_view thisHost) {
    if (!startsWithScheme(line))
        return std::nullopt;
    line.remove_prefix(5);
    if (line.substr(0, 2) == "//") {
        line.remove_prefix(2);
        const std::size_t slash = line.find('/');
        if (slash == std::string_view::npos)
            return std::nullopt;
        const std::string_view host = line.substr(0, slash);
        if (!host.empty() && host != "localhost" && host != thisHost)
            return std::nullopt;
        line.remove_prefix(slash);
    }
    if (line.empty() || line.front() != '/')
        return std::nullopt;
    std::string path = unescaped(line);
    // Some file managers end a folder's address with a slash, whichever way it is written; a path
    // has none, but for the root's.
    while (path.size() > 1 && path.back() == '/')
        path.pop_back();
    if (path.find('\0') != std::string::npos)
        return std::nullopt;
    return path;
}

std::vector<std::string> localPaths(std::string_view uriList, std::string_view thisHost) {
    std::vector<std::string> paths;
    while (!uriList.empty()) {
        const std::size_t end = uriList.find_first_of("\r\n");
        std::string_view line = uriList.substr(0, end);
        uriList.remove_prefix(end == std::string_view::npos ? uriList.size() : end + 1);
        if (auto path = localPath(line, thisHost))
            paths.push_back(std::move(*path));
    }
    return paths;
}

} // namespace velmora::platform
