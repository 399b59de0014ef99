#include "catalogue/slow_requests.h"

#include <sys/socket.h>

#include <algorithm>

namespace velmora::catalogue {

SlowRequests::SlowRequests(std::chrono::milliseconds first, std::chrono::milliseconds next)
    : first_(first), next_(next), thread_([this] { look(); }) {}

SlowRequests::~SlowRequests() {
    {
        const std::lock_guard lock(mutex_);
        ends_ = true;
    }
    ended_.notify_all();
    thread_.join();
}

void SlowRequests::opened(int socket) {
    expect(socket, first_);
    const std::lock_guard lock(mutex_);
    open_.insert(socket);
}

void SlowRequests::answered(int socket) { expect(socket, next_); }

void SlowRequests::expect(int socket, std::chrono::milliseconds within) {
    const std::lock_guard lock(mutex_);
    waiting_[socket] = Clock::now() + within;
}

void SlowRequests::asked(int socket) {
    const std::lock_guard lock(mutex_);
    waiting_.erase(socket);
}

void SlowRequests::closing(int socket) {
    asked(socket);
    const std::lock_guard lock(mutex_);
    open_.erase(socket);
}

void SlowRequests::endAll() {
    const std::lock_guard lock(mutex_);
    for (const int socket : open_)
        ::shutdown(socket, SHUT_RDWR);
}

void SlowRequests::look() {
    constexpr int looks = 4;
    const auto pause = std::min(first_, next_) / looks;
    std::unique_lock lock(mutex_);
    while (!ended_.wait_for(lock, pause, [this] { return ends_; }))
        for (auto at = waiting_.begin(); at != waiting_.end();) {
            const bool late = at->second <= Clock::now();
            // The server sees the end by itself, and closes.
            if (late)
                ::shutdown(at->first, SHUT_RDWR);
            at = late ? waiting_.erase(at) : std::next(at);
        }
}

} // namespace velmora::catalogue
