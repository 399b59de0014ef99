#include "platform/backends/sound/device/server_query.h"

#include "platform/backends/sound/device/sound.h"
#include "platform/backends/sound/output/pulse_link.h"
#include "platform/backends/sound/readers/byte_source.h"

#include <algorithm>
#include <charconv>
#include <cstdlib>
#include <filesystem>
#include <string_view>
#include <thread>

namespace velmora::platform::sound {

namespace {

using namespace std::chrono_literals;

// The call of a server that is started by it is taken at once, and answered when all is loaded.
constexpr auto answerLimit = 5s;
constexpr auto hangLimit = 100ms;
constexpr auto sinksLimit = 2s;
constexpr auto sinksEach = 100ms;

// The sink that a server makes by itself so that programs find one; nobody hears it.
constexpr std::string_view dummySink = "auto_null";

std::string environment(const char *name) {
    const char *value = std::getenv(name);
    return value ? value : "";
}

std::string addressOf(const std::string &server) {
    return server.empty() ? environment("PULSE_SERVER") : server;
}

// The path of a socket address; empty when the address is of another kind.
std::string socketOf(std::string_view address) {
    if (address.find_first_of(" \t{") != std::string_view::npos)
        return {};
    if (address.starts_with("unix:"))
        address.remove_prefix(5);
    return address.starts_with('/') ? std::string(address) : std::string();
}

bool namesServer(const std::string &path) {
    const auto file = FileSource::open(path);
    if (!file)
        return false;
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
    return false;
}

// Each name of a folder; none where it cannot be read.
std::vector<std::string> namesIn(const std::string &folder) {
    std::vector<std::string> names;
    std::error_code error;
    for (std::filesystem::directory_iterator entry(folder, error), end; !error && entry != end;
         entry.increment(error))
        names.push_back(entry->path().filename().string());
    return names;
}

// Whether a configuration file, or one of the folder beside it, names another server than the
// user's own.
bool configNamesServer() {
    const std::string config = environment("XDG_CONFIG_HOME");
    for (const std::string &path :
         {environment("PULSE_CLIENTCONFIG"),
          (config.empty() ? environment("HOME") + "/.config" : config) + "/pulse/client.conf",
          std::string("/etc/pulse/client.conf")}) {
        if (path.empty())
            continue;
        if (namesServer(path))
            return true;
        const std::string folder = path + ".d";
        for (const std::string &name : namesIn(folder))
            if (name.ends_with(".conf") && namesServer(folder + "/" + name))
                return true;
    }
    return false;
}

// Where the user's own server listens, in the order in which clients look.
std::vector<std::string> ownSockets() {
    std::vector<std::string> paths;
    if (const std::string own = environment("PULSE_RUNTIME_PATH"); !own.empty())
        paths.push_back(own + "/native");
    if (const std::string runtime = environment("XDG_RUNTIME_DIR"); !runtime.empty())
        paths.push_back(runtime + "/pulse/native");
    paths.emplace_back("/var/run/pulse/native");
    return paths;
}

bool hasCard(const std::string &cards) {
    const std::vector<std::string> names = namesIn(cards);
    return std::any_of(names.begin(), names.end(),
                       [](const std::string &name) { return name.starts_with("card"); });
}

std::optional<ServerDescription> heardOnly(std::optional<ServerDescription> answer) {
    if (answer)
        std::erase_if(answer->sinks, [](const auto &sink) { return sink.name == dummySink; });
    return answer;
}

// A server that began a moment ago has nothing but its dummy until its devices are set up.
std::optional<ServerDescription> askSocket(const std::string &path, const std::string &cards,
                                           TimePoint until) {
    auto answer = heardOnly(queryBySocket(path, until));
    const TimePoint sinksUntil = Clock::now() + sinksLimit;
    while (answer && answer->sinks.empty() && Clock::now() < sinksUntil && hasCard(cards)) {
        std::this_thread::sleep_for(sinksEach);
        answer = heardOnly(queryBySocket(path, Clock::now() + answerLimit));
    }
    return answer;
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

bool soundServerAnswers(const std::string &server) {
    const TimePoint until = Clock::now() + hangLimit;
    const std::string address = addressOf(server);
    const std::vector<std::string> paths =
        address.empty() ? ownSockets() : std::vector<std::string>{socketOf(address)};
    return std::any_of(paths.begin(), paths.end(), [until](const std::string &path) {
        return queryBySocket(path, until).has_value();
    });
}

std::optional<ServerDescription> queryServer(const ServerQuery &query) {
    const TimePoint until = Clock::now() + answerLimit;
    const auto askLibrary = [&](const std::string &address) {
        return heardOnly(queryByLibrary(address, query.library, until));
    };
    const std::string address = addressOf(query.server);
    if (!address.empty()) {
        const std::string path = socketOf(address);
        return path.empty() ? askLibrary(address) : askSocket(path, query.cards, until);
    }
    if (configNamesServer())
        return askLibrary({});
    std::optional<ServerDescription> first;
    for (const std::string &path : ownSockets()) {
        auto answer = askSocket(path, query.cards, until);
        if (answer && !answer->sinks.empty())
            return answer;
        if (!first)
            first = std::move(answer);
    }
    // Clients look in further places, and have a server started. One that hung has used up the
    // time.
    auto found = Clock::now() < until ? askLibrary({}) : std::nullopt;
    return found ? found : first;
}

} // namespace velmora::platform::sound
