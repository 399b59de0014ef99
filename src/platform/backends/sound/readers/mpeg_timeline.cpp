#include "platform/backends/sound/readers/mpeg_timeline.h"

#include "platform/backends/sound/readers/joined_parts.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>

namespace velmora::platform::sound {

namespace {

using std::chrono::milliseconds;

// Further behind the beginning no first frame is looked for.
constexpr std::int64_t longestJunk = 1 << 20;
constexpr milliseconds countLimitOfSeek{200};
// The decoder of layer III gives its sound so late.
constexpr int decoderDelay = 529;

// A header stands in a frame of its own, which holds no sound.
std::int64_t headerFrameSize(const ByteSource &source) {
    std::array<std::uint8_t, 8192> bytes{};
    const std::size_t got = source.read(0, bytes);
    const MpegChain chain = followMpegChain(std::span(bytes).first(got), false, 1);
    return chain.headers == 1 ? chain.sizeOf(chain.first) : 0;
}

// A frame may lean on bytes of many small frames ahead of it; else a quiet piece of low bit rate
// would begin silent. The other layers need what is left in the filters alone.
std::int64_t framesAhead(const MpegFrame &form) {
    if (form.layer != 3)
        return 2;
    return form.rate < 32000 ? 100 : 20;
}

} // namespace

MpegTimeline::MpegTimeline(const ByteSource &source, std::function<Clock::time_point()> now)
    : source_(source), now_(std::move(now)), header_(readMpegSeekHeader(source, 0)),
      index_(source, header_ ? headerFrameSize(source) : 0) {}

bool MpegTimeline::begin() {
    while (index_.runs().empty() && index_.reached() < longestJunk && index_.countOn(1)) {
    }
    isTold_ = !index_.runs().empty() && header_ && isPlausible();
    return !index_.runs().empty();
}

// The header is believed where the file is as long as it says, since a file may be cut or several
// joined, and where its frames can be as long as they would have to be.
bool MpegTimeline::isPlausible() const {
    constexpr std::int64_t slackBytes = 2048;
    // What is missing is sound; behind it there may be a little of anything.
    const std::int64_t behind = source_.size() - header_->bytes;
    if (header_->frames <= 0 || header_->bytes <= 0 || behind < 0 || behind > slackBytes)
        return false;
    const double mean = static_cast<double>(header_->bytes) / static_cast<double>(header_->frames);
    const double slack = 0.02 * mean + slackBytes / static_cast<double>(header_->frames);
    const bool low = form().version != 1;
    const double bytesOfKilobit = form().samples / 8.0 * 1000 / form().rate;
    const double least = header_->constantRate ? form().size : bytesOfKilobit * (low ? 8 : 32);
    const double most = header_->constantRate ? form().size : bytesOfKilobit * (low ? 160 : 320);
    if (form().size == 0)
        return true;
    return mean > least - slack && mean < most + slack && (header_->constantRate || isSeen(mean));
}

// Whether frames here and there are about as large as all should be in the mean. A piece of loud
// and of quiet parts may fail at that; then it is counted.
bool MpegTimeline::isSeen(double mean) const {
    constexpr int framesAtPlace = 8;
    constexpr double tolerance = 1.5;
    double bytes = 0;
    int frames = 0;
    for (const double place : placesToLookAt) {
        const auto at = static_cast<std::int64_t>(place * static_cast<double>(source_.size()));
        MpegWalk walk(source_, MpegPlace{at, {}, 0});
        for (int i = 0; i < framesAtPlace && walk.step() == MpegWalk::Step::Frame; ++i, ++frames)
            bytes += static_cast<double>(walk.next().offset - walk.offset());
    }
    return frames > 0 && bytes / frames < mean * tolerance && bytes / frames > mean / tolerance;
}

void MpegTimeline::countFor(milliseconds limit) {
    const auto end = now_() + limit;
    while (index_.countOn() && now_() < end) {
    }
}

std::int64_t MpegTimeline::lead() const {
    return header_ && header_->delay ? *header_->delay + decoderDelay : 0;
}

std::int64_t MpegTimeline::framesOfRun(std::size_t run) const {
    const auto &runs = index_.runs();
    const std::int64_t end = run + 1 < runs.size() ? runs[run + 1].firstFrame : index_.frames();
    return end - runs[run].firstFrame;
}

std::int64_t MpegTimeline::countedOut() const {
    std::int64_t out = 0;
    for (std::size_t run = 0; run < index_.runs().size(); ++run) {
        const MpegFrame &form = index_.runs()[run].form;
        out += outOf(framesOfRun(run) * form.samples, form);
    }
    return out;
}

std::int64_t MpegTimeline::length() const {
    // What is cut from the last frames is told with their number.
    const std::int64_t trail = header_ ? std::max(header_->padding - decoderDelay, 0) : 0;
    if (!index_.isComplete() && isTold_)
        return header_->frames * form().samples - lead() - trail;
    const std::int64_t out = countedOut();
    if (!index_.isComplete())
        return out + lengthFrom(index_.reached()) - lead();
    return out - lead() - (header_ && header_->frames == index_.frames() ? trail : 0);
}

double MpegTimeline::meanFrameBytes() const {
    if (!index_.isComplete() && isTold_)
        return static_cast<double>(header_->bytes) / static_cast<double>(header_->frames);
    return static_cast<double>(index_.reached() - index_.start()) /
           static_cast<double>(std::max<std::int64_t>(index_.frames(), 1));
}

std::int64_t MpegTimeline::lengthFrom(std::int64_t offset) const {
    const double frames = static_cast<double>(source_.size() - offset) / meanFrameBytes();
    const MpegFrame &last = index_.runs().back().form;
    return outOf(std::llround(frames * last.samples), last);
}

void MpegTimeline::countTowards(std::int64_t moment) {
    const auto end = now_() + countLimitOfSeek;
    while (index_.countOn() && countedOut() <= moment && now_() < end) {
    }
}

std::optional<MpegTimeline::Spot> MpegTimeline::spotOf(std::int64_t frame) {
    const std::int64_t moment = frame + lead();
    if (moment >= countedOut())
        countTowards(moment);
    if (moment < countedOut())
        return countedSpot(moment);
    return index_.isComplete() ? std::nullopt : guessedSpot(moment);
}

MpegTimeline::Spot MpegTimeline::countedSpot(std::int64_t moment) const {
    std::size_t run = 0;
    const auto lengthOf = [&] {
        return outOf(framesOfRun(run) * index_.runs()[run].form.samples, index_.runs()[run].form);
    };
    for (; moment >= lengthOf(); ++run)
        moment -= lengthOf();
    const auto &[first, form, freeSize] = index_.runs()[run];
    const std::int64_t sample = moment * form.rate / this->form().rate;
    const std::int64_t begin =
        first + std::max<std::int64_t>(sample / form.samples - framesAhead(form), 0);
    Spot spot;
    std::int64_t number = begin;
    spot.place = index_.placeOf(number);
    spot.passedFrames = begin - number;
    spot.droppedSamples = sample - (begin - first) * form.samples;
    return spot;
}

std::optional<MpegTimeline::Spot> MpegTimeline::guessedSpot(std::int64_t moment) const {
    constexpr std::int64_t searched = 65536;
    const MpegFrame &last = index_.runs().back().form;
    const double frames =
        static_cast<double>(moment - countedOut()) * last.rate / form().rate / last.samples -
        static_cast<double>(framesAhead(last));
    const auto offset = index_.reached() + std::llround(std::max(frames, 0.0) * meanFrameBytes());
    const auto found = findMpegStream(source_, offset, searched);
    if (!found)
        return std::nullopt;
    Spot spot;
    spot.place.offset = *found;
    spot.droppedSamples = framesAhead(last) * last.samples;
    spot.isGuessed = true;
    return spot;
}

} // namespace velmora::platform::sound
