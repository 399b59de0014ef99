#include "platform/forms/surface.h"

#include "platform/forms/drawing.h"

#include <algorithm>
#include <utility>

namespace velmora::forms {

Surface::Surface(int width, int height)
    : width_(std::clamp(width, 0, mostPixels)), height_(std::clamp(height, 0, mostPixels)),
      pixels_(static_cast<std::size_t>(width_) * static_cast<std::size_t>(height_), black) {}

} // namespace velmora::forms

namespace velmora::platform {

namespace {

using forms::Surface;
using Pixel = Surface::Pixel;

// One axis of a stretch: where the target's pixels lie and which source pixel each one takes.
struct Axis {
    int first;       // the lowest target pixel
    int count;       // target pixels
    int sourceFirst; // the lowest source pixel
    int sourceCount; // source pixels
    bool mirrored;

    Axis(int target, int size, int source, int sourceSize)
        : first(std::min(target, target + size)), count(std::abs(size)),
          sourceFirst(std::min(source, source + sourceSize)), sourceCount(std::abs(sourceSize)),
          mirrored((size < 0) != (sourceSize < 0)) {}

    int sourceOf(int step) const {
        const int straight = mirrored ? count - 1 - step : step;
        return sourceFirst +
               static_cast<int>(static_cast<std::int64_t>(straight) * sourceCount / count);
    }
    // The steps whose target pixel lies in 0 to `limit`.
    int firstStep() const { return std::max(0, -first); }
    int endStep(int limit) const { return std::min(count, limit - first); }
};

// Calls `put(target x, target y, source pixel)` for each target pixel that is there.
template <typename Put> void eachPixel(const Axis &across, const Axis &down, const Surface &target,
                                       const Surface &source, Put &&put) {
    for (int v = down.firstStep(); v < down.endStep(target.height()); ++v) {
        const int sourceY = down.sourceOf(v);
        for (int u = across.firstStep(); u < across.endStep(target.width()); ++u)
            put(across.first + u, down.first + v, source.pixel(across.sourceOf(u), sourceY));
    }
}

Pixel blended(Pixel target, Pixel source, std::uint32_t alpha) {
    constexpr std::uint32_t whole = 255;
    Pixel result = Surface::black;
    for (const std::uint32_t shift : {0U, 8U, 16U}) {
        const std::uint32_t from = target >> shift & whole;
        const std::uint32_t to = source >> shift & whole;
        result |= (to * alpha + from * (whole - alpha) + whole / 2) / whole << shift;
    }
    return result;
}

bool ready(const DeviceContext &target, const DeviceContext &source) {
    return target.selected && source.selected && target.selected != source.selected;
}

} // namespace

Bitmap CreateCompatibleBitmap(int width, int height) {
    return std::make_shared<Surface>(width, height);
}

Bitmap SelectObject(DeviceContext &context, Bitmap bitmap) {
    return std::exchange(context.selected, std::move(bitmap));
}

void DeleteObject(Bitmap &bitmap) noexcept { bitmap.reset(); }

void DeleteDC(DeviceContext &context) noexcept { context.selected.reset(); }

bool BitBlt(DeviceContext &target, int x, int y, int width, int height, const DeviceContext &source,
            int sourceX, int sourceY, std::uint32_t operation) {
    return StretchBlt(target, x, y, width, height, source, sourceX, sourceY, width, height,
                      operation);
}

bool StretchBlt(DeviceContext &target, int x, int y, int width, int height,
                const DeviceContext &source, int sourceX, int sourceY, int sourceWidth,
                int sourceHeight, std::uint32_t operation) {
    if (!ready(target, source) || operation != SRCCOPY)
        return false;
    Surface &into = *target.selected;
    eachPixel({x, width, sourceX, sourceWidth}, {y, height, sourceY, sourceHeight}, into,
              *source.selected,
              [&into](int toX, int toY, Pixel pixel) { into.setPixel(toX, toY, pixel); });
    return true;
}

bool AlphaBlend(DeviceContext &target, int x, int y, int width, int height,
                const DeviceContext &source, int sourceX, int sourceY,
                const BlendFunction &function) {
    if (!ready(target, source) || function.operation != 0 || function.flags != 0 ||
        function.alphaFormat != 0)
        return false;
    Surface &into = *target.selected;
    const std::uint32_t alpha = function.sourceConstantAlpha;
    eachPixel({x, width, sourceX, width}, {y, height, sourceY, height}, into, *source.selected,
              [&into, alpha](int toX, int toY, Pixel pixel) {
                  into.setPixel(toX, toY, blended(into.pixel(toX, toY), pixel, alpha));
              });
    return true;
}

} // namespace velmora::platform
