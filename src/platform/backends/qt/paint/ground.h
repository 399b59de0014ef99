#pragma once

// What lies below a form's controls. A ground picture is drawn once for a size and density and kept
// while the window can be seen, since every small repaint begins with it.

#include "platform/backends/qt/paint/control_painter.h"

#include <QImage>
#include <QRegion>

namespace velmora::platform::qt {

class Ground {
public:
    // `soft`: a compositor blends the window; without one each pixel is there or it is not.
    void paint(const ControlPainter::Job &job, const forms::Form &form, bool soft);
    // Whether the ground alone is solid all over `area` (logical pixels) in a form with a key.
    bool isSolid(const forms::Form &form, const QRectF &area, double density, bool soft);
    void forget();

private:
    void draw(const forms::Form &form, double density, bool keyed, bool soft);

    QImage image_;  // one pixel for a device pixel
    QRegion solid_; // device pixels
    double density_ = 0;
    bool keyed_ = false;
    bool soft_ = false;
};

} // namespace velmora::platform::qt
