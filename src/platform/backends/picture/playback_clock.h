#pragma once

// The two small machines behind a device's answers, free of any engine: which position to tell
// between two readings of it, and when a seek sent to the engine has been carried out.

#include <chrono>
#include <cstdint>
#include <optional>

namespace velmora::platform::picture {

// Tells a position that runs on evenly while the engine's own is read now and then, and that never
// steps back by the jitter of those readings. Seconds.
class PlaybackClock {
public:
    using Time = std::chrono::steady_clock::time_point;

    // Stands still at `seconds`.
    void stopAt(double seconds);
    // Runs on from where it stands, once the engine does: from the first reading that comes.
    void run();
    // A reading of the engine's position made at `when`. Nothing while it stands.
    void correct(double seconds, Time when);
    double at(Time when) const;
    // For how long the readings have told the same place; nothing before the first.
    std::chrono::duration<double> standsFor(Time when) const;
    bool isRunning() const { return isRunning_; }

private:
    // A step back of less than this is jitter: the position waits for the engine to catch up.
    static constexpr double jitterSeconds = 0.1;
    // Without a new reading for so long the engine is assumed to stand.
    static constexpr double freeRunSeconds = 0.5;

    bool isRunning_ = false;
    double base_ = 0.0;
    double floor_ = 0.0;        // told already
    std::optional<Time> since_; // when the position was `base_`; absent until the first reading
    std::optional<double> lastReading_;
};

// A seek is sent, taken, begun and done. Later ones replace earlier ones, whose reports may still
// arrive; readings count again when the last is done.
class SeekTracker {
public:
    // `id` of the command, never 0 here.
    void sent(std::uint64_t id);
    // The engine has taken a command; `failed` seeks change nothing and are done with.
    void taken(std::uint64_t id, bool failed);
    void begun();
    void done();
    // Whatever was under way has no end to wait for any more.
    void forget() {
        stage_ = Stage::Settled;
        hasOld_ = false;
    }

    bool isSettled() const { return stage_ == Stage::Settled; }
    // The engine still has what it read ahead at another place, and would put that out. It has not
    // where an earlier seek has begun and shows nothing yet: how long that takes is the film's to
    // say.
    bool isToBegin() const { return hasOld_ && (stage_ == Stage::Sent || stage_ == Stage::Taken); }

private:
    enum class Stage { Settled, Sent, Taken, Begun };
    Stage stage_ = Stage::Settled;
    bool hasOld_ = false;
    std::uint64_t last_ = 0;
};

} // namespace velmora::platform::picture
