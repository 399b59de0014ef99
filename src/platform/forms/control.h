#pragma once

// The control model: plain objects that hold what the program reads and writes. A form has a window
// behind it only once it has been shown; the model never waits for it. Every setter compares first:
// an unchanged value costs nothing and draws nothing.
//
// A control is a member of its form and lives exactly as long. Positions are twips relative to the
// container; a size below 0 counts as 0, and what is no number raises. Hidden and disabled are the
// control's own flags; whether it can be seen or clicked also depends on its containers (`isShown`,
// `isLive`).

#include "base/geometry.h"
#include "platform/forms/events.h"
#include "platform/forms/font.h"

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace velmora::forms {

class Form;
class Container;

enum class Kind : std::uint8_t {
    Label,
    Image,
    PictureBox,
    ListBox,
    TextBox,
    CheckBox,
    OptionButton,
    Frame,
    Shape,
    Line,
    Timer,
    Menu,
    Custom,
};

// What changed, for the window behind the form.
enum class Change : std::uint8_t {
    Place,   // left, top, width, height; the rectangle before comes along
    Visible, // own flag
    Enabled, // own flag
    Look,    // caption, picture, colours, font, value: repaint the control's rectangle
    Order,   // z-order
    ToolTip,
    Pointer,
    Text,      // text box: text, selection, locked
    Rows,      // list box: rows added, removed, renamed
    Selection, // list box: selection, current row
    Scroll,    // list box: top row
};

// Mouse pointers by their numbers: 0 the default arrow, 11 the hourglass, 99 the control's own
// icon.
inline constexpr std::int16_t pointerDefault = 0;
inline constexpr std::int16_t pointerHourglass = 11;
inline constexpr std::int16_t pointerCustom = 99;

// What a control is to another one of its form, for assistive technology: called as that one is
// (a text box by its label), a slider whose value is that one's share of its width, the tab of that
// page, or a part of that one and nothing of its own (what scrolls a list by the mouse).
enum class Bond : std::uint8_t { None, Named, Slider, Tab, Part };

// The mouse icons there are: none, or the one hand cursor of the program.
enum class MouseIcon : std::uint8_t { None, Hand };

// A place as a control or form takes it: sizes below 0 become 0; raises InvalidPropertyValue where
// one of the numbers is none.
RectTwips checkedPlace(const RectTwips &place);

// Stores a value and tells whether it is a new one.
template <typename Value, typename New> bool differs(Value &held, const New &value) {
    if (held == value)
        return false;
    held = value;
    return true;
}

class Control {
public:
    // `name` must outlive the control (a literal). Registers with the container, on top.
    Control(Container &container, const char *name);
    virtual ~Control();
    Control(const Control &) = delete;
    Control &operator=(const Control &) = delete;

    virtual Kind kind() const noexcept = 0;
    const char *name() const noexcept { return name_; }
    Container &container() const noexcept { return *container_; }
    Form &form() const noexcept { return *form_; }

    Twips left() const noexcept { return place_.left; }
    Twips top() const noexcept { return place_.top; }
    Twips width() const noexcept { return place().width; }
    Twips height() const noexcept { return place().height; }
    const RectTwips &place() const noexcept {
        if (owesSize_)
            paySize();
        return place_;
    }
    void setLeft(Twips left);
    void setTop(Twips top);
    virtual void setWidth(Twips width);
    virtual void setHeight(Twips height);
    virtual void move(const RectTwips &place);

    // The rectangle in the form's coordinates.
    RectTwips placeInForm() const noexcept;

    bool visible() const noexcept { return visible_; }
    bool enabled() const noexcept { return enabled_; }
    void setVisible(bool visible) { set(visible_, visible, Change::Visible); }
    void setEnabled(bool enabled);
    // With all containers and the form taken into account. `isShown` is true on a hidden form, too.
    bool isShown() const noexcept;
    bool isLive() const noexcept;

    const std::u16string &tag() const noexcept { return tag_; }
    void setTag(std::u16string_view tag) { tag_ = tag; }
    const std::u16string &toolTip() const noexcept { return toolTip_; }
    void setToolTip(std::u16string_view text) { set(toolTip_, text, Change::ToolTip); }

    std::int16_t mousePointer() const noexcept { return mousePointer_; }
    void setMousePointer(std::int16_t pointer) { set(mousePointer_, pointer, Change::Pointer); }
    MouseIcon mouseIcon() const noexcept { return mouseIcon_; }
    void setMouseIcon(MouseIcon icon) { set(mouseIcon_, icon, Change::Pointer); }

    // Brings the control to the front (0) or back (1) of its container.
    void zOrder(std::int16_t position = 0);

    // Repaints the control at once, without handling input.
    void refresh();

    // Whether Tab stops here. What the user edits or chooses in always does; a picture or label
    // that is clicked does where its design says so, and Enter and Space are its click then.
    virtual bool takesFocus() const noexcept { return tabStop_; }
    void setTabStop(bool stops) noexcept { tabStop_ = stops; }

    // The name for assistive technology: that of the control it is called after, else tool tip,
    // else caption, else empty.
    virtual std::u16string accessibleName() const;
    Bond bond() const noexcept { return bond_; }
    // Null without a bond. Both live as long as the form.
    const Control *bondedTo() const noexcept { return bondedTo_; }
    void setBond(Bond bond, const Control &other) noexcept;

    // Handlers, made on first use.
    ControlEvents &on();
    const ControlEvents *events() const noexcept { return events_.get(); }

protected:
    void changed(Change what);
    // What every setter does: a new value is stored and told.
    template <typename Value, typename New> void set(Value &held, const New &value, Change what) {
        if (differs(held, value))
            changed(what);
    }
    // The own flag is another now.
    virtual void enabledChanged() {}
    void placeChanged(const RectTwips &before);
    // Whether a size that follows from other values may wait until somebody asks for it: a form
    // without a window tells nobody of a new one.
    bool mayOweSize() const noexcept;
    void oweSize() noexcept { owesSize_ = true; }
    virtual TextExtent owedSize() const { return {place_.width, place_.height}; }

private:
    friend class Container;
    void paySize() const noexcept;

    Container *container_;
    Form *form_;
    const char *name_;
    const Control *bondedTo_ = nullptr;
    mutable RectTwips place_;
    std::unique_ptr<ControlEvents> events_;
    std::u16string tag_;
    std::u16string toolTip_;
    std::int16_t mousePointer_ = pointerDefault;
    MouseIcon mouseIcon_ = MouseIcon::None;
    Bond bond_ = Bond::None;
    bool visible_ = true;
    bool enabled_ = true;
    bool tabStop_ = false;
    mutable bool owesSize_ = false; // see oweSize; never with a window
};

// Tells whether a control or form still lives, for code that goes on after a handler. Lives on the
// stack alone.
class Watch {
public:
    explicit Watch(const Control &control) noexcept;
    explicit Watch(Form &form) noexcept;
    ~Watch();
    Watch(const Watch &) = delete;
    Watch &operator=(const Watch &) = delete;
    explicit operator bool() const noexcept { return !gone_; }

private:
    friend class Form;
    Form *form_; // null once the form is gone
    const Control *control_;
    Watch *outer_;
    bool gone_ = false;
};

// What holds controls: a form, a frame, a picture box. Order is from back to front.
class Container {
public:
    virtual ~Container() = default;
    const std::vector<Control *> &controls() const noexcept { return controls_; }
    virtual Form &containerForm() noexcept = 0;
    // Null for the form itself.
    virtual Control *asControl() noexcept = 0;

private:
    friend class Control;
    std::vector<Control *> controls_;
};

} // namespace velmora::forms
