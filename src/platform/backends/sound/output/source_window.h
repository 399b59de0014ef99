#pragma once

// The decoded part of a file around what is being heard. It is kept so that frames that were
// already handed on can be rendered again with another gain without decoding them again.

#include "platform/backends/sound/readers/reader.h"
#include "platform/backends/sound/readers/stereo_mix.h"

#include <algorithm>
#include <cstdint>
#include <limits>
#include <memory>
#include <vector>

namespace velmora::platform::sound {

class SourceWindow {
public:
    // The latest `capacityMs` that were decoded stay available.
    SourceWindow(std::unique_ptr<Reader> reader, int capacityMs);

    int rate() const { return reader_->rate(); }
    // Where the sound ends: the reader's length, or earlier where decoding turned out to stop.
    std::int64_t length() const { return std::min(reader_->frames(), stop_); }

    // Keeps about so many frames from now on, the latest; room for more is given back.
    void keep(std::int64_t frames);

    // Makes `frame` the next one to be copied. What is there already is not decoded again.
    void seek(std::int64_t frame);
    // Copies stereo frames from `frame` on, which must lie at or behind the last seek and within
    // the capacity of the newest frame. Decodes what is missing. Frames at and beyond the end are
    // silent.
    void copy(std::int64_t frame, float *out, std::size_t count);

private:
    void decodeTo(std::int64_t frame);
    bool decodeSome();

    std::unique_ptr<Reader> reader_;
    StereoMix mix_;
    std::int64_t capacity_;
    std::int64_t stop_ = std::numeric_limits<std::int64_t>::max();
    std::int64_t begin_ = 0; // frames [begin_, end_) are in the ring
    std::int64_t end_ = 0;
    std::vector<float> ring_; // of stereo frames; frame f lies at f % capacity
    std::vector<float> raw_;
};

} // namespace velmora::platform::sound
