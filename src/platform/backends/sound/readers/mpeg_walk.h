#pragma once

// The frames of a stream of MPEG audio one after the other, whatever lies between them.

#include "platform/backends/sound/readers/mpeg_frame.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>

namespace velmora::platform::sound {

// A window on a source that moves forward with large reads.
class ForwardWindow {
public:
    explicit ForwardWindow(const ByteSource &source) : source_(source) {}

    // The bytes from this place on: as many as are asked for (up to `largestNeed`) and those that
    // are at hand behind them; fewer only at the end of the source.
    std::span<const std::uint8_t> at(std::int64_t offset, std::size_t need) {
        if (offset < start_ || offset + static_cast<std::int64_t>(need) > end_)
            fill(offset, need);
        return {bytes_.get() + (offset - start_),
                static_cast<std::size_t>(std::max<std::int64_t>(end_ - offset, 0))};
    }

    static constexpr std::size_t largestNeed = mpegChainBytes;

private:
    static constexpr std::size_t capacity = 65536;

    void fill(std::int64_t offset, std::size_t need);

    const ByteSource &source_;
    std::unique_ptr<std::uint8_t[]> bytes_;
    std::size_t portion_ = largestNeed;
    std::int64_t start_ = 0;
    std::int64_t end_ = 0;
};

// Where a walk goes on, and what it goes on with.
struct MpegPlace {
    std::int64_t offset = 0;
    MpegFrame form; // of the frames up to here; rate 0: there was none
    int freeSize = 0;
};

// A frame that stands where the one before it ends belongs to it when it is alike. Elsewhere,
// behind junk or a tag, or where the form changes, a single header proves nothing: several in a
// chain must agree. A frame that the end of the source cuts is none: a decoder drops it. Nor is the
// header of a part that was joined to others.
class MpegWalk {
public:
    MpegWalk(const ByteSource &source, const MpegPlace &from);

    enum class Step {
        Frame,   // `frame` is the next one
        Nothing, // a good piece of the source holds none; go on
        End,
    };
    Step step();

    // Of the last frame. The bytes last until the next step.
    std::span<const std::uint8_t> bytes() { return window_.at(offset_, size_).first(size_); }
    std::int64_t offset() const { return offset_; }
    // What the frames from this one on have in common, until `isOther` says that it changes.
    const MpegFrame &form() const { return next_.form; }
    bool isOther() const { return isOther_; }
    // Behind it.
    const MpegPlace &next() const { return next_; }

private:
    Step handOut();
    bool takeAlike();
    bool takeChain(std::span<const std::uint8_t> bytes);
    bool take(int size);
    void learnForm();
    std::int64_t tagSize(std::span<const std::uint8_t> bytes) const;

    const ByteSource &source_;
    const std::int64_t end_;
    ForwardWindow window_;
    MpegPlace next_;
    // What the headers of the form have in common, and the size without padding that each code for
    // a bit rate gives; 0: none of the form.
    std::uint32_t pattern_ = 0;
    std::array<int, 16> sizes_{};
    int padding_ = 1;
    bool inStep_ = true; // the place is where a frame ended
    std::int64_t offset_ = 0;
    std::size_t size_ = 0;
    bool isOther_ = false;
    bool hasChanged_ = false; // the form, since the last frame that was handed out
};

} // namespace velmora::platform::sound
