#pragma once

// The base of the program's own controls. They hold their look as data; the view draws it in a
// fixed order, and the form hands them the mouse and the keyboard.

#include "platform/forms/control.h"
#include "platform/forms/controls.h"
#include "platform/forms/surface.h"

#include <optional>

namespace velmora::forms {

// What the view draws, from back to front. Places are twips in the control's own coordinates.
struct CustomLook {
    // Device pixels of the whole control, drawn one to one (stretched when the control's size in
    // device pixels is another for a moment). Null: the flat ground.
    const Surface *surface = nullptr;
    Colour ground = 0;
    bool border = false; // a line of one pixel around the ground

    std::u16string caption;
    Font captionFont;
    Colour captionColor = 0;
    RectTwips captionPlace; // the caption stands in its middle, one line
    Alignment captionAlignment = Alignment::Centre;
    bool captionDimmed = false; // a disabled control's: half way between its colour and the ground

    // A bar over everything, drawn with the inverted exclusive-or pen: white leaves what is below,
    // black inverts it. Width 0: none.
    RectTwips bar;
    Colour barColor = 0;
};

class UserControl : public Control {
public:
    using Control::Control;
    Kind kind() const noexcept override { return Kind::Custom; }

    virtual CustomLook look() const = 0;

    // How far a bar has come, 0 to 1; nothing for what is pressed.
    virtual std::optional<double> progress() const { return {}; }

    // The device pixels of one logical pixel where the control is shown; 1 before there is a
    // window.
    double scale() const noexcept;

    // --- the form's side: what the control does with input. Each of these raises the event of its
    // name; a control that overrides one raises it itself.
    virtual void mouseDown(const MouseEvent &event);
    // Also called once with a position outside when the pointer leaves the control while no button
    // is held.
    virtual void mouseMove(const MouseEvent &event);
    virtual void mouseUp(const MouseEvent &event);
    virtual void click();
    virtual void keyDown(KeyEvent &event);

    // The view's side: the device pixels of a logical pixel are others now.
    virtual void scaleChanged() {}

    void move(const RectTwips &place) override;

protected:
    // The size is another.
    virtual void resized() {}
    // With its containers, but without the form: a disabled form looks unchanged.
    bool looksEnabled() const noexcept;
};

} // namespace velmora::forms
