#pragma once

// A button on a form, and what each of its ticks and slices should give.

#include "tests/unit/forms/form_fixture.h"
#include "ui/zkButton.h"

namespace velmora {

using forms::leftButton;
using forms::Log;
using forms::rightButton;
using forms::Surface;
using ::testing::IsEmpty;
using State = zkButton::State;

inline constexpr Colour faceColour = 0x8000000F;
inline constexpr Colour red = 0x000000FF;
inline constexpr Colour blue = 0x00C00000;

class ButtonTest : public forms::FormFixture {
protected:
    zkButton button{form, "ShadeOK"};
    Log log;

    ButtonTest() { button.move({300, 300, 20 * 15, 10 * 15}); }

    void logAll() {
        logEvents(button.on(), "button", log);
        button.MouseOut = [this] { log.emplace_back("button out"); };
    }

    void tick(int count = 1) { windows.advance(20 * count); }
    const Surface &shownPicture() const { return *button.look().surface; }
    static Surface::Pixel source(forms::Picture picture, int x, int y) {
        return Surface::black | static_cast<std::uint32_t>(picture) << 16U |
               static_cast<std::uint32_t>(x) << 8U | static_cast<std::uint32_t>(y);
    }
    // Whether the whole button shows this look.
    void expectLook(forms::Picture picture) {
        const Surface &surface = shownPicture();
        EXPECT_EQ(surface.pixel(0, 0), source(picture, 0, 0));
        EXPECT_EQ(surface.pixel(10, 5), source(picture, surface.width() == 20 ? 3 : 2, 16));
    }
    void enter() { move(310, 310); }
    void leave() { move(100, 100); }
};

} // namespace velmora
