#include "platform/sound/pulse_stream.h"

#include <algorithm>
#include <cmath>

namespace velmora::platform::sound {

namespace {

using namespace std::chrono_literals;

constexpr std::int64_t frameBytes = 2 * sizeof(float);

// The server holds so much of us, of which its own mixing buffer is a small part: what is changed
// then is cheap to mix again. A server that cannot take back what it mixed is late by that part.
constexpr int bufferMs = 1800;
constexpr int mixBufferMs = 60;

// On the way to the server and through it.
constexpr int writeMs = 4;
constexpr auto timingEach = 900ms;
constexpr auto timingAtStart = 4ms;
constexpr auto timingStanding = 100ms;
constexpr auto answerLimit = 3s;

} // namespace

PulseStream::PulseStream(PulseLink &link, int rate, TimePoint now)
    : link_(link), table_(link.table()), rate_(rate), started_(now) {
    connect();
}

PulseStream::~PulseStream() {
    if (timing_) {
        table_.pa_operation_cancel(timing_);
        table_.pa_operation_unref(timing_);
    }
    if (!stream_)
        return;
    table_.pa_stream_set_state_callback(stream_, nullptr, nullptr);
    table_.pa_stream_set_started_callback(stream_, nullptr, nullptr);
    table_.pa_stream_disconnect(stream_);
    table_.pa_stream_unref(stream_);
}

void PulseStream::connect() {
    const pa_sample_spec spec{PA_SAMPLE_FLOAT32NE, static_cast<std::uint32_t>(rate_), 2};
    pa_proplist *properties = table_.pa_proplist_new();
    table_.pa_proplist_sets(properties, PA_PROP_MEDIA_ROLE, "music");
    stream_ =
        table_.pa_stream_new_with_proplist(link_.context(), "Music", &spec, nullptr, properties);
    table_.pa_proplist_free(properties);
    if (!stream_) {
        state_ = State::Lost;
        return;
    }
    table_.pa_stream_set_state_callback(
        stream_,
        [](pa_stream *stream, void *self) {
            auto *that = static_cast<PulseStream *>(self);
            const pa_stream_state_t state = that->table_.pa_stream_get_state(stream);
            if (state == PA_STREAM_READY)
                that->state_ = State::Idle;
            else if (!PA_STREAM_IS_GOOD(state))
                that->state_ = State::Lost;
        },
        this);
    table_.pa_stream_set_started_callback(
        stream_,
        [](pa_stream *, void *self) { static_cast<PulseStream *>(self)->startedNow_ = true; },
        this);
    const auto bytes = [this](int ms) {
        return static_cast<std::uint32_t>(std::int64_t{rate_} * ms / 1000 * frameBytes);
    };
    // No pre-buffering: the server's time runs while the stream is not corked, written to or not.
    pa_buffer_attr buffer;
    buffer.maxlength = bytes(bufferMs * 3);
    buffer.tlength = bytes(bufferMs);
    buffer.prebuf = 0;
    buffer.minreq = bytes((bufferMs - 2 * mixBufferMs) / 2);
    buffer.fragsize = static_cast<std::uint32_t>(-1);
    const auto flags =
        static_cast<pa_stream_flags_t>(PA_STREAM_START_CORKED | PA_STREAM_ADJUST_LATENCY);
    if (table_.pa_stream_connect_playback(stream_, nullptr, &buffer, flags, nullptr, nullptr) < 0)
        state_ = State::Lost;
}

OutputStream::State PulseStream::state() const {
    return link_.state() == PulseLink::State::Ready ? state_ : State::Lost;
}

std::int64_t PulseStream::start(TimePoint now) {
    ignore(table_.pa_stream_cork(stream_, 0, nullptr, nullptr));
    state_ = State::Running;
    started_ = now;
    heardFrame_ = static_cast<double>(idleFrame_);
    takenFrame_ = idleFrame_;
    heardTime_ = now;
    advancing_ = false;
    startedNow_ = false;
    // The write that follows at once makes the server mix again what it has ahead: otherwise an
    // idle device would first play out up to two seconds of silence.
    return idleFrame_;
}

void PulseStream::stop(TimePoint now) {
    state_ = State::Stopping;
    advancing_ = false;
    ignore(table_.pa_stream_cork(stream_, 1, nullptr, nullptr));
    ignore(table_.pa_stream_flush(stream_, nullptr, nullptr));
    // Its answer tells where the index stands from now on. One under way is from before.
    if (timing_) {
        table_.pa_operation_cancel(timing_);
        table_.pa_operation_unref(timing_);
        timing_ = nullptr;
    }
    askTiming(now);
}

std::int64_t PulseStream::heard(TimePoint now) const {
    if (state_ != State::Running)
        return idleFrame_;
    double frame = heardFrame_;
    if (advancing_)
        frame += std::chrono::duration<double>(now - heardTime_).count() * rate_;
    return std::llround(frame);
}

std::int64_t PulseStream::earliest(TimePoint now) const {
    const std::int64_t onTheWay = std::int64_t{rate_} * writeMs / 1000;
    std::int64_t frame = heard(now) + onTheWay;
    if (!link_.rewinds() && advancing_)
        frame = std::max(frame, takenFrame_ + onTheWay + framesOfTime(now - heardTime_, rate_));
    return std::max(frame, idleFrame_);
}

void PulseStream::write(std::int64_t first, std::int64_t end, const Producer &producer) {
    while (first < end && state() != State::Lost) {
        void *memory = nullptr;
        auto bytes = static_cast<std::size_t>((end - first) * frameBytes);
        if (table_.pa_stream_begin_write(stream_, &memory, &bytes) < 0 || !memory)
            return;
        const auto frames =
            std::min<std::int64_t>(static_cast<std::int64_t>(bytes) / frameBytes, end - first);
        producer(static_cast<float *>(memory), first, static_cast<std::size_t>(frames));
        const bool follows = first == serverWrite_;
        table_.pa_stream_write(stream_, memory, static_cast<std::size_t>(frames * frameBytes),
                               nullptr, follows ? 0 : first * frameBytes,
                               follows ? PA_SEEK_RELATIVE : PA_SEEK_ABSOLUTE);
        first += frames;
        serverWrite_ = first;
    }
}

TimePoint PulseStream::refresh(TimePoint now) {
    if (timing_) {
        // A server that is alive but does not answer is as good as gone.
        if (now - asked_ > answerLimit)
            state_ = State::Lost;
        return asked_ + answerLimit + 1ms;
    }
    if (state_ != State::Running)
        return TimePoint::max();
    if (advancing_) {
        if (now - asked_ >= timingEach)
            askTiming(now);
        return TimePoint::max(); // the next refill is soon enough
    }
    const auto pause = now - started_ < timingStanding ? timingAtStart : timingStanding;
    if (startedNow_ || asked_ < started_ || now - asked_ >= pause)
        askTiming(now);
    startedNow_ = false;
    return now + pause;
}

void PulseStream::askTiming(TimePoint now) {
    asked_ = now;
    timing_ = table_.pa_stream_update_timing_info(
        stream_,
        [](pa_stream *, int success, void *self) {
            auto *that = static_cast<PulseStream *>(self);
            that->table_.pa_operation_unref(that->timing_);
            that->timing_ = nullptr;
            if (success != 0)
                that->takeTiming();
            else
                that->state_ = State::Lost;
        },
        this);
    if (!timing_)
        state_ = State::Lost;
}

void PulseStream::takeTiming() {
    const pa_timing_info *info = table_.pa_stream_get_timing_info(stream_);
    if (!info)
        return;
    const TimePoint now = Clock::now();
    const std::int64_t taken = info->read_index / frameBytes;
    if (state_ == State::Stopping) {
        idleFrame_ = taken;
        serverWrite_ = taken;
        state_ = State::Idle;
        return;
    }
    if (state_ != State::Running)
        return;
    takenFrame_ = taken;
    heardFrame_ = static_cast<double>(taken) - static_cast<double>(info->sink_usec) * rate_ / 1e6;
    // The answer was true half way between question and now.
    heardTime_ = asked_ + (now - asked_) / 2;
    advancing_ = info->playing != 0;
    if (!advancing_)
        heardFrame_ = std::max(heardFrame_, static_cast<double>(idleFrame_));
}

void PulseStream::ignore(pa_operation *operation) {
    if (operation)
        table_.pa_operation_unref(operation);
}

} // namespace velmora::platform::sound
