#include "platform/backends/picture/playback_clock.h"

#include <algorithm>

namespace velmora::platform::picture {

void PlaybackClock::stopAt(double seconds) {
    isRunning_ = false;
    base_ = seconds;
    floor_ = seconds;
    since_.reset();
    lastReading_.reset();
}

void PlaybackClock::run() { isRunning_ = true; }

void PlaybackClock::correct(double seconds, Time when) {
    if (!isRunning_ || lastReading_ == seconds)
        return;
    const double told = at(when);
    const bool isJitter = since_ && seconds < told && told - seconds < jitterSeconds;
    floor_ = isJitter ? told : seconds;
    base_ = seconds;
    since_ = when;
    lastReading_ = seconds;
}

double PlaybackClock::at(Time when) const {
    if (!isRunning_ || !since_)
        return base_;
    const std::chrono::duration<double> passed = when - *since_;
    return std::max(floor_, base_ + std::clamp(passed.count(), 0.0, freeRunSeconds));
}

std::chrono::duration<double> PlaybackClock::standsFor(Time when) const {
    return since_ ? when - *since_ : std::chrono::duration<double>{};
}

void SeekTracker::sent(std::uint64_t id) {
    hasOld_ = hasOld_ || isSettled();
    last_ = id;
    stage_ = Stage::Sent;
}

void SeekTracker::taken(std::uint64_t id, bool failed) {
    if (stage_ == Stage::Sent && id == last_)
        stage_ = failed ? Stage::Settled : Stage::Taken;
}

void SeekTracker::begun() {
    hasOld_ = false;
    if (stage_ == Stage::Taken)
        stage_ = Stage::Begun;
}

void SeekTracker::done() {
    if (stage_ == Stage::Begun)
        stage_ = Stage::Settled;
    else
        hasOld_ = true;
}

} // namespace velmora::platform::picture
