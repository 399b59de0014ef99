#pragma once

// The one thread that puts out sound. It starts with the first medium and then sleeps whenever
// nothing is due; the connection to the sound server is kept between media, so that the next one
// sounds at once.

#include "platform/sound/pulse_link.h"
#include "platform/sound/voice.h"

#include <atomic>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

namespace velmora::platform::sound {

class OutputEngine {
public:
    explicit OutputEngine(PulseLinkOptions options);
    // Ends the thread and whatever still sounds.
    ~OutputEngine();
    OutputEngine(const OutputEngine &) = delete;
    OutputEngine &operator=(const OutputEngine &) = delete;

    // Hands over a medium. It lives until its wish says closed.
    void add(std::unique_ptr<Voice> voice);
    // A wish has changed. Cheap, also when called very often.
    void wake();

private:
    struct Line {
        std::unique_ptr<Voice> voice;
        std::unique_ptr<OutputStream> coming; // not ready to be attached yet
        TimePoint since;                      // of the wish for a stream
        TimePoint retry;                      // not to be tried before
        TimePoint closeBy = TimePoint::max();
    };

    void run();
    void takeNew(TimePoint now);
    TimePoint serve(Line &line, PulseLink &link, TimePoint now);
    TimePoint provide(Line &line, PulseLink &link, TimePoint now);
    TimePoint connect(PulseLink &link, TimePoint now);

    PulseLinkOptions options_;
    WakeUp wakeUp_;
    std::atomic<bool> signalled_ = false;
    std::mutex mutex_; // of the two below
    std::vector<std::unique_ptr<Voice>> added_;
    bool quit_ = false;
    // The thread's own.
    std::vector<Line> lines_;
    TimePoint connectSince_;
    TimePoint connectRetry_;
    std::thread thread_;
};

} // namespace velmora::platform::sound
