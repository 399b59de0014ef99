// velmora-catalogue: serves a folder of one's own music and lyrics to the player.

#include "base/text.h"
#include "catalogue/catalogue.h"
#include "catalogue/known_tags.h"
#include "catalogue/library_keeper.h"
#include "catalogue/server.h"
#include "catalogue/tag_child.h"
#include "registry_tool/commands.h"

#include <getopt.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace {

using namespace velmora::catalogue;

constexpr const char *usage =
    "Usage: velmora-catalogue [OPTION]... FOLDER\n"
    "   or: velmora-catalogue --introduce FILE --at http://NAME:PORT\n"
    "Serves the music and lyrics of FOLDER to Velmora and to browsers, until Ctrl+C.\n"
    "\n"
    "  --port N             the port (8420; 0 takes any free one)\n"
    "  --bind ADDRESS       the address to listen at (127.0.0.1: this machine alone)\n"
    "  --name NAME          a name with dots that this machine is asked by, besides NAME.local\n"
    "  --offer-updates DIR  offer the program that DIR/catalogue.ini names as an update\n"
    "  --cert FILE          serve by https with this certificate (PEM)\n"
    "  --key FILE           and this key of it\n"
    "  --cache FILE         where to keep what the files say for the next start\n"
    "  --introduce FILE     also write the address into this registry file of a player\n"
    "  --at URL             with --introduce: the address of a catalogue elsewhere\n"
    "  -h, --help           this text\n"
    "  -V, --version        the version\n"
    "\n"
    "Status: 0 ended in order, 1 cannot serve, 2 used wrongly.\n";

// How the server starts itself for what `TagChild` says; not for people.
constexpr char readTags[] = "--read-tags";
#ifdef VELMORA_SANITIZED
constexpr std::size_t tagMemory = 0; // a sanitizer takes more than any limit
#else
constexpr std::size_t tagMemory = std::size_t{400} << 20;
#endif

struct Options {
    std::string folder;
    std::string address = "127.0.0.1";
    std::string registryFile;
    std::string elsewhere; // the address of another catalogue
    std::string updates;
    std::string cache;
    std::string certificate;
    std::string key;
    std::vector<std::string> names;
    int port = 8420;
};

bool readPort(const char *text, int &port) {
    char *end = nullptr;
    const long value = std::strtol(text, &end, 10);
    port = static_cast<int>(value);
    return end != text && *end == '\0' && value >= 0 && value <= 65535;
}

constexpr int goOn = -1;

int misuse(const std::string &what) {
    std::fprintf(stderr, "velmora-catalogue: %s\nTry velmora-catalogue --help.\n", what.c_str());
    return 2;
}

bool lies(const std::filesystem::path &inner, const std::filesystem::path &outer) {
    const auto [at, end] = std::mismatch(outer.begin(), outer.end(), inner.begin(), inner.end());
    return at == outer.end();
}

// Whoever can write into the music must not decide about programs.
int apart(const Options &options) {
    if (options.updates.empty())
        return goOn;
    const auto music = std::filesystem::weakly_canonical(options.folder);
    const auto updates = std::filesystem::weakly_canonical(options.updates);
    return lies(music, updates) || lies(updates, music)
               ? misuse("updates are offered from a folder apart from the music")
               : goOn;
}

int checked(const Options &options) {
    if (!options.cache.empty() && !KnownTags::mayUse(options.cache))
        return misuse(options.cache + " was not made by velmora-catalogue");
    if (options.certificate.empty() != options.key.empty())
        return misuse("--cert and --key go together");
    if (options.elsewhere.empty())
        return options.folder.empty() ? misuse("the folder is missing") : apart(options);
    if (options.registryFile.empty() || !options.folder.empty())
        return misuse("--at goes with --introduce and without a folder");
    if (options.elsewhere.substr(0, 7) != "http://")
        return misuse("an address is http://NAME:PORT, not " + options.elsewhere);
    return goOn;
}

// The status where there is nothing more to do.
int readOptions(int count, char **words, Options &options) {
    enum : int {
        portOption = 256,
        bindOption,
        introduceOption,
        atOption,
        nameOption,
        updatesOption,
        cacheOption,
        certificateOption,
        keyOption
    };
    const option known[] = {{"port", required_argument, nullptr, portOption},
                            {"bind", required_argument, nullptr, bindOption},
                            {"introduce", required_argument, nullptr, introduceOption},
                            {"at", required_argument, nullptr, atOption},
                            {"name", required_argument, nullptr, nameOption},
                            {"offer-updates", required_argument, nullptr, updatesOption},
                            {"cache", required_argument, nullptr, cacheOption},
                            {"cert", required_argument, nullptr, certificateOption},
                            {"key", required_argument, nullptr, keyOption},
                            {"help", no_argument, nullptr, 'h'},
                            {"version", no_argument, nullptr, 'V'},
                            {nullptr, 0, nullptr, 0}};
    for (int found = 0; (found = getopt_long(count, words, "hV", known, nullptr)) != -1;) {
        switch (found) {
        case portOption:
            if (!readPort(optarg, options.port))
                return misuse(std::string("a port is a number from 0 to 65535, not ") + optarg);
            break;
        case bindOption:
            options.address = optarg;
            break;
        case introduceOption:
            options.registryFile = optarg;
            break;
        case atOption:
            options.elsewhere = optarg;
            break;
        case nameOption:
            options.names.emplace_back(optarg);
            break;
        case updatesOption:
            options.updates = optarg;
            break;
        case cacheOption:
            options.cache = optarg;
            break;
        case certificateOption:
            options.certificate = optarg;
            break;
        case keyOption:
            options.key = optarg;
            break;
        case 'h':
            std::fputs(usage, stdout);
            return 0;
        case 'V':
            std::puts("velmora-catalogue " VELMORA_VERSION);
            return 0;
        default:
            std::fputs("Try velmora-catalogue --help.\n", stderr);
            return 2;
        }
    }
    if (count - optind > 1)
        return misuse(std::string("one folder can be served, not ") + words[optind + 1] + " too");
    if (optind < count)
        options.folder = words[optind];
    return checked(options);
}

std::string contentOf(const std::string &path) {
    std::ifstream file(path, std::ios::binary);
    std::string content{std::istreambuf_iterator<char>(file), {}};
    if (content.empty())
        throw std::runtime_error("cannot read " + path);
    return content;
}

Identity identityOf(const Options &options) {
    if (options.certificate.empty())
        return {};
    return {contentOf(options.certificate), contentOf(options.key)};
}

// What ends the server. Of nohup, which has a lost terminal mean nothing, that stays so.
sigset_t ends() {
    sigset_t numbers;
    sigemptyset(&numbers);
    struct ::sigaction lost {};
    ::sigaction(SIGHUP, nullptr, &lost);
    for (const int number : {SIGINT, SIGTERM, SIGHUP})
        if (number != SIGHUP || lost.sa_handler != SIG_IGN)
            sigaddset(&numbers, number);
    return numbers;
}

// Says what is offered, and to whom nobody listens.
void sayUpdates(Catalogue &catalogue, const Options &options) {
    if (!options.updates.empty()) {
        const auto offer = catalogue.offerUpdatesFrom(options.updates);
        if (offer)
            std::printf("Offers version %s of the player: %s/%s\n",
                        velmora::toUtf8(offer->version).c_str(), options.updates.c_str(),
                        offer->path.c_str());
        else
            std::printf("Offers no update: %s/catalogue.ini names no version with its program\n",
                        options.updates.c_str());
    }
    if (catalogue.hasUnheededOffer())
        std::fprintf(stderr, "velmora-catalogue: what catalogue.ini in the music says of updates "
                             "is not heeded (--offer-updates)\n");
}

// What is told of the reading, line by line as it goes on.
KeeperWords keeperWords() {
    KeeperWords words;
    words.progress = [](std::size_t done, std::size_t all) {
        std::printf("%zu of %zu files are read\n", done, all);
        std::fflush(stdout);
    };
    words.read = [](const Library &library, bool cut) {
        std::printf("%zu songs and %zu lyrics\n", library.songs().size(), library.lyrics().size());
        std::fflush(stdout);
        if (cut)
            std::fprintf(stderr, "velmora-catalogue: there are more files than 200000; the rest "
                                 "is not served\n");
    };
    return words;
}

int serve(const Options &options) {
    // Blocked before the server's thread begins, so that only `sigwait` sees them.
    const sigset_t signals = ends();
    pthread_sigmask(SIG_BLOCK, &signals, nullptr);

    Catalogue catalogue(options.folder, options.address);
    for (const std::string &name : options.names)
        catalogue.acceptName(name);
    sayUpdates(catalogue, options);
    const Server server(catalogue, options.address, options.port, {}, identityOf(options));
    if (!options.registryFile.empty() &&
        !velmora::registry_tool::nameServer(server.addressHere(), options.registryFile, std::cerr))
        return 1;
    std::printf("%s is served at %s/\n", options.folder.c_str(), server.addressForOthers().c_str());
    std::fflush(stdout);
    LibraryKeeper keeper(catalogue, {"/proc/self/exe", readTags},
                         options.cache.empty() ? knownTagsPath(options.folder) : options.cache,
                         keeperWords());
    int number = 0;
    sigwait(&signals, &number);
    // A disk that does not answer holds whoever reads it.
    std::signal(SIGALRM, [](int) { std::_Exit(0); });
    ::alarm(1);
    return 0;
}

} // namespace

int main(int count, char **words) {
    if (count == 2 && std::string_view(words[1]) == readTags)
        return serveTags(tagMemory);
    Options options;
    if (const int status = readOptions(count, words, options); status != goOn)
        return status;
    try {
        if (options.elsewhere.empty())
            return serve(options);
        const bool named =
            velmora::registry_tool::nameServer(options.elsewhere, options.registryFile, std::cerr);
        return named ? 0 : 1;
    } catch (const std::exception &error) {
        std::fprintf(stderr, "velmora-catalogue: %s\n", error.what());
        return 1;
    }
}
