#pragma once

// Ends the connections of whoever takes too long to say what is wanted: each byte of a request puts
// off the library's own limit, so that one machine with a byte now and then could keep all places.

#include <chrono>
#include <condition_variable>
#include <map>
#include <mutex>
#include <set>
#include <thread>

namespace velmora::catalogue {

class SlowRequests {
public:
    // `first` is for a connection's first request, `next` for each further one with the pause in
    // front of it. Looks several times in the shorter of both.
    SlowRequests(std::chrono::milliseconds first, std::chrono::milliseconds next);
    ~SlowRequests();
    SlowRequests(const SlowRequests &) = delete;
    SlowRequests &operator=(const SlowRequests &) = delete;

    // All take the socket of a connection, and may be called from any thread. `closing` has to come
    // while the number still is that connection's.
    void opened(int socket);
    void asked(int socket);
    void answered(int socket);
    void closing(int socket);
    // Ends every connection that there is.
    void endAll();

private:
    using Clock = std::chrono::steady_clock;

    void expect(int socket, std::chrono::milliseconds within);
    void look();

    std::chrono::milliseconds first_;
    std::chrono::milliseconds next_;
    std::mutex mutex_;
    std::condition_variable ended_;
    bool ends_ = false;
    std::set<int> open_;
    std::map<int, Clock::time_point> waiting_; // until when each has to have asked
    std::thread thread_;
};

} // namespace velmora::catalogue
