#pragma once

// A line of stereo frames that are heard one after the other at a fixed rate. Each frame has a
// number; what was written but not yet heard can be written again.

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <limits>

namespace velmora::platform::sound {

using Clock = std::chrono::steady_clock;
using TimePoint = Clock::time_point;

inline Clock::duration timeOfFrames(std::int64_t frames, int rate) {
    return std::chrono::duration_cast<Clock::duration>(
        std::chrono::duration<double>(static_cast<double>(frames) / rate));
}

inline std::int64_t framesOfTime(Clock::duration time, int rate) {
    return static_cast<std::int64_t>(std::chrono::duration<double>(time).count() * rate);
}

class OutputStream {
public:
    // Fills `frames` stereo frames, the first of them with the number `first`.
    using Producer = std::function<void(float *out, std::int64_t first, std::size_t frames)>;

    enum class State {
        Starting, // not usable yet
        Idle,     // nothing is heard, time stands still
        Running,
        Stopping, // on the way to Idle
        Lost,     // gone for good; only its destruction is left
    };

    virtual ~OutputStream() = default;
    virtual State state() const = 0;
    // True: nothing is ever heard, only time passes. Writing is not needed then.
    virtual bool silent() const = 0;

    // Idle only: lets time run. The number of the first frame that will be heard.
    virtual std::int64_t start(TimePoint now) = 0;
    // Running only: time stands still, what is not yet heard is dropped.
    virtual void stop(TimePoint now) = 0;

    // The frame that is being heard. It can be ahead of what was written (then silence is heard)
    // and stands still while the other side has not begun to play.
    virtual std::int64_t heard(TimePoint now) const = 0;
    virtual bool advancing() const = 0;
    // Whether heard() and earliest() are exact enough now for a change of what is heard. False:
    // they will be within a few milliseconds, and a turn follows.
    virtual bool exact(TimePoint) { return true; }
    // The first frame that a write which happens now will certainly change.
    virtual std::int64_t earliest(TimePoint now) const = 0;
    // Writes the frames [first, end), from the producer.
    virtual void write(std::int64_t first, std::int64_t end, const Producer &producer) = 0;
    // Keeps heard() exact; called with every turn. When it wants to be called again at the latest.
    virtual TimePoint refresh(TimePoint now) = 0;
    // How far ahead of being heard the other side takes frames, where that is so far that more than
    // usual must be written.
    virtual int takenAheadMs() const { return 0; }
    // How many frames ahead of being heard the other side holds. What is written beyond is lost.
    virtual std::int64_t mostAhead() const { return std::numeric_limits<std::int64_t>::max(); }
};

// Keeps time where no sound can be put out.
class SilentStream final : public OutputStream {
public:
    explicit SilentStream(int rate) : rate_(rate) {}

    State state() const override { return running_ ? State::Running : State::Idle; }
    bool silent() const override { return true; }
    std::int64_t start(TimePoint now) override;
    void stop(TimePoint now) override;
    std::int64_t heard(TimePoint now) const override;
    bool advancing() const override { return running_; }
    std::int64_t earliest(TimePoint now) const override { return heard(now); }
    void write(std::int64_t, std::int64_t, const Producer &) override {}
    TimePoint refresh(TimePoint) override { return TimePoint::max(); }

private:
    int rate_;
    bool running_ = false;
    std::int64_t frame_ = 0; // at since_
    TimePoint since_;
};

} // namespace velmora::platform::sound
