#pragma once

// A private sound server with one null sink for tests that listen: nothing of the user's own server
// is touched, and what the sink would have put out can be recorded sample by sample.

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <mutex>
#include <string>
#include <sys/types.h>
#include <thread>
#include <vector>

namespace velmora::tests {

struct PulseServerOptions {
    int rate = 44100;
    int channels = 2;
    // Without it the server makes its own dummy sink, as on a machine without a sound card.
    bool nullSink = true;
    // Not negative: the server is started by the first that calls it, so long after the call. The
    // socket is there before.
    int startedByCallAfterMs = -1;
    // Further arguments of the server, e.g. {"-L", "module-null-sink sink_name=null2"}.
    std::vector<std::string> arguments = {};
};

// Starts in the constructor, ends (at once) in the destructor. A server that could not be started
// answers false to running(), whatever kept it from that.
class PulseServer {
public:
    using Options = PulseServerOptions;

    explicit PulseServer(Options options = {});
    ~PulseServer();
    PulseServer(const PulseServer &) = delete;
    PulseServer &operator=(const PulseServer &) = delete;

    // Whether the programs of the server and the recorder are there at all: only without them may a
    // test be skipped.
    static bool isInstalled();

    // True once the server answers on its socket; waits for it with a limit.
    bool start();
    // As a crash: SIGKILL, no farewell to the clients. The address stays valid for start().
    void kill();
    // Stops (SIGSTOP) and continues the process: a server that hangs.
    void freeze();
    void thaw();
    bool running() const { return pid_ > 0; }

    // What goes into PULSE_SERVER.
    std::string address() const { return "unix:" + socketPath(); }
    std::string socketPath() const { return directory_ + "/native"; }
    std::string directory() const { return directory_; }
    std::string sinkName() const { return "null1"; }
    int rate() const { return options_.rate; }
    pid_t pid() const { return pid_; }

    // How much the null sink is set to mix ahead of being heard, and how much of it is left just
    // now; -1: it cannot be told.
    int mixesAheadMs() const;
    int mixedMs() const;
    // Whether anybody plays into the null sink.
    bool sinkPlays() const;

    // Sets PULSE_SERVER, XDG_RUNTIME_DIR and PULSE_RUNTIME_PATH of this process, for libraries that
    // take the server from the environment.
    void exportToEnvironment() const;

private:
    // What the server tells of the null sink behind a name; empty: nothing.
    std::string tellsOfSink(const std::string &name) const;
    int millisecondsOfSink(const std::string &name) const;

    Options options_;
    std::string directory_;
    pid_t pid_ = -1;
};

// Another program that plays: silence, into the null sink, until it is destroyed.
class SilentPlayer {
public:
    // Returns when it plays; throws when it does not within ten seconds.
    SilentPlayer(const PulseServer &server, int latencyMs);
    ~SilentPlayer();
    SilentPlayer(const SilentPlayer &) = delete;
    SilentPlayer &operator=(const SilentPlayer &) = delete;

private:
    pid_t pid_;
};

// Records the null sink's monitor from its construction on, as 32-bit float stereo at the sink's
// rate. It keeps the sink at a latency of half of its own, usually about 10 ms, and what it records
// arrives as much late; construct it before the first play.
class MonitorRecorder {
public:
    using Clock = std::chrono::steady_clock;

    // Returns when the first samples have arrived; throws when none do within ten seconds.
    explicit MonitorRecorder(const PulseServer &server, int latencyMs = 20);
    ~MonitorRecorder();
    MonitorRecorder(const MonitorRecorder &) = delete;
    MonitorRecorder &operator=(const MonitorRecorder &) = delete;

    int rate() const { return rate_; }
    std::size_t frames() const;
    std::size_t framesOf(int ms) const { return static_cast<std::size_t>(rate_) * ms / 1000; }
    // Samples of one channel (0 left, 1 right) from a frame on; short if not all are there yet.
    std::vector<float> channel(int which, std::size_t from, std::size_t count) const;
    // When the frame arrived here: at most about 40 ms after it was heard.
    Clock::time_point arrivalOf(std::size_t frame) const;

    // Waits until that many frames are there; false when the limit passes first.
    bool waitForFrames(std::size_t count, int limitMs) const;
    // Waits for the first frame at or after `from` whose magnitude in either channel reaches the
    // threshold; frameNone when the limit passes first.
    static constexpr std::size_t frameNone = static_cast<std::size_t>(-1);
    std::size_t waitForLoud(float threshold, std::size_t from, int limitMs) const;
    // Waits for the first frame at or after `from` with which `ms` of silence begin.
    std::size_t waitForSilence(float threshold, int ms, std::size_t from, int limitMs) const;

private:
    void read();
    std::size_t findLoud(float threshold, std::size_t from) const;

    int rate_;
    pid_t pid_ = -1;
    int pipe_ = -1;
    mutable std::mutex mutex_;
    mutable std::condition_variable grown_;
    std::vector<float> samples_; // interleaved
    struct Arrival {
        std::size_t end;
        Clock::time_point time;
    };
    std::vector<Arrival> arrivals_;
    std::thread reader_;
};

} // namespace velmora::tests
