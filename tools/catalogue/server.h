#pragma once

// The catalogue on the network.

#include "catalogue/catalogue.h"

#include <chrono>
#include <memory>
#include <string>

namespace velmora::catalogue {

// How long whoever is connected may take.
struct Patience {
    std::chrono::milliseconds request{20'000};     // to say what is wanted
    std::chrono::milliseconds nextRequest{60'000}; // with the pause in front of it
    unsigned bodySeconds = 600;                    // without taking a byte of the answer
};

// A certificate and its key, as texts (PEM); both empty for plain http.
struct Identity {
    std::string certificate;
    std::string key;
};

// Answers GET and HEAD from a thread of its own until it is destroyed.
class Server {
public:
    // `address` and `port` as for `listenAt`. On loopback only requests that name this machine are
    // answered. Raises std::runtime_error that says why it cannot.
    Server(Catalogue &catalogue, const std::string &address, int port,
           const Patience &patience = {}, const Identity &identity = {});
    ~Server();
    Server(const Server &) = delete;
    Server &operator=(const Server &) = delete;

    int port() const noexcept { return port_; }
    // "127.0.0.1:8420": how this machine reaches it.
    std::string hostAndPort() const { return hereAndPort_; }
    // How the household reaches it; the same where only this machine does.
    std::string addressForOthers() const { return scheme_ + othersAndPort_; }
    std::string addressHere() const { return scheme_ + hereAndPort_; }

private:
    struct Daemon;

    std::string scheme_;
    std::string hereAndPort_;
    std::string othersAndPort_;
    int port_ = 0;
    std::unique_ptr<Daemon> daemon_;
};

} // namespace velmora::catalogue
