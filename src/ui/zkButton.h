#pragma once

// The program's push button: stretches a small state picture to any size and fades softly between
// the normal, the hot and the pressed look.
//
// A tick every 20 ms blends the look it goes to over what is shown, with an alpha that grows by
// `speed` (by 1 on the way back to normal), until the alpha has reached 255. The ticks begin when
// the pointer moves over the button, and end with the fade.

#include "platform/forms/drawing.h"
#include "platform/forms/timer.h"
#include "platform/forms/user_control.h"

#include <array>
#include <functional>

namespace velmora {

class zkButton : public forms::UserControl {
public:
    // The caption is the name without the word "Shade", wherever and however often it stands in it.
    zkButton(forms::Container &container, const char *name);
    ~zkButton() override;

    const std::u16string &caption() const noexcept { return caption_; }
    void setCaption(std::u16string_view caption); // shows the normal look anew
    std::int32_t speed() const noexcept { return speed_; }
    void setSpeed(std::int32_t speed); // shows the normal look anew
    Colour foreColor() const noexcept { return foreColor_; }
    void setForeColor(Colour colour); // shows at once
    Colour hotColor() const noexcept { return hotColor_; }
    void setHotColor(Colour colour) noexcept { hotColor_ = colour; } // shows with the next hot tick
    Colour pressedColor() const noexcept { return pressedColor_; }
    void setPressedColor(Colour colour) noexcept { pressedColor_ = colour; }

    // The pointer has left the button.
    std::function<void()> MouseOut;

    forms::CustomLook look() const override;
    bool takesFocus() const noexcept override { return true; }
    std::u16string accessibleName() const override { return caption_; }

    void mouseDown(const forms::MouseEvent &event) override;
    void mouseMove(const forms::MouseEvent &event) override;
    void mouseUp(const forms::MouseEvent &event) override;
    void keyDown(forms::KeyEvent &event) override; // Enter and Space are a click
    void scaleChanged() override { paint(); }

    // What the button does just now; for tests.
    enum class State : std::int32_t { ToNormal = 0, ToHot = 1, ToPressed = 2, Idle = 3 };
    State state() const noexcept { return state_; }
    std::uint8_t fade() const noexcept { return fade_; }
    bool ticking() const noexcept { return TimerPaint.running(); }

protected:
    void resized() override { paint(); }
    void enabledChanged() override;

private:
    void paint();
    // What is asked for is drawn when it is looked at or blended: most buttons stand on windows
    // that are not seen, and few are ever pressed.
    void drawShown() const;
    const platform::DeviceContext &stateLook(State state) const;
    void assemble(std::size_t index) const;
    int devicePixels(Twips twips) const;
    void tick();

    static constexpr std::size_t looks = 3;

    forms::Timer TimerPaint;
    mutable std::array<platform::DeviceContext, looks> state_DC_;
    mutable platform::DeviceContext picMain_;
    mutable std::array<bool, looks> assembled_{};
    mutable bool sized_ = false; // picMain_ has the present size
    mutable bool shown_ = false; // picMain_ shows the normal look or a fade from it
    bool asked_ = false;         // there is something to show at all
    std::u16string caption_;
    forms::Font captionFont_;
    mutable Twips captionHeight_ = 0;
    Colour foreColor_;
    Colour hotColor_;
    Colour pressedColor_;
    Colour captionColor_;
    std::int32_t speed_;
    State state_ = State::Idle;
    State rested_ = State::ToNormal; // where the last whole fade went
    std::uint8_t fade_ = 0;
    float last_X_ = 0;
    float last_Y_ = 0;
};

} // namespace velmora
