#pragma once

// The catalogue on the network.

#include "catalogue/catalogue.h"

#include <memory>
#include <string>

namespace velmora::catalogue {

// Answers GET and HEAD from a thread of its own until it is destroyed.
class Server {
public:
    // `address` is a number of this machine (127.0.0.1, ::1, 0.0.0.0); port 0 takes any free one.
    // On loopback only requests that name this machine are answered. Raises std::runtime_error.
    Server(Catalogue &catalogue, const std::string &address, int port);
    ~Server();
    Server(const Server &) = delete;
    Server &operator=(const Server &) = delete;

    int port() const noexcept { return port_; }
    // "127.0.0.1:8420"
    std::string hostAndPort() const;

private:
    struct Daemon;

    std::string address_;
    int port_ = 0;
    std::unique_ptr<Daemon> daemon_;
};

} // namespace velmora::catalogue
