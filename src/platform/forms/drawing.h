#pragma once

// Drawing in memory under the platform's names: device contexts that hold a bitmap, copying,
// stretching and blending. Plain C++, the same on every system; nothing here reaches a screen. What
// falls outside a bitmap is cut off.

#include "platform/forms/surface.h"

#include <cstdint>
#include <memory>

namespace velmora::platform {

// A bitmap lives as long as somebody holds it: one that is deleted while a device context has it
// selected stays usable there.
using Bitmap = std::shared_ptr<forms::Surface>;

struct DeviceContext {
    Bitmap selected;
};

// The raster operation "the source as it is".
inline constexpr std::uint32_t SRCCOPY = 0x00CC0020;

struct BlendFunction {
    std::uint8_t operation = 0; // AC_SRC_OVER
    std::uint8_t flags = 0;
    std::uint8_t sourceConstantAlpha = 0;
    std::uint8_t alphaFormat = 0; // the source's own alpha plays no part
};

// A new black bitmap; sides below 0 count as 0.
Bitmap CreateCompatibleBitmap(int width, int height);
// Puts the bitmap into the context; the answer is the one before.
Bitmap SelectObject(DeviceContext &context, Bitmap bitmap);
// Lets go of this hold on the bitmap.
void DeleteObject(Bitmap &bitmap) noexcept;
void DeleteDC(DeviceContext &context) noexcept;

// All three answer false when the target or the source holds no bitmap, or for a raster or blend
// operation other than the ones above. Source and target may not be the same bitmap.

bool BitBlt(DeviceContext &target, int x, int y, int width, int height, const DeviceContext &source,
            int sourceX, int sourceY, std::uint32_t operation);

// Stretches by repeating or leaving out pixels. A negative width or height mirrors: the target then
// ends at x (y) instead of beginning there. A side of 0 draws nothing.
bool StretchBlt(DeviceContext &target, int x, int y, int width, int height,
                const DeviceContext &source, int sourceX, int sourceY, int sourceWidth,
                int sourceHeight, std::uint32_t operation);

// target = (source * alpha + target * (255 - alpha)) / 255, rounded, for each colour. Source and
// target are of one size here.
bool AlphaBlend(DeviceContext &target, int x, int y, int width, int height,
                const DeviceContext &source, int sourceX, int sourceY,
                const BlendFunction &function);

} // namespace velmora::platform
