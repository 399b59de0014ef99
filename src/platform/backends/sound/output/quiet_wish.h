#pragma once

// What the sound server asks of whoever plays music: to be quiet while a call goes on. Told on the
// output thread, taken up on the program's.

#include "platform/backends/sound/output/wake_up.h"

#include <atomic>

namespace velmora::platform::sound {

class QuietWish {
public:
    void set(bool wanted) {
        wanted_ = wanted;
        news_.signal();
    }
    // Can be read once there is news.
    int descriptor() const { return news_.descriptor(); }
    // What holds now.
    bool take() {
        news_.drain();
        return wanted_;
    }

private:
    WakeUp news_;
    std::atomic<bool> wanted_ = false;
};

} // namespace velmora::platform::sound
