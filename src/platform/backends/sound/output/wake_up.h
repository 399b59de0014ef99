#pragma once

namespace velmora::platform::sound {

// Wakes a thread out of its wait. signal() may be called from any thread and is cheap.
class WakeUp {
public:
    WakeUp();
    ~WakeUp();
    WakeUp(const WakeUp &) = delete;
    WakeUp &operator=(const WakeUp &) = delete;

    void signal();
    void drain();
    int descriptor() const { return fd_; }

private:
    int fd_;
};

} // namespace velmora::platform::sound
