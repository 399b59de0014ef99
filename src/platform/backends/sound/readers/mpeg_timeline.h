#pragma once

// How long a stream of MPEG audio sounds, and where in it each moment lies.

#include "platform/backends/sound/readers/mpeg_index.h"

#include <chrono>
#include <cstdint>
#include <functional>
#include <optional>

namespace velmora::platform::sound {

// Times are counted in "frames" of the whole (a sample of each channel), at the rate of the first
// run. What the encoder has put ahead of the sound and behind it does not count, where it tells so.
class MpegTimeline {
public:
    using Clock = std::chrono::steady_clock;

    // The source outlives it and has no tags at its end.
    MpegTimeline(const ByteSource &source, std::function<Clock::time_point()> now);

    // Looks for the first frame. False: there is none.
    bool begin();

    const MpegFrame &form() const { return index_.runs().front().form; } // of the first run

    // Counts on, a piece at least, until all is counted or the time is over.
    void countFor(std::chrono::milliseconds limit);
    bool isCounted() const { return index_.isComplete(); }

    // Believed from a header, reckoned from the part that was counted, or exact when all is.
    std::int64_t length() const;
    // The header's length may be believed until all is counted.
    bool isTold() const { return isTold_; }

    // From where to decode to hear a moment exactly.
    struct Spot {
        MpegPlace place;
        std::int64_t passedFrames = 0;   // of the walk from there, not worth decoding
        std::int64_t droppedSamples = 0; // at the run's own rate, behind those
        bool isGuessed = false;          // from the mean size of a frame: too far to count
    };
    // Counts on towards it for a short while. Absent: nothing is there any more.
    std::optional<Spot> spotOf(std::int64_t frame);

    // What is still to come from this place on, by the mean size of a frame.
    std::int64_t lengthFrom(std::int64_t offset) const;

    // The same time at the first run's rate.
    std::int64_t outOf(std::int64_t samples, const MpegFrame &form) const {
        return (samples * this->form().rate + form.rate / 2) / form.rate;
    }

private:
    bool isPlausible() const;
    bool isSeen(double mean) const;
    std::int64_t framesOfRun(std::size_t run) const;
    std::int64_t countedOut() const;
    std::int64_t lead() const;
    double meanFrameBytes() const;
    void countTowards(std::int64_t moment);
    Spot countedSpot(std::int64_t moment) const;
    std::optional<Spot> guessedSpot(std::int64_t moment) const;

    const ByteSource &source_;
    std::function<Clock::time_point()> now_;
    std::optional<MpegSeekHeader> header_;
    MpegIndex index_;
    bool isTold_ = false;
};

} // namespace velmora::platform::sound
