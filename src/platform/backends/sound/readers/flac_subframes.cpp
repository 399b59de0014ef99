#include "platform/backends/sound/readers/flac_subframes.h"

#include <bit>

namespace velmora::platform::sound {

namespace {

class Bits {
public:
    explicit Bits(std::span<const std::uint8_t> bytes) : bytes_(bytes) {}

    bool isOver() const { return at_ > bytes_.size() * 8; }
    std::size_t bytesPassed() const { return (at_ + 7) / 8; }
    void skip(std::size_t count) { at_ += count; }

    // Zeros behind the end.
    std::size_t read(unsigned count) {
        std::size_t value = 0;
        for (; count > 0; --count, ++at_)
            value =
                value << 1 | (at_ / 8 < bytes_.size() ? bytes_[at_ / 8] >> (7 - at_ % 8) & 1 : 0);
        return value;
    }

    // The zeros ahead of the next one, which is passed, too.
    std::size_t zeros() {
        const std::size_t from = at_;
        while (at_ / 8 < bytes_.size()) {
            const auto rest = static_cast<std::uint8_t>(bytes_[at_ / 8] << at_ % 8);
            if (rest != 0) {
                at_ += static_cast<std::size_t>(std::countl_zero(rest)) + 1;
                return at_ - from - 1;
            }
            at_ = (at_ / 8 + 1) * 8;
        }
        ++at_;
        return at_ - from;
    }

private:
    std::span<const std::uint8_t> bytes_;
    std::size_t at_ = 0;
};

// What the prediction of the samples behind the first `order` leaves over.
bool skipResidual(Bits &bits, std::size_t samples, std::size_t order) {
    const std::size_t method = bits.read(2);
    const std::size_t parts = std::size_t{1} << bits.read(4);
    const std::size_t share = samples / parts;
    if (method > 1 || share * parts != samples || share < order)
        return false;
    const unsigned width = method == 0 ? 4 : 5;
    const std::size_t uncoded = (std::size_t{1} << width) - 1;
    for (std::size_t part = 0; part < parts && !bits.isOver(); ++part) {
        const std::size_t count = part == 0 ? share - order : share;
        const std::size_t low = bits.read(width);
        if (low == uncoded) {
            bits.skip(bits.read(5) * count);
            continue;
        }
        for (std::size_t i = 0; i < count && !bits.isOver(); ++i) {
            bits.zeros();
            bits.skip(low);
        }
    }
    return !bits.isOver();
}

bool skipPredicted(Bits &bits, std::size_t samples, std::size_t order, std::size_t width,
                   bool hasFactors) {
    if (order > samples)
        return false;
    bits.skip(order * width);
    if (hasFactors) {
        const std::size_t precision = bits.read(4) + 1;
        bits.skip(5 + order * precision);
    }
    return skipResidual(bits, samples, order);
}

bool skipSubframe(Bits &bits, std::size_t samples, std::size_t width) {
    enum Type : std::size_t { Constant = 0, Verbatim = 1, Fixed = 8, LastFixed = 12, Linear = 32 };
    if (bits.read(1) != 0)
        return false;
    const std::size_t type = bits.read(6);
    if (bits.read(1) != 0) {
        const std::size_t wasted = bits.zeros() + 1;
        if (wasted >= width)
            return false;
        width -= wasted;
    }
    if (type == Constant || type == Verbatim) {
        bits.skip(type == Constant ? width : width * samples);
        return !bits.isOver();
    }
    if (type >= Fixed && type <= LastFixed)
        return skipPredicted(bits, samples, type - Fixed, width, false);
    return type >= Linear && skipPredicted(bits, samples, type - Linear + 1, width, true);
}

} // namespace

std::optional<std::size_t> flacSubframesSize(std::span<const std::uint8_t> bytes,
                                             const FlacSubframes &frame) {
    enum Pair : unsigned { LeftAndSide = 8, SideAndRight = 9, MidAndSide = 10 };
    const unsigned channels = frame.channelCode < LeftAndSide ? frame.channelCode + 1 : 2;
    Bits bits(bytes);
    for (unsigned channel = 0; channel < channels; ++channel) {
        const bool isSide = frame.channelCode == SideAndRight
                                ? channel == 0
                                : frame.channelCode > 7 && channel == 1;
        if (!skipSubframe(bits, frame.samples, frame.bits + (isSide ? 1 : 0)))
            return std::nullopt;
    }
    return bits.bytesPassed();
}

} // namespace velmora::platform::sound
