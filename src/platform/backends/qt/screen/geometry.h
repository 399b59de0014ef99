#pragma once

// Twips, logical pixels and device pixels. Painting happens in logical pixels; edges that must be
// sharp are moved to the nearest device pixel first.

#include "base/geometry.h"

#include <QRect>
#include <QRectF>

#include <cmath>

namespace velmora::platform::qt {

inline double toPixels(Twips twips) noexcept { return static_cast<double>(twips) / twipsPerPixel; }

inline Twips toTwips(double pixels) noexcept {
    return static_cast<Twips>(pixels * static_cast<double>(twipsPerPixel));
}

inline QRectF toPixels(const RectTwips &rect) noexcept {
    return {toPixels(rect.left), toPixels(rect.top), toPixels(rect.width), toPixels(rect.height)};
}

inline double snapped(double pixels, double density) noexcept {
    return std::round(pixels * density) / density;
}

// Each edge on a device pixel, so that what abuts in the design abuts on the screen.
inline QRectF snapped(const QRectF &rect, double density) noexcept {
    const double left = snapped(rect.left(), density);
    const double top = snapped(rect.top(), density);
    return {left, top, snapped(rect.right(), density) - left,
            snapped(rect.bottom(), density) - top};
}

// Whole logical pixels, each edge at the nearest: where a child widget goes.
inline QRect nearest(const QRectF &rect) noexcept {
    const int left = qRound(rect.left());
    const int top = qRound(rect.top());
    return {left, top, qRound(rect.right()) - left, qRound(rect.bottom()) - top};
}

// The width of a fine line: one device pixel, from twice the density on two.
inline double hairline(double density) noexcept {
    return std::max(1.0, std::floor(density)) / density;
}

} // namespace velmora::platform::qt
