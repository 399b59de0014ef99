#include "platform/backends/sound/output/voice.h"

#include <algorithm>

namespace velmora::platform::sound {

namespace {

using namespace std::chrono_literals;
using State = OutputStream::State;

constexpr TimePoint never = TimePoint::max();

constexpr int fadeMs = 5;     // of what is cut off and of what begins in the middle
constexpr int rampMs = 8;     // of a change of gain
constexpr int aheadMs = 1400; // written in steady play
constexpr int keptMs = 200;   // decoded and kept beyond that
// While changes follow each other, as in a fade, only so much is rendered anew for each; the rest
// waits until they stop or it comes near.
constexpr int rewriteMs = 100;
constexpr int staleNearMs = 50;
constexpr auto mixPause = 4ms;
// In a row of changes each waits as long as its ramp takes: the one before has been heard whole.
constexpr auto mixPauseInARow = std::chrono::milliseconds(rampMs);
constexpr auto exactPause = 1ms;
constexpr auto mixSettled = 40ms;
// Between pieces that are rendered anew. The server tells when it needs the old ones no more, and
// the memory they lie in serves for the next; all at once they would stand there twice.
constexpr auto anewPause = 10ms;
constexpr int silenceMs = 100;           // behind what was cut off
constexpr std::int64_t smallStep = 2048; // frames
// What one block of the server's shared memory holds, 64 KB less its own head: a step of more would
// take a second block for the few frames that are left.
constexpr std::int64_t largeStep = 8160;

} // namespace

Voice::Voice(std::shared_ptr<VoiceControl> control, std::unique_ptr<Reader> reader,
             std::string name)
    : control_(std::move(control)), window_(std::move(reader), aheadMs + keptMs),
      name_(std::move(name)) {}

std::int64_t Voice::framesOfMs(int ms) const { return std::int64_t{rate()} * ms / 1000; }

void Voice::attach(std::unique_ptr<OutputStream> stream, TimePoint now) {
    if (playing_)
        resumeAt_ = sourceFrame(now);
    playing_ = false;
    stream_ = std::move(stream);
    stopAt_.reset();
    staleFrom_.reset();
    head_ = written_ = 0;
}

TimePoint Voice::service(TimePoint now) {
    wish_ = control_->wish();
    if (wish_.closed)
        wish_.playing = false;
    if (!stream_ || stream_->state() == State::Lost || stream_->state() == State::Starting)
        return never;
    TimePoint due = std::min(changeTransport(now), changeMix(now));
    due = std::min({due, fill(now), settle(now)});
    due = std::min(due, stream_->refresh(now));
    publish(now);
    return due;
}

bool Voice::finished(TimePoint now) const {
    if (!wish_.closed)
        return false;
    if (!stream_ || stream_->state() != State::Running || stream_->silent())
        return true;
    return !playing_ && (!stopAt_ || stream_->heard(now) >= *stopAt_);
}

TimePoint Voice::changeTransport(TimePoint now) {
    const bool changed = wish_.transport != doneTransport_;
    if (stream_->state() == State::Stopping || (!changed && !resumeAt_))
        return never;
    if (!stream_->exact(now))
        return now + exactPause;
    if (changed)
        resumeAt_.reset();
    doneTransport_ = wish_.transport;
    ended_ = false;
    if (wish_.playing)
        start(now, resumeAt_.value_or(wish_.frame));
    else
        silence(now);
    resumeAt_.reset();
    return never;
}

void Voice::start(TimePoint now, std::int64_t frame) {
    const bool running = stream_->state() == State::Running;
    pieceOut_ = running ? fadeOut(now) : stream_->start(now);
    pieceSource_ = frame;
    window_.seek(frame);
    head_ = pieceOut_;
    playing_ = true;
    filling_ = true;
    stopAt_.reset();
    staleFrom_.reset();
    doneMix_ = wish_.mix;
    // A piece begun in its middle would begin with a step.
    ramp_.set(frame == 0 ? wish_.gain : GainMatrix{});
    ramp_.rampTo(wish_.gain, pieceOut_, framesOfMs(fadeMs));
}

void Voice::silence(TimePoint now) {
    if (stream_->state() == State::Running && !stopAt_) {
        const std::int64_t from = fadeOut(now);
        writeSilence(from, std::max(written_, from + framesOfMs(silenceMs)));
        stopAt_ = from + framesOfMs(fadeMs);
    }
    playing_ = false;
    staleFrom_.reset();
    // What is closed is never played again: the file is left alone.
    if (!wish_.closed)
        window_.seek(wish_.frame);
}

// Ends what is heard within a few milliseconds; the first frame behind that.
std::int64_t Voice::fadeOut(TimePoint now) {
    const std::int64_t from = stream_->earliest(now);
    if (!playing_)
        return stopAt_ ? std::max(from, *stopAt_) : from;
    if (from <= pieceOut_)
        return pieceOut_; // nothing of it was heard yet
    if (from >= head_)
        return from;
    const std::int64_t end = from + framesOfMs(fadeMs);
    ramp_.rampTo({}, from, end - from);
    write(from, end);
    return end;
}

TimePoint Voice::changeMix(TimePoint now) {
    if (wish_.mix == doneMix_)
        return never;
    if (!playing_ || stream_->state() != State::Running) {
        doneMix_ = wish_.mix; // a start takes the gain that holds then
        return never;
    }
    if (now < mixFrom_)
        return mixFrom_;
    if (!stream_->exact(now))
        return now + exactPause;
    doneMix_ = wish_.mix;
    mixFrom_ = now + (now < lastMix_ + mixSettled ? mixPauseInARow : mixPause);
    lastMix_ = now;
    const std::int64_t from = std::max(stream_->earliest(now), pieceOut_);
    ramp_.rampTo(wish_.gain, from, framesOfMs(rampMs));
    const std::int64_t end = std::min(head_, from + framesOfMs(rewriteMs));
    if (from < end)
        write(from, end);
    staleFrom_.reset();
    if (end < head_)
        staleFrom_ = std::max(from, end);
    anewFrom_ = now + mixSettled;
    return never;
}

TimePoint Voice::fill(TimePoint now) {
    if (!playing_ || stream_->state() != State::Running)
        return never;
    if (stream_->silent())
        return whenHeard(endOfPiece(), now);
    catchUp(now);
    const std::int64_t taken = framesOfMs(stream_->takenAheadMs());
    const std::int64_t ahead = std::min(taken + framesOfMs(aheadMs), stream_->mostAhead());
    // Half way between what is taken at once and what there can be.
    const std::int64_t refill = ahead - std::max<std::int64_t>(ahead - taken, 2) / 2;
    const std::int64_t heard = stream_->heard(now);
    // What was written while the other side seemed to take more stays there to be rendered again.
    window_.keep(std::max(ahead, head_ - heard) + framesOfMs(keptMs));
    if (rewriteStale(now, heard))
        return now;
    // Silence follows the end, at least over all that was ever written there.
    const std::int64_t end = std::max(endOfPiece() + framesOfMs(silenceMs * 2), written_);
    const std::int64_t target = std::min(heard + ahead, end);
    if (head_ - heard < refill)
        filling_ = true;
    if (filling_ && head_ < target) {
        // Small steps while little is there: the first frames and changes must not wait.
        const std::int64_t step = head_ - heard < framesOfMs(silenceMs * 2) ? smallStep : largeStep;
        const std::int64_t stepEnd = std::min(head_ + step, target);
        write(head_, stepEnd);
        head_ = stepEnd;
        // The target moves on while it is written. Following it by a few frames at a time would
        // take a block of the server's memory and a message for each few.
        filling_ = head_ < target;
        return now;
    }
    filling_ = false;
    TimePoint due = whenHeard(endOfPiece(), now);
    if (head_ < end)
        due = std::min(due, whenHeard(head_ - refill + 1, now));
    if (staleFrom_)
        due = std::min(due, anewFrom_);
    return due;
}

// The part that still has an older gain, step by step. True when one was done.
bool Voice::rewriteStale(TimePoint now, std::int64_t heard) {
    if (!staleFrom_)
        return false;
    if (now < anewFrom_ && (*staleFrom_ - heard) > framesOfMs(staleNearMs))
        return false;
    const std::int64_t end = std::min(head_, *staleFrom_ + largeStep);
    write(*staleFrom_, end);
    anewFrom_ = now + anewPause;
    staleFrom_ = end;
    if (end >= head_)
        staleFrom_.reset();
    return true;
}

// What was not written in time is not left out: the piece goes on later.
void Voice::catchUp(TimePoint now) {
    const std::int64_t from = stream_->earliest(now);
    if (head_ == pieceOut_ || from <= head_ || head_ >= endOfPiece())
        return;
    pieceOut_ += from - head_;
    head_ = from;
    staleFrom_.reset();
    ramp_.set({});
    ramp_.rampTo(wish_.gain, from, framesOfMs(fadeMs));
}

// The end of the file, and the stop behind what was cut off.
TimePoint Voice::settle(TimePoint now) {
    if (stream_->state() != State::Running)
        return never;
    const std::int64_t heard = stream_->heard(now);
    if (playing_ && heard >= endOfPiece()) {
        playing_ = false;
        ended_ = true;
        stopAt_ = endOfPiece();
    }
    if (playing_ || !stopAt_)
        return never;
    if (heard < *stopAt_ && stream_->advancing())
        return whenHeard(*stopAt_, now);
    stream_->stop(now);
    stopAt_.reset();
    return never;
}

TimePoint Voice::whenHeard(std::int64_t frame, TimePoint now) const {
    if (!stream_->advancing())
        return never;
    const std::int64_t ahead = std::max<std::int64_t>(frame - stream_->heard(now), 0);
    // Rounded up, so that the frame has really been heard then.
    return now + timeOfFrames(ahead, rate()) + 1ms;
}

std::int64_t Voice::sourceFrame(TimePoint now) const {
    const std::int64_t heard = std::max(stream_->heard(now), pieceOut_);
    return std::min(pieceSource_ + heard - pieceOut_, window_.length());
}

void Voice::write(std::int64_t first, std::int64_t end) {
    stream_->write(first, end, [this](float *out, std::int64_t frame, std::size_t count) {
        window_.copy(pieceSource_ + frame - pieceOut_, out, count);
        ramp_.apply(out, frame, count);
    });
    written_ = std::max(written_, end);
}

void Voice::writeSilence(std::int64_t first, std::int64_t end) {
    stream_->write(first, end, [](float *out, std::int64_t, std::size_t count) {
        std::fill_n(out, count * 2, 0.0F);
    });
    written_ = std::max(written_, end);
}

void Voice::publish(TimePoint now) {
    VoiceReport report;
    report.transport = doneTransport_;
    report.ended = ended_;
    report.frame = wish_.frame;
    report.time = now;
    if (playing_) {
        report.frame = sourceFrame(now);
        report.advancing = stream_->state() == State::Running && stream_->advancing();
        const std::int64_t heard = stream_->heard(now);
        if (heard < pieceOut_)
            report.time = now + timeOfFrames(pieceOut_ - heard, rate());
    }
    control_->report(report);
}

} // namespace velmora::platform::sound
