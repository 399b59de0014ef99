#pragma once

// A playback stream of a PulseAudio server (or PipeWire's likeness of one). The server's index of
// bytes is the number line of the frames: frame f is at byte f * 8, also after pauses, so that any
// part of what is buffered can be written again at its place.

#include "platform/backends/sound/output/output_stream.h"
#include "platform/backends/sound/output/pulse_link.h"

namespace velmora::platform::sound {

class PulseStream final : public OutputStream {
public:
    // The link is Ready, and outlives the stream. Starting at first; Lost when refused.
    // `name` (UTF-8) is what a mixer shows of it.
    PulseStream(PulseLink &link, int rate, const std::string &name, TimePoint now);
    ~PulseStream() override;
    PulseStream(const PulseStream &) = delete;
    PulseStream &operator=(const PulseStream &) = delete;

    State state() const override;
    bool silent() const override { return false; }
    std::int64_t start(TimePoint now) override;
    void stop(TimePoint now) override;
    std::int64_t heard(TimePoint now) const override;
    bool advancing() const override { return advancing_; }
    bool exact(TimePoint now) override;
    std::int64_t earliest(TimePoint now) const override;
    void write(std::int64_t first, std::int64_t end, const Producer &producer) override;
    TimePoint refresh(TimePoint now) override;
    int takenAheadMs() const override;
    std::int64_t mostAhead() const override;

private:
    void connect(const std::string &name);
    // The longest mixing buffer that can be asked for beside what the server holds of us.
    int fittingMixMs(int mixMs) const;
    pa_buffer_attr bufferFor(int mixMs) const;
    void setMixBuffer(int mixMs);
    std::uint32_t bytesOf(int ms) const;
    // What the server has granted to hold of us; 0: it has not told yet.
    std::int64_t grantedBytes() const;
    void askSink();
    void takeSink(const pa_sink_info &info);
    bool mixesShortParts() const;
    void askTiming(TimePoint now);
    void takeTiming();
    void pullBack();
    void cancel(pa_operation *&operation);
    void ignore(pa_operation *operation);

    PulseLink &link_;
    const PulseTable &table_;
    int rate_;
    pa_stream *stream_ = nullptr;
    State state_ = State::Starting;
    std::int64_t serverWrite_ = 0; // where a relative write would go
    std::int64_t idleFrame_ = 0;   // heard last while idle
    float lastWritten_[2] = {0, 0};

    // What the server mixes for the device ahead of being heard, and whether it can take that back.
    int mixMs_;
    bool takesBack_ = false;

    // The last answer of the server: frame heard and frame taken at that time.
    double heardFrame_ = 0;
    std::int64_t takenFrame_ = 0;
    std::int64_t mixFrames_ = 0; // taken at a time; 0: not known
    TimePoint heardTime_;
    bool advancing_ = false;
    bool pulled_ = false; // see pullBack()

    pa_operation *buffering_ = nullptr;
    int askedMixMs_;
    pa_operation *timing_ = nullptr;
    pa_operation *sinkInfo_ = nullptr;
    TimePoint asked_;
    TimePoint started_;
    bool startedNow_ = false; // the server told of the start since the last turn
};

} // namespace velmora::platform::sound
