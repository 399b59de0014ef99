#pragma once

// A proxy that leads every connection through to one port of this machine, whatever name is asked
// for.

#include <mutex>
#include <string>
#include <thread>

namespace velmora::testing {

class TunnelProxy {
public:
    explicit TunnelProxy(int targetPort);
    ~TunnelProxy();
    TunnelProxy(const TunnelProxy &) = delete;
    TunnelProxy &operator=(const TunnelProxy &) = delete;

    // "http://127.0.0.1:port".
    std::string url() const;
    // What the last client asked for.
    std::string asked() const;

private:
    void run();
    void lead(int client);

    int targetPort_;
    int listener_ = -1;
    int stop_ = -1;
    int port_ = 0;
    mutable std::mutex mutex_;
    std::string asked_;
    std::thread thread_;
};

} // namespace velmora::testing
