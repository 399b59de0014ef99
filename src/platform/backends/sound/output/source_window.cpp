#include "platform/backends/sound/output/source_window.h"

#include <algorithm>
#include <cmath>

namespace velmora::platform::sound {

namespace {

constexpr std::int64_t decodeStep = 2048; // frames

// Decoding runs up to a step ahead of what is asked for.
std::int64_t capacityFor(std::int64_t frames) {
    return std::max(frames, decodeStep * 4) + decodeStep;
}

} // namespace

SourceWindow::SourceWindow(std::unique_ptr<Reader> reader, int capacityMs)
    : reader_(std::move(reader)), mix_(reader_->channels()),
      capacity_(capacityFor(std::int64_t{reader_->rate()} * capacityMs / 1000)) {}

// Rooms that differ by little are not worth the copying.
void SourceWindow::keep(std::int64_t frames) {
    const std::int64_t capacity = capacityFor(frames);
    if (capacity <= capacity_ && capacity_ - capacity <= capacity_ / 16)
        return;
    std::vector<float> ring;
    if (!ring_.empty())
        ring.resize(static_cast<std::size_t>(capacity) * 2);
    begin_ = std::max(begin_, end_ - capacity);
    for (std::int64_t frame = begin_; frame < end_; ++frame)
        std::copy_n(ring_.begin() + frame % capacity_ * 2, 2, ring.begin() + frame % capacity * 2);
    ring_ = std::move(ring);
    capacity_ = capacity;
}

void SourceWindow::seek(std::int64_t frame) {
    if (frame >= begin_ && frame <= end_)
        return;
    begin_ = end_ = frame;
    // Each place is tried anew: what could not be reached once may be reached from elsewhere.
    stop_ = reader_->seek(frame) ? std::numeric_limits<std::int64_t>::max() : frame;
}

void SourceWindow::copy(std::int64_t frame, float *out, std::size_t count) {
    const std::int64_t wanted = frame + static_cast<std::int64_t>(count);
    decodeTo(wanted);
    for (std::int64_t at = frame; at < wanted;) {
        if (at < begin_ || at >= end_) {
            const std::int64_t gap = at < begin_ ? std::min(wanted, begin_) - at : wanted - at;
            std::fill_n(out, gap * 2, 0.0F);
            out += gap * 2;
            at += gap;
            continue;
        }
        const std::int64_t place = at % capacity_;
        const std::int64_t run = std::min({wanted - at, end_ - at, capacity_ - place});
        std::copy_n(ring_.begin() + place * 2, run * 2, out);
        out += run * 2;
        at += run;
    }
}

// A reader may find, as it goes on, that there is more than it had told.
void SourceWindow::decodeTo(std::int64_t frame) {
    while (end_ < std::min(frame, length())) {
        if (!decodeSome()) {
            stop_ = end_;
            return;
        }
    }
}

bool SourceWindow::decodeSome() {
    ring_.resize(static_cast<std::size_t>(capacity_) * 2);
    raw_.resize(static_cast<std::size_t>(decodeStep * reader_->channels()));
    const std::int64_t place = end_ % capacity_;
    const std::int64_t room = std::min(capacity_ - place, decodeStep);
    const auto got =
        static_cast<std::int64_t>(reader_->read(raw_.data(), static_cast<std::size_t>(room)));
    if (got <= 0)
        return false;
    float *const out = ring_.data() + place * 2;
    mix_.mix(raw_.data(), out, static_cast<std::size_t>(got));
    // A file of floats may hold what is no number; it must not reach the ramps and the server.
    std::replace_if(
        out, out + got * 2, [](float x) { return !(std::abs(x) < 1e6F); }, 0.0F);
    end_ += got;
    begin_ = std::max(begin_, end_ - capacity_);
    return true;
}

} // namespace velmora::platform::sound
