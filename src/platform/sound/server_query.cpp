#include "platform/sound/server_query.h"

#include "platform/sound/byte_source.h"
#include "platform/sound/pulse_link.h"

#include <charconv>
#include <cstdlib>
#include <string_view>
#include <unistd.h>

namespace velmora::platform::sound {

namespace {

std::string environment(const char *name) {
    const char *value = std::getenv(name);
    return value ? value : "";
}

// The path of a socket address; empty when the address is of another kind.
std::string socketOf(std::string_view address) {
    if (address.find_first_of(" \t{") != std::string_view::npos)
        return {};
    if (address.starts_with("unix:"))
        address.remove_prefix(5);
    return address.starts_with('/') ? std::string(address) : std::string();
}

// Whether a configuration file names another server than the user's own.
bool configNamesServer() {
    const std::string config = environment("XDG_CONFIG_HOME");
    for (const std::string &path :
         {environment("PULSE_CLIENTCONFIG"),
          (config.empty() ? environment("HOME") + "/.config" : config) + "/pulse/client.conf",
          std::string("/etc/pulse/client.conf")}) {
        const auto file = path.empty() ? nullptr : FileSource::open(path);
        if (!file)
            continue;
        std::string text(65536, '\0');
        text.resize(file->read(0, {reinterpret_cast<std::uint8_t *>(text.data()), text.size()}));
        // At the start of a line: comments begin with ";" or "#".
        std::size_t at = 0;
        while (at < text.size()) {
            at = text.find_first_not_of(" \t\r\n", at);
            if (at == std::string::npos)
                break;
            if (std::string_view(text).substr(at).starts_with("default-server"))
                return true;
            at = std::min(text.find('\n', at), text.size());
        }
    }
    return false;
}

// Where the user's own server listens, in the order in which clients look.
std::vector<std::string> ownSockets() {
    std::vector<std::string> paths;
    if (const std::string own = environment("PULSE_RUNTIME_PATH"); !own.empty())
        paths.push_back(own + "/native");
    const std::string runtime = environment("XDG_RUNTIME_DIR");
    paths.push_back((runtime.empty() ? "/run/user/" + std::to_string(getuid()) : runtime) +
                    "/pulse/native");
    paths.emplace_back("/var/run/pulse/native");
    return paths;
}

} // namespace

std::uint16_t parseHexId(const std::string &text) {
    std::string_view digits = text;
    if (digits.starts_with("0x"))
        digits.remove_prefix(2);
    std::uint16_t value = 0;
    const auto [end, error] =
        std::from_chars(digits.data(), digits.data() + digits.size(), value, 16);
    return error == std::errc() && end == digits.data() + digits.size() ? value : std::uint16_t{0};
}

std::optional<ServerDescription> queryServer(const std::string &server,
                                             const std::string &pulseLibrary,
                                             std::chrono::milliseconds limit) {
    const auto until = std::chrono::steady_clock::now() + limit;
    const std::string address = server.empty() ? environment("PULSE_SERVER") : server;
    if (!address.empty()) {
        const std::string path = socketOf(address);
        return path.empty() ? queryByLibrary(address, pulseLibrary, until)
                            : queryBySocket(path, until);
    }
    if (configNamesServer())
        return queryByLibrary({}, pulseLibrary, until);
    for (const std::string &path : ownSockets()) {
        if (auto answer = queryBySocket(path, until))
            return answer;
    }
    return std::nullopt;
}

} // namespace velmora::platform::sound
