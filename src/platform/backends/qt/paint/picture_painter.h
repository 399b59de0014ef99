#pragma once

// Paints the drawings of the skin from the generated table, sharp at every density.
//
// A drawing with insets is stretched between them; any other scales uniformly and is centred in its
// target. What a drawing marks as a hole is cleared, with smooth edges, on a surface that has an
// alpha channel, and filled with the key colour on one that has none. Nothing is kept between
// calls.

#include "platform/forms/picture.h"

#include <QRectF>
#include <QSizeF>

class QPainter;

namespace velmora::platform::qt {

// `target` is in the painter's coordinates (logical pixels); the painter's transform may scale and
// move, not turn. `Picture::None` and an empty target draw nothing. The painter's state is as
// before afterwards.
void paintPicture(QPainter &painter, forms::Picture picture, const QRectF &target);

// The designed size in logical pixels; 0 x 0 for none.
QSizeF pictureSize(forms::Picture picture);

// Whether the drawing has holes.
bool pictureIsKeyed(forms::Picture picture);

} // namespace velmora::platform::qt
