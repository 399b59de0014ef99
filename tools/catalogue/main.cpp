// velmora-catalogue: serves a folder of one's own music and lyrics to the player.

#include "catalogue/catalogue.h"
#include "catalogue/introduce.h"
#include "catalogue/server.h"

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <string>

namespace {

using namespace velmora::catalogue;

constexpr const char *usage =
    "velmora-catalogue [OPTIONS] FOLDER\n"
    "Serves the music and lyrics of FOLDER to Velmora and to browsers.\n"
    "  --port N             the port (8420; 0 takes any free one)\n"
    "  --bind ADDRESS       the address to listen at (127.0.0.1: this machine alone)\n"
    "  --introduce FILE     also write the address into this registry file of a player\n"
    "Ends with Ctrl+C.\n"
    "velmora-catalogue --introduce FILE --at http://NAME:PORT\n"
    "Writes the address of a catalogue elsewhere into a player's registry file, and ends.\n";

struct Options {
    std::string folder;
    std::string address = "127.0.0.1";
    std::string registryFile;
    std::string elsewhere; // the address of another catalogue
    int port = 8420;
};

bool readPort(const char *text, int &port) {
    char *end = nullptr;
    const long value = std::strtol(text, &end, 10);
    port = static_cast<int>(value);
    return end != text && *end == '\0' && value >= 0 && value <= 65535;
}

bool readOptions(int count, char **words, Options &options) {
    for (int i = 1; i < count; ++i) {
        const std::string word = words[i];
        const char *value = i + 1 < count ? words[i + 1] : nullptr;
        if (word.substr(0, 2) != "--") {
            if (!options.folder.empty())
                return false;
            options.folder = word;
            continue;
        }
        ++i;
        if (value == nullptr || (word == "--port" && !readPort(value, options.port)))
            return false;
        if (word == "--bind")
            options.address = value;
        else if (word == "--introduce")
            options.registryFile = value;
        else if (word == "--at")
            options.elsewhere = value;
        else if (word != "--port")
            return false;
    }
    if (!options.elsewhere.empty())
        return options.folder.empty() && !options.registryFile.empty() &&
               options.elsewhere.substr(0, 7) == "http://";
    return !options.folder.empty();
}

bool introduceOrSay(const std::string &address, const std::string &registryFile) {
    if (introduce(address, registryFile))
        return true;
    std::fprintf(stderr, "velmora-catalogue: cannot write %s\n", registryFile.c_str());
    return false;
}

int serve(const Options &options) {
    // Blocked before the server's thread begins, so that only `sigwait` sees them.
    sigset_t ends;
    sigemptyset(&ends);
    for (const int number : {SIGINT, SIGTERM, SIGHUP})
        sigaddset(&ends, number);
    pthread_sigmask(SIG_BLOCK, &ends, nullptr);

    Catalogue catalogue(options.folder, options.address);
    const std::size_t songs = catalogue.library().songs().size();
    const std::size_t lyrics = catalogue.library().lyrics().size();
    const Server server(catalogue, options.address, options.port);
    const std::string address = "http://" + server.hostAndPort();
    if (!options.registryFile.empty() && !introduceOrSay(address, options.registryFile))
        return 1;
    std::printf("%zu songs and %zu lyrics at %s/\n", songs, lyrics, address.c_str());
    std::fflush(stdout);
    int number = 0;
    sigwait(&ends, &number);
    return 0;
}

} // namespace

int main(int count, char **words) {
    Options options;
    if (!readOptions(count, words, options)) {
        std::fputs(usage, stderr);
        return 2;
    }
    try {
        if (!options.elsewhere.empty())
            return introduceOrSay(options.elsewhere, options.registryFile) ? 0 : 1;
        return serve(options);
    } catch (const std::exception &error) {
        std::fprintf(stderr, "velmora-catalogue: %s\n", error.what());
        return 1;
    }
}
