#pragma once

// A thread that puts out sound over a connection to the server of its own. It sleeps whenever
// nothing is due. The files are read on it as well: one that does not answer holds it up for as
// long.

#include "platform/backends/sound/output/pulse_link.h"
#include "platform/backends/sound/output/voice.h"

#include <atomic>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

namespace velmora::platform::sound {

class OutputThread {
public:
    // Null: the system has no thread to give. leave() or end() before it is let go.
    static std::shared_ptr<OutputThread> start(PulseLinkOptions options);
    explicit OutputThread(PulseLinkOptions options);
    OutputThread(const OutputThread &) = delete;
    OutputThread &operator=(const OutputThread &) = delete;

    // Hands over voices. Each lives until its wish says closed.
    void add(std::vector<std::unique_ptr<Voice>> voices);
    // Those that it has not come to take up, once it is plain that something holds it up; else
    // none.
    std::vector<std::unique_ptr<Voice>> takeBack();
    // A wish has changed. Cheap, also when called very often.
    void wake();

    // It goes on alone and ends when the last voice that it has is closed.
    void leave();
    // Ends it and whatever still sounds; one that is held up ends alone, when it comes back.
    void end();

private:
    struct Line {
        std::unique_ptr<Voice> voice;
        std::unique_ptr<OutputStream> coming; // not ready to be attached yet
        TimePoint since;                      // of the wish for a stream
        TimePoint retry;                      // not to be tried before
        TimePoint closeBy = TimePoint::max();
    };

    void run();
    bool isOver();
    void takeNew(TimePoint now);
    TimePoint turn(PulseLink &link, TimePoint now);
    TimePoint serve(Line &line, PulseLink &link, TimePoint now);
    TimePoint provide(Line &line, PulseLink &link, TimePoint now);
    TimePoint connect(PulseLink &link, TimePoint now);

    PulseLinkOptions options_;
    WakeUp wakeUp_;
    std::atomic<bool> signalled_ = false;
    std::mutex mutex_; // of the seven below
    std::condition_variable hasEnded_;
    std::vector<std::unique_ptr<Voice>> added_;
    TimePoint addedAt_; // the first of them
    bool begun_ = false;
    bool left_ = false;
    bool quit_ = false;
    bool ended_ = false;
    // The thread's own.
    std::vector<Line> lines_;
    TimePoint connectSince_;
    TimePoint connectRetry_;
    std::thread thread_;
};

} // namespace velmora::platform::sound
