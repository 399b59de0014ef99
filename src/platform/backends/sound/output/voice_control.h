#pragma once

// What the program's thread wants of an open medium and what the output thread tells it back. Both
// sides hold the lock for a few copies only.

#include "platform/backends/sound/output/mixer.h"
#include "platform/backends/sound/output/output_stream.h"

#include <cstdint>
#include <mutex>

namespace velmora::platform::sound {

struct VoiceWish {
    // Counts the changes of `playing` and `frame`: play, pause, seek.
    std::uint64_t transport = 0;
    bool playing = false;
    std::int64_t frame = 0; // where to begin, or to stand
    // Counts the changes of `gain`.
    std::uint64_t mix = 0;
    GainMatrix gain = gainMatrix(1000, media::Channel::Stereo);
    bool closed = false;
};

struct VoiceReport {
    std::uint64_t transport = 0; // the change that this belongs to
    std::int64_t frame = 0;      // heard at `time`; before that it stands
    TimePoint time;
    bool advancing = false;
    bool ended = false; // the last frame has been heard
};

class VoiceControl {
public:
    VoiceWish wish() const {
        const std::lock_guard lock(mutex_);
        return wish_;
    }
    VoiceReport report() const {
        const std::lock_guard lock(mutex_);
        return report_;
    }
    void report(const VoiceReport &report) {
        const std::lock_guard lock(mutex_);
        report_ = report;
    }
    // Changes the wish under the lock.
    template <class Change> void change(Change &&change) {
        const std::lock_guard lock(mutex_);
        change(wish_);
    }

private:
    mutable std::mutex mutex_;
    VoiceWish wish_;
    VoiceReport report_;
};

} // namespace velmora::platform::sound
