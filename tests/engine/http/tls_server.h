#pragma once

// Encrypted servers on the loopback interface, and the certificates they show.

#include <filesystem>
#include <string>
#include <string_view>

namespace velmora::testing {

// An authority of this run's own, in a folder of its own. Everything is made by the "openssl" tool.
class Authority {
public:
    explicit Authority(const std::filesystem::path &folder);

    // Its own certificate, as a system keeps those it trusts.
    std::string certificate() const { return (folder_ / "authority.pem").string(); }
    // A certificate with its key in one file, for "IP:127.0.0.1" or "DNS:name", valid for so many
    // days from now (below 0: it has ended). Empty when it could not be made.
    std::string issue(const std::string &subject, int days = 2) const;
    // The digest of the key of a certificate that was issued, as "sha256//" and base64.
    static std::string pinOf(const std::string &certificate);

private:
    std::filesystem::path folder_;
};

// Answers "GET /name" with the content of the file of that name in its folder, which is a whole
// response with its header.
class TlsServer {
public:
    TlsServer(const std::string &certificate, const std::filesystem::path &folder);
    ~TlsServer();
    TlsServer(const TlsServer &) = delete;
    TlsServer &operator=(const TlsServer &) = delete;

    bool works() const { return port_ != 0; }
    int port() const { return port_; }
    // "https://127.0.0.1:port" and the path behind it.
    std::string url(std::string_view path) const;

private:
    int process_ = -1;
    int output_ = -1;
    int port_ = 0;
};

// Makes a certificate the only one that this process trusts, as the administrator of a machine
// would: in the place where the HTTP library looks, which is another one for this process from now
// on. To be called while there is one thread. False where the system does not let a process do so.
bool trustOnly(const std::string &certificate);

} // namespace velmora::testing
