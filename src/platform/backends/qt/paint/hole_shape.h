#pragma once

// From the transparency of a painted window to the rectangles it consists of.

#include <QImage>

#include <xcb/xcb.h>

#include <vector>

namespace velmora::platform::qt {

// The pixels of an ARGB32 (premultiplied or not) image whose alpha is at least `threshold`, as
// rectangles in bands from top to bottom, left to right within a band. Rows are taken together by
// so many: a group has the pixels of all its rows. Gaps in a row of fewer pixels than `gap` are
// closed.
std::vector<xcb_rectangle_t> solidRows(const QImage &image, int threshold, int together = 1,
                                       int gap = 1);

// Without a compositor a pixel is there or it is not: those of `image` (ARGB32, premultiplied) with
// at least half opacity become opaque in their own colour, the others go.
void hardenEdges(QImage &image);

// Least opacity that belongs to the window, with and without a compositor.
inline constexpr int softThreshold = 1;
inline constexpr int hardThreshold = 128;

} // namespace velmora::platform::qt
