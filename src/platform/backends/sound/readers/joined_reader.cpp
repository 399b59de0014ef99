#include "platform/backends/sound/readers/joined_parts.h"
#include "platform/backends/sound/readers/reader.h"
#include "platform/backends/sound/readers/resampler.h"
#include "platform/backends/sound/readers/stereo_mix.h"

#include <algorithm>
#include <chrono>
#include <optional>

namespace velmora::platform::sound {

namespace {

using std::chrono::milliseconds;

// Looking through a file takes milliseconds, but for long files and slow disks.
constexpr milliseconds searchLimitOfOpen{300};
constexpr milliseconds searchLimitOfPlay{2};
constexpr milliseconds searchLimitNearEnd{100};

// Turns sound of so many channels into sound of so many others.
class ChannelTurn {
public:
    ChannelTurn(int from, int to)
        : mix_(from), from_(static_cast<std::size_t>(from)), to_(static_cast<std::size_t>(to)) {}

    bool isNeeded() const { return from_ != to_; }
    void turn(std::span<const float> in, std::vector<float> &out) {
        const std::size_t frames = in.size() / from_;
        stereo_.resize(frames * 2);
        mix_.mix(in.data(), stereo_.data(), frames);
        out.assign(frames * to_, 0.0F);
        for (std::size_t i = 0; i < frames; ++i)
            if (to_ == 1)
                out[i] = (stereo_[i * 2] + stereo_[i * 2 + 1]) / 2;
            else
                std::copy_n(&stereo_[i * 2], 2, &out[i * to_]);
    }

private:
    StereoMix mix_;
    std::size_t from_;
    std::size_t to_;
    std::vector<float> stereo_;
};

class JoinedReader final : public Reader {
public:
    JoinedReader(std::shared_ptr<const ByteSource> source,
                 std::shared_ptr<const SndfileTable> library, TimeNow now)
        : source_(std::move(source)), library_(std::move(library)), now_(std::move(now)),
          search_(*source_) {}

    // What it takes to know whether there are several parts, as far as the time allows.
    bool isOnePart() {
        const auto end = now_() + searchLimitOfOpen;
        while (search_.starts().size() == 1 && search_.searchOn() && now_() < end) {
        }
        return search_.isComplete() && search_.starts().size() == 1;
    }

    // The first part has to be known, whatever time that takes.
    bool open() {
        const auto end = now_() + searchLimitOfOpen;
        while (learnOn() && (parts_.empty() || now_() < end)) {
        }
        return !parts_.empty() && seek(0);
    }

    int rate() const override { return parts_.front().rate; }
    int channels() const override { return parts_.front().channels; }
    std::int64_t frames() const override { return *frames_; }
    std::shared_ptr<const std::atomic<std::int64_t>> changingFrames() const override {
        return frames_;
    }

    bool seek(std::int64_t frame) override {
        position_ = frame;
        ready_ = {};
        const auto behind = std::upper_bound(
            parts_.begin(), parts_.end(), frame,
            [](std::int64_t place, const Part &part) { return place < part.begin; });
        part_ = static_cast<std::size_t>(behind - parts_.begin()) - 1;
        if (frame >= frames()) {
            left_ = 0;
            return true;
        }
        return beginPart(frame - parts_[part_].begin);
    }

    std::size_t read(float *out, std::size_t frameCount) override {
        searchBySound(frameCount);
        const auto width = static_cast<std::size_t>(channels());
        std::size_t done = 0;
        while (done < frameCount && (!ready_.empty() || makeReady())) {
            const std::size_t count = std::min(frameCount - done, ready_.size() / width);
            std::copy_n(ready_.begin(), count * width, out + done * width);
            ready_ = ready_.subspan(count * width);
            done += count;
        }
        position_ += static_cast<std::int64_t>(done);
        return done;
    }

private:
    struct Part {
        std::int64_t start = 0; // in the source
        std::int64_t size = 0;
        int rate = 0;
        int channels = 0;
        std::int64_t begin = 0; // in the whole, at its rate
        std::int64_t frames = 0;
    };

    std::unique_ptr<Reader> openPart(const Part &part) const {
        return openSndfileReader(std::make_unique<SourcePart>(source_, part.start, part.size),
                                 library_);
    }

    // Gets to know the next part, or searches for its end. False: all is known.
    bool learnOn() {
        const auto &starts = search_.starts();
        if (search_.isComplete() && looked_ == starts.size())
            return false;
        if (looked_ + 1 < starts.size() || search_.isComplete())
            learn(looked_++);
        else
            search_.searchOn();
        return true;
    }

    // What cannot be played is left out.
    void learn(std::size_t number) {
        const auto &starts = search_.starts();
        Part part;
        part.start = starts[number];
        part.size =
            (number + 1 < starts.size() ? starts[number + 1] : source_->size()) - part.start;
        const auto reader = openPart(part);
        if (!reader)
            return;
        part.rate = reader->rate();
        part.channels = reader->channels();
        const int whole = parts_.empty() ? part.rate : rate();
        constexpr std::int64_t most = std::int64_t{1} << 42; // years; fit to be multiplied
        part.frames = (std::min(reader->frames(), most) * whole + part.rate / 2) / part.rate;
        part.begin = *frames_;
        parts_.push_back(part);
        *frames_ = part.begin + part.frames;
    }

    // By and by as much as nobody waits for, and more of it near what is the end so far.
    void searchBySound(std::size_t frameCount) {
        unsearched_ += static_cast<std::int64_t>(frameCount);
        const bool nearEnd = position_ + static_cast<std::int64_t>(frameCount) + rate() >= frames();
        if (!nearEnd && unsearched_ < rate())
            return;
        unsearched_ = 0;
        const auto end = now_() + (nearEnd ? searchLimitNearEnd : searchLimitOfPlay);
        while (learnOn() && now_() < end) {
        }
    }

    // `frame`: of the part, at the rate of the whole.
    bool beginPart(std::int64_t frame) {
        const Part &part = parts_[part_];
        left_ = part.frames - frame;
        turn_.emplace(part.channels, channels());
        resampler_.reset();
        if (part.rate != rate())
            resampler_.emplace(part.rate, rate(), channels());
        if (!reader_ || open_ != part_)
            reader_ = openPart(part);
        open_ = part_;
        return reader_ && reader_->seek(frame * part.rate / rate());
    }

    // Makes the next samples ready. False: there are none.
    bool makeReady() {
        while (ready_.empty()) {
            if (left_ > 0)
                decodeSome();
            else if (part_ + 1 == parts_.size())
                return false;
            else {
                ++part_;
                beginPart(0);
            }
        }
        return true;
    }

    void decodeSome() {
        constexpr std::size_t atOnce = 4096;
        const Part &part = parts_[part_];
        const auto width = static_cast<std::size_t>(channels());
        in_.resize(atOnce * static_cast<std::size_t>(part.channels));
        const std::size_t got = reader_ ? reader_->read(in_.data(), atOnce) : 0;
        std::span<const float> sound(in_.data(), got * static_cast<std::size_t>(part.channels));
        if (turn_->isNeeded()) {
            turn_->turn(sound, turned_);
            sound = turned_;
        }
        if (resampler_) {
            resampled_.clear();
            resampler_->push(sound, resampled_);
            if (got == 0)
                resampler_->flush(resampled_);
            sound = resampled_;
        }
        // A part lasts as long as it told, whatever became of its sound.
        if (got == 0 && sound.empty()) {
            silence_.assign(atOnce * width, 0.0F);
            sound = silence_;
        }
        const auto most = static_cast<std::size_t>(left_);
        ready_ = sound.first(std::min(sound.size(), most * width));
        left_ -= static_cast<std::int64_t>(ready_.size() / width);
    }

    std::shared_ptr<const ByteSource> source_;
    std::shared_ptr<const SndfileTable> library_;
    TimeNow now_;
    JoinedParts search_;
    std::size_t looked_ = 0; // starts that were looked at
    std::vector<Part> parts_;
    std::shared_ptr<std::atomic<std::int64_t>> frames_ =
        std::make_shared<std::atomic<std::int64_t>>(0);
    std::int64_t position_ = 0;
    std::int64_t unsearched_ = 0; // read since the last search in play

    // Where decoding is.
    std::size_t part_ = 0;
    std::int64_t left_ = 0; // frames of the whole that the part still has
    std::unique_ptr<Reader> reader_;
    std::size_t open_ = 0; // the part that it reads
    std::optional<ChannelTurn> turn_;
    std::optional<Resampler> resampler_;
    std::vector<float> in_;
    std::vector<float> turned_;
    std::vector<float> resampled_;
    std::vector<float> silence_;
    std::span<const float> ready_;
};

} // namespace

std::unique_ptr<Reader> openSoundFileReader(std::unique_ptr<ByteSource> source,
                                            std::shared_ptr<const SndfileTable> library,
                                            TimeNow now) {
    if (!library || isOnePiece(*source))
        return openSndfileReader(std::move(source), std::move(library));
    const std::shared_ptr<const ByteSource> whole = std::move(source);
    auto reader = std::make_unique<JoinedReader>(whole, library, std::move(now));
    if (reader->isOnePart())
        return openSndfileReader(std::make_unique<SourcePart>(whole, 0, whole->size()), library);
    return reader->open() ? std::move(reader) : nullptr;
}

} // namespace velmora::platform::sound
