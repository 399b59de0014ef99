#pragma once

// A picture in memory, 32 bits a pixel, for controls that draw themselves pixel by pixel.

#include <cstddef>
#include <cstdint>
#include <vector>

namespace velmora::forms {

// Pixels are 0xFFRRGGBB, rows from the top without gaps: the order of a 32-bit RGB image of the
// toolkit. A surface may be empty.
class Surface {
public:
    using Pixel = std::uint32_t;
    static constexpr Pixel black = 0xFF000000;

    // No side is ever longer; a request beyond it, or below 0, is held to the limit.
    static constexpr int mostPixels = 8192;

    Surface() = default;
    // All black.
    Surface(int width, int height);

    int width() const noexcept { return width_; }
    int height() const noexcept { return height_; }
    bool empty() const noexcept { return pixels_.empty(); }

    // Outside the surface: black, and writing does nothing.
    Pixel pixel(int x, int y) const noexcept { return has(x, y) ? pixels_[at(x, y)] : black; }
    void setPixel(int x, int y, Pixel pixel) noexcept {
        if (has(x, y))
            pixels_[at(x, y)] = pixel;
    }

    // For views: `width` times `height` pixels.
    const Pixel *data() const noexcept { return pixels_.data(); }

    friend bool operator==(const Surface &, const Surface &) = default;

private:
    bool has(int x, int y) const noexcept { return x >= 0 && y >= 0 && x < width_ && y < height_; }
    std::size_t at(int x, int y) const noexcept {
        return static_cast<std::size_t>(y) * static_cast<std::size_t>(width_) +
               static_cast<std::size_t>(x);
    }

    int width_ = 0;
    int height_ = 0;
    std::vector<Pixel> pixels_;
};

} // namespace velmora::forms
