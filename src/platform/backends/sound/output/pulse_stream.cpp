#include "platform/backends/sound/output/pulse_stream.h"

#include <algorithm>
#include <cmath>
#include <string_view>

namespace velmora::platform::sound {

namespace {

using namespace std::chrono_literals;

constexpr std::int64_t frameBytes = 2 * sizeof(float);

// The server asks for more when so much of what it holds of us has been heard. Its own mixing
// buffer is a small part beside that: what is changed then is cheap to mix again. Where it cannot
// take back what it mixed, or would do so with a click (its resampler begins anew), the part is so
// short that a change need not wait for it long.
constexpr int requestMs = 840;
constexpr int leastRequestMs = 200;
constexpr int mixMsTakenBack = 60;
constexpr int mixMsKept = 24;
// An idle device may have mixed silence for two seconds. It is taken back only as far as the
// longest mixing buffer that anybody asks for.
constexpr int mixMsOfIdleDevice = 2500;
constexpr int idleAheadMs = 100;

// On the way to the server and through it.
constexpr int writeMs = 4;
constexpr int heardMarginMs = 15;
constexpr auto timingEach = 900ms;
constexpr auto timingAtStart = 4ms;
constexpr auto timingStanding = 100ms;
constexpr auto answerLimit = 3s;
constexpr auto exactFor = 40ms;
constexpr auto exactWait = 3ms;

} // namespace

PulseStream::PulseStream(PulseLink &link, int rate, const std::string &name, TimePoint now)
    : link_(link), table_(link.table()), rate_(rate), mixMs_(mixMsTakenBack),
      askedMixMs_(mixMsTakenBack), started_(now) {
    connect(name);
}

PulseStream::~PulseStream() {
    cancel(buffering_);
    cancel(timing_);
    cancel(sinkInfo_);
    if (!stream_)
        return;
    table_.pa_stream_set_state_callback(stream_, nullptr, nullptr);
    table_.pa_stream_set_started_callback(stream_, nullptr, nullptr);
    table_.pa_stream_set_event_callback(stream_, nullptr, nullptr);
    table_.pa_stream_disconnect(stream_);
    table_.pa_stream_unref(stream_);
}

void PulseStream::connect(const std::string &name) {
    const pa_sample_spec shape{PA_SAMPLE_FLOAT32NE, static_cast<std::uint32_t>(rate_), 2};
    pa_proplist *properties = table_.pa_proplist_new();
    table_.pa_proplist_sets(properties, PA_PROP_MEDIA_ROLE, "music");
    stream_ = table_.pa_stream_new_with_proplist(link_.context(), name.c_str(), &shape, nullptr,
                                                 properties);
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
                that->askSink();
            else if (!PA_STREAM_IS_GOOD(state))
                that->state_ = State::Lost;
        },
        this);
    table_.pa_stream_set_started_callback(
        stream_,
        [](pa_stream *, void *self) { static_cast<PulseStream *>(self)->startedNow_ = true; },
        this);
    table_.pa_stream_set_event_callback(
        stream_,
        [](pa_stream *, const char *event, pa_proplist *, void *self) {
            const std::string_view what(event);
            if (what == PA_STREAM_EVENT_REQUEST_CORK || what == PA_STREAM_EVENT_REQUEST_UNCORK)
                static_cast<PulseStream *>(self)->link_.wishQuiet(what ==
                                                                  PA_STREAM_EVENT_REQUEST_CORK);
        },
        this);
    const pa_buffer_attr buffer = bufferFor(mixMs_);
    if (table_.pa_stream_connect_playback(stream_, nullptr, &buffer, PA_STREAM_START_CORKED,
                                          nullptr, nullptr) < 0)
        state_ = State::Lost;
}

std::uint32_t PulseStream::bytesOf(int ms) const {
    return static_cast<std::uint32_t>(std::int64_t{rate_} * ms / 1000 * frameBytes);
}

std::int64_t PulseStream::grantedBytes() const {
    const pa_buffer_attr *granted = stream_ ? table_.pa_stream_get_buffer_attr(stream_) : nullptr;
    return granted ? granted->maxlength : 0;
}

int PulseStream::fittingMixMs(int mixMs) const {
    const std::int64_t granted = grantedBytes() / frameBytes * 1000 / rate_;
    if (granted == 0)
        return mixMs;
    return std::clamp(static_cast<int>(granted) - 2 * leastRequestMs, 1, mixMs);
}

// The mixing buffer is what two requests leave of the whole, and the whole is at most what the
// server holds of anybody, at high rates little. No pre-buffering: the server's time runs while the
// stream is not corked, written to or not.
pa_buffer_attr PulseStream::bufferFor(int mixMs) const {
    pa_buffer_attr buffer;
    buffer.maxlength = static_cast<std::uint32_t>(-1);
    buffer.tlength = bytesOf(mixMs + 2 * requestMs);
    if (const std::int64_t granted = grantedBytes(); granted > 0)
        buffer.tlength =
            static_cast<std::uint32_t>(std::min<std::int64_t>(buffer.tlength, granted));
    buffer.prebuf = 0;
    buffer.minreq =
        static_cast<std::uint32_t>((buffer.tlength - bytesOf(mixMs)) / 2 / frameBytes * frameBytes);
    buffer.fragsize = static_cast<std::uint32_t>(-1);
    return buffer;
}

void PulseStream::setMixBuffer(int mixMs) {
    askedMixMs_ = fittingMixMs(mixMs);
    const pa_buffer_attr buffer = bufferFor(askedMixMs_);
    cancel(buffering_);
    buffering_ = table_.pa_stream_set_buffer_attr(stream_, &buffer, nullptr, nullptr);
}

void PulseStream::askSink() {
    if (sinkInfo_ && table_.pa_operation_get_state(sinkInfo_) == PA_OPERATION_RUNNING)
        return;
    cancel(sinkInfo_);
    sinkInfo_ = table_.pa_context_get_sink_info_by_index(
        link_.context(), table_.pa_stream_get_device_index(stream_),
        [](pa_context *, const pa_sink_info *info, int end, void *self) {
            auto *that = static_cast<PulseStream *>(self);
            if (end == 0 && info)
                that->takeSink(*info);
            if (that->state_ == State::Starting)
                that->state_ = State::Idle;
        },
        this);
}

// Whether the device lets changes reach into what is mixed already, and how much it mixes at a time
// (others who use it may want it to be less).
void PulseStream::takeSink(const pa_sink_info &info) {
    mixFrames_ = std::llround(static_cast<double>(info.configured_latency) * rate_ / 1e6);
    takesBack_ = link_.rewinds() && (info.flags & PA_SINK_DYNAMIC_LATENCY) != 0 &&
                 info.sample_spec.rate == static_cast<std::uint32_t>(rate_);
    const int mixMs = takesBack_ ? mixMsTakenBack : mixMsKept;
    // The first wish may have been more than the server holds: it then mixes in its shortest parts.
    const bool overdrawn =
        state_ == State::Starting && bytesOf(mixMs_ + 2 * requestMs) > grantedBytes();
    if ((mixMs != mixMs_ || overdrawn) && !pulled_)
        setMixBuffer(mixMs);
    mixMs_ = mixMs;
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
    pulled_ = false;
    // A short part that is mixed already is not taken back: what plays begins behind it.
    return idleFrame_ + (mixesShortParts() ? mixFrames_ : 0);
}

void PulseStream::stop(TimePoint now) {
    state_ = State::Stopping;
    advancing_ = false;
    ignore(table_.pa_stream_cork(stream_, 1, nullptr, nullptr));
    ignore(table_.pa_stream_flush(stream_, nullptr, nullptr));
    // Its answer tells where the index stands from now on. One under way is from before.
    if (pulled_)
        setMixBuffer(mixMs_);
    pulled_ = false;
    cancel(timing_);
    askTiming(now);
}

std::int64_t PulseStream::heard(TimePoint now) const {
    if (state_ == State::Idle || state_ == State::Stopping)
        return idleFrame_;
    double frame = heardFrame_;
    if (advancing_)
        frame += std::chrono::duration<double>(now - heardTime_).count() * rate_;
    return std::llround(frame);
}

// Asks the server anew unless it told just now; does not wait for it long.
bool PulseStream::exact(TimePoint now) {
    if (!advancing_ || state_ != State::Running || now - heardTime_ < exactFor)
        return true;
    if (!timing_) {
        askTiming(now);
        return false;
    }
    return now - asked_ > exactWait;
}

// Taking back a short part costs more than it gains, whoever could.
bool PulseStream::mixesShortParts() const {
    return mixFrames_ > 0 && mixFrames_ <= std::int64_t{rate_} * (mixMsKept + 1) / 1000;
}

std::int64_t PulseStream::earliest(TimePoint now) const {
    const std::int64_t onTheWay = std::int64_t{rate_} * writeMs / 1000;
    const std::int64_t soon = std::max(heard(now) + onTheWay, idleFrame_);
    if (!advancing_ || pulled_ || (takesBack_ && !mixesShortParts()))
        return soon;
    if (mixFrames_ <= 0)
        return std::max(soon, takenFrame_ + framesOfTime(now - heardTime_, rate_) + onTheWay);
    // The next part is taken when the one before has been heard.
    std::int64_t taken = takenFrame_;
    if (soon > taken)
        taken += (soon - taken + mixFrames_ - 1) / mixFrames_ * mixFrames_;
    return taken;
}

int PulseStream::takenAheadMs() const {
    int ms = askedMixMs_;
    const bool told =
        !buffering_ || table_.pa_operation_get_state(buffering_) != PA_OPERATION_RUNNING;
    if (const pa_timing_info *info = told ? table_.pa_stream_get_timing_info(stream_) : nullptr)
        ms = static_cast<int>(std::min<pa_usec_t>(info->configured_sink_usec, 10'000'000) / 1000);
    return ms > idleAheadMs ? ms : 0;
}

std::int64_t PulseStream::mostAhead() const {
    const std::int64_t granted = grantedBytes() / frameBytes;
    // The server counts from what it has taken, which lies behind what is heard by no more than the
    // error of that.
    return granted > 0 ? std::max<std::int64_t>(granted - rate_ * heardMarginMs / 1000, 1)
                       : OutputStream::mostAhead();
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
        lastWritten_[0] = static_cast<float *>(memory)[(frames - 1) * 2];
        lastWritten_[1] = static_cast<float *>(memory)[(frames - 1) * 2 + 1];
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
    askSink();
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
    const auto framesOf = [this](pa_usec_t time) {
        return static_cast<double>(time) * rate_ / 1e6;
    };
    takenFrame_ = taken;
    heardFrame_ = static_cast<double>(taken) - framesOf(info->sink_usec);
    // The answer was true half way between question and now.
    heardTime_ = asked_ + (now - asked_) / 2;
    advancing_ = info->playing != 0;
    if (advancing_)
        return;
    heardFrame_ = std::max(heardFrame_, static_cast<double>(idleFrame_));
    if (!pulled_ && info->sink_usec > idleAheadMs * 1000)
        pullBack();
}

// An idle device that has mixed silence far ahead would play that out first. Asking for as long a
// buffer, and then writing again what is the last frame, makes the server mix all of it anew. The
// long buffer stays until the stream stops: shortened in play, what is mixed could not be changed.
void PulseStream::pullBack() {
    pulled_ = true;
    setMixBuffer(mixMsOfIdleDevice);
    if (serverWrite_ > idleFrame_)
        table_.pa_stream_write(stream_, lastWritten_, frameBytes, nullptr,
                               (serverWrite_ - 1) * frameBytes, PA_SEEK_ABSOLUTE);
}

void PulseStream::cancel(pa_operation *&operation) {
    if (!operation)
        return;
    table_.pa_operation_cancel(operation);
    table_.pa_operation_unref(operation);
    operation = nullptr;
}

void PulseStream::ignore(pa_operation *operation) {
    if (operation)
        table_.pa_operation_unref(operation);
}

} // namespace velmora::platform::sound
