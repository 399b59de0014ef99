#pragma once

// A window's model, and the routing of raw input to its controls. The design of a form (generated
// from its .form file) derives from Form and holds its controls as members; the form's code derives
// from the design.

#include "platform/forms/control.h"
#include "platform/forms/font.h"
#include "platform/forms/picture.h"

#include <functional>
#include <optional>

namespace velmora::platform {
using HWND = std::uintptr_t;
} // namespace velmora::platform

namespace velmora::forms {

class FormWindow;
class Host;

enum class WindowState : std::uint8_t { Normal = 0, Minimised = 1 };

enum class FormChange : std::uint8_t {
    Place,
    Visible,
    Enabled,
    Caption,
    State,
    Look, // ground picture, colours, key
    Icon,
    Topmost,
    Pointer,
};

class Form : public Container {
public:
    Form(Host &host, const char *name);
    ~Form() override;
    Form(const Form &) = delete;
    Form &operator=(const Form &) = delete;

    Form &containerForm() noexcept override { return *this; }
    Control *asControl() noexcept override { return nullptr; }
    const char *name() const noexcept { return name_; }
    Host &host() const noexcept { return host_; }

    // The form's number for the window operations; never 0, never reused in a run.
    platform::HWND hWnd() const noexcept { return hWnd_; }

    const std::u16string &caption() const noexcept { return caption_; }
    void setCaption(std::u16string_view caption) { set(caption_, caption, FormChange::Caption); }

    // Screen position and size. Float as the design has them; the window is placed at the nearest
    // logical pixel. Sizes below 0 count as 0; what is no number raises. A new size raises Resize.
    Twips left() const noexcept { return place_.left; }
    Twips top() const noexcept { return place_.top; }
    Twips width() const noexcept { return place_.width; }
    Twips height() const noexcept { return place_.height; }
    const RectTwips &place() const noexcept { return place_; }
    void setLeft(Twips left);
    void setTop(Twips top);
    void setWidth(Twips width);
    void setHeight(Twips height);
    void move(const RectTwips &place);

    bool visible() const noexcept { return visible_; }
    void show(); // a form that is shown already comes to the front
    void hide();
    void setVisible(bool visible);
    bool enabled() const noexcept { return enabled_; }
    void setEnabled(bool enabled);
    WindowState windowState() const noexcept { return state_; }
    void setWindowState(WindowState state) { set(state_, state, FormChange::State); }
    std::int16_t mousePointer() const noexcept { return mousePointer_; }
    void setMousePointer(std::int16_t pointer) { set(mousePointer_, pointer, FormChange::Pointer); }

    // The picture stretched over the whole window; without one the back colour.
    Picture ground() const noexcept { return ground_; }
    void setGround(Picture ground) { set(ground_, ground, FormChange::Look); }
    Colour backColor() const noexcept { return backColor_; }
    void setBackColor(Colour colour) { set(backColor_, colour, FormChange::Look); }
    const Font &font() const noexcept { return font_; }
    void setFont(const Font &font) { font_ = font; }
    Picture icon() const noexcept { return icon_; }
    void setIcon(Picture icon) { set(icon_, icon, FormChange::Icon); }

    // How the window appears outside: with an entry in the task bar, or without.
    bool showInTaskbar() const noexcept { return showInTaskbar_; }
    void setShowInTaskbar(bool show) noexcept { showInTaskbar_ = show; }
    // Placed by the program alone, above panels and screen edges (the mini strip, the desktop
    // line).
    bool unmanaged() const noexcept { return unmanaged_; }
    void setUnmanaged(bool unmanaged) noexcept { unmanaged_ = unmanaged; }
    // Setting it places the form in the middle of the work area at once, at a whole pixel (of the
    // screen where that area cannot be told); a design does so when the form is loaded, so what the
    // program places later counts from there. True until the program moves the form.
    bool startCentred() const noexcept { return startCentred_; }
    void setStartCentred(bool centred);

    // Window styles written through the window operations (windows.h).
    bool layered() const noexcept { return layered_; }
    std::optional<Colour> windowKey() const noexcept { return key_; }
    bool topmost() const noexcept { return topmost_; }
    void setLayered(bool layered) { set(layered_, layered, FormChange::Look); }
    void setWindowKey(std::optional<Colour> key) { set(key_, key, FormChange::Look); }
    void setTopmost(bool topmost) { set(topmost_, topmost, FormChange::Topmost); }
    // Above all normal windows once, without staying there.
    void raise();

    // Asks QueryUnload; unless cancelled hides the form, raises Unload and reports true: the owner
    // then lets it go.
    bool unload();

    // The extent of a text in a font (Form.TextWidth, TextHeight).
    TextExtent textExtent(std::u16string_view text, const Font &font) const;

    // The control that has the focus; a disabled one keeps it. Null: the form itself.
    Control *activeControl() const noexcept { return active_; }
    // Nothing for a control that is hidden or disabled.
    void setFocus(Control *control);

    void refresh(); // repaints at once

    FormEvents &on();
    const FormEvents *events() const noexcept { return events_.get(); }

    // --- the view's side --------------------------------------------------------------------

    // Raw input in form coordinates: the pointer's screen position less the form's place here. The
    // form finds the control: the topmost that is shown and contains the point; clicks go through
    // shapes and lines; a disabled control passes the event to its container. Nothing is delivered
    // while the form is disabled. Any handler may end the life of any control, of the form, too.
    //
    // A control that took a press gets moves and the release until all buttons are up, hidden or
    // not; disabled meanwhile it gets the release alone. Click follows the left button's release
    // when press and release lie in the same control and that is still enabled. A double click is
    // press, release, Click, DblClick, release; where nobody listens to DblClick the second press
    // is a press like the first. Lists, check boxes and options report Click and DblClick by their
    // own roads (`userClicked` ...), not from here.
    //
    // A control of the program's own (Kind::Custom) is told once, by a move outside, that the
    // pointer has left it: for another control, the window's outside, or after a press that ended
    // outside.
    void pointerPressed(PointTwips at, std::int16_t button, std::int16_t shift);
    // `buttons` is the mask of those held. None held ends a press whose release was lost.
    void pointerMoved(PointTwips at, std::int16_t buttons, std::int16_t shift);
    void pointerReleased(PointTwips at, std::int16_t button, std::int16_t shift);
    void pointerDoubleClicked(PointTwips at, std::int16_t button, std::int16_t shift);
    void pointerLeft();
    // No button is held any more, though no release came (another window took it): the press that
    // was going on ends without a release and without a click.
    void pointerLost();
    // A key goes to the active control if there is one, else to the form. A held key is one press:
    // the view passes on the first event alone and keeps repeats for text boxes and list
    // navigation. A disabled active control keeps the focus and gets nothing; a hidden one has lost
    // it to the first control that can take it. A panel (picture box or frame) lying over the
    // active control takes its keys. True when the key was not swallowed: a toolkit widget may then
    // act on it.
    bool keyPressed(std::int16_t keyCode, std::int16_t shift);
    void keyReleased(std::int16_t keyCode, std::int16_t shift);
    // Tab and Shift+Tab: to the next control that can take the focus, in the order of the design,
    // round and round, but for those that a panel lies over. False where there is none.
    bool focusNext(bool backwards);
    // Where that would be; null for nowhere.
    Control *nextFocus(bool backwards) const;
    // Whether a panel lies over the control, or over what holds it, and has its keys.
    bool isCovered(const Control &control) const;
    // The window manager's wish to close this window: `unload`. Dropped while the form is disabled.
    void closeRequested();
    // The window was moved, minimised or restored from outside.
    void movedTo(Twips left, Twips top);
    void stateChanged(WindowState state);
    // The device pixels of a logical pixel are others now.
    void scaleChanged();

    // What the pointer shows at a point: the control's pointer and icon, or the form's.
    struct PointerLook {
        std::int16_t pointer = pointerDefault;
        MouseIcon icon = MouseIcon::None;
    };
    PointerLook pointerAt(PointTwips at) const;
    // The control that would receive a press there, or null for the form.
    Control *controlAt(PointTwips at) const;

    // The window behind the form, made when first needed; null before.
    FormWindow *window() const noexcept { return window_.get(); }
    FormWindow &ensureWindow();

protected:
    // Lets the window behind the form go, for the end of a design's life: its controls end next,
    // and the window must not be told of each.
    void dropWindow() noexcept;

private:
    friend class Control;
    friend class Watch;
    enum class PointerEvent : std::uint8_t { Down, Move, Up };
    Control *takerAt(PointTwips at) const;
    Control *keyTarget() const;
    void focusInside(const Control &control);
    void focusBelow(const Control &panel);
    void deliver(PointerEvent what, Control *target, PointTwips at, std::int16_t button,
                 std::int16_t shift);
    void hoverAt(Control *control, PointTwips at, std::int16_t shift);
    void leaveHovered(PointTwips at, std::int16_t shift);
    void clickOn(Control *target);
    void controlChanged(Control &control, Change what, const RectTwips &before);
    void controlGone(Control &control);
    void formChanged(FormChange what);
    template <typename Value, typename New>
    void set(Value &held, const New &value, FormChange what) {
        if (differs(held, value))
            formChanged(what);
    }
    void placeChanged(const RectTwips &before);

    Host &host_;
    const char *name_;
    platform::HWND hWnd_;
    std::unique_ptr<FormWindow> window_;
    std::unique_ptr<FormEvents> events_;
    std::u16string caption_;
    RectTwips place_;
    Font font_;
    Colour backColor_ = 0;
    std::optional<Colour> key_;
    Watch *watches_ = nullptr; // innermost first
    Control *active_ = nullptr;
    Control *captured_ = nullptr; // took the press that is going on
    Control *hovered_ = nullptr;  // the control of the program's own that the pointer is over
    bool leavePending_ = false;   // it left while the form was disabled
    bool formCaptured_ = false;
    bool clickSpent_ = false; // the press going on is the second of a double click
    std::int16_t heldButtons_ = 0;
    std::int16_t mousePointer_ = pointerDefault;
    Picture ground_ = Picture::None;
    Picture icon_ = Picture::None;
    WindowState state_ = WindowState::Normal;
    bool visible_ = false;
    bool enabled_ = true;
    bool showInTaskbar_ = false;
    bool unmanaged_ = false;
    bool startCentred_ = false;
    bool layered_ = false;
    bool topmost_ = false;
};

} // namespace velmora::forms
