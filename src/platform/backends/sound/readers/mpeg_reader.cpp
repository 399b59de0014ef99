#include "platform/backends/sound/readers/mpeg_decoder.h"
#include "platform/backends/sound/readers/mpeg_timeline.h"
#include "platform/backends/sound/readers/reader.h"
#include "platform/backends/sound/readers/resampler.h"

#include <algorithm>
#include <chrono>
#include <optional>

namespace velmora::platform::sound {

namespace {

using std::chrono::milliseconds;

// Counting the frames takes milliseconds, but for long files and slow disks.
constexpr milliseconds countLimitOfOpen{300};
constexpr milliseconds countLimitOfPlay{2};
constexpr milliseconds countLimitNearEnd{100};

class MpegReader final : public Reader {
public:
    // The source has no tags at its end: they might be taken for frames.
    MpegReader(std::unique_ptr<ByteSource> source, std::shared_ptr<const Mpg123Table> library,
               TimeNow now)
        : source_(std::move(source)), ahead_(*source_), timeline_(*source_, std::move(now)),
          decoder_(std::move(library)) {}

    bool open() {
        if (!timeline_.begin() || timeline_.form().rate < minRate ||
            timeline_.form().rate > maxRate)
            return false;
        rate_ = timeline_.form().rate;
        channels_ = timeline_.form().channels;
        if (!timeline_.isTold())
            timeline_.countFor(countLimitOfOpen);
        *frames_ = timeline_.length();
        return frames() > 0 && seek(0);
    }

    int rate() const override { return rate_; }
    int channels() const override { return channels_; }
    std::int64_t frames() const override { return *frames_; }
    std::shared_ptr<const std::atomic<std::int64_t>> changingFrames() const override {
        return frames_;
    }

    bool seek(std::int64_t frame) override {
        position_ = frame;
        walk_.reset();
        ready_ = {};
        if (frame >= frames())
            return true;
        const auto spot = timeline_.spotOf(frame);
        isGuessed_ = spot && spot->isGuessed;
        keepLength();
        if (!spot)
            return false;
        walk_.emplace(ahead_, spot->place);
        passFrames(spot->passedFrames);
        toDrop_ = spot->droppedSamples;
        return isGuessed_ || beginRun(walk_->form(), walk_->next().freeSize);
    }

    std::size_t read(float *out, std::size_t frameCount) override {
        countBySound(frameCount);
        const auto channels = static_cast<std::size_t>(channels_);
        std::size_t done = 0;
        while (done < frameCount) {
            if (ready_.empty() && !decodeNext())
                break;
            // What the encoder has put behind the sound is left out.
            const std::int64_t left = std::max<std::int64_t>(frames() - position_, 0);
            std::size_t count = std::min(frameCount - done, ready_.size() / channels);
            if (!isGuessed_)
                count = std::min(count, static_cast<std::size_t>(left));
            if (count == 0)
                break;
            std::copy_n(ready_.begin(), count * channels, out + done * channels);
            ready_ = ready_.subspan(count * channels);
            position_ += static_cast<std::int64_t>(count);
            done += count;
        }
        return done;
    }

private:
    void passFrames(std::int64_t count) {
        while (count > 0) {
            const MpegWalk::Step step = walk_->step();
            if (step == MpegWalk::Step::End)
                return;
            count -= step == MpegWalk::Step::Frame ? 1 : 0;
        }
    }

    // By and by as much as nobody waits for, and more of it near an end that is only reckoned.
    void countBySound(std::size_t frameCount) {
        if (timeline_.isCounted() && !isGuessed_)
            return;
        uncounted_ += static_cast<std::int64_t>(frameCount);
        const bool nearEnd = position_ + static_cast<std::int64_t>(frameCount) + rate_ >= frames();
        if (!nearEnd && uncounted_ < rate_)
            return;
        uncounted_ = 0;
        timeline_.countFor(nearEnd ? countLimitNearEnd : countLimitOfPlay);
        keepLength();
    }

    void keepLength() {
        const bool here = isGuessed_ && walk_;
        const std::int64_t length =
            here ? position_ + timeline_.lengthFrom(walk_->next().offset) : timeline_.length();
        *frames_ = std::max<std::int64_t>(length, 1);
    }

    bool beginRun(const MpegFrame &form, int freeSize) {
        form_ = form;
        resampler_.reset();
        if (form.rate != rate_)
            resampler_.emplace(form.rate, rate_, channels_);
        runSamples_ = 0;
        runOut_ = 0;
        return decoder_.begin(form, freeSize, channels_);
    }

    // Makes the next samples ready. False: there are none.
    bool decodeNext() {
        while (walk_ && ready_.empty()) {
            switch (walk_->step()) {
            case MpegWalk::Step::Nothing:
                break;
            case MpegWalk::Step::End:
                endRun();
                walk_.reset();
                endHere();
                break;
            case MpegWalk::Step::Frame:
                if (walk_->isOther()) {
                    endRun();
                    if (!beginRun(walk_->form(), walk_->next().freeSize))
                        return false;
                }
                decodeFrame();
                break;
            }
        }
        return !ready_.empty();
    }

    void decodeFrame() {
        const auto channels = static_cast<std::size_t>(channels_);
        const auto samples = static_cast<std::size_t>(form_.samples);
        std::span<const float> sound = decoder_.decode(walk_->bytes());
        if (sound.size() != samples * channels) {
            // A damaged frame is silent, and as long as any other.
            silence_.assign(samples * channels, 0.0F);
            sound = silence_;
        }
        const std::int64_t dropped = std::min<std::int64_t>(toDrop_, form_.samples);
        toDrop_ -= dropped;
        sound = sound.subspan(static_cast<std::size_t>(dropped) * channels);
        runSamples_ += form_.samples - dropped;
        give(sound);
    }

    void give(std::span<const float> sound) {
        if (!resampler_ && ready_.empty()) {
            ready_ = sound;
            return;
        }
        if (ready_.empty())
            own_.clear();
        const std::size_t before = own_.size();
        if (resampler_)
            resampler_->push(sound, own_);
        else
            own_.insert(own_.end(), sound.begin(), sound.end());
        runOut_ += static_cast<std::int64_t>(own_.size() - before) / channels_;
        ready_ = own_;
    }

    // A run lasts exactly as long at another rate as at its own.
    void endRun() {
        if (!resampler_)
            return;
        own_.clear();
        resampler_->flush(own_);
        const std::int64_t left = timeline_.outOf(runSamples_, form_) - runOut_;
        own_.resize(static_cast<std::size_t>(std::max<std::int64_t>(left, 0) * channels_));
        resampler_.reset();
        ready_ = own_;
    }

    // Nothing follows what is ready.
    void endHere() {
        const std::int64_t end = position_ + static_cast<std::int64_t>(ready_.size()) / channels_;
        if (isGuessed_ || end < frames())
            *frames_ = std::max<std::int64_t>(end, 1);
    }

    std::unique_ptr<ByteSource> source_;
    AheadSource ahead_; // for what is played
    MpegTimeline timeline_;
    int rate_ = 0; // of the first run: all others are turned into it
    int channels_ = 0;
    std::shared_ptr<std::atomic<std::int64_t>> frames_ =
        std::make_shared<std::atomic<std::int64_t>>(0);
    std::int64_t position_ = 0;
    bool isGuessed_ = false;     // the present place was not counted up to
    std::int64_t uncounted_ = 0; // read since the last counting in play

    // Where decoding is.
    std::optional<MpegWalk> walk_;
    MpegDecoder decoder_;
    std::optional<Resampler> resampler_;
    MpegFrame form_;
    std::int64_t toDrop_ = 0;     // samples of the run that come ahead of a seek's target
    std::int64_t runSamples_ = 0; // decoded of the run behind those, at its own rate
    std::int64_t runOut_ = 0;     // and given of them
    std::vector<float> silence_;
    std::vector<float> own_; // what the decoder's memory does not hold
    std::span<const float> ready_;
};

} // namespace

std::unique_ptr<Reader> openMpegReader(std::unique_ptr<ByteSource> source,
                                       std::shared_ptr<const Mpg123Table> library, TimeNow now) {
    if (!library)
        return nullptr;
    const std::int64_t end = endBeforeTags(*source);
    auto sound = std::make_unique<SourcePart>(std::move(source), 0, end);
    auto reader =
        std::make_unique<MpegReader>(std::move(sound), std::move(library), std::move(now));
    return reader->open() ? std::move(reader) : nullptr;
}

} // namespace velmora::platform::sound
