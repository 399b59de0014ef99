#pragma once

// What a form asks of the system that it is shown in: a number, a window, timers, measures of texts
// and of the screen. The window system answers; here is no more of it than the control model needs.

#include "base/geometry.h"
#include "platform/forms/control.h"
#include "platform/forms/font.h"
#include "platform/forms/form.h"
#include "platform/forms/surface.h"

#include <cstdint>
#include <memory>
#include <string_view>

namespace velmora::forms {

class PictureBox;
class TimerQueue;

// The window behind one form. Reads everything it shows from the form; is told what changed. Paints
// nothing while it cannot be seen.
class FormWindow {
public:
    virtual ~FormWindow() = default;
    // `before` is the control's rectangle in form coordinates ahead of a Place change; else its
    // present one.
    virtual void controlChanged(Control &control, Change what, const RectTwips &before) = 0;
    virtual void controlGone(Control &control) = 0;
    virtual void formChanged(FormChange what, const RectTwips &before) = 0;
    // Paints what is outstanding, at once and without handling input. `control` null: all of it.
    virtual void refresh(Control *control) = 0;
    virtual void raise() = 0;
    virtual void focus(Control *control) = 0;
    // The native window of a picture box (see PictureBox::hWnd).
    virtual std::uintptr_t pictureWindow(PictureBox &box) = 0;
    // Device pixels of a logical pixel. When it changes the window calls Form::scaleChanged.
    virtual double scaleFactor() const { return 1.0; }
};

class Host {
public:
    virtual ~Host() = default;

    // --- forms ------------------------------------------------------------------------------
    // Each form reports itself while it lives; the answer is its number.
    virtual platform::HWND formMade(Form &form) = 0;
    virtual void formGone(Form &form) = 0;
    virtual std::unique_ptr<FormWindow> makeWindow(Form &form) = 0;

    // --- timers --------------------------------------------------------------------------------
    virtual TimerQueue &timers() = 0;

    // --- text --------------------------------------------------------------------------------
    virtual TextExtent textExtent(std::u16string_view text, const Font &font) = 0;

    // --- pictures ------------------------------------------------------------------------------
    // A picture drawn over the whole of a new surface of that many pixels; what it leaves open is
    // black. For controls that compose their look pixel by pixel.
    virtual Surface pictureSurface(Picture picture, int width, int height) {
        (void)picture;
        return {width, height};
    }

    // --- screen --------------------------------------------------------------------------------
    // What panels leave free of the primary monitor, in pixels; false where that cannot be told.
    virtual bool workArea(RectPixels &area) = 0;
    virtual Twips screenWidth() = 0;
    virtual Twips screenHeight() = 0;
};

} // namespace velmora::forms
