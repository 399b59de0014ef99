#pragma once

// The generator behind the random play order.
//
// It is seeded anew from the clock for every draw, so what matters is that neighbouring seeds give
// unrelated numbers: the seed's bits go through the finaliser of the SplitMix64 generator (a
// bijection of 64 bits that changes about half of the bits for each bit of the seed). A number is
// the upper 24 bits over 2^24, hence 0 <= Rnd < 1, and the same seed always gives the same number.

#include <bit>
#include <cstdint>

namespace velmora {

class Random {
public:
    // Seconds since midnight, with fractions.
    void Randomize(double seed) noexcept { state_ = std::bit_cast<std::uint64_t>(seed); }

    double Rnd() noexcept {
        state_ += 0x9E3779B97F4A7C15U;
        std::uint64_t mixed = state_;
        mixed = (mixed ^ (mixed >> 30U)) * 0xBF58476D1CE4E5B9U;
        mixed = (mixed ^ (mixed >> 27U)) * 0x94D049BB133111EBU;
        mixed ^= mixed >> 31U;
        return static_cast<double>(mixed >> 40U) / 16777216.0;
    }

private:
    std::uint64_t state_ = 0;
};

} // namespace velmora
